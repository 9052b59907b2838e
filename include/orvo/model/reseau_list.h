// The reseau descriptions of a project: reseau files of film cameras and the entries of the
// digital camera file, looked up by the (name, sub id) key that photos carry.
//
// The digital camera file ("dres") is a comment header followed by one line per entry:
//
//     ;
//     ; ORVOMETRIC 10 Version 6.715 Digital Camera Reseau File
//     ;
//     ; File Format:
//     ; { "ExifKameraType"  SubId "Comment"              Pixel_X  Pixel_Y   CCD_X    CCD_Y    }
//     ;
//
//     {                   "Canon EOS 5D"     0                   "studio"      4368      2912  ...
//
// (the comment lines hold the marker "; " with its blank; each entry line is written by
// OvReseauFile::WriteDigitalCameraFormat).
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/string.h"
#include "orvo/model/reseau_file.h"

namespace orvo {

class OvPhoto;
class OvReaderErrorList;
class OvReaderObject;

/// An owning list of reseau descriptions.
class OvReseaufileList : public TOvListHeader<OvReseauFile>, public LinkHdl {
public:
    OvReseaufileList() = default;
    OvReseaufileList(const OvReseaufileList& other) = default;
    /// Replaces the descriptions with copies of the other list's descriptions.
    OvReseaufileList& operator=(const OvReseaufileList& other);
    ~OvReseaufileList() override;

    /// Reads a reseau file into the list. A name with the extension "dres" (letter case
    /// ignored) is read as a digital camera file (`ReadDigitalCameraFile`); any other as one
    /// reseau file, whose description is named by `fileName` with sub id 0. Only valid
    /// descriptions are taken; one whose key (name and sub id, `ExactMatch`) is already in the
    /// list replaces that description in its place, so reading a file again refreshes it.
    /// Returns the number of descriptions taken. Read errors are dropped.
    int ReadReseauFile(const String& fileName);
    /// The same, copying every read error into `errors` (when not null; emptied first).
    int ReadReseauFile(const String& fileName, OvReaderErrorList* errors);
    /// Reads the entries of a digital camera file, whatever its extension. Each complete,
    /// valid line becomes an entry (`Set`, `GenerateDummyData`), replacing one with the same
    /// key as above; a damaged line is reported and skipped, the lines after it are read.
    /// Returns the number of entries taken.
    int ReadDigitalCameraFile(const String& fileName, OvReaderErrorList* errors = nullptr);

    /// The first description in list order whose key `ExactMatch`es `key` (names compared with
    /// letter case ignored, sub ids equal), or null.
    OvReseauFile* FindReseauFile(const OvReseauDataDesc& key) const;
    /// The description the photo names by its reseau file name and sub id
    /// (`OvPhoto::GetReseauData`); null for a null photo or when there is none.
    OvReseauFile* FindReseauFile(const OvPhoto* photo) const;

    /// Writes the digital camera file: the header comment and one line per digital camera
    /// entry (`IsDigitalCameraEntry`) in list order; reseau files of film cameras are not part
    /// of it. Starts at indentation level 0, numbers in the classic "C" form. The file is
    /// replaced at once (a temporary file renamed over it only when written completely).
    /// Returns 1 in every case, also when the file cannot be written, deliberately.
    int WriteDigitalCameraFormat(const String& fileName) const;

protected:
    /// The six comment lines of the digital camera file and an empty line.
    std::ostream& WriteDigitalCameraFormatHeaderComment(std::ostream& out) const;
    /// One line (`OvReseauFile::WriteDigitalCameraFormat` and `Ovendl`) per digital camera
    /// entry.
    std::ostream& WriteDigitalCameraFormat(std::ostream& out) const;
    /// The handler for one line of the digital camera file: the current token must be the
    /// line's "{" (any other token is reported as a stray token and dropped). Reads the entry
    /// and takes it as `ReadDigitalCameraFile` describes. Returns with the line's "}" as the
    /// current token; when the "}" is missing, the token that stands in its place is pushed
    /// back for the reader (a "{" then starts the next line). Returns 1 when an entry was
    /// taken, else 0.
    int ReadDigitalCameraFormat(OvReaderObject* reader);
    /// `ReadDigitalCameraFormat` in the shape of a link function.
    std::int32_t ReadDigitalCameraFormatHdl(void* readerObject);

private:
    /// Appends `file` (taking ownership), or puts it in the place of the first description
    /// with the same key, which is deleted.
    void Take(OvReseauFile* file);
};

}  // namespace orvo
