// The umbrella header: includes every public header of the library.
#pragma once

// foundation
#include "orvo/foundation/version.h"

// textfile

// model

// numerics

// rectify

// geom2d

// services
