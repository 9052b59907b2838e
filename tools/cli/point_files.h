// Point files for the commands: the column names of "--columns", reading a point file (or
// standard input) with every problem collected by line, and writing one.
//
// A point file has no header: its columns are what the reader is told. The commands therefore
// look at the shape of the text first. Without "--columns", a file whose lines all hold three
// values is read as "id,x,y" and one with four as "id,x,y,z"; anything else needs "--columns".
// With "--columns", every line must hold as many values as the columns take, so that a
// forgotten column shows up as an error at its line instead of shifting every value after it.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "orvo/model/point_list.h"
#include "orvo/textfile/reader.h"

namespace orvo::cli {

/// One problem found in an input file.
struct FileProblem {
    std::string file;
    std::uint32_t line = 0;  // 0: the file as a whole
    std::string status;      // the reader's status text, e.g. "ParserErrorNotSpecifiedToken"
    std::string detail;      // what was wrong, when known (may be empty)
};

/// "FILE:LINE: STATUS: DETAIL" (the line and the detail only when known).
std::string FormatProblem(const FileProblem& problem);

/// The problems of a reader's error list, in order.
void CollectReaderErrors(const std::string& file, const OvReaderErrorList& errors,
                         std::vector<FileProblem>* problems);

/// Parses a column list such as "id,x,y,z" or "id,code,x,y,z,sx,sy,sz" (names below, or the
/// numeric column codes). Returns nothing and sets `error` for an unknown name.
///   id code code123 name photo camera x y z dx dy dz ds redu redu2 redu3 skip sx sy sz
///   rx ry rz (the residual columns, which are written but consume nothing when read)
std::optional<OvPointFormat> ParseColumns(const std::string& text, std::string* error);
/// The names of a format, comma-separated ("id,x,y").
std::string ColumnsText(const OvPointFormat& format);
/// How many tokens one record of the format takes when read.
int TokensPerRecord(const OvPointFormat& format);

/// The result of reading one point file.
struct PointFile {
    std::string name;
    OvPointList points;
    OvPointFormat columns;
    std::vector<FileProblem> problems;
    bool opened = false;
};

/// Reads a point file. `name` "-" reads `standardInput`. `columns` empty: chosen from the shape
/// of the lines (see the top). Problems (a file that cannot be opened, lines of the wrong
/// shape, words or broken numbers where values belong, tokenizer errors) are collected with
/// their lines; the points that could be read are kept all the same.
PointFile ReadPointFile(const std::string& name, std::istream& standardInput,
                        const std::optional<OvPointFormat>& columns);

/// Writes the points with the columns, one point per line, each line ended, numbers with 16
/// significant digits as the library writes them. False when the file cannot be written.
/// `name` "-" writes to `standardOutput`.
bool WritePointFile(const std::string& name, const OvPointList& points,
                    const OvPointFormat& columns, std::ostream& standardOutput);

}  // namespace orvo::cli
