// The project file: a comment header and one "PHOTO" block per photo.
#include "orvo/model/project_file.h"

#include <cstdio>
#include <istream>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>

#include "../numerics/read_problem.h"
#include "block_sync.h"
#include "orvo/services/logger.h"
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// The text of a keyword token ends at the first blank or block character even when the token
// runs on (the tokenizer leaves a token that ends at a "}" running to the end of its line).
String KeywordText(const char* text) {
    std::string word;
    for (const char* p = text; *p != '\0' && *p != ' ' && *p != '\t' && *p != '{' && *p != '}';
         ++p) {
        word += *p;
    }
    return String(word.c_str());
}

// One read of a project: binds "PHOTO" and the catch-all at the top level, takes over the
// reader's unknown-keyword and parser-error handling (report and go on), and copies every error
// the reader collects into the caller's list as soon as it sees it. The copying has to be
// eager: the reader takes a trailing "ParserErrorNotSpecifiedToken" back when a run ends.
class ProjectReadSession : public LinkHdl {
public:
    ProjectReadSession(OvReader& reader, OvPhotoList& photos, OvOrthoPhotoList* orthos)
        : reader_(reader), photos_(photos), orthos_(orthos) {}

    int Run(OvProjectFileErrors* errors);

private:
    std::int32_t OnPhoto(void* object);
    std::int32_t OnOrthoPhoto(void* object);
    // Reads one record block ("PHOTO", "ORTHOPHOTO") into the list.
    template <class Record, class List>
    std::int32_t OnRecord(void* object, List& list, const char* keyword);
    std::int32_t OnStray(void* object);
    std::int32_t OnUnknownKeyword(void* reader);
    std::int32_t OnParserError(void* reader);

    eOvTokentype CurrentType() const { return reader_.GetParser().GetToken().GetType(); }
    bool InOwnBlock(OvReaderObject* object) const {
        return !reader_.GetCurrentScope()->GetObjects().Exist(object);
    }
    void Report(const char* what) { detail::ReportReadProblem(reader_, what); }
    void Report(const char* what, std::uint32_t line);
    // Copies the errors the reader added since the last call.
    void Collect();

    OvReader& reader_;
    OvPhotoList& photos_;
    OvOrthoPhotoList* orthos_;
    OvProjectFileErrors collected_;
    int seen_ = 0;
    int read_ = 0;
};

int ProjectReadSession::Run(OvProjectFileErrors* errors) {
    reader_.RegisterObject(OvReaderObject("PHOTO", Link(this, &ProjectReadSession::OnPhoto)));
    if (orthos_ != nullptr) {
        reader_.RegisterObject(
            OvReaderObject("ORTHOPHOTO", Link(this, &ProjectReadSession::OnOrthoPhoto)));
    }
    reader_.RegisterObject(OvReaderObject(Link(this, &ProjectReadSession::OnStray)));
    reader_.SkipUnknownToken(false);
    reader_.SetUnknownTokenHdl(Link(this, &ProjectReadSession::OnUnknownKeyword));
    reader_.SetParserErrorHdl(Link(this, &ProjectReadSession::OnParserError));

    // A "}" without its block at the top level must not end the file.
    reader_.DoProcess(true);
    Collect();
    if (errors != nullptr) *errors = std::move(collected_);
    return read_;
}

void ProjectReadSession::Report(const char* what, std::uint32_t line) {
    OvParserStatus where = reader_.GetParser().GetStatus();
    where.SetStatus(ParserErrorNotSpecifiedToken);
    where.SetLine(line);
    auto* error = new OvReaderError(where);
    error->SetName(String(what));
    reader_.GetReaderErrorList().Add(error);
}

void ProjectReadSession::Collect() {
    const OvReaderErrorList& errors = reader_.GetReaderErrorList();
    // Errors taken back by the reader since the last call had been copied already.
    const int count = errors.Count();
    if (seen_ > count) seen_ = count;
    const OvReaderError* error = errors.Get(seen_);
    for (; error != nullptr; error = error->Next()) {
        const String& name = error->GetName();
        collected_.emplace_back(error->GetLine(), error->GetStatus(),
                                name.length() != 0 ? name : String(error->GetStatusText()));
    }
    seen_ = count;
}

std::int32_t ProjectReadSession::OnPhoto(void* arg) {
    return OnRecord<OvPhoto>(arg, photos_, "PHOTO");
}

std::int32_t ProjectReadSession::OnOrthoPhoto(void* arg) {
    return OnRecord<OvOrthoPhoto>(arg, *orthos_, "ORTHOPHOTO");
}

template <class Record, class List>
std::int32_t ProjectReadSession::OnRecord(void* arg, List& list, const char* keyword) {
    auto* object = static_cast<OvReaderObject*>(arg);
    if (!InOwnBlock(object)) {
        Report((std::string(keyword) + ": a block is expected").c_str());
        detail::ResyncAfterValue(reader_);
        Collect();
        return 1;
    }
    const std::uint32_t firstLine = reader_.GetParser().GetStatus().GetLine();
    auto photo = std::make_unique<Record>(object);
    if (CurrentType() == TokenEOF) {
        Report((std::string(keyword) +
                ": the block is cut off by the end of the file; the photo is not kept")
                   .c_str(),
               firstLine);
    } else {
        list.Add(photo.release());
        ++read_;
        detail::StepOverStrayTokens(reader_, "a keyword is expected");
    }
    Collect();
    return 1;
}

std::int32_t ProjectReadSession::OnStray(void* /*object*/) {
    Report("a keyword is expected");
    if (CurrentType() == TokenBlockBegin) detail::SkipBlock(reader_);
    Collect();
    return 1;
}

std::int32_t ProjectReadSession::OnUnknownKeyword(void* /*reader*/) {
    String what("unknown keyword \"");
    what += KeywordText(reader_.GetParser().GetToken().text);
    what += "\"";
    Report(what.chars());
    Collect();
    // The keyword goes with its value or its block.
    reader_.Advance();
    switch (CurrentType()) {
        case TokenBlockBegin:
            detail::SkipBlock(reader_);
            break;
        case TokenKeyword:
        case TokenBlockEnd:
        case TokenEOF:
            reader_.GetParser().SkipNextParse(true);
            break;
        default:
            break;
    }
    return 1;
}

std::int32_t ProjectReadSession::OnParserError(void* /*reader*/) {
    Collect();
    return 1;  // go on: one damaged entry must not hide the photos behind it
}

int ReadWith(OvReader& reader, OvPhotoList& photos, OvOrthoPhotoList* orthos,
             OvProjectFileErrors* errors) {
    ProjectReadSession session(reader, photos, orthos);
    return session.Run(errors);
}

}  // namespace

String OvProjectFileError::Format() const {
    char prefix[32];
    std::snprintf(prefix, sizeof prefix, "Line %06u: ", static_cast<unsigned>(line_));
    String text(prefix);
    text += text_;
    return text;
}

int OvReadProjectFile(const String& fileName, OvPhotoList& photos, OvProjectFileErrors* errors) {
    OvReader reader(fileName);
    return ReadWith(reader, photos, nullptr, errors);
}

int OvReadProject(std::istream& in, const String& name, OvPhotoList& photos,
                  OvProjectFileErrors* errors) {
    OvReader reader(in, name);
    return ReadWith(reader, photos, nullptr, errors);
}

int OvReadProjectFile(const String& fileName, OvPhotoList& photos, OvOrthoPhotoList& orthos,
                      OvProjectFileErrors* errors) {
    OvReader reader(fileName);
    return ReadWith(reader, photos, &orthos, errors);
}

int OvReadProject(std::istream& in, const String& name, OvPhotoList& photos,
                  OvOrthoPhotoList& orthos, OvProjectFileErrors* errors) {
    OvReader reader(in, name);
    return ReadWith(reader, photos, &orthos, errors);
}

std::ostream& OvWriteProject(std::ostream& out, const OvPhotoList& photos) {
    out.imbue(std::locale::classic());
    OvWriterReset();
    out << OvComment << '\n';
    out << OvComment << "ORVOMETRIC 10 Version "
        << "6.715"
        << " Project File" << '\n';
    out << OvComment << '\n';
    out << '\n';
    return photos.Write(out);
}

bool OvWriteProjectFile(const String& fileName, const OvPhotoList& photos) {
    std::ostringstream text;
    OvWriteProject(text, photos);
    if (!text) return false;
    return OvWriteFileAtomically(fileName.chars(), text.str());
}

std::ostream& OvWriteProject(std::ostream& out, const OvPhotoList& photos,
                             const OvOrthoPhotoList& orthos) {
    OvWriteProject(out, photos);
    return orthos.Write(out);
}

bool OvWriteProjectFile(const String& fileName, const OvPhotoList& photos,
                        const OvOrthoPhotoList& orthos) {
    std::ostringstream text;
    OvWriteProject(text, photos, orthos);
    if (!text) return false;
    return OvWriteFileAtomically(fileName.chars(), text.str());
}

void OvLogProjectFileErrors(const String& fileName, const OvProjectFileErrors& errors) {
    if (errors.empty()) return;
    char header[64];
    std::snprintf(header, sizeof header, " %d Read Error(s) in ", static_cast<int>(errors.size()));
    String line(header);
    line += fileName;
    line += ":";
    OvApplicationLogger::Log(2, line);
    for (const OvProjectFileError& error : errors) {
        String entry(" - ");
        entry += error.Format();
        OvApplicationLogger::Log(2, entry);
    }
}

}  // namespace orvo
