#include "orvo/foundation/version.h"

namespace orvo {

const char* Version() { return "0.1.0"; }

}  // namespace orvo
