// The range of a tilt transform in image coordinates: the part of the photo that a
// rectification covers.
#pragma once

namespace orvo {

class OvPhoto;
class OvPointList;
class OvTiltTrafo;

/// Fills `out`, which is meant to be empty, with the range of the transform in image coordinates
/// and returns the number of points in `out` (the points are appended, and the conversion and
/// numbering below apply to the whole list):
///  - a transform with a valid region gives copies of the region's points, in order;
///  - otherwise the photo's digitised region is taken as its four corners (min x, min y),
///    (max x, min y), (max x, max y), (min x, max y), numbered 1 to 4, and converted from
///    measured to image coordinates (`OvPhoto` mode 2). When the transform compensates lens
///    distortion each corner is converted on its own and each edge is cut into nine pieces (the
///    corner and eight points at steps of (next corner - corner) / 9), so that the curved image
///    of a straight border survives the correction, and the points are numbered 1, 2, 3, ...
///    (36 points for the four edges); otherwise the four corners are appended and the list is
///    converted (`OvPhoto::ConvertList`).
/// Without a transform the photo's region is taken as for a transform without a valid region
/// and distortion; without a photo (and no valid region) nothing is added.
int OvGetTiltBikoPoints(OvPointList& out, const OvPhoto* photo, const OvTiltTrafo* trafo);

}  // namespace orvo
