// The reseau descriptions of a project: reading reseau files and the digital camera file,
// lookup by key, and writing the digital camera file.
#include "orvo/model/reseau_list.h"

#include <locale>
#include <memory>
#include <ostream>
#include <sstream>

#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/filename.h"
#include "orvo/textfile/filetype.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"
#include "reseau_tokens.h"

namespace orvo {

namespace {

// Whether the file name's extension is that of the digital camera file, letter case ignored.
bool IsDigitalCameraFileName(const String& fileName) {
    const String name = OvGetFilename(fileName);
    const int dot = name.index('.', -1);
    if (dot < 0) return false;
    const String extension(name.chars() + dot + 1);
    return fcompare(extension, String(GetOvExtension(eOrvoFiletypeDres))) == 0;
}

}  // namespace

OvReseaufileList& OvReseaufileList::operator=(const OvReseaufileList& other) {
    if (this != &other) TOvListHeader<OvReseauFile>::operator=(other);
    return *this;
}

OvReseaufileList::~OvReseaufileList() = default;

void OvReseaufileList::Take(OvReseauFile* file) {
    OvReseauDataDesc key;
    key.Set(file);
    OvReseauFile* old = FindReseauFile(key);
    if (old == nullptr) {
        Add(file);
        return;
    }
    Insert(old, file);
    delete Subtract(old);
}

int OvReseaufileList::ReadReseauFile(const String& fileName) {
    return ReadReseauFile(fileName, nullptr);
}

int OvReseaufileList::ReadReseauFile(const String& fileName, OvReaderErrorList* errors) {
    if (IsDigitalCameraFileName(fileName)) return ReadDigitalCameraFile(fileName, errors);
    auto file = std::make_unique<OvReseauFile>();
    file->ReadFile(fileName, errors);
    if (!file->IsValid()) return 0;
    Take(file.release());
    return 1;
}

int OvReseaufileList::ReadDigitalCameraFile(const String& fileName, OvReaderErrorList* errors) {
    // Counts the entries that the line handler takes.
    class LineCounter : public LinkHdl {
    public:
        explicit LineCounter(OvReseaufileList& list) : list_(list) {}
        std::int32_t OnLine(void* object) {
            const int taken = list_.ReadDigitalCameraFormat(static_cast<OvReaderObject*>(object));
            count += taken;
            return taken;
        }
        int count = 0;

    private:
        OvReseaufileList& list_;
    };

    LineCounter counter(*this);
    detail::ReseauReadSession session(fileName, Link(&counter, &LineCounter::OnLine));
    session.Run(errors);
    return counter.count;
}

int OvReseaufileList::ReadDigitalCameraFormat(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 0;
    detail::ReseauTokens tokens(*reader);
    if (tokens.Type() != TokenBlockBegin) {
        tokens.Report();  // a stray token between the lines; the reader drops it
        return 0;
    }
    tokens.Advance();

    const int errorsBefore = reader->GetReadErrorCount();
    auto entry = std::make_unique<OvReseauFile>();
    bool clean =
        entry->ReadDigitalCameraFormat(object) == 1 && reader->GetReadErrorCount() == errorsBefore;
    if (clean && !entry->IsValid()) {
        tokens.Report();  // a sensor without size, or a negative picture size
        clean = false;
    }
    // The reader steps past the "}" itself. When it is missing, the token in its place is
    // delivered to the reader again: a "{" is the next line.
    if (!tokens.FinishRecord(clean, false) && tokens.Type() == TokenBlockBegin)
        reader->GetParser().SkipNextParse(true);
    if (!clean) return 0;
    Take(entry.release());
    return 1;
}

std::int32_t OvReseaufileList::ReadDigitalCameraFormatHdl(void* readerObject) {
    return ReadDigitalCameraFormat(static_cast<OvReaderObject*>(readerObject));
}

OvReseauFile* OvReseaufileList::FindReseauFile(const OvReseauDataDesc& key) const {
    for (OvReseauFile* file = First(); file != nullptr; file = file->Next()) {
        if (key.ExactMatch(OvReseauDataDesc(file->GetName(), file->GetSubId()))) return file;
    }
    return nullptr;
}

std::ostream& OvReseaufileList::WriteDigitalCameraFormatHeaderComment(std::ostream& out) const {
    out << OvComment << '\n';
    out << OvComment << "ORVOMETRIC 10 Version "
        << "6.715"
        << " Digital Camera Reseau File" << '\n';
    out << OvComment << '\n';
    out << OvComment << "File Format:" << '\n';
    out << OvComment
        << "{ \"ExifKameraType\"  SubId \"Comment\"              Pixel_X  Pixel_Y   CCD_X    "
           "CCD_Y    }"
        << '\n';
    out << OvComment << '\n';
    out << '\n';
    return out;
}

std::ostream& OvReseaufileList::WriteDigitalCameraFormat(std::ostream& out) const {
    for (const OvReseauFile* file = First(); file != nullptr; file = file->Next()) {
        if (!file->IsDigitalCameraEntry()) continue;
        file->WriteDigitalCameraFormat(out);
        out << Ovendl;
    }
    return out;
}

int OvReseaufileList::WriteDigitalCameraFormat(const String& fileName) const {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    OvWriterReset();
    WriteDigitalCameraFormatHeaderComment(out);
    WriteDigitalCameraFormat(out);
    if (out) OvWriteFileAtomically(fileName.chars(), out.str());
    return 1;
}

}  // namespace orvo
