// Writing whole point files. The file is replaced at once: the text goes to a temporary file
// that is renamed over the old one only when it was written completely.
#include <cstddef>
#include <locale>
#include <ostream>
#include <streambuf>

#include "orvo/model/point_list.h"
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// A stream buffer in front of an atomic file writer. A point file puts a line end with a flush
// between every two points; the flushes stop here, and the bytes go on to the writer (which
// buffers them itself) in larger pieces.
class AtomicFileBuffer : public std::streambuf {
public:
    explicit AtomicFileBuffer(OvAtomicFileWriter& file) : file_(file) {
        setp(buffer_, buffer_ + sizeof buffer_);
    }

    // Hands the pending bytes to the writer; false when the writer refused them.
    bool Drain() {
        const std::ptrdiff_t pending = pptr() - pbase();
        bool ok = true;
        if (pending > 0) ok = file_.Write(pbase(), static_cast<std::size_t>(pending));
        setp(buffer_, buffer_ + sizeof buffer_);
        return ok;
    }

protected:
    int_type overflow(int_type ch) override {
        if (!Drain()) return traits_type::eof();
        if (!traits_type::eq_int_type(ch, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(ch);
            pbump(1);
        }
        return traits_type::not_eof(ch);
    }

    int sync() override { return 0; }

private:
    OvAtomicFileWriter& file_;
    char buffer_[1 << 16];
};

// Numbers in point files are always written in the classic "C" form, whatever the host set.
void WritePointFile(const OvPointList& list, const String& fileName) {
    OvAtomicFileWriter file(fileName.chars());
    if (!file.IsOpen()) return;
    AtomicFileBuffer buffer(file);
    std::ostream out(&buffer);
    out.imbue(std::locale::classic());
    OvWriterReset();
    list.Write(out);
    if (buffer.Drain() && out) file.Commit();
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
