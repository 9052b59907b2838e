// Finding a photo's reseau description.
#include "orvo/model/photo.h"
#include "orvo/model/reseau_list.h"

namespace orvo {

OvReseauFile* OvReseaufileList::FindReseauFile(const OvPhoto* photo) const {
    return photo != nullptr ? FindReseauFile(photo->GetReseauData()) : nullptr;
}

}  // namespace orvo
