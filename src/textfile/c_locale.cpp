#include "orvo/textfile/c_locale.h"

namespace orvo {

namespace {

String CurrentLocaleName() {
    const char* name = std::setlocale(LC_ALL, nullptr);
    return String(name != nullptr ? name : "");
}

}  // namespace

OvCLocale::OvCLocale(int category, const char* locale) : saved(CurrentLocaleName()) {
    std::setlocale(category, locale);
}

OvCLocale::OvCLocale(const OvCLocale& other) : saved(other.saved) {}

OvCLocale& OvCLocale::operator=(const OvCLocale& other) {
    saved = other.saved;
    return *this;
}

OvCLocale::~OvCLocale() {
    // All categories go back, whatever category this guard changed.
    if (!saved.empty()) std::setlocale(LC_ALL, saved.chars());
}

}  // namespace orvo
