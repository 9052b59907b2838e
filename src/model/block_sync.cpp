// Keeping the block reader in step with the blocks of a damaged record.
#include "block_sync.h"

#include "../numerics/read_problem.h"

namespace orvo::detail {

namespace {

eOvTokentype CurrentType(OvReader& reader) {
    return reader.GetParser().GetToken().GetType();
}

}  // namespace

void SkipToBlockEnd(OvReader& reader) {
    int depth = 0;
    for (;;) {
        const eOvTokentype type = CurrentType(reader);
        if (type == TokenEOF) return;
        if (type == TokenBlockEnd) {
            if (depth == 0) return;
            --depth;
        } else if (type == TokenBlockBegin) {
            ++depth;
        }
        try {
            reader.Advance();
        } catch (const OvParserStatus& thrown) {
            // A broken token inside skipped text is skipped with it; only a failed stream (which
            // fails again on every read) ends the walk.
            if (thrown.GetStatus() == ParserErrorStream) throw;
        }
    }
}

void SkipBlock(OvReader& reader) {
    reader.Advance();
    SkipToBlockEnd(reader);
}

void ResyncAfterValue(OvReader& reader) {
    switch (CurrentType(reader)) {
        case TokenKeyword:
            // A keyword of this block is the next entry; any other word was the broken value.
            if (reader.GetCurrentScope()->Find(reader.GetParser().GetToken().text) != nullptr) {
                reader.GetParser().SkipNextParse(true);
            }
            break;
        case TokenBlockEnd:
            reader.GetParser().SkipNextParse(true);
            break;
        case TokenBlockBegin:
            SkipBlock(reader);
            break;
        default:
            break;
    }
}

void StepOverStrayTokens(OvReader& reader, const char* what) {
    for (;;) {
        try {
            reader.Advance();
        } catch (const OvParserStatus& thrown) {
            if (thrown.GetStatus() == ParserErrorStream) throw;
            reader.GetReaderErrorList().Add(new OvReaderError(thrown));
            continue;
        }
        switch (CurrentType(reader)) {
            case TokenKeyword:
            case TokenBlockEnd:
            case TokenEOF:
                reader.GetParser().SkipNextParse(true);
                return;
            case TokenBlockBegin:
                ReportReadProblem(reader, what);
                SkipBlock(reader);
                break;
            default:
                ReportReadProblem(reader, what);
                break;
        }
    }
}

}  // namespace orvo::detail
