// The point record: one measured or computed point of a project (an image point, an object point
// or a control point) with its coordinates, the ids tying it to a photo and a camera, its
// control-point code, two result triples and the state bits set by the front end and the
// orientation steps.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/object.h"
#include "orvo/model/format_table.h"

namespace orvo {

class OvParser;
class OvReaderObject;
class OvVector;

/// The tokenizer status that a point record raises at the "}" closing its block: the end of the
/// object's data (an `eOvParserStatus` value without a name of its own there).
inline constexpr std::uint32_t kOvParserStatusEndOfData = 7;

/// State bits of a point's object flag word (photos use the same bits for the same states).
enum eOvPointFlag : std::uint32_t {
    eOvPointFlagGuiSelect = 0x001,
    eOvPointFlagGuiCheckActive = 0x002,
    eOvPointFlagGuiCheckAccept = 0x004,
    eOvPointFlagGuiCheckNotAccept = 0x008,
    eOvPointFlagGuiCheckMediumAccept = 0x010,
    eOvPointFlagTrafo2DUsed = 0x020,
    eOvPointFlagTrafo3DUsed = 0x040,  ///< also the absolute orientation (one bit, two names)
    eOvPointFlagAbsor = 0x040,
    eOvPointFlagRelorUsed = 0x080,
    eOvPointFlagEinbor = 0x100,
};

/// Control-point code bits: which coordinates of the point are control coordinates.
enum eOvControlFlag : std::int16_t {
    eOvControlX = 1,
    eOvControlY = 2,
    eOvControlZ = 4,
};

class OvPoint : public OvListnode {
public:
    /// All fields zero, the name empty, the object flags 0.
    OvPoint() : OvPoint(0, 0.0, 0.0, 0.0, 0) {}
    OvPoint(unsigned id, double x, double y, double z, short controlFlags);
    OvPoint(const OvPoint& other) = default;
    OvPoint& operator=(const OvPoint& other) = default;
    ~OvPoint() override = default;

    /// Sets photo id, camera id, control flags, both user words and all nine doubles to zero;
    /// id, name and object flags stay.
    void init();

    // -- coordinates and result triples ---------------------------------------------------
    double GetX() const { return x_; }
    double GetY() const { return y_; }
    double GetZ() const { return z_; }
    void SetX(double x) { x_ = x; }
    void SetY(double y) { y_ = y; }
    void SetZ(double z) { z_ = z; }
    void Set(double x, double y, double z) {
        x_ = x;
        y_ = y;
        z_ = z;
    }
    /// Deviation / accuracy triple (columns dx, dy, dz and Sx, Sy, Sz). An index outside 0..2
    /// reads 0.0 and writes nothing.
    double GetD(int i) const { return InRange(i) ? d_[i] : 0.0; }
    void SetD(int i, double value) {
        if (InRange(i)) d_[i] = value;
    }
    /// Reduction / residual triple (columns Redu.. and Residual ..); index rule as for GetD.
    double GetR(int i) const { return InRange(i) ? r_[i] : 0.0; }
    void SetR(int i, double value) {
        if (InRange(i)) r_[i] = value;
    }

    // -- ids and user words ---------------------------------------------------------------
    std::uint32_t GetPhotoId() const { return photoId_; }
    void SetPhotoId(std::uint32_t id) { photoId_ = id; }
    std::uint32_t GetCameraId() const { return cameraId_; }
    void SetCameraId(std::uint32_t id) { cameraId_ = id; }
    /// Two words that no operation of the library interprets; copied with the point.
    std::uint32_t GetUserWord1() const { return user1_; }
    void SetUserWord1(std::uint32_t value) { user1_ = value; }
    std::uint32_t GetUserWord2() const { return user2_; }
    void SetUserWord2(std::uint32_t value) { user2_ = value; }

    // -- object flag word -----------------------------------------------------------------
    OvFlag& GetFlag() { return flag_; }
    const OvFlag& GetFlag() const { return flag_; }

    // -- control-point code ---------------------------------------------------------------
    int IsXControlPoint() const { return controlFlags_ & eOvControlX; }
    int IsYControlPoint() const { return controlFlags_ & eOvControlY; }
    int IsZControlPoint() const { return controlFlags_ & eOvControlZ; }
    int GetControlFlags() const { return controlFlags_; }
    void SetControlFlags(short flags) { controlFlags_ = flags; }
    /// Clears the control flags, then sets X for any of '1', 'X', 'x' in the text, Y for '2',
    /// 'Y', 'y' and Z for '3', 'Z', 'z'. Returns the new flags. A null text only clears.
    int SetAsControlFlag(const char* text);
    /// The number's decimal digits '1', '2', '3' set X, Y, Z: 13 means X and Z, 123 all three.
    int SetAsControlFlag(int code);
    /// Three-character texts of the code (index: flags & 7): "  0", "  1", ..., "123" and
    /// " N ", "X  ", ..., "XYZ". The texts have static storage.
    const char* GetControlFlagsAs123() const { return GetControlCodeAs123(controlFlags_); }
    const char* GetControlFlagsAsXYZ() const { return GetControlCodeAsXYZ(controlFlags_); }
    static const char* GetControlCodeAs123(int code);
    static const char* GetControlCodeAsXYZ(int code);

    // -- comparison and arithmetic --------------------------------------------------------
    using OvListnode::Compare;
    /// The list ordering: (photo id - other photo id) + (id - other id), in 32-bit integers.
    /// The sum of both differences is the ordering the project files were always sorted by.
    /// A null node counts as a point with photo id 0 and id 0.
    int Compare(const OvListnode* other) const override;

    /// True when x, y and z are exactly equal; nothing else is compared.
    bool operator==(const OvPoint& other) const;
    /// Euclidean distance over x, y, z.
    double Distance(const OvPoint& other) const;

    /// A copy of this point with x, y, z, d[0..2] added / subtracted element by element.
    OvPoint operator+(const OvPoint& other) const;
    OvPoint operator-(const OvPoint& other) const;
    /// A copy of this point whose x, y, z, d[0..2] are the midpoint 0.5 * (this + other).
    OvPoint operator%(const OvPoint& other) const;
    /// A copy of this point with x, y, z scaled; d[] and r[] stay unscaled (unlike +, - and %,
    /// which act on six values). Division multiplies by 1 / factor.
    OvPoint operator*(double factor) const;
    OvPoint operator/(double factor) const;

    /// A vector of size 3 holding x, y, z.
    OvVector GetAsVector() const;

    // -- list walk ------------------------------------------------------------------------
    /// The first point from this one on (this included) whose object flag word has any bit of
    /// mask set, or null.
    OvPoint* First(int mask);
    /// The first point after / before this one with any bit of mask set, or null.
    OvPoint* Next(int mask);
    OvPoint* Previous(int mask);
    /// The plain neighbours in the list (null at the ends). Inline: every walk over a point
    /// list steps through these.
    OvPoint* Next() { return static_cast<OvPoint*>(GetNext()); }
    OvPoint* Previous() { return static_cast<OvPoint*>(GetPrev()); }
    const OvPoint* Next() const { return static_cast<const OvPoint*>(GetNext()); }
    const OvPoint* Previous() const { return static_cast<const OvPoint*>(GetPrev()); }

    // -- point files ----------------------------------------------------------------------
    /// Reads one record, column by column as the format says, from the reader's tokenizer.
    /// Returns 1. When the record meets the "}" that closes the block, or the end of the input,
    /// the tokenizer's `OvParserStatus` is thrown: with status 7 (end of the object's data) at a
    /// "}", which stays the current token, or with the status the tokenizer holds at the end of
    /// the input. Other tokenizer errors propagate as thrown by the tokenizer. Integer columns
    /// (id, codes, photo, camera) take integer tokens only; ids take the whole unsigned 32-bit
    /// range exactly, a negative value as its 32-bit word. Numeric columns take integer or
    /// floating tokens ("-0" reads as negative zero) and read 0.0 for any other kind. An object
    /// that is registered with no reader reads nothing.
    int Read(OvReaderObject* reader, const OvPointFormat& format);
    /// The same on a tokenizer and its stream directly; returns the number of tokens consumed.
    int Read(OvParser& parser, std::istream& in, const OvPointFormat& format);
    /// Writes one record without a line end; sets the stream's precision to 16 (it stays so).
    std::ostream& Write(std::ostream& out, const OvPointFormat& format) const;

private:
    static bool InRange(int i) { return i >= 0 && i < 3; }

    OvFlag flag_;
    std::uint32_t photoId_ = 0;
    std::uint32_t cameraId_ = 0;
    std::int16_t controlFlags_ = 0;
    std::uint32_t user1_ = 0;
    double x_ = 0.0;
    double y_ = 0.0;
    double z_ = 0.0;
    double d_[3] = {0.0, 0.0, 0.0};
    double r_[3] = {0.0, 0.0, 0.0};
    std::uint32_t user2_ = 0;
};

/// Multiplies the point's x, y, z in place; d[] and r[] are untouched. A null point is ignored.
void MultiplyOvPoint(OvPoint* point, double factor);

// State predicates in the shape of list filter callbacks: the masked bit of the point's object
// flag word (non-zero = set). The argument must be a point; a null argument gives 0.
unsigned IsPointFlagGuiSelect(const OvObject* point);
unsigned IsPointFlagGuiCheckActive(const OvObject* point);
unsigned IsPointGuiCheckAccept(const OvObject* point);
unsigned IsPointGuiCheckNotAccept(const OvObject* point);
unsigned IsPointGuiCheckMediumAccept(const OvObject* point);
unsigned IsPointTrafo2DUsed(const OvObject* point);
unsigned IsPointTrafo3DUsed(const OvObject* point);
unsigned IsPointAbsor(const OvObject* point);
unsigned IsPointRelorUsed(const OvObject* point);
unsigned IsPointEinbor(const OvObject* point);

}  // namespace orvo
