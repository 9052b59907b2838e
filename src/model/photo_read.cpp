// Reading a photo record from the keyword block of a project file.
//
// Every keyword is bound to a small handler object (a "slot") rather than straight to a field,
// so that a damaged record can be reported and stepped over without losing the reader's place:
// a value where a block belongs, a block where a value belongs, a value of the wrong kind or
// surplus tokens in a block would otherwise leave the reader inside the wrong block. The slots
// live only while the record is read and are unregistered before Read returns.
#include <climits>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "../foundation/token_id.h"
#include "../numerics/read_problem.h"
#include "block_sync.h"
#include "orvo/model/photo.h"
#include "orvo/textfile/reader.h"

namespace orvo {

namespace {

using detail::ResyncAfterValue;
using detail::SkipBlock;
using detail::SkipToBlockEnd;

eOvTokentype CurrentType(OvReader& reader) {
    return reader.GetParser().GetToken().GetType();
}

// A whole number from a USERDATA part, as the C library reads one (leading blanks, a sign,
// digits up to the first other character; nothing readable gives 0), clamped to 32 bits.
long long PartNumber(const String& part) {
    const long long value = std::strtoll(part.chars(), nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return value;
}

// The parts of a text between ";" (empty parts included), at most four: the fourth part keeps
// whatever follows.
std::vector<String> SplitUserData(const String& text) {
    std::vector<String> parts;
    const char* p = text.chars();
    const char* end = p + text.length();
    while (parts.size() < 3) {
        const char* semicolon = p;
        while (semicolon != end && *semicolon != ';')
            ++semicolon;
        parts.emplace_back(p, static_cast<int>(semicolon - p));
        if (semicolon == end) return parts;
        p = semicolon + 1;
    }
    parts.emplace_back(p, static_cast<int>(end - p));
    return parts;
}

}  // namespace

// Reads one photo record; the slots' actions reach the photo's fields as a friend.
class OvPhotoRecordReader {
public:
    OvPhotoRecordReader(OvPhoto& photo, OvReader& reader) : photo_(photo), reader_(reader) {}

    void Run(OvReaderObject* object);

private:
    // What a keyword takes and how a mismatch is handled.
    enum class Form { kValue, kBlock, kIgnored, kStray };
    using Action = std::function<void()>;

    class Slot : public LinkHdl {
    public:
        Slot(OvPhotoRecordReader& owner, const char* keyword, Form form, Action action)
            : owner_(owner), keyword_(keyword), form_(form), action_(std::move(action)) {}
        std::int32_t Handle(void* object) {
            owner_.Dispatch(*this, static_cast<OvReaderObject*>(object));
            return 1;
        }

        const char* Keyword() const { return keyword_; }
        Form GetForm() const { return form_; }
        void Perform() const { action_(); }

    private:
        OvPhotoRecordReader& owner_;
        const char* keyword_;
        Form form_;
        Action action_;
    };

    void Bind(const char* keyword, Form form, Action action);
    void Value(const char* keyword, Action action) { Bind(keyword, Form::kValue, action); }
    void Block(const char* keyword, Action action) { Bind(keyword, Form::kBlock, action); }
    void BindAll();

    void Dispatch(const Slot& slot, OvReaderObject* object);
    void DispatchValue(const Slot& slot, bool inBlock);
    void DispatchBlock(const Slot& slot, bool inBlock);
    void DispatchStray();
    void Problem(const Slot& slot, const char* what);
    void Problem(const Slot& slot, const OvParserStatus& thrown);
    void RememberErrors();
    void RestoreTrailingError();
    void PostProcess();

    // Field readers for the current token.
    OvParser& Parser() { return reader_.GetParser(); }
    std::int32_t Int() { return Parser().GetTokenInt(); }
    std::uint32_t Unsigned() { return detail::IdFromToken(Parser().GetToken(TokenInt)); }
    double Number() {
        const double value = Parser().GetTokenNumber();
        // "-0" is an integer token: keep the sign that a negative zero was written with.
        const OvParserToken& token = Parser().GetToken();
        if (value == 0.0 && token.GetType() == TokenInt && token.text[0] == '-') return -0.0;
        return value;
    }
    String Text() { return String(Parser().GetTokenString()); }
    void ReadUserData();
    void ReadType();

    OvPhoto& photo_;
    OvReader& reader_;
    OvReaderObject* object_ = nullptr;  // the binding whose value or block is being read
    bool checkActive_ = false;
    std::vector<std::unique_ptr<Slot>> slots_;

    // The reader takes back a trailing "ParserErrorNotSpecifiedToken" when a run ends (such an
    // error normally is what stopped the run on purpose). The problems recorded here stopped
    // nothing, so the last one is put back if the run's end took it.
    int errorsAfterSlot_ = 0;
    std::unique_ptr<OvReaderError> lastError_;
};

void OvPhotoRecordReader::Bind(const char* keyword, Form form, Action action) {
    slots_.push_back(std::make_unique<Slot>(*this, keyword, form, std::move(action)));
}

void OvPhotoRecordReader::BindAll() {
    OvPhoto& p = photo_;
    Block("PHOTOID", [this, &p] { p.OvObject::Read(object_); });
    Value("COMMENT", [this, &p] { p.comment_ = Text(); });
    Value("USERDATA", [this] { ReadUserData(); });
    Value("DIGITALPAGE", [this, &p] { p.digitalPage_ = Int(); });
    Value("DIGITALROT", [this, &p] { p.digitalRot_ = Int(); });
    Value("TYPE", [this] { ReadType(); });
    Value("DIGITAL", [this, &p] { p.phototype_ = static_cast<eOvPhototype>(Int()); });
    Value("DIGITIZERID", [this, &p] { p.digitizerId_ = Unsigned(); });
    Value("CHECKACTIVE", [this] { checkActive_ = Int() != 0; });
    Value("STATE", [this, &p] { p.state_ = Int(); });
    Value("ROTATION", [this, &p] { p.rotation_ = Int(); });
    Value("SCALE", [this, &p] { p.scale_ = Number(); });
    Block("DIGIREGION", [this, &p] { p.digiRegion_.Read(object_); });
    Block("CAMERA", [this, &p] { p.camera_.Read(object_); });
    Block("PRERESEAU", [this, &p] { p.preTrafo_.ReadV50(object_); });
    Block("MAINRESEAU", [this, &p] { p.mainTrafo_.ReadV50(object_); });
    Block("POLYRESINV", [this, &p] { p.polyInvTrafo_.ReadV50(object_); });
    Value("RESEAUFILE", [this, &p] { p.reseau_.SetName(Text()); });
    Value("RESEAUSUBID", [this, &p] { p.reseau_.SetSubId(Unsigned()); });
    Block("PRERESTRAFO", [this, &p] { p.preTrafo_.Read(object_); });
    Block("MAINRESTRAFO", [this, &p] { p.mainTrafo_.Read(object_); });
    Block("POLYRESINVTRAFO", [this, &p] { p.polyInvTrafo_.Read(object_); });
    Block("TILTTRAFO", [this, &p] { p.tilts_.AddTrafoV50(object_); });
    Block("TILTPLANE", [this, &p] { p.tilts_.AddTrafo(object_); });
    Block("SCREENPOS", [this, &p] { p.screenPos_.Read(object_); });
    Value("SCREENSIZE", [this, &p] { p.screenScale_ = Int(); });
    // Reserved keywords of the photo record: known, and ignored with their value or block.
    for (const char* reserved : {"ORIENTED", "AORM", "AORV"})
        Bind(reserved, Form::kIgnored, [] {});
    // Every token of the block that is not a keyword.
    Bind(OvReaderObject::kNotDefined, Form::kStray, [] {});
}

void OvPhotoRecordReader::ReadUserData() {
    const std::vector<String> parts = SplitUserData(Text());
    // The page is counted from 1 where the user data counts from 0, and a rotation code of 3
    // means no rotation: both as the old records were written.
    if (parts.size() >= 2) {
        const long long page = PartNumber(parts[1]) + 1;
        photo_.digitalPage_ = static_cast<int>(page > INT_MAX ? INT_MAX : page);
    }
    if (parts.size() >= 3) {
        const int rotation = static_cast<int>(PartNumber(parts[2]));
        photo_.digitalRot_ = rotation == 3 ? 0 : rotation;
    }
}

void OvPhotoRecordReader::ReadType() {
    photo_.phototype_ = static_cast<eOvPhototype>(Int());
    reader_.Advance();
    photo_.digitizerId_ = Unsigned();
}

// -- dispatch ----------------------------------------------------------------------------------

void OvPhotoRecordReader::Dispatch(const Slot& slot, OvReaderObject* object) {
    object_ = object;
    // A block's handler runs in the fresh scope the reader opened for it; a value's handler and
    // the catch-all run in the photo's own scope, where the slot's binding is registered.
    const bool inBlock = !reader_.GetCurrentScope()->GetObjects().Exist(object);
    switch (slot.GetForm()) {
        case Form::kValue:
            DispatchValue(slot, inBlock);
            break;
        case Form::kBlock:
            DispatchBlock(slot, inBlock);
            break;
        case Form::kIgnored:
            if (inBlock) {
                SkipToBlockEnd(reader_);
            } else {
                ResyncAfterValue(reader_);
            }
            break;
        case Form::kStray:
            DispatchStray();
            break;
    }
    // After a block the reader would drop a stray token unseen, and a stray "{" would derail it.
    if (inBlock && CurrentType(reader_) == TokenBlockEnd && !Parser().IsSkipNextParse()) {
        detail::StepOverStrayTokens(reader_, "PHOTO: a keyword is expected");
    }
    RememberErrors();
}

void OvPhotoRecordReader::DispatchValue(const Slot& slot, bool inBlock) {
    if (inBlock) {
        Problem(slot, "a value is expected, not a block");
        SkipToBlockEnd(reader_);
        return;
    }
    try {
        slot.Perform();
    } catch (const OvParserStatus& thrown) {
        // A failed stream cannot be read further, and the end of the input ends the record:
        // both are the reader's to handle.
        if (thrown.GetStatus() == ParserErrorStream || thrown.GetStatus() == ParserStatusEOF) {
            throw;
        }
        Problem(slot, thrown);
        ResyncAfterValue(reader_);
    }
}

void OvPhotoRecordReader::DispatchBlock(const Slot& slot, bool inBlock) {
    if (!inBlock) {
        Problem(slot, "a block is expected");
        ResyncAfterValue(reader_);
        return;
    }
    bool reported = false;
    try {
        slot.Perform();
    } catch (const OvParserStatus& thrown) {
        if (thrown.GetStatus() == ParserErrorStream) throw;
        if (thrown.GetStatus() != ParserStatusEOF) Problem(slot, thrown);
        reported = true;
    }
    // The rest of the block: surplus tokens after a complete record, or what a broken one left.
    const eOvTokentype type = CurrentType(reader_);
    if (type != TokenBlockEnd && type != TokenEOF) {
        if (!reported) Problem(slot, "unexpected tokens before the end of the block");
        SkipToBlockEnd(reader_);
    }
}

void OvPhotoRecordReader::DispatchStray() {
    detail::ReportReadProblem(reader_, "PHOTO: a keyword is expected");
    if (CurrentType(reader_) == TokenBlockBegin) SkipBlock(reader_);
}

void OvPhotoRecordReader::Problem(const Slot& slot, const char* what) {
    String text(slot.Keyword());
    text += ": ";
    text += what;
    detail::ReportReadProblem(reader_, text.chars());
}

void OvPhotoRecordReader::Problem(const Slot& slot, const OvParserStatus& thrown) {
    auto* error = new OvReaderError(thrown);
    String text(slot.Keyword());
    text += thrown.GetStatus() == ParserErrorNotSpecifiedToken
                ? ": a value of another kind is expected"
                : ": the value cannot be read";
    error->SetName(text);
    reader_.GetReaderErrorList().Add(error);
}

void OvPhotoRecordReader::RememberErrors() {
    const OvReaderErrorList& errors = reader_.GetReaderErrorList();
    errorsAfterSlot_ = errors.Count();
    lastError_.reset(errors.Last() != nullptr ? new OvReaderError(*errors.Last()) : nullptr);
}

void OvPhotoRecordReader::RestoreTrailingError() {
    OvReaderErrorList& errors = reader_.GetReaderErrorList();
    if (lastError_ != nullptr && errors.Count() == errorsAfterSlot_ - 1) {
        errors.Add(lastError_.release());
    }
}

// -- the record --------------------------------------------------------------------------------

void OvPhotoRecordReader::Run(OvReaderObject* object) {
    BindAll();

    // The slots die with this object: their bindings must not outlive it, also when the read
    // ends by an exception (a failed stream).
    class Bindings {
    public:
        explicit Bindings(OvReaderInstance* scope) : scope_(scope) {}
        ~Bindings() {
            for (OvReaderObject* binding : registered_)
                delete scope_->GetObjects().Subtract(binding);
        }
        Bindings(const Bindings&) = delete;
        Bindings& operator=(const Bindings&) = delete;
        void Add(OvReaderObject* binding) {
            if (binding != nullptr) registered_.push_back(binding);
        }

    private:
        OvReaderInstance* scope_;
        std::vector<OvReaderObject*> registered_;
    };

    Bindings bindings(reader_.GetCurrentScope());
    for (const auto& slot : slots_) {
        const Link link(slot.get(), &Slot::Handle);
        const bool catchAll = slot->GetForm() == Form::kStray;
        bindings.Add(reader_.RegisterObject(catchAll ? OvReaderObject(link)
                                                     : OvReaderObject(slot->Keyword(), link)));
    }
    RememberErrors();

    object->DoProcess();
    RestoreTrailingError();

    // A run that a parser error stopped (with no handler asking to go on) stands somewhere
    // inside the block: the rest of the block belongs to this record all the same.
    SkipToBlockEnd(reader_);
    PostProcess();
}

void OvPhotoRecordReader::PostProcess() {
    if (checkActive_) photo_.flag_.SetFlag(kOvPhotoFlagCheckActive);
    const String& reseauName = photo_.preTrafo_.GetName();
    if (reseauName.length() == 0) return;
    photo_.reseau_.SetName(reseauName);
    if (!photo_.IsDigital()) {
        // The old analog records held the comment where the picture name stands.
        photo_.comment_ = photo_.GetName();
        photo_.SetName(String());
    }
}

int OvPhoto::Read(OvReaderObject* object) {
    OvReader* reader = detail::ReaderOf(object);
    if (reader == nullptr) return 1;
    if (reader->GetCurrentScope()->GetObjects().Exist(object)) {
        // Called for a value, not for a block: there is no record to read, and the photo's
        // keywords must not be bound in the enclosing scope.
        detail::ReportReadProblem(*reader, "PHOTO: a block is expected");
        return 1;
    }
    OvPhotoRecordReader(*this, *reader).Run(object);
    return 1;
}

}  // namespace orvo
