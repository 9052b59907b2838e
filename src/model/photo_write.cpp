// Writing a photo record in the keyword form of the project files.
#include <ios>
#include <ostream>

#include "orvo/model/photo.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// Restores the stream's number format and field settings when the record is written.
class FormatGuard {
public:
    explicit FormatGuard(std::ostream& out)
        : out_(out), flags_(out.flags()), precision_(out.precision()), fill_(out.fill()) {}
    ~FormatGuard() {
        out_.flags(flags_);
        out_.precision(precision_);
        out_.fill(fill_);
    }
    FormatGuard(const FormatGuard&) = delete;
    FormatGuard& operator=(const FormatGuard&) = delete;

private:
    std::ostream& out_;
    std::ios_base::fmtflags flags_;
    std::streamsize precision_;
    char fill_;
};

std::ostream& Keyword(std::ostream& out, const char* keyword) {
    return out << s12 << keyword;
}

std::ostream& QuotedLine(std::ostream& out, const char* keyword, const String& text) {
    return Keyword(out, keyword) << w4 << '"' << OvQuotableText(text) << '"' << Ovendl;
}

template <class Number>
std::ostream& NumberLine(std::ostream& out, const char* keyword, Number value) {
    return Keyword(out, keyword) << w4 << value << Ovendl;
}

// A record in a block on lines of its own: the keyword, then "{", the record indented, "}".
template <class Record>
std::ostream& BlockLines(std::ostream& out, const char* keyword, const Record& record) {
    Keyword(out, keyword) << Ovendl << OvBeginBlockNL;
    record.Write(out);
    return out << OvEndBlockNL << Ovendl;
}

// A record in an inline block after the keyword: "{", the record, "}" on the keyword's line.
template <class Record>
std::ostream& InlineBlock(std::ostream& out, const char* keyword, const Record& record) {
    Keyword(out, keyword) << w4 << "{";
    record.Write(out);
    return out << "}" << Ovendl;
}

}  // namespace

std::ostream& OvPhoto::Write(std::ostream& out) const {
    FormatGuard guard(out);
    out.unsetf(std::ios_base::floatfield);
    out.fill(' ');

    // The object record (id, then the name in quotes), with the name made readable.
    Keyword(out, "PHOTOID") << w4 << "{" << w4 << GetId() << " \"" << OvQuotableText(GetName())
                            << "\"}" << Ovendl;
    QuotedLine(out, "COMMENT", comment_);
    NumberLine(out, "DIGITALPAGE", digitalPage_);
    NumberLine(out, "DIGITALROT", digitalRot_);
    NumberLine(out, "DIGITAL", static_cast<std::int32_t>(phototype_));
    NumberLine(out, "DIGITIZERID", digitizerId_);
    NumberLine(out, "CHECKACTIVE", flag_.IsFlagSet(kOvPhotoFlagCheckActive) != 0 ? 1 : 0);
    NumberLine(out, "STATE", state_);
    NumberLine(out, "ROTATION", rotation_);
    out.precision(6);
    Keyword(out, "SCALE") << w6 << scale_ << Ovendl;
    InlineBlock(out, "DIGIREGION", digiRegion_);
    InlineBlock(out, "CAMERA", camera_);
    QuotedLine(out, "RESEAUFILE", reseau_.GetName());
    NumberLine(out, "RESEAUSUBID", reseau_.GetSubId());
    BlockLines(out, "PRERESTRAFO", preTrafo_);
    BlockLines(out, "MAINRESTRAFO", mainTrafo_);
    if (polyInvTrafo_.GetType() != eOvTrafo2DNone) {
        BlockLines(out, "POLYRESINVTRAFO", polyInvTrafo_);
    }
    if (IsDigital()) {
        InlineBlock(out, "SCREENPOS", screenPos_);
        NumberLine(out, "SCREENSIZE", screenScale_);
    }
    for (const OvTiltTrafo* tilt = tilts_.First(); tilt != nullptr; tilt = tilt->Next())
        BlockLines(out, "TILTPLANE", *tilt);
    return out;
}

}  // namespace orvo
