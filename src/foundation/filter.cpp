#include "orvo/foundation/filter.h"

namespace orvo {

OvFilter::~OvFilter() = default;

OvNotFilter::~OvNotFilter() {
    delete f;
}

unsigned OvNotFilter::Test(const OvObject* object) const {
    return f != nullptr && f->Test(object) != 0 ? 0u : 1u;
}

OvBinaryFilter::~OvBinaryFilter() {
    delete a;
    if (b != a) delete b;  // the same filter given twice is deleted once
}

unsigned OvOrFilter::Test(const OvObject* object) const {
    return Ask(a, object) != 0 || Ask(b, object) != 0 ? 1u : 0u;
}

unsigned OvAndFilter::Test(const OvObject* object) const {
    return Ask(a, object) != 0 && Ask(b, object) != 0 ? 1u : 0u;
}

unsigned OvTestFilter::Test(const OvObject* object) const {
    return fn != nullptr ? fn(object) : 0u;
}

}  // namespace orvo
