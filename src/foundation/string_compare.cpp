// Ordering of strings and views: compare, fcompare and the comparison operators.
#include <algorithm>

#include "orvo/foundation/string.h"

namespace orvo {

namespace {

int AsSigned(char c) {
    return static_cast<signed char>(c);
}

// Both texts NUL-terminated: compare up to the first difference or the end.
int CompareTerminated(const char* a, const char* b) {
    while (*a == *b) {
        if (*a == '\0') return 0;
        ++a;
        ++b;
    }
    return AsSigned(*a) - AsSigned(*b);
}

// Counted texts: the first difference among min(al, bl) characters, else al - bl.
int CompareCounted(const char* a, int al, const char* b, int bl) {
    const int n = std::min(al, bl);
    for (int i = 0; i < n; ++i) {
        if (a[i] != b[i]) return AsSigned(a[i]) - AsSigned(b[i]);
    }
    return al - bl;
}

}  // namespace

int compare(const String& x, const String& y) {
    return CompareTerminated(x.chars(), y.chars());
}

int compare(const String& x, const char* y) {
    if (y == nullptr) return x.empty() ? 0 : 1;
    return CompareTerminated(x.chars(), y);
}

int compare(const SubString& x, const String& y) {
    return CompareCounted(x.chars(), x.valid_length(), y.chars(), y.length());
}

int compare(const String& x, const SubString& y) {
    return CompareCounted(x.chars(), x.length(), y.chars(), y.valid_length());
}

int compare(const SubString& x, const SubString& y) {
    return CompareCounted(x.chars(), x.valid_length(), y.chars(), y.valid_length());
}

int compare(const SubString& x, const char* y) {
    const int n = x.valid_length();
    if (y == nullptr) return n;
    const char* a = x.chars();
    for (int i = 0; i < n; ++i) {
        if (y[i] == '\0') return AsSigned(a[i]);
        if (a[i] != y[i]) return AsSigned(a[i]) - AsSigned(y[i]);
    }
    return y[n] == '\0' ? 0 : -1;
}

int fcompare(const String& x, const String& y) {
    const char* a = x.chars();
    const char* b = y.chars();
    const int n = std::min(x.length(), y.length());
    for (int i = 0; i < n; ++i) {
        int ac = AsSigned(a[i]);
        int bc = AsSigned(b[i]);
        if (ac == bc) continue;
        if (ac >= 'a' && ac <= 'z') ac = ac - 'a' + 'A';
        if (bc >= 'a' && bc <= 'z') bc = bc - 'a' + 'A';
        if (ac != bc) return ac - bc;
    }
    return x.length() - y.length();
}

// Every operator goes through compare(); a C string on the left is compared from the other
// side with the sign turned.
#define ORVO_COMPARISONS(LHS, RHS, EXPR) \
    bool operator==(LHS x, RHS y) {      \
        return (EXPR) == 0;              \
    }                                    \
    bool operator!=(LHS x, RHS y) {      \
        return (EXPR) != 0;              \
    }                                    \
    bool operator<(LHS x, RHS y) {       \
        return (EXPR) < 0;               \
    }                                    \
    bool operator<=(LHS x, RHS y) {      \
        return (EXPR) <= 0;              \
    }                                    \
    bool operator>(LHS x, RHS y) {       \
        return (EXPR) > 0;               \
    }                                    \
    bool operator>=(LHS x, RHS y) {      \
        return (EXPR) >= 0;              \
    }

ORVO_COMPARISONS(const String&, const String&, compare(x, y))
ORVO_COMPARISONS(const String&, const SubString&, compare(x, y))
ORVO_COMPARISONS(const String&, const char*, compare(x, y))
ORVO_COMPARISONS(const SubString&, const String&, compare(x, y))
ORVO_COMPARISONS(const SubString&, const SubString&, compare(x, y))
ORVO_COMPARISONS(const SubString&, const char*, compare(x, y))
ORVO_COMPARISONS(const char*, const String&, -compare(y, x))
ORVO_COMPARISONS(const char*, const SubString&, -compare(y, x))

#undef ORVO_COMPARISONS

}  // namespace orvo
