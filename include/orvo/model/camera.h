// The camera record: the interior orientation of one camera (principal distance, principal
// point and a two-term radial distortion), the correction of image coordinates for principal
// point and distortion (`Adjust`) and its inverse (`InvAdjust`), and the record form in which a
// camera is stored in the camera file and in photo blocks.
//
// Units: image coordinates, C, Xh, Yh and R0 are in the image unit (mm); A1 is per mm², A2 per
// mm⁴, so the distortion correction A1·(r² − R0²) + A2·(r⁴ − R0⁴) is a pure ratio.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/string.h"

namespace orvo {

class OvPoint;
class OvPointList;
class OvReaderObject;

/// The inverse correction stops after this many passes ...
inline constexpr int kOvInvAdjustMaxPasses = 25;
/// ... or as soon as the squared step length falls to this value; it has converged only when
/// the last squared step is strictly below it.
inline constexpr double kOvInvAdjustTolerance = 1e-18;

/// How an inverse correction ended (see `OvCamera::InvAdjust` with a diagnosis).
enum eOvInvAdjustResult : std::int32_t {
    InvAdjustConverged = 0,       ///< the squared step fell below the tolerance
    InvAdjustNoCamera = 1,        ///< the camera id is 0: no correction is defined
    InvAdjustNullArgument = 2,    ///< a coordinate or point pointer was null
    InvAdjustNotFinite = 3,       ///< a coordinate or a camera value is NaN or infinite
    InvAdjustNotContracting = 4,  ///< the steps did not shrink (or overflowed): the distortion is
                                  ///< too strong at this radius for the fixed-point iteration
    InvAdjustTooSlow = 5,         ///< the steps shrank, but not below the tolerance in 25 passes
    InvAdjustRoundingLimit = 6,   ///< the steps stalled at the rounding noise of coordinates this
                                  ///< large: the absolute tolerance cannot be met there
};

/// A short English description of a result ("converged", "camera id is 0", ...); unknown
/// values give "unknown result".
const char* GetInvAdjustResultText(eOvInvAdjustResult result);

/// What one inverse correction did.
struct OvInvAdjustDiagnosis {
    eOvInvAdjustResult result = InvAdjustNoCamera;
    /// Passes of the iteration that ran (0 when it did not start).
    int passes = 0;
    /// The squared step length of the first and of the last pass (0 when no pass ran).
    double firstStep = 0.0;
    double lastStep = 0.0;
    /// The ratio of the last step length to the one before it (the iteration's contraction
    /// factor near the solution; below 1 means converging). 0 with fewer than two passes.
    double contraction = 0.0;
};

/// Whether the corrected radius grows steadily with the measured radius (see
/// `OvCamera::CheckMonotony`). A calibration whose curve turns back inside the image maps two
/// different radii to the same corrected one: it has failed.
struct OvDistortionMonotony {
    /// True when the corrected radius strictly increases over the whole range [0, maxRadius].
    bool monotonic = false;
    /// The smallest radius in [0, maxRadius] at which the slope of the corrected radius reaches
    /// 0, i.e. where the curve stops increasing; −1 when monotonic.
    double turnRadius = -1.0;
    /// The smallest slope d(corrected radius)/d(radius) over [0, maxRadius], and where.
    double minSlope = 0.0;
    double minSlopeRadius = 0.0;
};

/// One camera: id and info text (the list node's id and name) and the six calibration values.
///
/// Beyond the calibration, a camera carries an object flag word (as points and photos do) for
/// the host's state bits; the masked list walk tests it.
class OvCamera : public OvListnode, public LinkHdl {
public:
    /// Id 0, all six values 0, empty info text.
    OvCamera();
    OvCamera(unsigned id, double C, double Xh, double Yh, double A1, double A2, double R0,
             const char* info);
    /// Copies everything, the flag word included; the copy is in no list.
    OvCamera(const OvCamera& other);
    /// A default camera that reads one record (`Read`).
    explicit OvCamera(OvReaderObject* reader);
    /// Copies id, info text, the six values and the flag word.
    OvCamera& operator=(const OvCamera& other);
    ~OvCamera() override;

    // -- values ---------------------------------------------------------------------------
    /// Sets id, the six values and the info text (a null text empties it); the flag word stays.
    void Set(unsigned id, double C, double Xh, double Yh, double A1, double A2, double R0,
             const char* info);
    /// Copies id, info text and the six values of another camera; the flag word stays.
    void Set(const OvCamera& other);
    /// Returns id and the six values, and copies the info text with its terminating NUL into
    /// `info` when that is not null. The buffer must hold GetInfo().length() + 1 bytes (at most
    /// 65536); prefer the bounded form below.
    void Get(unsigned& id, double& C, double& Xh, double& Yh, double& A1, double& A2, double& R0,
             char* info) const;
    /// The same with a buffer of `infoSize` bytes: the text is cut to infoSize − 1 characters
    /// and always terminated (nothing is written when infoSize is 0).
    void Get(unsigned& id, double& C, double& Xh, double& Yh, double& A1, double& A2, double& R0,
             char* info, std::size_t infoSize) const;

    double GetC() const { return C_; }
    double GetXh() const { return Xh_; }
    double GetYh() const { return Yh_; }
    double GetA1() const { return A1_; }
    double GetA2() const { return A2_; }
    double GetR0() const { return R0_; }
    const String& GetInfo() const { return GetName(); }
    /// Each setter stores the value as given (SetC does not make it positive) and returns it.
    double SetC(double value) { return C_ = value; }
    double SetXh(double value) { return Xh_ = value; }
    double SetYh(double value) { return Yh_ = value; }
    double SetA1(double value) { return A1_ = value; }
    double SetA2(double value) { return A2_ = value; }
    double SetR0(double value) { return R0_ = value; }
    void SetInfo(const String& info) { SetName(info); }

    /// A camera is valid when its id is not 0 and C is neither 0 nor NaN.
    bool IsValid() const;

    OvFlag& GetFlag() { return flag_; }
    const OvFlag& GetFlag() const { return flag_; }

    // -- distortion -----------------------------------------------------------------------
    /// The relative radial correction at (x, y), taken relative to the principal point:
    /// (r⁴ − R0⁴)·A2 + (r² − R0²)·A1 with r = sqrt(x² + y²); 0 when r is 0 or NaN.
    double Calcdr(double x, double y) const;
    /// The same polynomial in s = x² + y² without the square root and without the zero test:
    /// at the origin it gives −R0²·A1 − R0⁴·A2 where Calcdr gives 0.
    double Calcd(double x, double y) const;

    /// Corrects measured image coordinates: subtracts the principal point, then removes the
    /// radial distortion (x −= Calcdr(x, y)·x, likewise y). The result stays relative to the
    /// principal point. False, with nothing changed, for camera id 0 or a null pointer.
    bool Adjust(double* x, double* y) const;
    /// Adjust on the point's x and y; false for a null point or camera id 0.
    bool Adjust(OvPoint* point) const;
    /// Adjust on every point. False only for a null list; true for an empty list and also for
    /// camera id 0, in which case no point changes.
    bool Adjust(OvPointList* list) const;

    /// Undoes `Adjust` by fixed-point iteration from (x0, y0):
    ///     s = u² + v²;  f = s·A1 − R0²·A1 + s²·A2 − R0⁴·A2;
    ///     u' = f·(u − Xh) + x0;  v' = f·(v − Yh) + y0;  d = (u − u')² + (v − v')²
    /// for at most 25 passes, stopping early once d ≤ 1e-18. Converged when the last d is
    /// strictly below 1e-18: then x = u + Xh, y = v + Yh and the result is true. Otherwise false
    /// with x, y unchanged. The principal point enters the step as (u − Xh) while s is formed
    /// from u and v themselves, and Xh, Yh are added to the result: this is the camera model's
    /// inverse as the project files were computed with, and it is kept exactly (with Xh = Yh = 0
    /// it is the exact inverse of Adjust). False for camera id 0 or a null pointer.
    bool InvAdjust(double* x, double* y) const;
    /// The same, filling `diagnosis` (when not null) with the passes used and why it failed.
    bool InvAdjust(double* x, double* y, OvInvAdjustDiagnosis* diagnosis) const;
    /// InvAdjust on the point's x and y; false for a null point or camera id 0.
    bool InvAdjust(OvPoint* point) const;
    /// InvAdjust on every point, ignoring the single results: false only for a null list.
    bool InvAdjust(OvPointList* list) const;
    /// Runs the inverse on (x, y) without changing anything and tells how it went.
    OvInvAdjustDiagnosis DiagnoseInvAdjust(double x, double y) const;

    /// Checks that the corrected radius r·(1 − Calcdr) strictly increases for measured radii
    /// from 0 to maxRadius (in mm, relative to the principal point). A negative or NaN
    /// maxRadius, or a NaN coefficient, gives a result that is not monotonic with a NaN slope.
    OvDistortionMonotony CheckMonotony(double maxRadius) const;

    // -- records --------------------------------------------------------------------------
    /// Reads one record from the reader's tokenizer, the current token being the first one of
    /// the record (inside its "{"): an integer id, six numbers C, Xh, Yh, A1, A2, R0 and a
    /// quoted info text; then C is made non-negative. It returns with the token after the info
    /// text as the current token (the record's "}" in a well-formed file). Returns 1.
    ///
    /// A numeric field holding a token of another kind (a string, a keyword such as "nan")
    /// reads 0.0, takes that token and records a "ParserErrorNotSpecifiedToken" read error with
    /// the reader. A record that ends early (a "}", "{" or the end of the input where a field
    /// belongs, or an id that is not an integer, or an info text that is not a string) throws
    /// the parser's `OvParserStatus` with the token that stopped it still current; the fields
    /// read so far are set. An object that belongs to no reader reads nothing.
    int Read(OvReaderObject* reader);
    /// `Read` in the shape of a link function (the argument is the `OvReaderObject*`), so that
    /// a block can be bound to a camera: `Link(&camera, &OvCamera::ReadHdl)`.
    std::int32_t ReadHdl(void* readerObject);
    /// Writes the record of the camera file without braces: precision 8 (it stays set), the id
    /// after `w4`, C, Xh, Yh, A1, A2, R0 each after `w14` in the stream's floating-point
    /// notation, then a blank and the info text in double quotes. C is written as stored.
    std::ostream& Write(std::ostream& out) const;
    /// Writes the plain column form: precision 8, the id after `w4`, then |C|, Xh, Yh, A1, A2,
    /// R0 each after `w12`; no info text and no line end.
    std::ostream& WriteGentriFormat(std::ostream& out) const;

    // -- list walk ------------------------------------------------------------------------
    /// The first camera from this one on (this included) whose flag word has any bit of mask
    /// set, or null.
    OvCamera* First(int mask);
    /// The first camera after / before this one with any bit of mask set, or null.
    OvCamera* Next(int mask);
    OvCamera* Previous(int mask);
    /// The plain neighbours in the list (null at the ends).
    OvCamera* Next();
    OvCamera* Previous();
    const OvCamera* Next() const;
    const OvCamera* Previous() const;

private:
    OvFlag flag_;
    double C_ = 0.0;
    double Xh_ = 0.0;
    double Yh_ = 0.0;
    double A1_ = 0.0;
    double A2_ = 0.0;
    double R0_ = 0.0;
};

}  // namespace orvo
