// Keeping the block reader in step with the blocks of a damaged record (private to the
// library).
//
// The reader trusts a block handler to return at its block's "}", treats the token that follows
// a handled block as the next entry, and drops a token there that is no keyword without a word;
// a stray "{" there would make it take the stray block's "}" for the end of the enclosing block.
// These helpers let the record readers step over such tokens and report them instead.
#pragma once

#include "orvo/textfile/reader.h"

namespace orvo::detail {

/// Skips from the current token to the "}" closing the block it stands in (a "{" on the way
/// opens a nested block that is skipped whole). That "}" stays current; so does the end of the
/// input.
void SkipToBlockEnd(OvReader& reader);

/// Skips the block whose "{" is the current token; its "}" stays current.
void SkipBlock(OvReader& reader);

/// After a value that was not taken: a keyword that the current scope knows and a "}" are
/// handed back to the reader's loop (the keyword is the next entry, the "}" ends the enclosing
/// block), a "{" is skipped with its block, and anything else (an unknown word included: it was
/// the broken value) stays current for the loop to step over.
void ResyncAfterValue(OvReader& reader);

/// Called by a block handler standing at its block's "}": looks at the tokens that follow.
/// Tokens that are not keywords (stray numbers, strings, whole stray blocks) are reported as
/// `what` and stepped over; the first keyword, "}" or the end of the input is handed back to the
/// reader's loop as the next token. Tokenizer errors met on the way are recorded and stepped
/// over too; a failed stream is passed on.
void StepOverStrayTokens(OvReader& reader, const char* what);

}  // namespace orvo::detail
