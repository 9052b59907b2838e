// Writing point records: the column table (label and width of each code), the header line and
// one record.
#include <cmath>
#include <cstdint>
#include <ostream>

#include "orvo/model/point.h"
#include "orvo/textfile/writer.h"
#include "point_columns.h"
#include "point_text.h"

namespace orvo {

namespace detail {

OvPointColumn GetPointColumn(std::uint32_t code) {
    switch (code) {
        case eOvPointRWId:
            return {"#", w8, 10};
        case eOvPointRWCode123:
            return {"Code", w4, 4};
        case eOvPointRWCode:
            return {"Code", w4, 4};
        case eOvPointRWName:
            return {"PP", w8, 10};
        case eOvPointRWPhoto:
            return {"Photo", w8, 10};
        case eOvPointRWCamera:
            return {"Camera", w8, 10};
        case eOvPointRWX:
            return {"   X", w16, 21};
        case eOvPointRWY:
            return {"   Y", w16, 21};
        case eOvPointRWZ:
            return {"   Z", w16, 21};
        case eOvPointRWDx:
            return {"  dx", w19, 24};
        case eOvPointRWDy:
            return {"  dy", w19, 24};
        case eOvPointRWDz:
            return {"  dz", w19, 24};
        case eOvPointRWDs:
            return {"  dS", w19, 24};
        case eOvPointRWRedu:
            return {"Redu", w19, 24};
        case eOvPointRWRedu2:
            return {"Redu2", w19, 24};
        case eOvPointRWRedu3:
            return {"Redu3", w19, 24};
        case eOvPointRWSx:
            return {"  Sx", w19, 24};
        case eOvPointRWSy:
            return {"  Sy", w19, 24};
        case eOvPointRWSz:
            return {"  Sz", w19, 24};
        case eOvPointRWResidualX:
            return {"Residual x", w19, 24};
        case eOvPointRWResidualY:
            return {"Residual y", w19, 24};
        case eOvPointRWResidualZ:
            return {"Residual z", w19, 24};
        default:
            return {nullptr, nullptr, 0};  // 17 and unknown codes write nothing
    }
}

}  // namespace detail

std::ostream& operator<<(std::ostream& out, const TOvFormatTable<eOvPointRWMask>& table) {
    for (int i = 0; table[i] != eOvPointRWEnd; ++i) {
        const detail::OvPointColumn column = detail::GetPointColumn(table[i]);
        if (column.label != nullptr) out << column.width << column.label;
    }
    return out;
}

std::ostream& OvPoint::Write(std::ostream& out, const OvPointFormat& format) const {
    out.precision(16);
    if (detail::StreamPrintsPlainNumbers(out)) {
        // The same bytes as the loop below prints, formatted in memory and handed over at once.
        detail::OvTextBuffer text;
        if (detail::AppendPointRecord(text, *this, format, out.fill())) {
            out.write(text.Data(), static_cast<std::streamsize>(text.Size()));
            out.setf(std::ios_base::right, std::ios_base::adjustfield);
        }
        return out;
    }
    for (int i = 0; format[i] != eOvPointRWEnd; ++i) {
        const std::uint32_t code = format[i];
        const detail::OvPointColumn column = detail::GetPointColumn(code);
        if (column.width == nullptr) continue;
        out << column.width;
        switch (code) {
            case eOvPointRWId:
                out << GetId();
                break;
            case eOvPointRWCode123:
                out << GetControlFlagsAs123();
                break;
            case eOvPointRWCode:
                out << controlFlags_;
                break;
            case eOvPointRWName:
                out << GetName().chars();
                break;
            case eOvPointRWPhoto:
                out << photoId_;
                break;
            case eOvPointRWCamera:
                out << cameraId_;
                break;
            case eOvPointRWX:
                out << x_;
                break;
            case eOvPointRWY:
                out << y_;
                break;
            case eOvPointRWZ:
                out << z_;
                break;
            case eOvPointRWDx:
            case eOvPointRWSx:
                out << d_[0];
                break;
            case eOvPointRWDy:
            case eOvPointRWSy:
                out << d_[1];
                break;
            case eOvPointRWDz:
            case eOvPointRWSz:
                out << d_[2];
                break;
            case eOvPointRWDs:
                out << std::sqrt(d_[0] * d_[0] + d_[1] * d_[1] + d_[2] * d_[2]);
                break;
            case eOvPointRWRedu:
            case eOvPointRWResidualX:
                out << r_[0];
                break;
            case eOvPointRWRedu2:
            case eOvPointRWResidualY:
                out << r_[1];
                break;
            case eOvPointRWRedu3:
            case eOvPointRWResidualZ:
                out << r_[2];
                break;
            default:
                break;
        }
    }
    return out;
}

}  // namespace orvo
