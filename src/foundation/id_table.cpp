#include "orvo/foundation/id_table.h"

#include <iomanip>
#include <ostream>

#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"
#include "token_id.h"

namespace orvo {

template class TOvArray<std::uint32_t>;
template class TOvArray<OvIdPair>;

namespace {

// Takes the current token as an id (throwing status 5 when it is not an integer) and advances.
std::uint32_t TakeId(OvReader& reader) {
    const std::uint32_t id = detail::IdFromToken(reader.GetParser().GetToken(TokenInt));
    reader.Advance();
    return id;
}

bool AtBlockEnd(OvReader& reader) {
    return reader.GetParser().GetToken().GetType() == TokenBlockEnd;
}

}  // namespace

int OvIdTable::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 0;
    while (!AtBlockEnd(*reader))
        Add(TakeId(*reader));
    return 1;
}

std::ostream& OvIdTable::Write(std::ostream& out) const {
    const std::ios_base::fmtflags saved = out.flags();
    for (int i = 0; i < Size(); ++i) {
        out << std::left << std::setw(10) << (*this)[i] << ' ';
        if ((i + 1) % 10 == 0) out << Ovendl;
    }
    out << Ovendl;
    out.flags(saved);
    return out;
}

int OvIdPairTable::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 0;
    while (!AtBlockEnd(*reader)) {
        const std::uint32_t first = TakeId(*reader);
        if (AtBlockEnd(*reader)) break;  // a lone id makes no pair
        const std::uint32_t second = TakeId(*reader);
        Add(OvIdPair(first, second));
    }
    return 1;
}

std::ostream& OvIdPairTable::Write(std::ostream& out) const {
    const std::ios_base::fmtflags saved = out.flags();
    for (int i = 0; i < Size(); ++i) {
        const OvIdPair& pair = (*this)[i];
        out << std::left << std::setw(10) << pair.id1 << ' ' << std::setw(10) << pair.id2 << "  ";
        if ((i + 1) % 5 == 0) out << Ovendl;
    }
    out << Ovendl;
    out.flags(saved);
    return out;
}

}  // namespace orvo
