// The cameras of a project and the camera file.
//
// The camera file is a comment header followed by one line per camera, each a brace block
// holding one camera record:
//
//     ;
//     ; ORVOMETRIC 10 Version 6.715 Camera File
//     ;
//     ; File Format: { Id  C  Xh  Yh  A1  A2  R0 "Infotext"}
//     ;
//
//     {   3          24.314752            0.01274 ...                  9 "Wide 24mm"}
//
// (the comment lines hold the marker "; " with its blank). A second, plain column form holds
// the id and the six values of each camera without braces, info text or header.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/string.h"
#include "orvo/model/camera.h"

namespace orvo {

class OvReaderErrorList;
class OvReaderObject;

/// An owning list of cameras that reads and writes the camera file.
class OvCameraList : public TOvListHeader<OvCamera>, public LinkHdl {
public:
    OvCameraList() = default;
    OvCameraList(const OvCameraList& other) = default;
    /// Reads the camera file (see ReadFile).
    explicit OvCameraList(const char* fileName);
    /// Reads one camera block (see Read).
    explicit OvCameraList(OvReaderObject* reader);
    /// Replaces the cameras with copies of the other list's cameras.
    OvCameraList& operator=(const OvCameraList& other);
    ~OvCameraList() override;

    /// The block handler for one camera block: the current token must be the block's "{"
    /// (a token of another kind throws the parser's status-5 error for the reader to record);
    /// it advances past it (or only clears the push-back flag) and adds the camera read by
    /// AddCamera. Returns 1.
    ///
    /// Damaged blocks are dealt with here, so that one bad record costs only itself: each
    /// problem is recorded as a read error in the reader's list and reading goes on with the
    /// next block. A record that ends early is not added (the tokens up to its "}" are
    /// skipped); a complete record followed by further tokens before its "}" is added and the
    /// extra tokens skipped; a complete record whose "}" is missing (the next "{" or the end of
    /// the input follows) is added, and a "{" that follows is left for the reader as the next
    /// block. Only a failed stream is passed on to the reader, as it cannot be read further.
    int Read(OvReaderObject* reader);
    /// `Read` in the shape of a link function (the argument is the `OvReaderObject*`).
    std::int32_t ReadHdl(void* readerObject);

    /// Reads one camera record (OvCamera::Read) into a new camera, appends it (the list takes
    /// ownership) and returns it. A record that ends early is recorded as a read error with
    /// the reader, not added, and null is returned; the current token is then the one that
    /// ended it. Null for an object that belongs to no reader.
    OvCamera* AddCamera(OvReaderObject* reader);

    /// Appends the cameras of the camera file. Returns 1 whatever happened, also when the file
    /// cannot be opened; the read errors are collected by the reader and dropped. A stray token
    /// between the blocks is a read error too and does not end the reading.
    int ReadFile(const char* fileName);
    /// The same, copying every read error into `errors` (when not null; the list is emptied
    /// first). Unlike a plain reader run, the last error is kept even when it is a
    /// "ParserErrorNotSpecifiedToken". The count of errors is returned through the list.
    int ReadFile(const char* fileName, OvReaderErrorList* errors);

    /// Writes every camera as "{", its record, "}" and a line end (`Ovendl`). The stream is
    /// switched to the classic "C" locale first (and stays so).
    std::ostream& Write(std::ostream& out) const;
    /// Writes the five comment lines of the camera file and an empty line.
    std::ostream& WriteHeaderComment(std::ostream& out) const;
    /// Writes the camera file: with gentriFormat false the header and the blocks (starting at
    /// indentation level 0), with gentriFormat true one plain column line per camera and no
    /// header. The file is replaced at once (a temporary file renamed over it only when
    /// complete), so a failed write leaves an existing file as it was. Returns 1 in every case,
    /// also when the file cannot be written: the camera file writers report no failure.
    int WriteFile(const String& fileName, bool gentriFormat = false) const;

    /// Among the cameras whose info text contains `type` (case-sensitive, anywhere; an empty
    /// type is contained in every text), the one whose principal distance is nearest to C. On
    /// equal distance the earlier camera stays; a camera whose distance is NaN loses to any
    /// other. Null when no info text contains type.
    OvCamera* FindBestMatch(const String& type, double C) const;
};

}  // namespace orvo
