// Writing reseau descriptions: the reseau file and the line of the digital camera file.
#include <locale>
#include <ostream>
#include <sstream>

#include "orvo/model/reseau_file.h"
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/writer.h"
#include "reseau_tokens.h"

namespace orvo {

namespace {

// A line of a block file holds at most 8511 characters. The info text has a line of its own;
// the two texts of a digital camera line share one with about 60 characters of numbers.
constexpr int kMaxInfoWritten = 8000;
constexpr int kMaxDigitalTextWritten = 4000;

// The cross record: id, x, y and the code as a plain number, whatever mask a caller gave the
// cross list.
const eOvPointRWMask kCrossColumns[] = {eOvPointRWId, eOvPointRWX, eOvPointRWY, eOvPointRWCode,
                                        eOvPointRWEnd};

}  // namespace

std::ostream& OvReseauFile::WriteHeaderComment(std::ostream& out) const {
    out << OvComment << '\n';
    out << OvComment << "ORVOMETRIC 10 Version "
        << "6.715"
        << " Reseau File" << '\n';
    out << OvComment << '\n';
    out << OvComment << "File Format:" << '\n';
    out << OvComment << "\"Infotext\"         ... Commenttext displayed in a graphical view"
        << '\n';
    out << OvComment << "{ x1, y1, x2, y2 } ... Size of Photo in Bikos [mm]" << '\n';
    out << OvComment << "{ x1, y1, x2, y2 } ... Pos. and size of Commenttext" << '\n';
    out << OvComment << "{ Id, x, y, Code } ... List of Reseaucrosses" << '\n';
    out << OvComment << "            Code  Description" << '\n';
    out << OvComment << "             " << eOvReseauCrossSmall << " .. Small Reseaucross" << '\n';
    out << OvComment << "             " << eOvReseauCrossBig << " .. Big Reseaucross" << '\n';
    out << OvComment << "             " << eOvReseauCrossCorner
        << " .. Not really a cross, a Corner of the Picture" << '\n';
    out << OvComment << '\n' << '\n';
    return out;
}

std::ostream& OvReseauFile::Write(std::ostream& out) const {
    out.imbue(std::locale::classic());
    out << '"' << OvQuotableText(infoText_, kMaxInfoWritten) << '"' << Ovendl;
    out << '{';
    photoRegion_.Write(out);
    out << '}' << Ovendl;
    out << '{';
    boxRegion_.Write(out);
    out << '}' << '\n' << Ovendl;
    const OvPointFormat columns(kCrossColumns);
    for (const OvPoint* cross = crosses_.First(); cross != nullptr; cross = cross->Next()) {
        out << '{';
        cross->Write(out, columns);
        out << '}' << '\n';
    }
    return out;
}

int OvReseauFile::WriteFile(const String& fileName) const {
    std::ostringstream out;
    OvWriterReset();
    WriteHeaderComment(out);
    Write(out);
    if (out) OvWriteFileAtomically(fileName.chars(), out.str());
    return 1;
}

std::ostream& OvReseauFile::WriteDigitalCameraFormat(std::ostream& out) const {
    out.imbue(std::locale::classic());
    out.precision(6);
    out << "{ ";
    out << w14 << '"' << OvQuotableText(GetName(), kMaxDigitalTextWritten) << '"' << ' ';
    out << w4 << subId_ << ' ';
    out << w14 << '"' << OvQuotableText(infoText_, kMaxDigitalTextWritten) << '"' << ' ';
    out << w6 << exifPixelWidth_ << ' ';
    out << w6 << exifPixelHeight_ << ' ';
    out << w6 << photoRegion_.Width() << ' ';
    out << w6 << photoRegion_.Height() << ' ';
    out << '}';
    return out;
}

}  // namespace orvo
