// Differential fuzzing of String: random sequences of editing operations, many of them with the
// string's own text or slices of it as the operand, checked step by step against a plain model
// built on the standard string. Catches aliasing and buffer-reuse faults that fixed tests miss.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "orvo/foundation/string.h"

namespace {

constexpr std::size_t kMax = 65535;

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    bool Done() const { return at_ >= size_; }
    std::uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
    int SmallInt() { return static_cast<int>(static_cast<std::int8_t>(Byte())); }
    std::string Text() {
        std::string t;
        const int n = Byte() % 6;
        for (int i = 0; i < n; ++i)
            t.push_back(static_cast<char>("ab.%1 A'\0z"[Byte() % 10]));
        return t;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

void Check(bool ok) {
    if (!ok) std::abort();
}

void Same(const orvo::String& s, const std::string& model) {
    Check(s.OK() != 0);
    Check(static_cast<std::size_t>(s.length()) == model.size());
    Check(std::string(s.chars(), static_cast<std::size_t>(s.length())) == model);
    Check(s.chars()[s.length()] == '\0');
    Check(s.length() <= s.allocation() || (s.length() == 0 && s.allocation() == 0));
}

std::string Clamp(std::string t) {
    if (t.size() > kMax) t.resize(kMax);
    return t;
}

bool ValidSlice(long long pos, long long len, std::size_t size) {
    return pos >= 0 && len >= 0 && pos + len <= static_cast<long long>(size);
}

int ModelIndex(const std::string& s, const std::string& t, int start) {
    const long long n = static_cast<long long>(s.size());
    const long long tl = static_cast<long long>(t.size());
    if (n == 0 || tl == 0) return -1;
    if (start >= 0) {
        for (long long i = start; i + tl <= n; ++i) {
            if (s.compare(static_cast<std::size_t>(i), t.size(), t) == 0)
                return static_cast<int>(i);
        }
    } else {
        for (long long i = n + start - tl + 1; i >= 0; --i) {
            if (i + tl <= n && s.compare(static_cast<std::size_t>(i), t.size(), t) == 0) {
                return static_cast<int>(i);
            }
        }
    }
    return -1;
}

int ModelGsub(std::string& s, const std::string& pat, const std::string& rep) {
    if (pat.empty() || s.size() < pat.size()) return 0;
    std::string out;
    std::size_t at = 0;
    int count = 0;
    for (;;) {
        const std::size_t p = s.find(pat, at);
        if (p == std::string::npos) break;
        out += s.substr(at, p - at) + rep;
        at = p + pat.size();
        ++count;
    }
    if (count == 0) return 0;
    s = Clamp(out + s.substr(at));
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    orvo::String s;
    std::string model;
    for (int step = 0; step < 64 && !in.Done(); ++step) {
        const int op = in.Byte() % 16;
        const int p = in.SmallInt();
        const int l = in.SmallInt();
        switch (op) {
            case 0: {
                const std::string t = in.Text();
                s += orvo::String(t.data(), static_cast<int>(t.size()));
                model = Clamp(model + t);
                break;
            }
            case 1:
                s += s;
                model = Clamp(model + model);
                break;
            case 2:
                s.prepend(s);
                model = Clamp(model + model);
                break;
            case 3: {
                const std::string t = in.Text();
                s.prepend(orvo::String(t.data(), static_cast<int>(t.size())));
                model = Clamp(t + model);
                break;
            }
            case 4:
                s = s.at(p, l);
                model = ValidSlice(p, l, model.size()) ? model.substr(p, l) : std::string();
                break;
            case 5: {
                const std::string t = in.Text();
                s.at(p, l) = orvo::String(t.data(), static_cast<int>(t.size()));
                if (ValidSlice(p, l, model.size())) model = Clamp(model.replace(p, l, t));
                break;
            }
            case 6: {
                const std::string whole = model;
                s.at(p, l) = s;
                if (ValidSlice(p, l, model.size())) model = Clamp(model.replace(p, l, whole));
                break;
            }
            case 7:
                s.del(p, l);
                if (ValidSlice(p, l, model.size()) && l > 0) model.erase(p, l);
                break;
            case 8: {
                const std::string pat = in.Text();
                const std::string rep = in.Text();
                const int got = s.gsub(orvo::String(pat.data(), static_cast<int>(pat.size())),
                                       orvo::String(rep.data(), static_cast<int>(rep.size())));
                Check(got == ModelGsub(model, pat, rep));
                break;
            }
            case 9:
                s.reverse();
                std::reverse(model.begin(), model.end());
                break;
            case 10:
                s.upcase();
                for (char& c : model) {
                    if (std::islower(static_cast<unsigned char>(c))) {
                        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
                    }
                }
                break;
            case 11: {
                const long long start = static_cast<long long>(p) + 1;
                const bool valid =
                    ValidSlice(start, static_cast<long long>(model.size()) - start, model.size());
                s += s.after(p);
                if (valid) model = Clamp(model + model.substr(static_cast<std::size_t>(start)));
                break;
            }
            case 12: {
                const std::string t = in.Text();
                const orvo::String ts(t.data(), static_cast<int>(t.size()));
                Check(s.index(ts, p) == ModelIndex(model, t, p));
                Check(s.contains(ts) == (ModelIndex(model, t, 0) >= 0 ? 1 : 0));
                break;
            }
            case 13:
                s = s + s.from(p);
                if (ValidSlice(p, static_cast<long long>(model.size()) - p, model.size())) {
                    model = Clamp(model + model.substr(static_cast<std::size_t>(p)));
                }
                break;
            case 14:
                s.from(p) = s.before(l);
                if (ValidSlice(p, static_cast<long long>(model.size()) - p, model.size())) {
                    const std::string head =
                        ValidSlice(0, l, model.size()) ? model.substr(0, l) : std::string();
                    model = Clamp(model.substr(0, static_cast<std::size_t>(p)) + head);
                }
                break;
            default: {
                const orvo::String copy(s);
                Check(copy == s && (copy.empty() || copy.chars() != s.chars()));
                s = copy.at(p, l);
                model = ValidSlice(p, l, model.size()) ? model.substr(p, l) : std::string();
                break;
            }
        }
        Same(s, model);
    }
    Check(orvo::_nilString.length() == 0 && orvo::_nilStrRep.len == 0);
    return 0;
}
