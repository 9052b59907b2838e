// Writing whole point files. The file is replaced at once: the text goes to a temporary file
// that is renamed over the old one only when it was written completely.
#include <cstddef>

#include "orvo/model/point_list.h"
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/writer.h"
#include "point_text.h"

namespace orvo {

namespace {

// The file gets its text in pieces of about this size.
constexpr std::size_t kPieceSize = 1 << 18;

// The bytes are those of `OvPointList::Write` on a stream in the classic "C" locale at
// indentation level 0: records in the list's columns, a line feed between two of them. The
// stream's per-line flush would only reach the temporary file, which is flushed to the disk as
// a whole before it replaces the old file, so the text is formatted in memory and handed over
// in large pieces instead.
void WritePointFile(const OvPointList& list, const String& fileName) {
    OvAtomicFileWriter file(fileName.chars());
    if (!file.IsOpen()) return;
    OvWriterReset();  // what Ovendl would indent with: nothing
    const TOvFormatTable<eOvPointRWMask>& mask = list.GetMask();
    detail::OvTextBuffer text;
    bool written = true;
    const OvPoint* first = list.First();
    for (const OvPoint* p = first; p != nullptr && written; p = p->Next()) {
        if (p != first) text.Put('\n');
        detail::AppendPointRecord(text, *p, mask, ' ');
        if (text.Size() >= kPieceSize) {
            written = file.Write(text.Data(), text.Size());
            text.Clear();
        }
    }
    if (written && file.Write(text.Data(), text.Size())) file.Commit();
}

}  // namespace

int OvPointList::WriteFile(const String& fileName) const {
    WritePointFile(*this, fileName);
    return 1;
}

int OvPointList::WriteFile(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask) {
    SetMask(mask);
    return WriteFile(fileName);
}

}  // namespace orvo
