// A plane rectification defined on a photo (a tilt transform) and the photo's list of them.
//
// This is the part of the record that photos use today: its identity (id and name), its state
// bits and the region of the photo in which it is valid. The photo finds the transform that
// applies to a point by these (`OvPhoto::GetTiltTrafo`). The transform matrices, the definition
// points and reading a transform from a project file are not part of this class yet: a photo
// block's "TILTPLANE" and "TILTTRAFO" entries are reported as not read and the photo's list
// stays empty when a project is read.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"
#include "orvo/geom2d/polygon.h"

namespace orvo {

class OvPoint;

/// State bits of a tilt transform's flag word.
enum eOvTiltFlag : std::uint32_t {
    eOvTiltFlagActive = 0x002,
    eOvTiltFlagRegionActive = 0x400,
    eOvTiltFlagDistortCamera = 0x800,
};

class OvTiltTrafo : public OvListnode {
public:
    /// Id 0, empty name, no flag set, an empty valid region.
    OvTiltTrafo();
    OvTiltTrafo(std::uint32_t id, const String& name);
    OvTiltTrafo(const OvTiltTrafo& other);
    /// Copies id, name, flag word and valid region; never the list links.
    OvTiltTrafo& operator=(const OvTiltTrafo& other);
    ~OvTiltTrafo() override;

    OvFlag& GetFlag() { return flag_; }
    const OvFlag& GetFlag() const { return flag_; }
    bool IsActive() const { return flag_.IsFlagSet(eOvTiltFlagActive) != 0; }
    void SetActive(bool on);
    bool IsRegionActive() const { return flag_.IsFlagSet(eOvTiltFlagRegionActive) != 0; }
    void SetRegionActive(bool on);
    /// Whether the lens distortion is to be compensated before the transform ("KAMERA").
    bool GetDistortCameraFlag() const { return flag_.IsFlagSet(eOvTiltFlagDistortCamera) != 0; }
    void SetDistortCameraFlag(bool on);

    /// The region of the photo (image coordinates) in which the transform is valid; a polygon
    /// of mode 0 (x, y columns).
    OvPolygon& GetRegion() { return region_; }
    const OvPolygon& GetRegion() const { return region_; }
    /// Whether the valid region holds at least one point.
    bool HasRegion() const { return region_.Count() > 0; }
    /// Whether the point lies in the valid region (the polygon test of the region); false for a
    /// null point.
    bool Overlap(const OvPoint* point) const;

    /// Writes what the record holds, one keyword per line as the photo writes its entries:
    /// "TILTID" with the id and name in an inline block, "ACTIV", "KAMERA" and "REGIONACTIV"
    /// with their bits as 0 or 1, and "VALIDREGION" with the region's points in a block on lines of
    /// their own. Every line ends with `Ovendl`.
    std::ostream& Write(std::ostream& out) const;

    OvTiltTrafo* Next() const { return static_cast<OvTiltTrafo*>(GetNext()); }
    OvTiltTrafo* Previous() const { return static_cast<OvTiltTrafo*>(GetPrev()); }

private:
    OvFlag flag_;
    OvPolygon region_;
};

/// The tilt transforms of one photo; owns them.
class OvTiltTrafoList : public TOvListHeader<OvTiltTrafo> {
public:
    OvTiltTrafoList() = default;
    OvTiltTrafoList(const OvTiltTrafoList& other) = default;
    OvTiltTrafoList& operator=(const OvTiltTrafoList& other) = default;
    ~OvTiltTrafoList() override;
};

/// Filter predicates on the object part of a tilt transform (the argument must be one): its
/// active bit, and whether its valid region holds points. Non-zero for a match; 0 for null.
unsigned IsTiltActive(const OvObject* trafo);
unsigned HasTiltRegion(const OvObject* trafo);

}  // namespace orvo
