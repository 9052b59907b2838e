// The photos of a project.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/model/photo.h"

namespace orvo {

class OvReaderObject;

/// An owning list of photos. It is a link target, so that a reader can bind a keyword's block
/// to it: `Link(&photos, &OvPhotoList::AddPhotoHdl)` appends a photo read from each block.
class OvPhotoList : public TOvListHeader<OvPhoto>, public LinkHdl {
public:
    OvPhotoList() = default;
    /// Copies every photo.
    OvPhotoList(const OvPhotoList& other) = default;
    /// Replaces the photos with copies of the other list's photos.
    OvPhotoList& operator=(const OvPhotoList& other);
    ~OvPhotoList() override;

    /// Makes a new photo read from the reader object (`OvPhoto(OvReaderObject*)`), appends it
    /// with `Add` and returns it.
    OvPhoto* AddPhoto(OvReaderObject* reader);
    /// `AddPhoto` in the shape of a link function; the argument is the `OvReaderObject*`.
    std::int32_t AddPhotoHdl(void* readerObject);

    /// Writes every photo as a "PHOTO" block: the keyword, `Ovendl`, `OvBeginBlockNL`, the
    /// record (`OvPhoto::Write`), `OvEndBlockNL`, `Ovendl`, and an empty line after the block.
    std::ostream& Write(std::ostream& out) const;
};

extern template class TOvBaseListHeader<OvPhoto>;
extern template class TOvListHeader<OvPhoto>;

}  // namespace orvo
