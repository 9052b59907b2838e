#include "orvo/foundation/object.h"

#include <iomanip>
#include <ostream>

#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "token_id.h"

namespace orvo {

OvObject::~OvObject() = default;

int OvObject::Compare(const OvObject* other) const {
    return other == nullptr ? 0 : Compare(other->id);
}

int OvObject::Compare(std::uint32_t otherId) const {
    if (id < otherId) return 1;
    return id == otherId ? 0 : -1;
}

int OvObject::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 0;
    OvParser& parser = reader->GetParser();

    id = detail::IdFromToken(parser.GetToken(TokenInt));
    reader->Advance();

    name = parser.GetTokenString();
    reader->Advance();
    return 1;
}

std::ostream& OvObject::Write(std::ostream& out) const {
    const std::ios_base::fmtflags saved = out.flags();
    out << ' ' << std::right << std::setw(4) << id << " \"" << name << '"';
    out.flags(saved);
    return out;
}

OvBaseListnode::~OvBaseListnode() = default;

int OvBaseListnode::Compare(const OvBaseListnode*) const {
    return 1;
}

OvListnode::~OvListnode() = default;

int OvListnode::Compare(const OvListnode* other) const {
    return other == nullptr ? 0 : OvObject::Compare(other->GetId());
}

}  // namespace orvo
