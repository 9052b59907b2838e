// Buffer management for String: block allocation with the fixed capacity rule, and the S*
// functions that every String member delegates to.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <functional>
#include <new>

#include "orvo/foundation/string.h"
#include "string_internal.h"

namespace orvo {

constinit StrRep _nilStrRep = {0, 0, {'\0'}};
constinit String _nilString;

namespace string_internal {

int CapacityFor(int n) {
    n = ClampLength(n);
    // Smallest power of two that is at least 16 and at least n + 10; the block is P - 4
    // bytes, of which P - 10 are usable characters. The cap keeps the capacity in 16 bits.
    long p = 16;
    while (p < static_cast<long>(n) + 10)
        p <<= 1;
    return static_cast<int>(std::min<long>(p - 10, String::kMaxLength));
}

StrRep* NewRep(int n) {
    const int capacity = CapacityFor(n);
    // The header (two 16-bit counters) takes offsetof(StrRep, s) bytes; the text needs
    // capacity + 1 bytes for the NUL. With the uncapped rule that is exactly P - 5 <= P - 4.
    const std::size_t bytes = offsetof(StrRep, s) + static_cast<std::size_t>(capacity) + 1;
    void* block = ::operator new(bytes);
    std::memset(block, 0, bytes);
    auto* rep = static_cast<StrRep*>(block);
    rep->len = 0;
    rep->sz = static_cast<std::uint16_t>(capacity);
    return rep;
}

void FreeRep(StrRep* rep) {
    if (IsReal(rep)) ::operator delete(rep);
}

bool LiesInside(const char* p, const StrRep* rep) {
    if (p == nullptr || !IsReal(rep)) return false;
    std::less<const char*> before;
    const char* first = rep->s;
    const char* end = rep->s + rep->sz + 1;
    return !before(p, first) && before(p, end);
}

int TextLength(const char* t, int given) {
    if (given >= 0) return t != nullptr ? given : 0;
    if (t == nullptr) return 0;
    return static_cast<int>(std::min<std::size_t>(std::strlen(t), String::kMaxLength));
}

}  // namespace string_internal

using namespace string_internal;

StrRep* Salloc(StrRep* old, const char* src, int srclen, int newlen) {
    srclen = ClampLength(TextLength(src, srclen));
    newlen = ClampLength(std::max(newlen, srclen));
    if (!IsReal(old)) old = nullptr;

    StrRep* rep = (old != nullptr && old->sz >= newlen) ? old : NewRep(newlen);
    // src may lie in old's text (assigning a slice of a string to itself), hence memmove.
    if (srclen > 0 && src != rep->s) std::memmove(rep->s, src, static_cast<std::size_t>(srclen));
    // Terminate at srclen; whatever lies between srclen and newlen is zeroed so the buffer
    // never holds undefined bytes within its length.
    std::memset(rep->s + srclen, 0, static_cast<std::size_t>(newlen - srclen) + 1);
    rep->len = static_cast<std::uint16_t>(newlen);
    if (old != nullptr && old != rep) FreeRep(old);
    return rep;
}

StrRep* Scopy(StrRep* old, const StrRep* src) {
    if (!IsReal(old)) old = nullptr;
    if (!IsReal(src)) src = nullptr;
    if (old == src) {
        if (old == nullptr) return &_nilStrRep;
        old->s[old->len] = '\0';  // copying onto itself only re-terminates
        return old;
    }
    if (src == nullptr) {
        old->s[0] = '\0';
        old->len = 0;
        return old;
    }
    const int n = src->len;
    StrRep* rep = old;
    if (old == nullptr || n > old->sz) {
        FreeRep(old);
        rep = NewRep(n);
    }
    std::memcpy(rep->s, src->s, static_cast<std::size_t>(n));
    rep->s[n] = '\0';
    rep->len = static_cast<std::uint16_t>(n);
    return rep;
}

StrRep* Scat(StrRep* old, const char* s, int sl, const char* t, int tl) {
    return Scat(old, s, sl, t, tl, nullptr, 0);
}

StrRep* Scat(StrRep* old, const char* s, int sl, const char* t, int tl, const char* u, int ul) {
    if (!IsReal(old)) old = nullptr;
    sl = TextLength(s, sl);
    tl = TextLength(t, tl);
    ul = TextLength(u, ul);
    // Truncate the result to the longest text a buffer can hold, keeping the front.
    sl = std::min(sl, String::kMaxLength);
    tl = std::min(tl, String::kMaxLength - sl);
    ul = std::min(ul, String::kMaxLength - sl - tl);
    const int total = sl + tl + ul;

    const bool reuse = old != nullptr && total <= old->sz && !(tl > 0 && LiesInside(t, old)) &&
                       !(ul > 0 && LiesInside(u, old));
    StrRep* rep = reuse ? old : NewRep(total);
    if (sl > 0 && s != rep->s) std::memmove(rep->s, s, static_cast<std::size_t>(sl));
    if (tl > 0) std::memcpy(rep->s + sl, t, static_cast<std::size_t>(tl));
    if (ul > 0) std::memcpy(rep->s + sl + tl, u, static_cast<std::size_t>(ul));
    rep->s[total] = '\0';
    rep->len = static_cast<std::uint16_t>(total);
    if (old != nullptr && old != rep) FreeRep(old);
    return rep;
}

StrRep* Sprepend(StrRep* old, const char* t, int tl) {
    if (!IsReal(old)) old = nullptr;
    tl = std::min(TextLength(t, tl), String::kMaxLength);
    const int oldlen = old != nullptr ? old->len : 0;
    const int kept = std::min(oldlen, String::kMaxLength - tl);
    const int total = tl + kept;

    const bool reuse = old != nullptr && total <= old->sz && !(tl > 0 && LiesInside(t, old));
    StrRep* rep = reuse ? old : NewRep(total);
    if (kept > 0) std::memmove(rep->s + tl, old->s, static_cast<std::size_t>(kept));
    if (tl > 0) std::memcpy(rep->s, t, static_cast<std::size_t>(tl));
    rep->s[total] = '\0';
    rep->len = static_cast<std::uint16_t>(total);
    if (old != nullptr && old != rep) FreeRep(old);
    return rep;
}

void Sfree(StrRep* rep) { FreeRep(rep); }

StrRep* Sresize(StrRep* old, int newlen) {
    if (!IsReal(old)) old = nullptr;
    newlen = ClampLength(newlen);
    StrRep* rep = old;
    if (old == nullptr) {
        rep = NewRep(newlen);
    } else if (newlen > old->sz) {
        rep = NewRep(newlen);
        std::memcpy(rep->s, old->s, static_cast<std::size_t>(old->len) + 1);
        FreeRep(old);
    }
    rep->len = static_cast<std::uint16_t>(newlen);
    return rep;
}

namespace {

// Makes `dest` hold the text of `src` (unless they are the same buffer) before an in-place
// transformation.
StrRep* PrepareInPlace(const StrRep* src, StrRep* dest) {
    if (src == nullptr) src = &_nilStrRep;
    if (src != dest) dest = Salloc(dest, src->s, src->len, src->len);
    return dest;
}

bool IsLower(char c) {
    return std::islower(static_cast<unsigned char>(c)) != 0;
}
bool IsUpper(char c) {
    return std::isupper(static_cast<unsigned char>(c)) != 0;
}
bool IsDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}
char ToUpper(char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}
char ToLower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

}  // namespace

StrRep* Sreverse(const StrRep* src, StrRep* dest) {
    dest = PrepareInPlace(src, dest);
    if (dest->len > 0) std::reverse(dest->s, dest->s + dest->len);
    return dest;
}

StrRep* Supcase(const StrRep* src, StrRep* dest) {
    dest = PrepareInPlace(src, dest);
    for (int i = 0; i < dest->len; ++i) {
        if (IsLower(dest->s[i])) dest->s[i] = ToUpper(dest->s[i]);
    }
    return dest;
}

StrRep* Sdowncase(const StrRep* src, StrRep* dest) {
    dest = PrepareInPlace(src, dest);
    for (int i = 0; i < dest->len; ++i) {
        if (IsUpper(dest->s[i])) dest->s[i] = ToLower(dest->s[i]);
    }
    return dest;
}

StrRep* Scapitalize(const StrRep* src, StrRep* dest) {
    dest = PrepareInPlace(src, dest);
    char* text = dest->s;
    const int n = dest->len;
    int i = 0;
    while (i < n) {
        bool wordStart = false;
        if (IsLower(text[i])) {
            text[i] = ToUpper(text[i]);
            wordStart = true;
        } else {
            wordStart = IsUpper(text[i]) || IsDigit(text[i]);
        }
        if (!wordStart) {
            ++i;
            continue;
        }
        // Inside the word: lower-case every upper-case letter until a terminator.
        ++i;
        while (i < n) {
            char& c = text[i];
            if (IsUpper(c)) {
                c = ToLower(c);
            } else if (!IsLower(c) && !IsDigit(c) && c != '\'') {
                break;
            }
            ++i;
        }
        // Skip the terminator and the character after it: that one is never taken as a
        // word start, which is how capitalisation has always behaved here.
        i += 2;
    }
    return dest;
}

}  // namespace orvo
