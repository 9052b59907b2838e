// The project file: the photos of a project in one block file.
//
// A project file is a block file (the syntax of the tokenizer and the block reader) whose top
// level holds one "PHOTO" block per photo; each block is the photo's record as `OvPhoto::Write`
// writes it. `OvWriteProject` writes a short comment header and the photos in list order:
//
//     ;
//     ; ORVOMETRIC 10 Version 6.715 Project File
//     ;
//
//     PHOTO
//     {
//         PHOTOID         {    1 "img_0001.tif"}
//         COMMENT            "north facade"
//         ...
//     }
//
// Reading a file that `OvWriteProject` wrote and writing the photos again gives the same bytes.
// (The photo's point lists, attributes and the state bits other than "CHECKACTIVE" are not part
// of the record.) Tilt transforms are read from both their forms, "TILTPLANE" and the older
// "TILTTRAFO".
//
// Reading is forgiving: whatever is damaged is reported with its line number and stepped over,
// and every photo that could be read is kept. Unknown keywords (at the top level or inside a
// photo, with their value or block), values of the wrong kind, malformed transformations, stray
// tokens and blocks, a "PHOTO" without a block, and tokenizer errors (an unterminated string, an
// invalid number) are reported and reading goes on. A "PHOTO" block cut off by the end of the
// file is reported and not kept. Only a failed stream ends reading early.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <vector>

#include "orvo/foundation/string.h"
#include "orvo/model/ortho_photo.h"
#include "orvo/model/photo_list.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo {

/// One problem met while reading a project file.
class OvProjectFileError {
public:
    OvProjectFileError() = default;
    OvProjectFileError(std::uint32_t line, eOvParserStatus status, const String& text)
        : line_(line), status_(status), text_(text) {}

    /// The line of the file where the problem was met (the first line is 1).
    std::uint32_t GetLine() const { return line_; }
    /// The tokenizer status recorded with it ("ParserErrorNotSpecifiedToken" for problems of
    /// the record's structure, such as a value of the wrong kind or an unknown keyword).
    eOvParserStatus GetStatus() const { return status_; }
    /// What was wrong, e.g. `COMMENT: a value of another kind is expected` or
    /// `unknown keyword "FOO"`; the status text when nothing more is known.
    const String& GetText() const { return text_; }
    /// `Line 000012: <text>`.
    String Format() const;

private:
    std::uint32_t line_ = 0;
    eOvParserStatus status_ = ParserStatusOK;
    String text_;
};

using OvProjectFileErrors = std::vector<OvProjectFileError>;

/// Reads the project file and appends its photos to `photos` (the list is not emptied first).
/// Returns the number of photos appended. Every problem goes to `errors` (when not null; it is
/// emptied first), in the order met; a file that cannot be opened gives one error with status
/// "ParserErrorStream".
int OvReadProjectFile(const String& fileName, OvPhotoList& photos,
                      OvProjectFileErrors* errors = nullptr);
/// The same from a stream the caller owns; `name` stands for the file's name (the old form of
/// the reseau transformations takes it as the reseau file name, see `OvReseauTrafo::ReadV50`).
int OvReadProject(std::istream& in, const String& name, OvPhotoList& photos,
                  OvProjectFileErrors* errors = nullptr);

/// Writes the comment header (three comment lines and an empty line) and every photo as a
/// "PHOTO" block (`OvPhotoList::Write`). The stream is switched to the classic "C" locale and
/// the writing indentation starts at level 0.
std::ostream& OvWriteProject(std::ostream& out, const OvPhotoList& photos);
/// Writes the project to the named file, replacing it at once: the old file stays as it was
/// unless the new one was written completely. Returns whether the file was written.
bool OvWriteProjectFile(const String& fileName, const OvPhotoList& photos);

/// Projects with ortho photos: the top level holds "ORTHOPHOTO" blocks (each the record of
/// `OvOrthoPhoto::Write`) besides the "PHOTO" blocks, in any order. These forms read both into
/// their lists and return the number of photos and ortho photos appended; an "ORTHOPHOTO"
/// block is read, reported and kept (or not) as a "PHOTO" block is. The forms without an ortho
/// list report an "ORTHOPHOTO" block as an unknown keyword.
int OvReadProjectFile(const String& fileName, OvPhotoList& photos, OvOrthoPhotoList& orthos,
                      OvProjectFileErrors* errors = nullptr);
int OvReadProject(std::istream& in, const String& name, OvPhotoList& photos,
                  OvOrthoPhotoList& orthos, OvProjectFileErrors* errors = nullptr);
/// Writes the header, the photos and then the ortho photos (`OvOrthoPhotoList::Write`).
std::ostream& OvWriteProject(std::ostream& out, const OvPhotoList& photos,
                             const OvOrthoPhotoList& orthos);
/// The same to the named file, replacing it at once as above. Returns whether it was written.
bool OvWriteProjectFile(const String& fileName, const OvPhotoList& photos,
                        const OvOrthoPhotoList& orthos);
/// Sends the problems of one read to the application logger at level 2: a header line
/// ` <count> Read Error(s) in <file>:` and one line ` - <Format()>` per problem. Nothing for no
/// problems.
void OvLogProjectFileErrors(const String& fileName, const OvProjectFileErrors& errors);

}  // namespace orvo
