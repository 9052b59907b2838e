#include "orvo/foundation/link.h"

namespace orvo {

LinkHdl::~LinkHdl() = default;

Link::~Link() = default;

// The stored function may belong to a class derived from LinkHdl (bound through the converting
// constructor). Calling it through LinkHdl is defined, since the object's dynamic type has the
// member, but the sanitizer's vptr check looks for a LinkHdl at the adjusted `this` and would
// flag every handler whose LinkHdl part is not its first base. Only that check is switched off.
#if defined(__clang__) || defined(__GNUC__)
__attribute__((no_sanitize("vptr")))
#endif
std::int32_t
Link::Call(void* arg) const {
    if (!IsSet()) return 0;
    return (object->*function)(arg);
}

}  // namespace orvo
