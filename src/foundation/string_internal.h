// Helpers shared by the String sources; not part of the public interface.
#pragma once

#include "orvo/foundation/string.h"

namespace orvo::string_internal {

/// Limits a length to what a 16-bit buffer can hold (negative counts as 0).
inline int ClampLength(long long n) {
    if (n < 0) return 0;
    return n > String::kMaxLength ? String::kMaxLength : static_cast<int>(n);
}

/// True for a buffer that may be written and freed (not null, not the shared empty buffer).
inline bool IsReal(const StrRep* rep) {
    return rep != nullptr && rep != &_nilStrRep;
}

/// Capacity of a buffer made for `n` characters.
int CapacityFor(int n);
/// A zero-filled buffer with room for `n` characters and length 0.
StrRep* NewRep(int n);
/// Frees a real buffer; ignores null and the shared empty buffer.
void FreeRep(StrRep* rep);
/// True when `p` points into the block of the real buffer `rep`.
bool LiesInside(const char* p, const StrRep* rep);
/// `given` when not negative, else the NUL-terminated length of `t` (0 for null), clamped.
int TextLength(const char* t, int given);

/// Start index of the first match of `t` in s[0..sl) searched from `start` as String::index
/// documents, or -1.
int SearchText(const char* s, int sl, long long start, const char* t, int tl);
int SearchChar(const char* s, int sl, long long start, char c);
/// The anchored test behind contains/matches: `tl` on success, else -1.
int MatchText(const char* s, int sl, long long start, bool exact, const char* t, int tl);

}  // namespace orvo::string_internal
