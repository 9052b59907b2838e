// Reading and writing whole camera files.
#include <locale>
#include <sstream>
#include <string>

#include "camera_record.h"
#include "orvo/model/camera_list.h"
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// One run of the reader over a camera file. The camera blocks stand at the top level without a
// keyword, so the catch-all object of the first scope receives each "{".
//
// The session keeps reading after an error (one damaged block must not hide the cameras behind
// it) and remembers the error recorded last: the reader takes back a trailing
// "ParserErrorNotSpecifiedToken" when it finishes, which in a camera file is a real damage to
// report.
class CameraFileSession : public LinkHdl {
public:
    CameraFileSession(OvCameraList& list, const char* fileName)
        : list_(list), reader_(String(fileName != nullptr ? fileName : "")) {
        reader_.RegisterObject(OvReaderObject(Link(this, &CameraFileSession::OnBlock)));
        reader_.SetParserErrorHdl(Link(this, &CameraFileSession::OnParserError));
    }

    void Run(OvReaderErrorList* errors) {
        // A "}" without its block is a stray token like any other, not the end of the file.
        reader_.DoProcess(true);
        if (errors == nullptr) return;
        errors->Destroy();
        for (const OvReaderError* e = reader_.GetReaderErrorList().First(); e != nullptr;
             e = e->Next()) {
            errors->Add(new OvReaderError(*e));
        }
        if (countAfterLast_ > 0 && reader_.GetReadErrorCount() == countAfterLast_ - 1)
            errors->Add(new OvReaderError(last_));
    }

private:
    // What the handler throws is recorded by the reader, which then calls OnParserError.
    std::int32_t OnBlock(void* object) {
        list_.Read(static_cast<OvReaderObject*>(object));
        Remember();
        return 1;
    }

    std::int32_t OnParserError(void*) {
        Remember();
        return 1;  // go on with the next block; the end of the input still ends the run
    }

    void Remember() {
        const OvReaderError* last = reader_.GetReaderErrorList().Last();
        if (last == nullptr) return;
        last_ = OvParserStatus(*last);
        countAfterLast_ = reader_.GetReadErrorCount();
    }

    OvCameraList& list_;
    OvReader reader_;
    OvParserStatus last_;
    int countAfterLast_ = 0;
};

}  // namespace

OvCameraList::OvCameraList(const char* fileName) {
    ReadFile(fileName);
}

int OvCameraList::ReadFile(const char* fileName) {
    return ReadFile(fileName, nullptr);
}

int OvCameraList::ReadFile(const char* fileName, OvReaderErrorList* errors) {
    CameraFileSession session(*this, fileName);
    session.Run(errors);
    return 1;
}

int OvCameraList::WriteFile(const String& fileName, bool gentriFormat) const {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    OvWriterReset();
    if (gentriFormat) {
        for (const OvCamera* camera = First(); camera != nullptr; camera = camera->Next()) {
            camera->WriteGentriFormat(out);
            out << '\n';
        }
    } else {
        WriteHeaderComment(out);
        Write(out);
    }
    if (out) OvWriteFileAtomically(fileName.chars(), out.str());
    return 1;
}

}  // namespace orvo
