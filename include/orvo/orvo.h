// The umbrella header: includes every public header of the library.
#pragma once

// foundation
#include "orvo/foundation/array.h"
#include "orvo/foundation/attribute.h"
#include "orvo/foundation/base_list.h"
#include "orvo/foundation/filter.h"
#include "orvo/foundation/id_table.h"
#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/notify.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/platform.h"
#include "orvo/foundation/string.h"
#include "orvo/foundation/version.h"

// textfile
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/filename.h"
#include "orvo/textfile/filetype.h"
#include "orvo/textfile/profile.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/c_locale.h"
#include "orvo/textfile/writer.h"
#include "orvo/textfile/tokenizer.h"

// model
#include "orvo/model/camera.h"
#include "orvo/model/camera_cv.h"
#include "orvo/model/camera_list.h"
#include "orvo/model/format_table.h"
#include "orvo/model/ortho_photo.h"
#include "orvo/model/photo.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/point.h"
#include "orvo/model/point_list.h"
#include "orvo/model/point_tripel.h"
#include "orvo/model/project_file.h"
#include "orvo/model/reseau_file.h"
#include "orvo/model/reseau_list.h"

// numerics
#include "orvo/numerics/angle.h"
#include "orvo/numerics/biko_transform.h"
#include "orvo/numerics/calc_trafo2d.h"
#include "orvo/numerics/interval.h"
#include "orvo/numerics/linalg_errors.h"
#include "orvo/numerics/matrix.h"
#include "orvo/numerics/reseau_trafo.h"
#include "orvo/numerics/rounding.h"
#include "orvo/numerics/trafo2d.h"
#include "orvo/numerics/units.h"
#include "orvo/numerics/vector.h"
#include "orvo/numerics/vector_geometry.h"

// rectify
#include "orvo/rectify/rect_plane.h"
#include "orvo/rectify/tilt_biko_points.h"
#include "orvo/rectify/tilt_plane_info.h"
#include "orvo/rectify/tilt_trafo.h"
#include "orvo/rectify/tilt_def_line.h"
#include "orvo/rectify/tilt_estimation.h"
#include "orvo/rectify/tilt_parallel_def.h"

// geom3d
#include "orvo/geom3d/line3d.h"
#include "orvo/geom3d/point3d.h"

// geom2d
#include "orvo/geom2d/line.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/position.h"
#include "orvo/geom2d/prepared_polygon.h"
#include "orvo/geom2d/region.h"

// services
#include "orvo/services/checksum.h"
#include "orvo/services/environment.h"
#include "orvo/services/progress.h"
#include "orvo/services/registry.h"
#include "orvo/services/logger.h"
