// The photos of a project: reading them block by block and writing them back.
#include "orvo/model/photo_list.h"

#include <ostream>

#include "orvo/textfile/writer.h"

namespace orvo {

template class TOvBaseListHeader<OvPhoto>;
template class TOvListHeader<OvPhoto>;

OvPhotoList& OvPhotoList::operator=(const OvPhotoList& other) {
    TOvListHeader<OvPhoto>::operator=(other);
    return *this;
}

OvPhotoList::~OvPhotoList() = default;

OvPhoto* OvPhotoList::AddPhoto(OvReaderObject* reader) {
    return Add(new OvPhoto(reader));
}

std::int32_t OvPhotoList::AddPhotoHdl(void* readerObject) {
    AddPhoto(static_cast<OvReaderObject*>(readerObject));
    return 1;
}

std::ostream& OvPhotoList::Write(std::ostream& out) const {
    for (const OvPhoto* photo = First(); photo != nullptr; photo = photo->Next()) {
        out << "PHOTO" << Ovendl << OvBeginBlockNL;
        photo->Write(out);
        out << OvEndBlockNL << Ovendl << Ovendl;
    }
    return out;
}

}  // namespace orvo
