// Reseau files: the grid of reseau crosses (fiducial marks) of a camera type together with the
// layout of its photos, and the (file name, sub id) key by which a photo names its description.
//
// A reseau file is a comment header followed by the description (`WriteHeaderComment`, then
// `Write`): the info text, the photo region [mm], the box of the info text, an empty line and
// one line per cross with id, x, y and code:
//
//     "RMK 15/23 reseau"
//     {                  -115                  -115                   115                   115}
//     {                  -110                   112                   -60                   114}
//
//     {          1                  -100                   100    2}
//     {          2                     0                   100    0}
//
// A second form describes digital cameras, one line per entry of the digital camera file (see
// `WriteDigitalCameraFormat` and reseau_list.h):
//
//     {                   "Canon EOS 5D"     0                   "studio"      4368      2912  ...
//
// Digital camera entries carry no crosses of their own: `Set` makes the entry from the line's
// values and `GenerateDummyData` derives a grid of crosses from the picture and sensor size, so
// that the reseau transformations work for digital pictures exactly as for scanned film.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/string.h"
#include "orvo/geom2d/region.h"
#include "orvo/model/point_list.h"

namespace orvo {

class OvReaderErrorList;
class OvReaderObject;

/// The code of a reseau cross, held in the cross point's control-flag field. Other values are
/// kept as read and written back unchanged.
enum eOvReseauCrossCode : std::int16_t {
    eOvReseauCrossSmall = 0,   ///< small reseau cross
    eOvReseauCrossBig = 1,     ///< big reseau cross
    eOvReseauCrossCorner = 2,  ///< not really a cross: a corner of the picture
};

/// The name that `GenerateDummyData` gives every cross it makes, so that generated crosses can
/// be told from measured ones (`HasDummyData`).
inline constexpr const char* kOvReseauDummyMarker = ">>DUMMY DATA<<";

/// The smallest sensor size [mm] of a valid digital camera entry: any finite size from here on
/// is held exactly by the entry's photo region and survives the digital camera file.
inline constexpr double kOvReseauMinSensorSize = 1e-300;

/// The number of grid lines of the dummy grid in each direction (5 x 5 crosses).
inline constexpr int kOvReseauDummyGridLines = 5;

/// One reseau description. The node name is the reseau file name (for a digital camera entry:
/// the EXIF camera type); the sub id tells several descriptions of one name apart.
class OvReseauFile : public OvListnode, public LinkHdl {
public:
    /// An empty, invalid description: sub id 0, empty texts, zero regions, no crosses.
    OvReseauFile();
    /// Reads the named reseau file (see ReadFile).
    explicit OvReseauFile(const String& fileName);
    /// Copies every field, the crosses included; the copy is not linked into a list.
    OvReseauFile(const OvReseauFile& other);
    OvReseauFile& operator=(const OvReseauFile& other);
    ~OvReseauFile() override;

    // -- fields ----------------------------------------------------------------------------
    std::uint32_t GetSubId() const { return subId_; }
    void SetSubId(std::uint32_t subId) { subId_ = subId; }
    /// The comment text displayed in a graphical view.
    const String& GetInfoText() const { return infoText_; }
    void SetInfoText(const String& text) { infoText_ = text; }
    /// The size of the photo in photo coordinates [mm].
    const OvRegion& GetPhotoRegion() const { return photoRegion_; }
    void SetPhotoRegion(const OvRegion& region) { photoRegion_ = region; }
    /// Position and size of the info text.
    const OvRegion& GetBoxRegion() const { return boxRegion_; }
    void SetBoxRegion(const OvRegion& region) { boxRegion_ = region; }
    /// The crosses: id, x, y and the cross code in the control flags (z is 0). The list's mask
    /// is the cross record's column format {id, x, y, code}.
    OvPointList& GetCrossList() { return crosses_; }
    const OvPointList& GetCrossList() const { return crosses_; }
    /// 1 after a successful read (or `Set` with a usable sensor size), else 0.
    int IsValid() const { return valid_; }
    void SetValid(int valid) { valid_ = valid; }
    /// The picture size in pixels of a digital camera entry (0 when unknown).
    int GetExifPixelWidth() const { return exifPixelWidth_; }
    int GetExifPixelHeight() const { return exifPixelHeight_; }
    /// Whether this entry came from the digital camera form (`Set` or
    /// `ReadDigitalCameraFormat`) rather than from a reseau file. The digital camera file holds
    /// only such entries.
    bool IsDigitalCameraEntry() const { return digital_; }

    OvReseauFile* Next() const;
    OvReseauFile* Previous() const;

    // -- reseau files ----------------------------------------------------------------------
    /// Replaces this description by the one in the file: the name becomes `fileName`, the sub
    /// id 0, every other field is reset first. Returns IsValid(). Read errors are dropped. A
    /// file without a description (empty, or comments only) leaves it invalid without an
    /// error; one that cannot be opened gives the reader's "ParserErrorStream".
    int ReadFile(const String& fileName);
    /// The same, copying every read error into `errors` (when not null; emptied first).
    /// Unlike a plain reader run, a trailing "ParserErrorNotSpecifiedToken" is kept.
    int ReadFile(const String& fileName, OvReaderErrorList* errors);

    /// Reads a description starting at the reader's current token: the info text (a string
    /// token), the photo region and the box region (each "{", four numbers, "}"), then crosses
    /// ("{", id, x, y, code, "}") up to the end of the data: the "}" that closes the enclosing
    /// block (it stays the current token) or the end of the input. At the top level of a file
    /// (no enclosing block) a "}" is a stray token. Returns 1. The crosses are replaced.
    ///
    /// Damaged input is reported, never fatal: every problem is added to the reader's error
    /// list (status "ParserErrorNotSpecifiedToken" for a missing, surplus or mistyped field)
    /// and reading goes on. The description is valid (IsValid() 1) only when the info text and
    /// both regions were read without a problem; otherwise the rest of its data is skipped and
    /// info text and regions stay as they were. A cross with a missing or mistyped field
    /// (a string where a number belongs, a fractional id or code) or a coordinate that is not
    /// finite is dropped; a complete cross whose "}" is missing or that is followed by surplus
    /// tokens is kept. Tokens between the crosses are reported and skipped. Only a failed
    /// stream is passed on to the reader (as its OvParserStatus), as it cannot be read further.
    int Read(OvReaderObject* reader);
    /// `Read` in the shape of a link function (the argument is the `OvReaderObject*`).
    std::int32_t ReadHdl(void* readerObject);

    /// Writes the description: the info text in double quotes, the photo region, the box region
    /// (each in braces, a region record with precision 16), an empty line, then one line per
    /// cross "{", id, x, y, code, "}". The stream is switched to the classic "C" locale first
    /// and keeps it. Texts are written so that they read back: a double quote in the info text
    /// becomes an apostrophe, a line end or NUL a blank, and the text is cut after 8000
    /// characters (a line of the file holds at most 8511).
    std::ostream& Write(std::ostream& out) const;
    /// Writes the thirteen comment lines of the reseau file header (the last one followed by
    /// an empty line).
    std::ostream& WriteHeaderComment(std::ostream& out) const;
    /// Writes the header and the description to the named file, starting at indentation
    /// level 0. The file is replaced at once (a temporary file renamed over it only when it was
    /// written completely). Returns 1 in every case, also when the file cannot be written: the
    /// data model's file writers report no failure, deliberately.
    int WriteFile(const String& fileName) const;

    // -- crosses ---------------------------------------------------------------------------
    /// The cross nearest to p in the photo plane (x and y; z is ignored); on a tie the earlier
    /// cross wins. Stores the distance in *distance when distance is not null. Null for an empty
    /// cross list, *distance untouched.
    OvPoint* FindNearest(const OvPoint& p, double* distance) const;
    /// The first cross with this id, or null.
    OvPoint* FindCrossId(std::uint32_t id) const;
    /// The crosses selected by the user (object flag 0x001, `IsPointFlagGuiSelect`): appends a
    /// copy of each, in list order, to *result when result is not null. Returns their number.
    int FindUserSelectedCrosses(OvPointList* result) const;
    /// Sets (select true) or clears the user-selection flag of the first cross with this id;
    /// returns that cross, or null when there is none (nothing changes then).
    OvPoint* SelectCross(std::uint32_t id, bool select = true);
    /// Clears the user-selection flag of every cross; returns how many were selected.
    int DeselectAllCrosses();

    /// The display name: the name, then " (<sub id>)" when the sub id is not 0, then
    /// " <width> * <height> Pixel" when both pixel sizes are not 0, e.g.
    /// "Canon EOS 5D (2) 4368 * 2912 Pixel" or "rmk1523.res".
    String GetDescName() const;

    // -- digital camera entries --------------------------------------------------------------
    /// Makes this a digital camera entry: the name becomes `exifType`, the info text `comment`,
    /// the pixel sizes `pixelX` and `pixelY`, the photo region the sensor rectangle centred on
    /// the origin, (-ccdX/2, -ccdY/2) to (ccdX/2, ccdY/2) [mm], so that photo coordinates are
    /// measured from the picture centre, and the box region the top tenth of it (the info text
    /// shown across the picture's upper edge). The crosses are removed (call
    /// `GenerateDummyData` for a grid); the sub id is left as it is. The entry is valid when
    /// ccdX and ccdY are finite and at least kOvReseauMinSensorSize, and neither pixel size is
    /// negative.
    void Set(const String& exifType, const String& comment, int pixelX, int pixelY, double ccdX,
             double ccdY);
    /// Replaces the crosses by a regular grid of kOvReseauDummyGridLines x
    /// kOvReseauDummyGridLines crosses over the photo region: ids 1, 2, ... row by row from the
    /// upper left corner (the top row first, left to right), the four corners coded 2 (corner
    /// of the picture), all others 0, each named kOvReseauDummyMarker. With both pixel sizes
    /// known the grid lines fall on whole pixels (column i at pixel i * width / 4, rounded
    /// down), so every cross has an exact pixel position in the picture; otherwise they divide
    /// the region evenly. The corners are the region's corners exactly. A region without a
    /// positive finite width and height gets no crosses. Returns the number of crosses made.
    int GenerateDummyData();
    /// Whether the crosses are a generated grid: there is at least one cross and every cross
    /// carries the marker name.
    bool HasDummyData() const;

    /// Reads the fields of one digital camera line starting at the current token (the line's
    /// "{" already consumed): the EXIF camera type and the comment (string tokens), the sub id
    /// and the pixel sizes (integer tokens), CCD_X and CCD_Y (numbers). On success the entry
    /// gets the sub id and `Set` and `GenerateDummyData` are applied; returns 1. The current
    /// token is then the one after the seven fields (normally the line's "}"). A missing or
    /// mistyped field is recorded in the reader's error list and 0 is returned with the entry
    /// unchanged.
    int ReadDigitalCameraFormat(OvReaderObject* reader);
    /// Writes the entry as one line of the digital camera file, without the line end:
    /// "{ ", then each field after its width manipulator and followed by one blank: the name
    /// in double quotes (w14: the opening quote is padded to 18, as the width applies to the
    /// first item written), the sub id (w4), the info text in double quotes (w14), the pixel
    /// width and height (w6 each) and the photo region's width and height as CCD_X and CCD_Y
    /// (w6 each, precision 6, which stays set), then "}". The texts are made readable as in
    /// `Write` and cut after 4000 characters each. The stream is switched to the classic "C"
    /// locale. A sensor size with more than six significant digits is rounded to six.
    std::ostream& WriteDigitalCameraFormat(std::ostream& out) const;

private:
    void Reset();

    std::uint32_t subId_ = 0;
    String infoText_;
    OvRegion photoRegion_;
    OvRegion boxRegion_;
    OvPointList crosses_;
    int valid_ = 0;
    int exifPixelWidth_ = 0;
    int exifPixelHeight_ = 0;
    bool digital_ = false;
};

/// The key by which a photo names its reseau description: the reseau file name (for a digital
/// camera entry the EXIF camera type) and the sub id.
class OvReseauDataDesc {
public:
    /// Empty name, sub id 0.
    OvReseauDataDesc() = default;
    OvReseauDataDesc(const String& name, std::uint32_t subId) : name_(name), subId_(subId) {}
    /// A null name gives an empty name.
    OvReseauDataDesc(const char* name, std::uint32_t subId);
    OvReseauDataDesc(const OvReseauDataDesc& other) = default;
    OvReseauDataDesc& operator=(const OvReseauDataDesc& other) = default;
    virtual ~OvReseauDataDesc();

    void Set(const String& name, std::uint32_t subId);
    /// The key of a description (its name and sub id); a null description gives the empty key.
    void Set(const OvReseauFile* file);

    const String& GetName() const { return name_; }
    std::uint32_t GetSubId() const { return subId_; }
    void SetName(const String& name) { name_ = name; }
    void SetSubId(std::uint32_t subId) { subId_ = subId; }

    /// The names are equal under the file-name comparison (`fcompare`, letter case ignored);
    /// the sub ids are not compared.
    bool Match(const OvReseauDataDesc& other) const;
    /// `Match`, and the sub ids are equal.
    bool ExactMatch(const OvReseauDataDesc& other) const;
    /// Equality of keys is `ExactMatch`: two keys that find the same description are equal.
    bool operator==(const OvReseauDataDesc& other) const { return ExactMatch(other); }
    bool operator!=(const OvReseauDataDesc& other) const { return !ExactMatch(other); }

private:
    String name_;
    std::uint32_t subId_ = 0;
};

}  // namespace orvo
