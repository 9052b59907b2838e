#include "orvo/foundation/link.h"

namespace orvo {

LinkHdl::~LinkHdl() = default;

Link::~Link() = default;

std::int32_t Link::Call(void* arg) const {
    if (!IsSet()) return 0;
    return (object->*function)(arg);
}

}  // namespace orvo
