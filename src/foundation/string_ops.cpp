// Free functions over String: concatenation, split/tokenize/join, replicate, common prefix and
// suffix, positional substitution, and stream input/output.
#include <algorithm>
#include <cstring>
#include <istream>
#include <locale>
#include <ostream>
#include <string>
#include <string_view>

#include "orvo/foundation/string.h"
#include "string_internal.h"

namespace orvo {

using namespace string_internal;

// ---- Concatenation ----------------------------------------------------------------------------

String operator+(const String& x, const String& y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.length(), y.chars(), y.length());
    return r;
}
String operator+(const String& x, const SubString& y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.length(), y.chars(), y.valid_length());
    return r;
}
String operator+(const String& x, const char* y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.length(), y, -1);
    return r;
}
String operator+(const String& x, char y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.length(), &y, 1);
    return r;
}
String operator+(const SubString& x, const String& y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.valid_length(), y.chars(), y.length());
    return r;
}
String operator+(const SubString& x, const SubString& y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.valid_length(), y.chars(), y.valid_length());
    return r;
}
String operator+(const SubString& x, const char* y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.valid_length(), y, -1);
    return r;
}
String operator+(const SubString& x, char y) {
    String r;
    r.rep = Scat(r.rep, x.chars(), x.valid_length(), &y, 1);
    return r;
}
String operator+(const char* x, const String& y) {
    String r;
    r.rep = Scat(r.rep, x, -1, y.chars(), y.length());
    return r;
}
String operator+(const char* x, const SubString& y) {
    String r;
    r.rep = Scat(r.rep, x, -1, y.chars(), y.valid_length());
    return r;
}
String operator+(char x, const String& y) {
    String r;
    r.rep = Scat(r.rep, &x, 1, y.chars(), y.length());
    return r;
}

// ---- Splitting and joining --------------------------------------------------------------------

int split(const String& x, String res[], int maxn, const String& sep) {
    // Work on a copy: `res` may contain `x` itself.
    const String text(x);
    const char* s = text.chars();
    const int sl = text.length();
    const int seplen = sep.length();
    int filled = 0;
    int pos = 0;
    while (filled < maxn && pos < sl) {
        int p = SearchText(s, sl, pos, sep.chars(), seplen);
        if (p < 0) p = sl;
        res[filled].rep = Salloc(res[filled].rep, s + pos, p - pos, p - pos);
        ++filled;
        pos = p + seplen;
    }
    return filled;
}

int tokenize(const String& x, String res[], int maxn, const String& delims) {
    // The scan sees the text as a C string (up to the first NUL), as the C library's token
    // scanner would; a private copy keeps `x` safe when it is one of the results.
    const String text(x);
    const char* s = text.chars();
    const auto sl = static_cast<int>(::strnlen(s, static_cast<std::size_t>(text.length())));
    const char* set = delims.chars();
    auto isDelim = [set](char c) { return std::strchr(set, c) != nullptr; };

    int stored = 0;
    int i = 0;
    while (stored < maxn) {
        while (i < sl && isDelim(s[i]))
            ++i;
        if (i >= sl) break;
        const int start = i;
        while (i < sl && !isDelim(s[i]))
            ++i;
        res[stored].rep = Salloc(res[stored].rep, s + start, i - start, i - start);
        ++stored;
    }
    return stored;
}

String join(const String src[], int n, const String& sep) {
    String r;
    if (n <= 0) return r;
    std::string text;
    for (int i = 0; i < n; ++i) {
        if (i > 0) text.append(sep.chars(), static_cast<std::size_t>(sep.length()));
        text.append(src[i].chars(), static_cast<std::size_t>(src[i].length()));
    }
    const int len = ClampLength(static_cast<long long>(text.size()));
    r.rep = Salloc(r.rep, text.data(), len, len);
    return r;
}

String replicate(char c, int n) {
    String r;
    if (n <= 0) return r;
    n = ClampLength(n);
    r.rep = Sresize(r.rep, n);
    std::memset(r.rep->s, c, static_cast<std::size_t>(n));
    r.rep->s[n] = '\0';
    return r;
}

String replicate(const String& y, int n) {
    String r;
    if (n <= 0) return r;
    const int yl = y.length();
    const int total = ClampLength(static_cast<long long>(yl) * n);
    r.rep = Sresize(r.rep, total);
    for (int at = 0; at < total; at += yl) {
        std::memcpy(r.rep->s + at, y.chars(), static_cast<std::size_t>(std::min(yl, total - at)));
    }
    r.rep->s[total] = '\0';
    return r;
}

String common_prefix(const String& x, const String& y, int startpos) {
    String r;
    if (startpos < 0 || startpos > x.length() || startpos > y.length()) {
        r.rep = Salloc(r.rep, x.chars(), 0, 0);
        return r;
    }
    const char* xs = x.chars() + startpos;
    const char* ys = y.chars() + startpos;
    const int limit = std::min(x.length(), y.length()) - startpos;
    int l = 0;
    while (l < limit && xs[l] == ys[l])
        ++l;
    r.rep = Salloc(r.rep, xs, l, l);
    return r;
}

String common_suffix(const String& x, const String& y, int startpos) {
    String r;
    const long long xi = static_cast<long long>(x.length()) + startpos;
    const long long yi = static_cast<long long>(y.length()) + startpos;
    int l = 0;
    if (xi < x.length() && yi < y.length()) {
        while (xi - l >= 0 && yi - l >= 0 && x.chars()[xi - l] == y.chars()[yi - l])
            ++l;
    }
    r.rep = Salloc(r.rep, x.chars() + (xi - l + 1 >= 0 ? xi - l + 1 : 0), l, l);
    return r;
}

// ---- Positional substitution ------------------------------------------------------------------

int Sprintf(String& target, const String& format, const String& a1, const String& a2,
            const String& a3, const String& a4, const String& a5) {
    const String* args[] = {&a1, &a2, &a3, &a4, &a5};
    // Copy the inputs first: any of them may be `target` itself.
    String text(format);
    String values[5] = {*args[0], *args[1], *args[2], *args[3], *args[4]};
    int replaced = 0;
    for (int k = 1; k <= 5; ++k) {
        const char placeholder[3] = {'%', static_cast<char>('0' + k), '\0'};
        const String& value = values[k - 1];
        // Restarting at the beginning after each replacement would never end for an argument
        // that contains its own placeholder; such an argument is scanned past instead.
        const bool selfReferring = value.contains(placeholder) != 0;
        int scanFrom = 0;
        // Bound: each replacement consumes a placeholder of a text of at most kMaxLength.
        for (int guard = 0; guard <= String::kMaxLength; ++guard) {
            const int p = text.index(placeholder, selfReferring ? scanFrom : 0);
            if (p < 0) break;
            String next = text.before(p) + value;
            if (text.length() > p + 2) next += text.after(p + 2);
            text = next;
            scanFrom = p + value.length();
            ++replaced;
        }
    }
    target = text;
    return replaced;
}

// ---- Streams ----------------------------------------------------------------------------------

std::ostream& operator<<(std::ostream& out, const String& x) {
    return out << std::string_view(x.chars(), static_cast<std::size_t>(x.length()));
}

std::ostream& operator<<(std::ostream& out, const SubString& x) {
    return out << std::string_view(x.chars(), static_cast<std::size_t>(x.valid_length()));
}

std::istream& operator>>(std::istream& in, String& x) {
    std::istream::sentry ok(in);  // skips leading whitespace
    if (!ok) return in;
    std::streambuf* buffer = in.rdbuf();
    const auto& types = std::use_facet<std::ctype<char>>(in.getloc());
    std::streamsize limit = in.width() > 0 ? in.width() : String::kMaxLength;
    limit = std::min<std::streamsize>(limit, String::kMaxLength);

    std::string word;
    std::ios_base::iostate state = std::ios_base::goodbit;
    while (static_cast<std::streamsize>(word.size()) < limit) {
        const auto c = buffer->sgetc();
        if (std::istream::traits_type::eq_int_type(c, std::istream::traits_type::eof())) {
            state |= std::ios_base::eofbit;
            break;
        }
        const char ch = std::istream::traits_type::to_char_type(c);
        if (types.is(std::ctype_base::space, ch)) break;
        word.push_back(ch);
        buffer->sbumpc();
    }
    in.width(0);
    if (word.empty()) state |= std::ios_base::failbit;
    const int n = static_cast<int>(word.size());
    x.rep = Salloc(x.rep, word.data(), n, n);
    in.setstate(state);
    return in;
}

int readline(std::istream& in, String& x, char terminator, int discard) {
    std::istream::sentry ok(in, true);
    if (!ok) return 0;
    std::streambuf* buffer = in.rdbuf();
    if (buffer == nullptr) {
        in.setstate(std::ios_base::eofbit | std::ios_base::badbit);
        return 0;
    }
    using Traits = std::istream::traits_type;

    x.rep = Sresize(x.rep, 80);
    int stored = 0;
    bool atEnd = false;
    for (;;) {
        const auto c = buffer->sbumpc();
        if (Traits::eq_int_type(c, Traits::eof())) {
            atEnd = true;
            break;
        }
        const char ch = Traits::to_char_type(c);
        const bool isTerminator = ch == terminator;
        if ((!isTerminator || discard == 0) && stored < String::kMaxLength) {
            // Grow when the next character would reach the last slot, as the capacity rule
            // for length stored + 1 gives room for it and its NUL.
            if (stored >= x.rep->sz - 1) x.rep = Sresize(x.rep, stored + 1);
            x.rep->s[stored++] = ch;
        }
        if (isTerminator) break;
    }
    x.rep->s[stored] = '\0';
    x.rep->len = static_cast<std::uint16_t>(stored);
    if (atEnd) in.setstate(std::ios_base::eofbit);
    return stored;
}

}  // namespace orvo
