// Writing point records: the column table (label and width of each code), the header line and
// one record.
#include <cmath>
#include <cstdint>
#include <ostream>

#include "orvo/model/point.h"
#include "orvo/textfile/writer.h"
#include "point_columns.h"

namespace orvo {

namespace detail {

OvPointColumn GetPointColumn(std::uint32_t code) {
    switch (code) {
        case eOvPointRWId:
            return {"#", w8};
        case eOvPointRWCode123:
            return {"Code", w4};
        case eOvPointRWCode:
            return {"Code", w4};
        case eOvPointRWName:
            return {"PP", w8};
        case eOvPointRWPhoto:
            return {"Photo", w8};
        case eOvPointRWCamera:
            return {"Camera", w8};
        case eOvPointRWX:
            return {"   X", w16};
        case eOvPointRWY:
            return {"   Y", w16};
        case eOvPointRWZ:
            return {"   Z", w16};
        case eOvPointRWDx:
            return {"  dx", w19};
        case eOvPointRWDy:
            return {"  dy", w19};
        case eOvPointRWDz:
            return {"  dz", w19};
        case eOvPointRWDs:
            return {"  dS", w19};
        case eOvPointRWRedu:
            return {"Redu", w19};
        case eOvPointRWRedu2:
            return {"Redu2", w19};
        case eOvPointRWRedu3:
            return {"Redu3", w19};
        case eOvPointRWSx:
            return {"  Sx", w19};
        case eOvPointRWSy:
            return {"  Sy", w19};
        case eOvPointRWSz:
            return {"  Sz", w19};
        case eOvPointRWResidualX:
            return {"Residual x", w19};
        case eOvPointRWResidualY:
            return {"Residual y", w19};
        case eOvPointRWResidualZ:
            return {"Residual z", w19};
        default:
            return {nullptr, nullptr};  // 17 and unknown codes write nothing
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
