// The ground truth of an example project: what the example generator knows and a real project
// never does. The demo reads it, when the example directory has one, to print recovered values
// next to true ones.
//
// The file ("truth.txt") is a block file in the library's own forms, one PHOTO block per photo:
//
//     PHOTO
//     {
//         ID          1
//         SCANTRAFO            ; the true distortion of the scan: measured -> image coordinates
//         {
//             2
//             -115.0123  0.0125004  ...
//         }
//         IMAGEPOINTS          ; the true image coordinates of the measured points: id x y
//         {
//             101  -48.2301  21.0472
//         }
//     }
#pragma once

#include <map>
#include <string>
#include <vector>

#include "orvo/foundation/link.h"
#include "orvo/model/point_list.h"
#include "orvo/numerics/trafo2d.h"
#include "point_files.h"

namespace orvo::cli {

class TruthPhoto : public LinkHdl {
public:
    TruthPhoto();
    TruthPhoto(const TruthPhoto& other);
    TruthPhoto& operator=(const TruthPhoto& other);
    ~TruthPhoto() override;

    int id = 0;
    bool hasScan = false;
    OvTrafo2d scan;  // true measured -> image mapping of a scanned photo
    OvPointList image;

    /// Block handler of "SCANTRAFO".
    std::int32_t ReadScan(void* readerObject);
};

struct Truth {
    std::map<unsigned, TruthPhoto> photos;
    std::vector<FileProblem> problems;

    /// The photo's truth, or null.
    const TruthPhoto* Find(unsigned id) const;
};

/// Reads the truth file; problems are collected in the result.
Truth ReadTruthFile(const std::string& file);

}  // namespace orvo::cli
