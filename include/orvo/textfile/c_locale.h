// OvCLocale: a scoped switch of the C library's locale, so that numbers are written and read
// with "." as the decimal point whatever locale the host application runs under.
#pragma once

#include <clocale>

#include "orvo/foundation/string.h"

namespace orvo {

/// On construction remembers the locale in force for all categories and sets `category` to
/// `locale`; on destruction sets all categories (LC_ALL) back to the remembered locale, whatever
/// category was changed. Copies carry the remembered name only and do not touch the locale, so
/// each copy restores that name again when it goes away.
class OvCLocale {
public:
    OvCLocale(int category = LC_ALL, const char* locale = "C");
    OvCLocale(const OvCLocale& other);
    OvCLocale& operator=(const OvCLocale& other);
    virtual ~OvCLocale();

    /// The locale name that was in force when the guard was made (empty if none was reported).
    const String& GetSaved() const { return saved; }

private:
    String saved;
};

}  // namespace orvo
