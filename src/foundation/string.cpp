// String members: construction, assignment, searching, editing and access. Buffer handling is
// left to the S* functions.
#include "orvo/foundation/string.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "string_internal.h"

namespace orvo {

using namespace string_internal;

namespace string_internal {

int SearchText(const char* s, int sl, long long start, const char* t, int tl) {
    tl = TextLength(t, tl);
    if (sl <= 0 || tl <= 0) return -1;
    const auto len = static_cast<std::size_t>(tl);
    if (start >= 0) {
        for (long long i = start; i + tl <= sl; ++i) {
            if (std::memcmp(s + i, t, len) == 0) return static_cast<int>(i);
        }
    } else {
        // The match must end (its last character) at or before index sl + start.
        long long i = sl + start - tl + 1;
        if (i > sl - tl) i = sl - tl;
        for (; i >= 0; --i) {
            if (std::memcmp(s + i, t, len) == 0) return static_cast<int>(i);
        }
    }
    return -1;
}

int SearchChar(const char* s, int sl, long long start, char c) {
    if (sl <= 0) return -1;
    if (start >= 0) {
        for (long long i = start; i < sl; ++i) {
            if (s[i] == c) return static_cast<int>(i);
        }
    } else {
        for (long long i = sl + start; i >= 0; --i) {
            if (s[i] == c) return static_cast<int>(i);
        }
    }
    return -1;
}

int MatchText(const char* s, int sl, long long start, bool exact, const char* t, int tl) {
    tl = TextLength(t, tl);
    if (start < 0) {
        start = sl + start - tl + 1;
        if (start < 0 || (exact && start != 0)) return -1;
    } else if (exact && sl - start != tl) {
        return -1;
    }
    if (sl == 0 || tl == 0 || sl - start < tl || start >= sl) return -1;
    return std::memcmp(s + start, t, static_cast<std::size_t>(tl)) == 0 ? tl : -1;
}

}  // namespace string_internal

// ---- Construction and assignment --------------------------------------------------------------

String::String(const String& x) : rep(Scopy(nullptr, x.rep)) {}

String::String(String&& x) noexcept : rep(x.rep) {
    x.rep = &_nilStrRep;
}

String::String(const SubString& x)
    : rep(Salloc(nullptr, x.chars(), x.valid_length(), x.valid_length())) {}

String::String(const char* t) : rep(Salloc(nullptr, t, -1, -1)) {}

String::String(const char* t, int len) : rep(Salloc(nullptr, t, len, len)) {}

String::String(char c) : rep(Salloc(nullptr, &c, 1, 1)) {}

String::String(int value) : rep(&_nilStrRep) {
    char text[16];
    const int n = std::snprintf(text, sizeof text, "%d", value);
    rep = Salloc(nullptr, text, n, n);
}

String::String(double value) : rep(&_nilStrRep) {
    const char* format = DoubleFormat().chars();
    const int n = std::snprintf(nullptr, 0, format, value);
    std::vector<char> text(static_cast<std::size_t>(n > 0 ? n : 0) + 1);
    std::snprintf(text.data(), text.size(), format, value);
    rep = Salloc(nullptr, text.data(), n > 0 ? n : 0, n > 0 ? n : 0);
}

String::~String() {
    FreeRep(rep);
}

const String& String::DoubleFormat() {
    static const String format("%6.3f");
    return format;
}

String& String::operator=(const String& y) {
    rep = Scopy(rep, y.rep);
    return *this;
}

String& String::operator=(String&& y) noexcept {
    if (this != &y) {
        FreeRep(rep);
        rep = y.rep;
        y.rep = &_nilStrRep;
    }
    return *this;
}

String& String::operator=(const char* y) {
    rep = Salloc(rep, y, -1, -1);
    return *this;
}

String& String::operator=(char c) {
    rep = Salloc(rep, &c, 1, 1);
    return *this;
}

String& String::operator=(const SubString& y) {
    rep = Salloc(rep, y.chars(), y.valid_length(), y.valid_length());
    return *this;
}

String& String::operator+=(const String& y) {
    rep = Scat(rep, chars(), length(), y.chars(), y.length());
    return *this;
}

String& String::operator+=(const SubString& y) {
    rep = Scat(rep, chars(), length(), y.chars(), y.valid_length());
    return *this;
}

String& String::operator+=(const char* t) {
    rep = Scat(rep, chars(), length(), t, -1);
    return *this;
}

String& String::operator+=(char c) {
    rep = Scat(rep, chars(), length(), &c, 1);
    return *this;
}

String& String::prepend(const String& y) {
    rep = Sprepend(rep, y.chars(), y.length());
    return *this;
}

String& String::prepend(const SubString& y) {
    rep = Sprepend(rep, y.chars(), y.valid_length());
    return *this;
}

String& String::prepend(const char* t) {
    rep = Sprepend(rep, t, -1);
    return *this;
}

String& String::prepend(char c) {
    rep = Sprepend(rep, &c, 1);
    return *this;
}

// ---- Searching --------------------------------------------------------------------------------

int String::search(int start, int sl, char c) const {
    return SearchChar(chars(), sl, start, c);
}

int String::search(int start, int sl, const char* t, int tl) const {
    return SearchText(chars(), sl, start, t, tl);
}

int String::match(int start, int sl, int exact, const char* t, int tl) const {
    return MatchText(chars(), sl, start, exact != 0, t, tl);
}

int String::index(char c, int startpos) const {
    return search(startpos, length(), c);
}
int String::index(const String& y, int startpos) const {
    return search(startpos, length(), y.chars(), y.length());
}
int String::index(const SubString& y, int startpos) const {
    return search(startpos, length(), y.chars(), y.valid_length());
}
int String::index(const char* t, int startpos) const {
    return search(startpos, length(), t, TextLength(t, -1));
}

int String::contains(char c) const {
    return search(0, length(), c) >= 0;
}
int String::contains(const String& y) const {
    return search(0, length(), y.chars(), y.length()) >= 0;
}
int String::contains(const SubString& y) const {
    return search(0, length(), y.chars(), y.valid_length()) >= 0;
}
int String::contains(const char* t) const {
    return search(0, length(), t, TextLength(t, -1)) >= 0;
}

int String::contains(char c, int pos) const {
    return match(pos, length(), 0, &c, 1) >= 0;
}
int String::contains(const String& y, int pos) const {
    return match(pos, length(), 0, y.chars(), y.length()) >= 0;
}
int String::contains(const SubString& y, int pos) const {
    return match(pos, length(), 0, y.chars(), y.valid_length()) >= 0;
}
int String::contains(const char* t, int pos) const {
    return match(pos, length(), 0, t, TextLength(t, -1)) >= 0;
}

int String::matches(char c, int pos) const {
    return match(pos, length(), 1, &c, 1) >= 0;
}
int String::matches(const String& y, int pos) const {
    return match(pos, length(), 1, y.chars(), y.length()) >= 0;
}
int String::matches(const SubString& y, int pos) const {
    return match(pos, length(), 1, y.chars(), y.valid_length()) >= 0;
}
int String::matches(const char* t, int pos) const {
    return match(pos, length(), 1, t, TextLength(t, -1)) >= 0;
}

int String::freq(char c) const {
    int found = 0;
    for (int i = 0; i < length(); ++i) {
        if (rep->s[i] == c) ++found;
    }
    return found;
}

namespace {

int CountMatches(const String& x, const char* t, int tl) {
    int found = 0;
    for (int i = 0; i < x.length(); ++i) {
        if (MatchText(x.chars(), x.length(), i, false, t, tl) >= 0) ++found;
    }
    return found;
}

}  // namespace

int String::freq(const String& y) const {
    return CountMatches(*this, y.chars(), y.length());
}
int String::freq(const SubString& y) const {
    return CountMatches(*this, y.chars(), y.valid_length());
}
int String::freq(const char* t) const {
    return CountMatches(*this, t, TextLength(t, -1));
}

// ---- Editing ----------------------------------------------------------------------------------

void String::del(int pos, int len) {
    if (pos < 0 || len <= 0 || static_cast<long long>(pos) + len > length()) return;
    const int tail = length() - pos - len;
    std::memmove(rep->s + pos, rep->s + pos + len, static_cast<std::size_t>(tail) + 1);
    rep->len = static_cast<std::uint16_t>(rep->len - len);
}

void String::del(const String& y, int startpos) {
    const int tl = y.length();
    del(search(startpos, length(), y.chars(), tl), tl);
}

void String::del(const SubString& y, int startpos) {
    const int tl = y.valid_length();
    del(search(startpos, length(), y.chars(), tl), tl);
}

void String::del(const char* t, int startpos) {
    const int tl = TextLength(t, -1);
    del(search(startpos, length(), t, tl), tl);
}

void String::del(char c, int startpos) {
    del(search(startpos, length(), c), 1);
}

int String::gsubText(const char* pat, int pl, const char* r, int rl) {
    pl = TextLength(pat, pl);
    rl = TextLength(r, rl);
    const int sl = length();
    if (sl <= 0 || pl <= 0 || sl < pl) return 0;

    // Build the result separately: the pattern and the replacement may be slices of this
    // string, and the original text must stay intact while it is scanned.
    const char* s = chars();
    std::string result;
    int matched = 0;
    int si = 0;
    while (sl - si >= pl) {
        const int p = SearchText(s, sl, si, pat, pl);
        if (p < 0) break;
        result.append(s + si, static_cast<std::size_t>(p - si));
        result.append(r, static_cast<std::size_t>(rl));
        si = p + pl;
        ++matched;
    }
    if (matched == 0) return 0;
    result.append(s + si, static_cast<std::size_t>(sl - si));

    const int n = ClampLength(static_cast<long long>(result.size()));
    if (IsReal(rep) && n <= rep->sz) {  // fits back into the current buffer
        std::memcpy(rep->s, result.data(), static_cast<std::size_t>(n));
        rep->s[n] = '\0';
        rep->len = static_cast<std::uint16_t>(n);
    } else {
        StrRep* fresh = Salloc(nullptr, result.data(), n, n);
        FreeRep(rep);
        rep = fresh;
    }
    return matched;
}

int String::gsub(const String& pat, const String& repl) {
    return gsubText(pat.chars(), pat.length(), repl.chars(), repl.length());
}
int String::gsub(const SubString& pat, const String& repl) {
    return gsubText(pat.chars(), pat.valid_length(), repl.chars(), repl.length());
}
int String::gsub(const char* pat, const String& repl) {
    return gsubText(pat, -1, repl.chars(), repl.length());
}
int String::gsub(const char* pat, const char* repl) {
    return gsubText(pat, -1, repl, -1);
}

void String::reverse() {
    rep = Sreverse(rep, rep);
}
void String::upcase() {
    rep = Supcase(rep, rep);
}
void String::downcase() {
    rep = Sdowncase(rep, rep);
}
void String::capitalize() {
    rep = Scapitalize(rep, rep);
}

// ---- Access -----------------------------------------------------------------------------------

char& String::operator[](int i) {
    if (i < 0 || i >= length()) {
        error("invalid index");
        // A write through this reference must not touch any string's buffer.
        thread_local char scratch;
        scratch = '\0';
        return scratch;
    }
    return rep->s[i];
}

const char& String::operator[](int i) const {
    if (i < 0 || i >= length()) {
        error("invalid index");
        return rep->s[rep->len];
    }
    return rep->s[i];
}

char String::elem(int i) const {
    return (*this)[i];
}
char String::firstchar() const {
    return (*this)[0];
}
char String::lastchar() const {
    return (*this)[length() - 1];
}

void String::alloc(int newsize) {
    const std::uint16_t oldlen = rep->len;
    rep = Sresize(rep, newsize);
    rep->len = oldlen;
    rep->s[oldlen] = '\0';
}

int String::OK() const {
    const bool valid = rep != nullptr && rep->len <= rep->sz && rep->s[rep->len] == '\0';
    if (!valid) error("invariant failure");
    return valid ? 1 : 0;
}

void String::error(const char* /*msg*/) const {}

}  // namespace orvo
