// Slicing: the String operations that make SubString views, and SubString itself.
#include <algorithm>
#include <cstring>

#include "orvo/foundation/string.h"
#include "string_internal.h"

namespace orvo {

using namespace string_internal;

// ---- Making views -----------------------------------------------------------------------------

SubString String::substr(long long first, long long l) const {
    if (first < 0 || l < 0 || first + l > length()) return SubString(_nilString, 0, 0);
    return SubString(const_cast<String&>(*this), static_cast<int>(first), static_cast<int>(l));
}

namespace {

// The target-driven slices share one shape: search, then cut relative to the match (`first`
// is -1 when the target was not found, which always yields an invalid range).
enum class Cut { At, Before, Through, From, After };

struct Range {
    long long first;
    long long len;
};

Range CutRange(long long len, long long first, long long tl, Cut cut) {
    switch (cut) {
        case Cut::At:
            return {first, tl};
        case Cut::Before:
            return {0, first};
        case Cut::Through:
            return {0, first >= 0 ? first + tl : -1};
        case Cut::From:
            return {first, len - first};
        case Cut::After: {
            const long long start = first >= 0 ? first + tl : -1;
            return {start, len - start};
        }
    }
    return {-1, 0};
}

}  // namespace

#define ORVO_STRING_SLICES(NAME, CUT)                                                         \
    const SubString String::NAME(const String& x, int startpos) const {                       \
        const Range r = CutRange(length(), search(startpos, length(), x.chars(), x.length()), \
                                 x.length(), CUT);                                            \
        return substr(r.first, r.len);                                                        \
    }                                                                                         \
    const SubString String::NAME(const SubString& x, int startpos) const {                    \
        const Range r =                                                                       \
            CutRange(length(), search(startpos, length(), x.chars(), x.valid_length()),       \
                     x.valid_length(), CUT);                                                  \
        return substr(r.first, r.len);                                                        \
    }                                                                                         \
    const SubString String::NAME(const char* t, int startpos) const {                         \
        const int tl = TextLength(t, -1);                                                     \
        const Range r = CutRange(length(), search(startpos, length(), t, tl), tl, CUT);       \
        return substr(r.first, r.len);                                                        \
    }                                                                                         \
    const SubString String::NAME(char c, int startpos) const {                                \
        const Range r = CutRange(length(), search(startpos, length(), c), 1, CUT);            \
        return substr(r.first, r.len);                                                        \
    }                                                                                         \
    SubString String::NAME(const String& x, int startpos) {                                   \
        return static_cast<const String&>(*this).NAME(x, startpos);                           \
    }                                                                                         \
    SubString String::NAME(const SubString& x, int startpos) {                                \
        return static_cast<const String&>(*this).NAME(x, startpos);                           \
    }                                                                                         \
    SubString String::NAME(const char* t, int startpos) {                                     \
        return static_cast<const String&>(*this).NAME(t, startpos);                           \
    }                                                                                         \
    SubString String::NAME(char c, int startpos) {                                            \
        return static_cast<const String&>(*this).NAME(c, startpos);                           \
    }

ORVO_STRING_SLICES(at, Cut::At)
ORVO_STRING_SLICES(before, Cut::Before)
ORVO_STRING_SLICES(through, Cut::Through)
ORVO_STRING_SLICES(from, Cut::From)
ORVO_STRING_SLICES(after, Cut::After)

#undef ORVO_STRING_SLICES

const SubString String::at(int pos, int len) const {
    return substr(pos, len);
}
const SubString String::operator()(int pos, int len) const {
    return substr(pos, len);
}
const SubString String::before(int pos) const {
    return substr(0, pos);
}
const SubString String::through(int pos) const {
    return substr(0, static_cast<long long>(pos) + 1);
}
const SubString String::from(int pos) const {
    return substr(pos, static_cast<long long>(length()) - pos);
}
const SubString String::after(int pos) const {
    const long long start = static_cast<long long>(pos) + 1;
    return substr(start, length() - start);
}

SubString String::at(int pos, int len) {
    return substr(pos, len);
}
SubString String::operator()(int pos, int len) {
    return substr(pos, len);
}
SubString String::before(int pos) {
    return static_cast<const String&>(*this).before(pos);
}
SubString String::through(int pos) {
    return static_cast<const String&>(*this).through(pos);
}
SubString String::from(int pos) {
    return static_cast<const String&>(*this).from(pos);
}
SubString String::after(int pos) {
    return static_cast<const String&>(*this).after(pos);
}

// ---- SubString --------------------------------------------------------------------------------

SubString::SubString(String& x, int p, int l)
    : S(x), pos(static_cast<std::uint16_t>(p)), len(static_cast<std::uint16_t>(l)) {}

SubString::SubString(const SubString& x) : S(x.S), pos(x.pos), len(x.len) {}

SubString::~SubString() = default;

int SubString::valid_length() const {
    const int sl = S.length();
    if (pos >= sl) return 0;
    return std::min<int>(len, sl - pos);
}

const char* SubString::chars() const {
    return S.chars() + std::min<int>(pos, S.length());
}

void SubString::assign(const char* ys, int ylen) {
    if (&S == &_nilString) return;  // a failed slice: the shared empty string stays untouched
    ylen = TextLength(ys, ylen);

    StrRep* target = S.rep;
    const int sl = target->len;
    const int p = std::min<int>(pos, sl);
    const int l = std::min<int>(len, sl - p);
    // The result is head + new text + tail, truncated at the end to the longest text a
    // buffer holds (as every other operation truncates).
    ylen = std::min(ylen, String::kMaxLength - p);
    const int tail = std::min(sl - p - l, String::kMaxLength - p - ylen);
    const int newlen = p + ylen + tail;

    if (!IsReal(target) || newlen > target->sz || (ylen > 0 && LiesInside(ys, target))) {
        // Build into a new buffer: the old one is too small, shared, or holds the source.
        StrRep* fresh = NewRep(newlen);
        std::memcpy(fresh->s, target->s, static_cast<std::size_t>(p));
        if (ylen > 0) std::memcpy(fresh->s + p, ys, static_cast<std::size_t>(ylen));
        std::memcpy(fresh->s + p + ylen, target->s + p + l, static_cast<std::size_t>(tail));
        fresh->s[newlen] = '\0';
        fresh->len = static_cast<std::uint16_t>(newlen);
        FreeRep(target);
        S.rep = fresh;
    } else {
        // Move the tail into place, then copy the new text in.
        std::memmove(target->s + p + ylen, target->s + p + l, static_cast<std::size_t>(tail));
        if (ylen > 0) std::memcpy(target->s + p, ys, static_cast<std::size_t>(ylen));
        target->s[newlen] = '\0';
        target->len = static_cast<std::uint16_t>(newlen);
    }
    pos = static_cast<std::uint16_t>(p);
    len = static_cast<std::uint16_t>(ylen);
}

SubString& SubString::operator=(const String& y) {
    assign(y.chars(), y.length());
    return *this;
}

SubString& SubString::operator=(const SubString& y) {
    assign(y.chars(), y.valid_length());
    return *this;
}

SubString& SubString::operator=(const char* t) {
    assign(t, -1);
    return *this;
}

SubString& SubString::operator=(char c) {
    assign(&c, 1);
    return *this;
}

int SubString::contains(char c) const {
    return SearchChar(chars(), valid_length(), 0, c) >= 0;
}
int SubString::contains(const String& y) const {
    return SearchText(chars(), valid_length(), 0, y.chars(), y.length()) >= 0;
}
int SubString::contains(const SubString& y) const {
    return SearchText(chars(), valid_length(), 0, y.chars(), y.valid_length()) >= 0;
}
int SubString::contains(const char* t) const {
    return SearchText(chars(), valid_length(), 0, t, -1) >= 0;
}

int SubString::matches(const String& y, int p) const {
    return MatchText(chars(), valid_length(), p, true, y.chars(), y.length()) >= 0;
}
int SubString::matches(const SubString& y, int p) const {
    return MatchText(chars(), valid_length(), p, true, y.chars(), y.valid_length()) >= 0;
}
int SubString::matches(const char* t, int p) const {
    return MatchText(chars(), valid_length(), p, true, t, -1) >= 0;
}
int SubString::matches(char c, int p) const {
    return MatchText(chars(), valid_length(), p, true, &c, 1) >= 0;
}

int SubString::OK() const {
    const int v = !S.empty() && S.OK() && pos + len >= S.length();
    if (!v) S.error("SubString invariant failure");
    return v;
}

}  // namespace orvo
