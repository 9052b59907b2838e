#include "orvo/foundation/attribute.h"

namespace orvo {

template class TOvBaseListHeader<OvAttribute>;
template class TOvListHeader<OvAttribute>;

OvAttribute::~OvAttribute() = default;

OvAttribute& OvAttribute::operator=(const OvAttribute& other) {
    OvListnode::operator=(other);
    photo = other.photo;
    return *this;
}

int OvAttribute::OnAdd() {
    return 1;
}

int OvAttribute::OnSubtract() {
    return 1;
}

OvAttributeList::~OvAttributeList() = default;

OvAttribute* OvAttributeList::Subtract(OvAttribute* attribute) {
    if (attribute != nullptr) {
        attribute->OnSubtract();
        attribute->SetPhoto(nullptr);
    }
    return TOvListHeader<OvAttribute>::Subtract(attribute);
}

}  // namespace orvo
