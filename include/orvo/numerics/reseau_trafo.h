// The reseau transformation: one stage of the chain from measured photo coordinates to image
// coordinates (the pre-reseau, the main reseau and the inverse polynomial stage of a photo).
// It is a 2D transformation with an object part (id and name) of its own.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/object.h"
#include "orvo/numerics/trafo2d.h"

namespace orvo {

class OvReaderObject;

class OvReseauTrafo : public OvTrafo2d, public OvObject {
public:
    /// Type None, all parameters 0, id 0, empty name.
    OvReseauTrafo();
    /// Type and parameters of `trafo`; id 0, empty name. Not explicit: any transformation (an
    /// estimated one, say) can be stored where a reseau transformation is expected.
    OvReseauTrafo(const OvTrafo2d& trafo);  // NOLINT(google-explicit-constructor)
    OvReseauTrafo(const OvReseauTrafo& other);
    /// Copies type, parameters, id and name.
    OvReseauTrafo& operator=(const OvReseauTrafo& other);
    /// Copies type and parameters; id and name stay.
    OvReseauTrafo& operator=(const OvTrafo2d& trafo);
    ~OvReseauTrafo() override;

    /// Reads the current file form, as `OvTrafo2d::Read` does: an integer type code, then the
    /// type's parameters; the stored result is the same for every input. In addition every
    /// problem is recorded in the reader's error list (status "ParserErrorNotSpecifiedToken",
    /// the problem described by the error's name) at the line where it was met: a type code that
    /// names no transformation (it is stored all the same, and no parameters are read), a
    /// parameter that is not a number (it reads 0.0), and a block that ends before all parameters
    /// were read (the missing ones become 0.0). A type code that is not an integer token raises
    /// the parser's error as `OvTrafo2d::Read` does. Returns 1.
    int Read(OvReaderObject* reader);
    /// Reads the form of the old file version 5.0 as `OvTrafo2d::ReadV50` does (codes 0
    /// Projektiv, 1 Affin, 2 Helmert, 3 Polynomial; any other code keeps the type and reads no
    /// numbers), with the problems recorded as in `Read`. Then the name becomes the name of the
    /// file the reader reads (`OvReader::GetFilename`): old projects kept their reseau data with
    /// the project, and a photo read from the old form takes this name as its reseau file.
    /// Returns 1.
    int ReadV50(OvReaderObject* reader);
    /// `OvTrafo2d::Write`: the type code, then the parameters (id and name are not written).
    std::ostream& Write(std::ostream& out) const;
};

}  // namespace orvo
