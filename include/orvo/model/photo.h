// The photo record: one photo of a project with its picture file, type (analog or digital),
// state, scale and screen placement, its own copy of its camera, its reseau (fiducial grid)
// transformations, its plane rectifications, and two point lists: the measure list (coordinates
// as the digitizer measured them) and the Imo list (the image coordinates derived from them).
//
// A photo reads itself from the keyword block of a project file and writes itself back in the
// same form:
//
//     PHOTOID         {    1 "img_0001.tif"}
//     COMMENT            "north facade"
//     DIGITALPAGE     0
//     DIGITALROT      0
//     DIGITAL         1
//     DIGITIZERID     1
//     CHECKACTIVE     0
//     STATE           0
//     ROTATION        0
//     SCALE              0.02
//     DIGIREGION      {                     0 ...}
//     CAMERA          {    3         24.314752 ... "Wide 24mm"}
//     RESEAUFILE         ""
//     RESEAUSUBID     0
//     PRERESTRAFO
//     {
//         1
//          ... four parameters ...
//     }
//
//     MAINRESTRAFO
//     ...
//
// (`Write` gives the exact form; see there.)
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/attribute.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/string.h"
#include "orvo/geom2d/position.h"
#include "orvo/geom2d/region.h"
#include "orvo/model/camera.h"
#include "orvo/model/point_list.h"
#include "orvo/model/reseau_file.h"
#include "orvo/numerics/biko_transform.h"
#include "orvo/numerics/reseau_trafo.h"
#include "orvo/rectify/tilt_trafo.h"

namespace orvo {

class OvReaderObject;

/// The photo type. The type is 32 bits wide; only 1 means digital, every other value analog.
enum eOvPhototype : std::int32_t {
    eOvPhotoAnalog = 0,
    eOvPhotoDigital = 1,
};

/// The photo states: 0 active, 2 extern, and any other value (1 for a new photo) inactive.
inline constexpr int kOvPhotoStateActive = 0;
inline constexpr int kOvPhotoStateInactive = 1;
inline constexpr int kOvPhotoStateExtern = 2;

/// The photo's "CHECKACTIVE" state: the check-active bit of the object flag word, shared with
/// points.
inline constexpr std::uint32_t kOvPhotoFlagCheckActive = eOvPointFlagGuiCheckActive;

class OvPhoto : public OvListnode {
public:
    /// Id 0, empty picture name, the defaults of `Init`.
    OvPhoto();
    /// The defaults of `Init`: inactive (state 1), analog (type 0), digitizer id 1, everything
    /// else 0 or empty; the camera has id 0 and the reseau transformations are of type None.
    explicit OvPhoto(unsigned id);
    OvPhoto(unsigned id, const String& fileName);
    /// Copies everything, the point, tilt and attribute lists included (the copied attributes
    /// belong to the copy). The copy is in no list.
    OvPhoto(const OvPhoto& other);
    /// A photo with the defaults that reads its record from the reader object (`Read`).
    explicit OvPhoto(OvReaderObject* reader);
    /// Copies everything, as the copy constructor; the list links stay.
    OvPhoto& operator=(const OvPhoto& other);
    ~OvPhoto() override;

    /// Resets the scalar fields to their defaults: state 1, layer 0, rotation 0, scale 0.0,
    /// type 0, digitizer id 1, page 0, digital rotation 0, screen scale 0, current point id 0,
    /// reserved word 0. Id, names, lists, regions, camera and transformations stay.
    void Init();

    // -- virtual operations (in this order) ---------------------------------------------------
    /// False here; true for an ortho photo.
    virtual bool IsOrthoPhoto() const;
    /// GetPixelSizeX() * GetPixelSizeY().
    virtual double GetPixelSize() const;
    /// The size of one measuring unit in image units along x: (0, 0) and (5, 0) are converted
    /// with the image-to-measured converter (mode 6); with d the distance of the two results the
    /// size is |5 / d|, and 5.0 when d is 0 or not a number.
    virtual double GetPixelSizeX() const;
    /// The same along y, with (0, 0) and (0, 5).
    virtual double GetPixelSizeY() const;
    using OvListnode::Compare;
    /// This id minus the other's, as a 32-bit integer difference; a null node counts as id 0.
    int Compare(const OvListnode* other) const override;
    /// Writes the record, one keyword per line, in this order (each line: the keyword
    /// left-aligned in 12 (`s12`), the value after `w4`, then `Ovendl`):
    ///  1. "PHOTOID" "{" with the id and the picture name as an object record, "}";
    ///  2. "COMMENT" with the comment in double quotes;
    ///  3. "DIGITALPAGE", "DIGITALROT", "DIGITAL" (the photo type), "DIGITIZERID";
    ///  4. "CHECKACTIVE" with the check-active bit as 1 or 0;
    ///  5. "STATE", "ROTATION";
    ///  6. "SCALE" with precision 6 after `w6`;
    ///  7. "DIGIREGION" "{", the region, "}";
    ///  8. "CAMERA" "{", the camera record, "}";
    ///  9. "RESEAUFILE" with the name in double quotes; 10. "RESEAUSUBID";
    /// 11. "PRERESTRAFO" and "MAINRESTRAFO", each as the keyword, `Ovendl`, `OvBeginBlockNL`,
    ///     the transformation, `OvEndBlockNL`, `Ovendl`;
    /// 12. "POLYRESINVTRAFO" in the same form, only when its type is not None;
    /// 13. for a digital photo only: "SCREENPOS" "{", the position, "}", and "SCREENSIZE";
    /// 14. "TILTPLANE" blocks, one per tilt transform in list order, in the form of 11.
    /// Texts in double quotes are written so that they read back: a double quote becomes an
    /// apostrophe, a line end or NUL a blank, and a text is cut after 8000 characters. The
    /// stream's number format is restored afterwards.
    virtual std::ostream& Write(std::ostream& out) const;
    /// Reads the record's keywords from the block of the reader object, then post-processes:
    ///  1. when "CHECKACTIVE" was true, the check-active bit is set;
    ///  2. when the pre reseau transformation carries a name (it does after the old form
    ///     "PRERESEAU"), that name becomes the reseau file name; otherwise nothing more happens;
    ///  3. an analog photo (type not 1) then moves its picture name into the comment (the
    ///     comment is replaced) and its name becomes empty: the old analog records kept the
    ///     comment where the name stands.
    /// Keywords: "PHOTOID" (block: id and name), "COMMENT", "USERDATA" (text split at ";":
    /// page = part 2 + 1, digital rotation = part 3, 3 giving 0), "DIGITALPAGE", "DIGITALROT",
    /// "TYPE" (photo type and digitizer id), "DIGITAL", "DIGITIZERID", "CHECKACTIVE", "STATE",
    /// "ROTATION", "SCALE", "DIGIREGION" (block), "CAMERA" (block), "PRERESEAU", "MAINRESEAU",
    /// "POLYRESINV" (blocks, old form), "RESEAUFILE", "RESEAUSUBID", "PRERESTRAFO",
    /// "MAINRESTRAFO", "POLYRESINVTRAFO" (blocks), "SCREENPOS" (block), "SCREENSIZE". The
    /// reserved keywords "ORIENTED", "AORM" and "AORV" are accepted and ignored, with their
    /// value or block. "TILTPLANE" and "TILTTRAFO" blocks are skipped and reported as not read.
    ///
    /// Damaged input never stops the record: a value of the wrong kind, a block where a value
    /// belongs or a value where a block belongs, surplus tokens in a block and stray tokens are
    /// each recorded in the reader's error list (the error's name says what was wrong) and
    /// skipped, and reading goes on with the next keyword; the field keeps its value. Problems
    /// recorded this way are kept in the list, also as the last error of the run. An integer
    /// that does not fit is clamped (32-bit fields) or read exactly (the unsigned digitizer id
    /// and reseau sub id, whose negative values read as 0). A stream failure ends the read.
    ///
    /// The bindings are removed from the reader again before `Read` returns. Returns 1; an
    /// object registered with no reader reads nothing.
    virtual int Read(OvReaderObject* reader);

    // -- predicates ----------------------------------------------------------------------------
    bool IsDigital() const { return phototype_ == eOvPhotoDigital; }
    bool IsAnalog() const { return phototype_ != eOvPhotoDigital; }
    bool IsActive() const { return state_ == kOvPhotoStateActive; }
    bool IsInactive() const { return state_ != kOvPhotoStateActive; }
    bool IsExtern() const { return state_ == kOvPhotoStateExtern; }
    /// Whether the picture file named by the photo's name exists.
    bool ExistFile() const;
    /// Whether the digitizing region overlaps the region (touching counts); false for null.
    bool Overlap(const OvRegion* region) const;
    /// Whether the digitizing region contains the point (bounds included); false for null.
    bool Overlap(const OvPoint* point) const;

    // -- plain fields --------------------------------------------------------------------------
    OvFlag& GetFlag() { return flag_; }
    const OvFlag& GetFlag() const { return flag_; }
    const String& GetComment() const { return comment_; }
    void SetComment(const String& comment) { comment_ = comment; }
    /// The state (0 active, 2 extern, other values inactive).
    int GetActiveFlag() const { return state_; }
    void SetActiveFlag(int state) { state_ = state; }
    int GetLayer() const { return layer_; }
    void SetLayer(int layer) { layer_ = layer; }
    int GetRotation() const { return rotation_; }
    void SetRotation(int rotation) { rotation_ = rotation; }
    double GetScale() const { return scale_; }
    void SetScale(double scale) { scale_ = scale; }
    eOvPhototype GetPhototype() const { return phototype_; }
    void SetPhototype(eOvPhototype type) { phototype_ = type; }
    void SetType(eOvPhototype type) { phototype_ = type; }
    std::uint32_t GetDigitizerId() const { return digitizerId_; }
    void SetDigitizer(std::uint32_t id) { digitizerId_ = id; }
    int GetDigPictPage() const { return digitalPage_; }
    void SetDigPictPage(int page) { digitalPage_ = page; }
    int GetDigPictRot() const { return digitalRot_; }
    void SetDigPictRot(int rotation) { digitalRot_ = rotation; }
    const OvPosition& GetScreenPos() const { return screenPos_; }
    void SetScreenPos(const OvPosition& position) { screenPos_ = position; }
    int GetScreenScale() const { return screenScale_; }
    void SetScreenScale(int scale) { screenScale_ = scale; }
    const OvRegion& GetDigiRegion() const { return digiRegion_; }
    void SetDigiRegion(const OvRegion& region) { digiRegion_ = region; }
    /// The photo's own copy of its camera.
    const OvCamera& GetCamera() const { return camera_; }
    OvCamera& GetCamera() { return camera_; }
    void SetCamera(const OvCamera& camera) { camera_ = camera; }
    /// The reseau file name and sub id: the key of the photo's reseau description.
    const OvReseauDataDesc& GetReseauData() const { return reseau_; }
    OvReseauDataDesc& ReseauData() { return reseau_; }
    void SetReseauData(const OvReseauDataDesc& reseau) { reseau_ = reseau; }
    /// The id of the point being measured.
    std::uint32_t& AktBikoId() { return aktBikoId_; }
    std::uint32_t GetReserved() const { return reserved_; }

    // -- reseau transformations ----------------------------------------------------------------
    const OvReseauTrafo& GetReseauPreTrafo() const { return preTrafo_; }
    void SetReseauPreTrafo(const OvReseauTrafo& trafo) { preTrafo_ = trafo; }
    const OvReseauTrafo& GetReseauMainTrafo() const { return mainTrafo_; }
    void SetReseauMainTrafo(const OvReseauTrafo& trafo) { mainTrafo_ = trafo; }
    /// The inverse of a polynomial main transformation.
    const OvReseauTrafo& GetReseauPolyInv() const { return polyInvTrafo_; }
    void SetPolyInvTrafo(const OvReseauTrafo& trafo) { polyInvTrafo_ = trafo; }
    /// Type and type name of the main transformation.
    eOvTrafo2DType GetReseauTrafoType() const { return mainTrafo_.GetType(); }
    const char* GetReseauTrafoName() const { return mainTrafo_.GetTrafoName(); }
    /// The digitizing region with both corners transformed through the pre and then the main
    /// reseau transformation (as `ConvertBiko` mode 2 does).
    OvRegion GetBikoRegion() const;

    // -- coordinate conversion -----------------------------------------------------------------
    /// Converts the point's x and y: 1 pre reseau transformation; 2 pre, then main; 3 main;
    /// 4 pre, main, then the camera's `Adjust`; 5 `Adjust`; 9 `InvAdjust`; 6, 7, 8, 10 to 13
    /// with an `OvBikoTransform` of this photo and mode. Any other mode, and a null point, leave
    /// it unchanged; a transformation of type None and a camera with id 0 skip their step.
    /// Always returns 1.
    int ConvertBiko(OvPoint* point, eConvertBikoMode mode) const;
    /// Converts every point of the list with one `OvBikoTransform` of this photo and mode
    /// (nothing for a null list). A list of 65,536 points or more reports its progress as an
    /// `OvProgressTask` "Converting points" through `OvProgressBarRouter`.
    void ConvertList(OvPointList* list, eConvertBikoMode mode) const;
    /// Converts the measure list (`ConvertList`).
    void ConvertMeasure(eConvertBikoMode mode);

    // -- measure list ----------------------------------------------------------------------------
    /// Converts the point (`ConvertBiko`), sets its photo id to this photo's id and puts it into
    /// the measure list with `Replace` (a point with the same id is replaced and deleted,
    /// otherwise it is appended). The pointer form takes ownership and returns the point; a
    /// point that is still in another list is refused (null, nothing changes, the caller keeps
    /// it). The reference form adds a copy and returns it.
    OvPoint* AddMeasure(OvPoint* point, eConvertBikoMode mode);
    OvPoint* AddMeasure(const OvPoint& point, eConvertBikoMode mode);
    OvPoint* FindMeasure(std::uint32_t id) const { return measure_.Find(id); }
    OvPoint* FirstMeasure() const { return measure_.First(); }
    OvPoint* LastMeasure() const { return measure_.Last(); }
    int CountMeasure() const { return measure_.Count(); }
    /// Takes the point out of the measure list without deleting it (the caller owns it), or null.
    OvPoint* SubtractMeasure(std::uint32_t id) { return measure_.Subtract(id); }
    OvPoint* SubtractMeasure(OvPoint* point) { return measure_.Subtract(point); }
    /// Deletes every measured point.
    void DestroyMeasure() { measure_.Destroy(); }
    OvPointList& GetMeasureList() { return measure_; }
    const OvPointList& GetMeasureList() const { return measure_; }
    /// The measure list's first free id from 0 on (`GetFreeId(0)`).
    std::uint32_t GetFreeBikoId() const { return measure_.GetFreeId(0); }

    // -- Imo list --------------------------------------------------------------------------------
    /// As `AddMeasure`, into the Imo list, but the point's photo id stays as it is: image
    /// points may carry the id of the photo they were taken over from.
    OvPoint* AddImo(OvPoint* point, eConvertBikoMode mode);
    OvPoint* AddImo(const OvPoint& point, eConvertBikoMode mode);
    OvPoint* FindImo(std::uint32_t id) const { return imo_.Find(id); }
    OvPoint* FirstImo() const { return imo_.First(); }
    OvPoint* LastImo() const { return imo_.Last(); }
    int CountImo() const { return imo_.Count(); }
    OvPoint* SubtractImo(std::uint32_t id) { return imo_.Subtract(id); }
    void DestroyImo() { imo_.Destroy(); }
    OvPointList& GetImoList() { return imo_; }
    const OvPointList& GetImoList() const { return imo_; }

    // -- transfers between the lists -------------------------------------------------------------
    /// A converted copy of the Imo point with this id goes into the measure list (`AddMeasure`).
    /// Returns the new point, or null when there is no such Imo point.
    OvPoint* CopyImoToMeasure(std::uint32_t id, eConvertBikoMode mode);
    /// A converted copy of the measured point with this id goes into the Imo list (`AddImo`).
    OvPoint* CopyMeasureToImo(std::uint32_t id, eConvertBikoMode mode);
    /// The measured point with this id leaves the measure list, is converted and goes into the
    /// Imo list (`AddImo`: with `Replace`, its photo id kept). Returns it, or null.
    OvPoint* MoveMeasureToImo(std::uint32_t id, eConvertBikoMode mode);
    /// The Imo point with this id leaves the Imo list, is converted and goes into the measure
    /// list (`AddMeasure`: with `Replace`, its photo id set to this photo's). Returns it, or null.
    OvPoint* MoveImoToMeasure(std::uint32_t id, eConvertBikoMode mode);
    /// The same for every point, in list order; each returns the number of points transferred.
    /// Without a mode the points are transferred unconverted.
    int CopyImoToMeasure(eConvertBikoMode mode = eConvertBikoNone);
    int CopyMeasureToImo(eConvertBikoMode mode = eConvertBikoNone);
    int MoveMeasureToImo(eConvertBikoMode mode = eConvertBikoNone);
    int MoveImoToMeasure(eConvertBikoMode mode = eConvertBikoNone);
    /// Copies (appends copies of) or moves every point to another list, unconverted; returns
    /// the number of points. Nothing for a null list or the photo's own list.
    int CopyImoTo(OvPointList* list) const;
    int CopyMeasureTo(OvPointList* list) const;
    int MoveImoTo(OvPointList* list);
    int MoveMeasureTo(OvPointList* list);

    // -- tilt transforms -------------------------------------------------------------------------
    /// Appends the transform (taking ownership) and returns it; a transform that is still in
    /// another list is refused (null, the caller keeps it).
    OvTiltTrafo* AddTiltTrafo(OvTiltTrafo* trafo) { return tilts_.Add(trafo); }
    /// Appends a copy and returns it.
    OvTiltTrafo* AddTiltTrafo(const OvTiltTrafo& trafo) { return tilts_.Add(trafo); }
    OvTiltTrafo* FindTiltTrafo(std::uint32_t id) const { return tilts_.Find(id); }
    OvTiltTrafo* FirstTiltTrafo() const { return tilts_.First(); }
    OvTiltTrafo* LastTiltTrafo() const { return tilts_.Last(); }
    /// Takes the transform with this id out of the list (the caller owns it), or null.
    OvTiltTrafo* SubtractTiltTrafo(std::uint32_t id) { return tilts_.Subtract(id); }
    OvTiltTrafoList& GetTiltList() { return tilts_; }
    const OvTiltTrafoList& GetTiltList() const { return tilts_; }
    /// The first transform, from the first one or from the one following `after` (when given),
    /// that (a) has an empty valid region or one that overlaps the point and (b) is active when
    /// `activeOnly` is set. Null when none qualifies, and when `after` is not one of this
    /// photo's transforms.
    OvTiltTrafo* GetTiltTrafo(const OvPoint* point, const OvTiltTrafo* after,
                              bool activeOnly) const;
    /// The number of transforms that satisfy (a) and (b).
    int CountTiltTrafo(const OvPoint* point, bool activeOnly) const;

    // -- attributes ------------------------------------------------------------------------------
    /// Makes the attribute this photo's, calls its `OnAdd` and appends it (taking ownership).
    /// Returns it; null for a null attribute or one still in another list (nothing changes).
    OvAttribute* AddAttribute(OvAttribute* attribute);
    /// The same with a copy.
    OvAttribute* AddAttribute(const OvAttribute& attribute);
    /// The first attribute with this text, or null.
    OvAttribute* FindAttribute(const String& name) const { return attributes_.Find(name); }
    OvAttribute* FirstAttribute() const { return attributes_.First(); }
    /// Takes the attribute out (its `OnSubtract` is called, it no longer belongs to the photo);
    /// the caller owns it. Null when it is not there.
    OvAttribute* SubtractAttribute(OvAttribute* attribute);
    OvAttribute* SubtractAttribute(const String& name);
    /// Takes the attribute out as `SubtractAttribute` does and deletes it; false when it was not
    /// there.
    bool DelAttribute(OvAttribute* attribute);
    bool DelAttribute(const String& name);
    OvAttributeList& GetAttributeList() { return attributes_; }
    const OvAttributeList& GetAttributeList() const { return attributes_; }

    // -- list walk -------------------------------------------------------------------------------
    /// The first photo from this one on (this included) whose flag word has any bit of mask
    /// set, or null.
    OvPhoto* First(int mask);
    /// The first photo after / before this one with any bit of mask set, or null.
    OvPhoto* Next(int mask);
    OvPhoto* Previous(int mask);
    /// The plain neighbours in the list (null at the ends).
    OvPhoto* Next();
    OvPhoto* Previous();
    const OvPhoto* Next() const;
    const OvPhoto* Previous() const;

private:
    friend class OvPhotoRecordReader;

    /// Attributes copied from another photo belong to this one.
    void AdoptAttributes();

    OvFlag flag_;
    String comment_;
    int state_ = kOvPhotoStateInactive;
    int layer_ = 0;
    int rotation_ = 0;
    double scale_ = 0.0;
    eOvPhototype phototype_ = eOvPhotoAnalog;
    std::uint32_t digitizerId_ = 1;
    OvRegion digiRegion_;
    OvCamera camera_;
    OvReseauDataDesc reseau_;
    OvReseauTrafo preTrafo_;
    OvReseauTrafo mainTrafo_;
    OvReseauTrafo polyInvTrafo_;
    OvTiltTrafoList tilts_;
    int digitalPage_ = 0;
    int digitalRot_ = 0;
    OvPosition screenPos_;
    int screenScale_ = 0;
    OvPointList imo_;
    OvPointList measure_;
    OvAttributeList attributes_;
    std::uint32_t aktBikoId_ = 0;
    std::uint32_t reserved_ = 0;
};

// Filter predicates on the object part of a photo (the argument must be a photo; a null
// argument is not caught). Non-zero for a match.
unsigned IsPhotoDigital(const OvObject* photo);
unsigned IsPhotoAnalog(const OvObject* photo);
unsigned IsPhotoActive(const OvObject* photo);
unsigned IsPhotoExtern(const OvObject* photo);
/// The main reseau transformation's type is not None.
unsigned HasPhotoReseau(const OvObject* photo);
/// The photo has at least one tilt transform.
unsigned HasPhotoTilt(const OvObject* photo);

}  // namespace orvo
