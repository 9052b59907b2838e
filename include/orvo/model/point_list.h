// The point list: an owning list of points that carries the column format of its point file,
// and the free functions that work on whole point lists.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/string.h"
#include "orvo/model/format_table.h"
#include "orvo/model/point.h"

namespace orvo {

class OvParser;
class OvReaderObject;

/// A point list is a link target, so that a reader can bind a block of point records straight
/// to a list: `Link(&list, &OvPointList::ReadHdl)`.
class OvPointList : public TOvListHeader<OvPoint>,
                    public TOvFormatTable<eOvPointRWMask>,
                    public LinkHdl {
public:
    /// An empty list with an empty mask.
    OvPointList() = default;
    explicit OvPointList(const TOvFormatTable<eOvPointRWMask>& mask);
    /// Sets the mask and reads the file (see ReadFile).
    OvPointList(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask);
    /// Copies the points and the mask.
    OvPointList(const OvPointList& other);
    ~OvPointList() override = default;

    /// Replaces the points with copies of the other list's points and copies the mask.
    OvPointList& operator=(const OvPointList& other);

    const TOvFormatTable<eOvPointRWMask>& GetMask() const { return *this; }
    TOvFormatTable<eOvPointRWMask>& GetMask() { return *this; }
    /// Copies a table into the list's mask and returns the mask.
    TOvFormatTable<eOvPointRWMask>& SetMask(const TOvFormatTable<eOvPointRWMask>& mask);

    // The list and the table both have an index operator and a Find; the list's id and name
    // lookups stay reachable next to the point lookup below.
    using TOvListHeader<OvPoint>::Find;
    using TOvFormatTable<eOvPointRWMask>::operator[];

    /// The first point with this id (photoId 0) or with this id and photo id (photoId not 0).
    /// Without start the list is walked from its first point. With start (a point of this
    /// list) the walk goes forward from start, start included, to the end, then backward from
    /// start to the beginning; the first match in that order wins. Null when none matches.
    OvPoint* Find(unsigned id, unsigned photoId, OvPoint* start = nullptr) const;

    /// The point nearest to p (Distance); on a tie the earlier point wins. The smallest
    /// distance is stored in *distance when distance is not null. An empty list returns null and
    /// leaves *distance untouched.
    OvPoint* FindNearest(const OvPoint& p, double* distance) const;

    /// Block handler: reads point records with the list's mask until the "}" that closes the
    /// block and appends a copy of each complete record. Returns 1. An incomplete record is not
    /// added. Tokenizer errors, and the end of the input, reach the caller as the tokenizer's
    /// `OvParserStatus`. A mask with which a record consumes no token at all (an empty mask, or
    /// only columns that read nothing) ends the read at once instead of adding points forever.
    /// An object that is registered with no reader reads nothing.
    int Read(OvReaderObject* reader);
    /// The same on a tokenizer and its stream directly; the end of the input ends the read
    /// quietly here. Returns 1.
    int Read(OvParser& parser, std::istream& in);
    /// `Read` in the shape of a link function; the argument is the `OvReaderObject*`.
    std::int32_t ReadHdl(void* readerObject);

    /// Writes every point with the list's mask; a line end (`Ovendl`, which flushes the stream
    /// and indents the next line) between two points, none after the last. Sets the stream's
    /// precision to 16 (an empty list writes nothing and leaves the stream alone). When the
    /// stream prints numbers the plain way (general notation, '.' and no digit grouping, no
    /// showpos, showpoint or uppercase, the standard number facet) the records are formatted in
    /// memory with std::to_chars and written in one piece each: the bytes are the same.
    std::ostream& Write(std::ostream& out) const;

    /// Sets the mask and appends the points read from the file (the list is not cleared first).
    /// Returns Count() afterwards. Read errors are collected by the reader and not reported.
    /// A file of 4 MiB or more reports its progress (by the position in the file) as an
    /// `OvProgressTask` "Reading points" through `OvProgressBarRouter`.
    int ReadFile(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask);
    /// Writes the list to the file without a header line, numbers in the classic "C" form
    /// whatever the host's locale, starting at indentation level 0 (`OvWriterReset`): the bytes
    /// of `Write` on such a stream, formatted in memory and handed to the file in large pieces
    /// rather than flushed line by line. The file
    /// is replaced at once: a temporary file is renamed over it only when it was written
    /// completely, so a failed write leaves the old file as it was. Returns 1, also when the
    /// file cannot be written: the point file writers report no failure, deliberately.
    int WriteFile(const String& fileName) const;
    int WriteFile(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask);
};

/// Counts the points of a that have a partner with the same id in b, each point of b serving as
/// partner at most once (points of a taken in list order), and appends a copy of every such
/// point of a to result (when result is not null).
int FindOvPointById(const OvPointList& a, const OvPointList& b, OvPointList* result);

/// Folds the list into one point: starting from the zero point, each point p replaces the
/// running result g by (g * 0.0 + p) / 1.0. Since * scales only x, y, z and + adds six values,
/// the result has the x, y, z of the last point and the sum of all d[] triples; id 0, empty
/// name, flags 0. An empty list gives the zero point. This is not an average, and callers rely
/// on exactly this result.
OvPoint OvCalcGravitycenter(const OvPointList& list);

}  // namespace orvo
