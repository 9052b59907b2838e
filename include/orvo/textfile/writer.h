// Writing conventions of the block-structured project files: one library-wide indentation
// level, block and comment markers, line ends that indent the next line, and field-width
// manipulators for aligned columns. Every manipulator takes and returns the stream so it can be
// used inline: `out << s12 << "COMMENT" << w4 << '"' << text << '"' << Ovendl;`.
//
// The indentation level is process-wide (shared by all streams and writers) and never
// negative; a writer starts a file with OvWriterReset(). Not thread-safe by design: write one
// file at a time.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/string.h"
#include "orvo/textfile/c_locale.h"

namespace orvo {

/// Text written once per indentation level after each line end.
inline constexpr const char* kOvIndentUnit = "    ";
/// Marker that starts a comment.
inline constexpr const char* kOvCommentPrefix = "; ";

/// Sets the indentation level to 0; writes nothing.
void OvWriterReset();
/// The current indentation level.
std::int32_t OvWriterLevel();

/// Raises the level by one; writes nothing.
std::ostream& OvTabPlus(std::ostream& out);
/// Lowers the level by one, not below 0; writes nothing.
std::ostream& OvTabMinus(std::ostream& out);
/// Raises the level, then writes "{".
std::ostream& OvBeginBlock(std::ostream& out);
/// Lowers the level (not below 0), then writes "}".
std::ostream& OvEndBlock(std::ostream& out);
/// Writes the comment prefix "; ".
std::ostream& OvComment(std::ostream& out);
/// Writes a newline, flushes, then the indentation unit once per level.
std::ostream& Ovendl(std::ostream& out);
/// Writes "{", raises the level, then ends the line (Ovendl): the entries follow indented.
std::ostream& OvBeginBlockNL(std::ostream& out);
/// Lowers the level (not below 0), ends the line (Ovendl), then writes "}".
std::ostream& OvEndBlockNL(std::ostream& out);

// Field-width manipulators. Each `wN` writes one blank and then sets a right-aligned field for
// the next item only (as a stream width does), of the width given; `s12` sets a left-aligned
// field of 12 for a keyword. The alignment flag stays set on the stream afterwards (stream
// alignment is sticky), which is why every `wN` sets right alignment again.
std::ostream& w4(std::ostream& out);   ///< blank + right-aligned 4
std::ostream& w6(std::ostream& out);   ///< blank + right-aligned 8
std::ostream& w8(std::ostream& out);   ///< blank + right-aligned 10
std::ostream& w12(std::ostream& out);  ///< blank + right-aligned 16
std::ostream& w14(std::ostream& out);  ///< blank + right-aligned 18
std::ostream& w16(std::ostream& out);  ///< blank + right-aligned 21
std::ostream& w19(std::ostream& out);  ///< blank + right-aligned 24
std::ostream& s12(std::ostream& out);  ///< left-aligned 12 (keywords)

/// How much of a text the records put between double quotes: a line holds at most 8511
/// characters, and the keyword, an id and the quotes take a few dozen of them.
inline constexpr int kOvMaxQuotedText = 8000;

/// The text as it can stand between double quotes on one line of a block file: the syntax has
/// no escapes, so a double quote becomes an apostrophe, and line ends and NULs (which would end
/// the line) become blanks; cut after `maxLength` characters.
String OvQuotableText(const String& text, int maxLength = kOvMaxQuotedText);

}  // namespace orvo
