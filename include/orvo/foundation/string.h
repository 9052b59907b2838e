// The library's own text type: a growable, NUL-terminated character buffer with 16-bit length
// and capacity, plus slicing views (SubString) and a family of buffer functions (S*).
//
// Buffer model
//   Every non-empty String owns exactly one StrRep block. Empty strings that were never given
//   a buffer share the process-wide `_nilStrRep`, which is never written and never freed. Copies
//   never share a buffer: copy construction and assignment copy the characters.
//
// Capacity rule
//   For a needed length n the block is sized from P, the smallest power of two that is at least
//   16 and at least n + 10: the block has P - 4 bytes and the capacity `sz` is P - 10. So n <= 6
//   gives capacity 6, n = 7..22 gives 22, n = 23..54 gives 54, and so on.
//
// Length limit (memory-safety choice)
//   Lengths are 16-bit, so a String holds at most 65535 characters (`String::kMaxLength`).
//   Instead of letting a longer result wrap around, every operation truncates its result to
//   65535 characters, and the capacity is capped at 65535 as well (n = 65527..65535 would
//   otherwise need a capacity that does not fit 16 bits). For every result that fits, the
//   behaviour and the capacities are exactly those of the rule above.
//
// Range faults are silent: no String operation throws or reports. Invalid slices yield the
// empty view of `_nilString`; out-of-range character access calls the do-nothing
// `String::error` and is then redirected to a harmless character (see operator[]).
#pragma once

#include <cstdint>
#include <iosfwd>

namespace orvo {

class String;
class SubString;

/// The character buffer of a String; allocated as one block with the text following the two
/// counters. `s` really holds `sz + 1` bytes and is always NUL-terminated at `s[len]`.
struct StrRep {
    std::uint16_t len;  ///< characters in use
    std::uint16_t sz;   ///< capacity, not counting the terminating NUL
    char s[1];          ///< the text; the block extends past this member
};

/// The shared empty buffer (length 0, capacity 0, text ""). Never written, never freed.
extern constinit StrRep _nilStrRep;

// ---- Buffer functions -------------------------------------------------------------------------
// All of them treat `&_nilStrRep` exactly like a null pointer (no buffer), return the buffer to
// use from now on (which may be `old` reused in place or a new block, `old` then being freed),
// and accept negative lengths as "NUL-terminated, 0 for a null pointer".

/// Makes a buffer of length `newlen` (raised to `srclen` if smaller) holding `srclen` characters
/// of `src`, NUL-terminated at index `srclen`. `old` is reused when it is a real buffer that has
/// room for `newlen`; `src` may point into `old`.
StrRep* Salloc(StrRep* old, const char* src, int srclen, int newlen);
/// Copies the text of `src` into `old`. Both empty (nil or null): `&_nilStrRep`. Only `src`
/// empty: `old` kept with length 0. Otherwise `old` is reused when the text fits, else freed and
/// replaced. Copying a buffer onto itself only re-terminates it.
StrRep* Scopy(StrRep* old, const StrRep* src);
/// Concatenates two pieces. `old` is reused when the total fits and `t` does not lie in it.
StrRep* Scat(StrRep* old, const char* s, int sl, const char* t, int tl);
/// Concatenates three pieces. `old` is reused when the total fits and neither `t` nor `u` lies
/// in it.
StrRep* Scat(StrRep* old, const char* s, int sl, const char* t, int tl, const char* u, int ul);
/// Inserts `tl` characters of `t` in front of the text of `old`.
StrRep* Sprepend(StrRep* old, const char* t, int tl);
/// Grows `old` to room for `newlen` characters keeping its text; the result's length is `newlen`
/// (the text beyond the old length is unspecified but the buffer stays terminated at the old
/// length). A buffer is never shrunk.
StrRep* Sresize(StrRep* old, int newlen);
/// Releases a buffer made by the functions above; null and `&_nilStrRep` are ignored.
void Sfree(StrRep* rep);
/// Each copies `src` into `dest` first when they differ (via Salloc), then works in place.
StrRep* Sreverse(const StrRep* src, StrRep* dest);
StrRep* Supcase(const StrRep* src, StrRep* dest);
StrRep* Sdowncase(const StrRep* src, StrRep* dest);
/// Upper-cases each word's first letter and lower-cases the rest of the word. Word starts are
/// lower-case letters (made upper case), upper-case letters and digits; lower case, digits and
/// "'" continue a word; any other character ends it, and the character right after that
/// terminator is skipped without being examined as a word start ("hello world" gives
/// "Hello wOrld", "a.b" gives "A.b").
StrRep* Scapitalize(const StrRep* src, StrRep* dest);

/// A view of `len` characters at `pos` inside a String. Made only by String's slicing
/// operations. Assigning to it replaces the viewed characters inside the String, growing or
/// shrinking it; afterwards the view covers the new text. Assigning to the empty view of
/// `_nilString` (a failed slice) does nothing.
class SubString {
    friend class String;

public:
    virtual ~SubString();

    SubString& operator=(const String& y);
    SubString& operator=(const SubString& y);
    SubString& operator=(const char* t);
    SubString& operator=(char c);

    /// 1 when the view contains the target anywhere, else 0.
    int contains(char c) const;
    int contains(const String& y) const;
    int contains(const SubString& y) const;
    int contains(const char* t) const;

    /// As String::matches, applied to the viewed text only (pos relative to the view).
    int matches(const String& y, int pos = 0) const;
    int matches(const SubString& y, int pos = 0) const;
    int matches(const char* t, int pos = 0) const;
    int matches(char c, int pos = 0) const;

    int length() const { return len; }
    int empty() const { return len == 0; }
    /// The view's length clipped to the viewed string's current text. Equals length() unless
    /// the string was shortened after the view was made; every read through the view uses it.
    int valid_length() const;
    /// Pointer to the first viewed character (not NUL-terminated at the view's end).
    const char* chars() const;

    /// Kept as the library always had it: true when pos + len reaches at least the viewed
    /// string's length and that string is non-empty.
    int OK() const;

protected:
    SubString(String& x, int p, int l);
    SubString(const SubString& x);

    /// Replaces the viewed characters with `ylen` characters of `ys`.
    void assign(const char* ys, int ylen);

    String& S;
    std::uint16_t pos;
    std::uint16_t len;
};

class String {
    friend class SubString;

public:
    /// Longest text a String can hold; longer results are truncated to it.
    static constexpr int kMaxLength = 65535;

    constexpr String() noexcept : rep(&_nilStrRep) {}
    String(const String& x);
    String(String&& x) noexcept;
    String(const SubString& x);
    String(const char* t);
    /// `len` characters of `t` (NUL-terminated when `len` is negative).
    String(const char* t, int len);
    explicit String(char c);
    /// The integer formatted with "%d".
    explicit String(int value);
    /// The number formatted with the library-wide format `DoubleFormat()` ("%6.3f").
    explicit String(double value);
    virtual ~String();

    String& operator=(const String& y);
    String& operator=(String&& y) noexcept;
    String& operator=(const char* y);
    String& operator=(char c);
    String& operator=(const SubString& y);

    String& operator+=(const String& y);
    String& operator+=(const SubString& y);
    String& operator+=(const char* t);
    String& operator+=(char c);

    String& prepend(const String& y);
    String& prepend(const SubString& y);
    String& prepend(const char* t);
    String& prepend(char c);

    // ---- Searching ---------------------------------------------------------------------------
    // `startpos` >= 0 scans forward from that index (the target must fit completely); a negative
    // `startpos` scans backward for a match that ends at or before index length() + startpos
    // (-1: the last occurrence). Returns the start index of the match or -1; an empty target or
    // an empty string is never found.
    int index(char c, int startpos = 0) const;
    int index(const String& y, int startpos = 0) const;
    int index(const SubString& y, int startpos = 0) const;
    int index(const char* t, int startpos = 0) const;

    /// Anywhere in the string: 1 or 0.
    int contains(char c) const;
    int contains(const String& y) const;
    int contains(const SubString& y) const;
    int contains(const char* t) const;
    /// Anchored: pos >= 0 means "starts exactly at pos", pos < 0 "ends exactly at length()+pos".
    int contains(char c, int pos) const;
    int contains(const String& y, int pos) const;
    int contains(const SubString& y, int pos) const;
    int contains(const char* t, int pos) const;

    /// Anchored and reaching the end: with pos >= 0 the rest from pos equals the target; with
    /// pos < 0 the match starts at 0 and ends at length()+pos (so -1: the whole string).
    int matches(char c, int pos = 0) const;
    int matches(const String& y, int pos = 0) const;
    int matches(const SubString& y, int pos = 0) const;
    int matches(const char* t, int pos = 0) const;

    /// Matches tried at every start index (overlapping occurrences count separately).
    int freq(char c) const;
    int freq(const String& y) const;
    int freq(const SubString& y) const;
    int freq(const char* t) const;

    // ---- Slicing -----------------------------------------------------------------------------
    // A slice whose start is negative, whose length is negative or whose end lies beyond
    // length() is the empty view of `_nilString`. Target forms search with `startpos` as above;
    // a target that is not found gives that empty view as well.
    SubString at(int pos, int len);
    SubString operator()(int pos, int len);
    SubString at(const String& x, int startpos = 0);
    SubString at(const SubString& x, int startpos = 0);
    SubString at(const char* t, int startpos = 0);
    SubString at(char c, int startpos = 0);

    SubString before(int pos);
    SubString before(const String& x, int startpos = 0);
    SubString before(const SubString& x, int startpos = 0);
    SubString before(const char* t, int startpos = 0);
    SubString before(char c, int startpos = 0);

    SubString through(int pos);
    SubString through(const String& x, int startpos = 0);
    SubString through(const SubString& x, int startpos = 0);
    SubString through(const char* t, int startpos = 0);
    SubString through(char c, int startpos = 0);

    SubString from(int pos);
    SubString from(const String& x, int startpos = 0);
    SubString from(const SubString& x, int startpos = 0);
    SubString from(const char* t, int startpos = 0);
    SubString from(char c, int startpos = 0);

    SubString after(int pos);
    SubString after(const String& x, int startpos = 0);
    SubString after(const SubString& x, int startpos = 0);
    SubString after(const char* t, int startpos = 0);
    SubString after(char c, int startpos = 0);

    // Read-only slices of a const String (the view must not be assigned to).
    const SubString at(int pos, int len) const;
    const SubString operator()(int pos, int len) const;
    const SubString at(const String& x, int startpos = 0) const;
    const SubString at(const SubString& x, int startpos = 0) const;
    const SubString at(const char* t, int startpos = 0) const;
    const SubString at(char c, int startpos = 0) const;

    const SubString before(int pos) const;
    const SubString before(const String& x, int startpos = 0) const;
    const SubString before(const SubString& x, int startpos = 0) const;
    const SubString before(const char* t, int startpos = 0) const;
    const SubString before(char c, int startpos = 0) const;

    const SubString through(int pos) const;
    const SubString through(const String& x, int startpos = 0) const;
    const SubString through(const SubString& x, int startpos = 0) const;
    const SubString through(const char* t, int startpos = 0) const;
    const SubString through(char c, int startpos = 0) const;

    const SubString from(int pos) const;
    const SubString from(const String& x, int startpos = 0) const;
    const SubString from(const SubString& x, int startpos = 0) const;
    const SubString from(const char* t, int startpos = 0) const;
    const SubString from(char c, int startpos = 0) const;

    const SubString after(int pos) const;
    const SubString after(const String& x, int startpos = 0) const;
    const SubString after(const SubString& x, int startpos = 0) const;
    const SubString after(const char* t, int startpos = 0) const;
    const SubString after(char c, int startpos = 0) const;

    // ---- Editing -----------------------------------------------------------------------------
    /// Removes `len` characters at `pos` when pos >= 0, len > 0 and pos + len <= length();
    /// otherwise does nothing.
    void del(int pos, int len);
    /// Removes the first occurrence found from `startpos`; nothing when not found.
    void del(const String& y, int startpos = 0);
    void del(const SubString& y, int startpos = 0);
    void del(const char* t, int startpos = 0);
    void del(char c, int startpos = 0);

    /// Replaces every non-overlapping occurrence of `pat`, left to right; returns the count.
    int gsub(const String& pat, const String& repl);
    int gsub(const SubString& pat, const String& repl);
    int gsub(const char* pat, const String& repl);
    int gsub(const char* pat, const char* repl);

    void reverse();
    void upcase();
    void downcase();
    void capitalize();

    // ---- Access ------------------------------------------------------------------------------
    int length() const { return rep->len; }
    int empty() const { return rep->len == 0; }
    /// Capacity of the buffer (0 for the shared empty buffer).
    int allocation() const { return rep->sz; }
    const char* chars() const { return rep->s; }
    operator const char*() const { return rep->s; }

    /// Character access; an index outside [0, length()) calls error("invalid index") and then
    /// still performs an access, but a harmless one: a read gives the terminating NUL, and the
    /// non-const operator[] refers to a scratch character outside every string, so a bad index
    /// never touches memory outside the buffer nor breaks its termination.
    char& operator[](int i);
    const char& operator[](int i) const;
    char elem(int i) const;
    char firstchar() const;
    char lastchar() const;

    /// Grows the buffer to room for `newsize` characters keeping the current text (never
    /// shrinks).
    void alloc(int newsize);

    /// Consistency check of the buffer: length within capacity and text terminated.
    int OK() const;
    /// Range faults are silent by design: this returns at once.
    void error(const char* msg) const;

    /// The library-wide format used by String(double): "%6.3f".
    static const String& DoubleFormat();

    // Friends that build results directly into a buffer.
    friend int split(const String& x, String res[], int maxn, const String& sep);
    friend int tokenize(const String& x, String res[], int maxn, const String& delims);
    friend String common_prefix(const String& x, const String& y, int startpos);
    friend String common_suffix(const String& x, const String& y, int startpos);
    friend int readline(std::istream& in, String& x, char terminator, int discard);
    friend std::istream& operator>>(std::istream& in, String& x);
    friend String replicate(char c, int n);
    friend String replicate(const String& y, int n);
    friend String join(const String src[], int n, const String& sep);
    friend String operator+(const String& x, const String& y);
    friend String operator+(const String& x, const SubString& y);
    friend String operator+(const String& x, const char* y);
    friend String operator+(const String& x, char y);
    friend String operator+(const SubString& x, const String& y);
    friend String operator+(const SubString& x, const SubString& y);
    friend String operator+(const SubString& x, const char* y);
    friend String operator+(const SubString& x, char y);
    friend String operator+(const char* x, const String& y);
    friend String operator+(const char* x, const SubString& y);
    friend String operator+(char x, const String& y);

protected:
    /// Forward or backward search as documented for index(); returns the start or -1.
    int search(int start, int sl, char c) const;
    int search(int start, int sl, const char* t, int tl) const;
    /// Anchored test behind contains/matches; returns the target length or -1.
    int match(int start, int sl, int exact, const char* t, int tl) const;
    /// The view [first, first + l) or the empty view of `_nilString`.
    SubString substr(long long first, long long l) const;
    int gsubText(const char* pat, int pl, const char* r, int rl);

    StrRep* rep;
};

/// The library-wide empty String that failed slices refer to. Never modified.
extern constinit String _nilString;

// ---- Free functions ---------------------------------------------------------------------------

/// Character by character as signed chars up to the first difference or the terminating NUL;
/// returns the difference (0 if equal). A null `const char*` compares as 1 if the string is
/// non-empty, else 0.
int compare(const String& x, const String& y);
int compare(const String& x, const char* y);
/// With a view on either side: min(la, lb) characters, the first difference, else la - lb.
/// Against `const char*`: a view that ends while the text goes on is less (-1); a text that
/// ends while the view goes on gives the view's next character.
int compare(const SubString& x, const String& y);
int compare(const String& x, const SubString& y);
int compare(const SubString& x, const SubString& y);
int compare(const SubString& x, const char* y);
/// Case-insensitive: where two characters differ, ASCII a..z are lifted to upper case before
/// comparing; returns the difference, else len(x) - len(y).
int fcompare(const String& x, const String& y);

/// Cuts `x` at each occurrence of `sep` into res[0..maxn-1]; empty fields between adjacent
/// separators are kept, a trailing separator adds none, an empty `sep` gives the whole string.
/// Returns the number of fields filled.
int split(const String& x, String res[], int maxn, const String& sep);
/// Splits at runs of any of the characters in `delims` (no empty tokens); returns the number
/// of tokens stored, at most `maxn`.
int tokenize(const String& x, String res[], int maxn, const String& delims);
/// src[0] + sep + src[1] + ... + src[n-1].
String join(const String src[], int n, const String& sep);
/// `n` copies of a character or of a string (empty for n <= 0).
String replicate(char c, int n);
String replicate(const String& y, int n);
/// The longest run that x and y share starting at `startpos` in both, taken from x (empty when
/// `startpos` is outside either string).
String common_prefix(const String& x, const String& y, int startpos = 0);
/// The longest run that ends at index length() + startpos in both, taken from x (empty when
/// that index is outside either string).
String common_suffix(const String& x, const String& y, int startpos = -1);

/// Reads characters up to and including `terminator` (stored unless `discard` is non-zero) or
/// the end of input; returns the number of characters stored. At end of input the stream's eof
/// state is set. A line longer than kMaxLength is truncated; the rest of it is consumed.
int readline(std::istream& in, String& x, char terminator = '\n', int discard = 1);

/// Positional substitution (not a printf): target = format, then for k = 1..5 each "%k" is
/// replaced by ak, the search restarting at the beginning after every replacement. The one
/// character following a placeholder is dropped ("x=%1;" with "7" gives "x=7"). An argument
/// that contains its own placeholder would never finish that way; for such an argument the
/// scan instead goes on after the inserted text, so each "%k" present is replaced once.
/// Returns the total number of replacements.
int Sprintf(String& target, const String& format, const String& a1 = _nilString,
            const String& a2 = _nilString, const String& a3 = _nilString,
            const String& a4 = _nilString, const String& a5 = _nilString);

String operator+(const String& x, const String& y);
String operator+(const String& x, const SubString& y);
String operator+(const String& x, const char* y);
String operator+(const String& x, char y);
String operator+(const SubString& x, const String& y);
String operator+(const SubString& x, const SubString& y);
String operator+(const SubString& x, const char* y);
String operator+(const SubString& x, char y);
String operator+(const char* x, const String& y);
String operator+(const char* x, const SubString& y);
String operator+(char x, const String& y);

// Comparison operators, all through compare().
bool operator==(const String& x, const String& y);
bool operator!=(const String& x, const String& y);
bool operator<(const String& x, const String& y);
bool operator<=(const String& x, const String& y);
bool operator>(const String& x, const String& y);
bool operator>=(const String& x, const String& y);

bool operator==(const String& x, const SubString& y);
bool operator!=(const String& x, const SubString& y);
bool operator<(const String& x, const SubString& y);
bool operator<=(const String& x, const SubString& y);
bool operator>(const String& x, const SubString& y);
bool operator>=(const String& x, const SubString& y);

bool operator==(const String& x, const char* y);
bool operator!=(const String& x, const char* y);
bool operator<(const String& x, const char* y);
bool operator<=(const String& x, const char* y);
bool operator>(const String& x, const char* y);
bool operator>=(const String& x, const char* y);

bool operator==(const SubString& x, const String& y);
bool operator!=(const SubString& x, const String& y);
bool operator<(const SubString& x, const String& y);
bool operator<=(const SubString& x, const String& y);
bool operator>(const SubString& x, const String& y);
bool operator>=(const SubString& x, const String& y);

bool operator==(const SubString& x, const SubString& y);
bool operator!=(const SubString& x, const SubString& y);
bool operator<(const SubString& x, const SubString& y);
bool operator<=(const SubString& x, const SubString& y);
bool operator>(const SubString& x, const SubString& y);
bool operator>=(const SubString& x, const SubString& y);

bool operator==(const SubString& x, const char* y);
bool operator!=(const SubString& x, const char* y);
bool operator<(const SubString& x, const char* y);
bool operator<=(const SubString& x, const char* y);
bool operator>(const SubString& x, const char* y);
bool operator>=(const SubString& x, const char* y);

bool operator==(const char* x, const String& y);
bool operator!=(const char* x, const String& y);
bool operator<(const char* x, const String& y);
bool operator<=(const char* x, const String& y);
bool operator>(const char* x, const String& y);
bool operator>=(const char* x, const String& y);

bool operator==(const char* x, const SubString& y);
bool operator!=(const char* x, const SubString& y);
bool operator<(const char* x, const SubString& y);
bool operator<=(const char* x, const SubString& y);
bool operator>(const char* x, const SubString& y);
bool operator>=(const char* x, const SubString& y);

/// Writes the text (all length() characters), honouring the stream's field width.
std::ostream& operator<<(std::ostream& out, const String& x);
std::ostream& operator<<(std::ostream& out, const SubString& x);
/// Reads one whitespace-delimited word like the standard string extractor: skips leading
/// whitespace, stops before the next whitespace, sets failbit when no character was read.
std::istream& operator>>(std::istream& in, String& x);

}  // namespace orvo
