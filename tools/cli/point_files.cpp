#include "point_files.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <locale>
#include <map>
#include <sstream>

#include "arg_parser.h"
#include "orvo/foundation/link.h"
#include "orvo/textfile/writer.h"

namespace orvo::cli {

namespace {

struct ColumnName {
    const char* name;
    eOvPointRWMask code;
};

constexpr ColumnName kColumnNames[] = {
    {"id", eOvPointRWId},        {"code123", eOvPointRWCode123},
    {"code", eOvPointRWCode},    {"name", eOvPointRWName},
    {"photo", eOvPointRWPhoto},  {"camera", eOvPointRWCamera},
    {"x", eOvPointRWX},          {"y", eOvPointRWY},
    {"z", eOvPointRWZ},          {"dx", eOvPointRWDx},
    {"dy", eOvPointRWDy},        {"dz", eOvPointRWDz},
    {"ds", eOvPointRWDs},        {"redu", eOvPointRWRedu},
    {"redu2", eOvPointRWRedu2},  {"redu3", eOvPointRWRedu3},
    {"skip", eOvPointRWSkip},    {"sx", eOvPointRWSx},
    {"sy", eOvPointRWSy},        {"sz", eOvPointRWSz},
    {"rx", eOvPointRWResidualX}, {"ry", eOvPointRWResidualY},
    {"rz", eOvPointRWResidualZ},
};

bool ConsumesNothing(eOvPointRWMask code) {
    return code == eOvPointRWResidualX || code == eOvPointRWResidualY ||
           code == eOvPointRWResidualZ;
}

bool IsKnownCode(std::uint32_t code) {
    for (const ColumnName& column : kColumnNames) {
        if (static_cast<std::uint32_t>(column.code) == code) return true;
    }
    return false;
}

bool IsNumber(const std::string& word) {
    const char* begin = word.data() + (!word.empty() && word[0] == '+' ? 1 : 0);
    const char* end = word.data() + word.size();
    double value = 0.0;
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    return begin != end && ptr == end &&
           (ec == std::errc() || ec == std::errc::result_out_of_range);
}

// The shape of a point file's text: the number of values on each line that holds any
// (comments cut off), and the words that are not numbers. The point reading would take such a
// word as 0.0 where it stands in a record, or drop it between records, without a word.
struct TextShape {
    std::map<std::uint32_t, int> values;
    std::vector<std::pair<std::uint32_t, std::string>> words;
};

TextShape ShapeOf(const std::string& text) {
    TextShape shape;
    std::uint32_t line = 1;
    std::string word;
    bool inComment = false;
    auto endWord = [&] {
        if (word.empty()) return;
        ++shape.values[line];
        if (!IsNumber(word)) shape.words.emplace_back(line, word);
        word.clear();
    };
    for (char c : text) {
        if (c == '\n') {
            endWord();
            ++line;
            inComment = false;
        } else if (inComment) {
            continue;
        } else if (c == ';' || c == '!') {
            endWord();
            inComment = true;
        } else if (c == ' ' || c == '\t' || c == '\r') {
            endWord();
        } else {
            word += c;
        }
    }
    endWord();
    return shape;
}

// Keeps the reader going past words between records and past tokenizer errors.
class PointFileHandlers : public LinkHdl {
public:
    PointFileHandlers() = default;

    // A word at the top level, between records: the text check has reported it already;
    // only the word itself is passed over, so that the values after it stay in their columns.
    std::int32_t OnUnknownWord(void*) { return 1; }
    // Tokenizer errors are recorded by the reader; reading goes on after them.
    std::int32_t OnParserError(void*) { return 1; }
};

}  // namespace

std::string FormatProblem(const FileProblem& problem) {
    std::string text = problem.file + ":";
    if (problem.line > 0) text += std::to_string(problem.line) + ":";
    text += " " + problem.status;
    if (!problem.detail.empty() && problem.detail != problem.status) text += ": " + problem.detail;
    return text;
}

void CollectReaderErrors(const std::string& file, const OvReaderErrorList& errors,
                         std::vector<FileProblem>* problems) {
    for (const OvReaderError* error = errors.First(); error != nullptr; error = error->Next()) {
        problems->push_back(
            {file, error->GetLine(), error->GetStatusText(), error->GetName().chars()});
    }
}

std::optional<OvPointFormat> ParseColumns(const std::string& text, std::string* error) {
    OvPointFormat format;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = text.find(',', start);
        const std::string part =
            text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        bool found = false;
        for (const ColumnName& column : kColumnNames) {
            if (part == column.name) {
                format.AddEntry(column.code);
                found = true;
                break;
            }
        }
        if (!found) {
            const std::optional<unsigned> code = ParseUnsigned(part);
            if (!code || !IsKnownCode(*code)) {
                if (error != nullptr) *error = "unknown column '" + part + "'";
                return std::nullopt;
            }
            format.AddEntry(static_cast<eOvPointRWMask>(*code));
        }
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return format;
}

std::string ColumnsText(const OvPointFormat& format) {
    std::string text;
    for (int i = 0; i < format.Size() && format[i] != eOvPointRWEnd; ++i) {
        if (!text.empty()) text += ",";
        std::string name = std::to_string(static_cast<std::uint32_t>(format[i]));
        for (const ColumnName& column : kColumnNames) {
            if (column.code == format[i]) name = column.name;
        }
        text += name;
    }
    return text;
}

int TokensPerRecord(const OvPointFormat& format) {
    int tokens = 0;
    for (int i = 0; i < format.Size() && format[i] != eOvPointRWEnd; ++i) {
        if (IsKnownCode(format[i]) && !ConsumesNothing(format[i])) ++tokens;
    }
    return tokens;
}

PointFile ReadPointFile(const std::string& name, std::istream& standardInput,
                        const std::optional<OvPointFormat>& columns) {
    PointFile result;
    result.name = name == "-" ? "<stdin>" : name;
    std::string text;
    if (name == "-") {
        text.assign(std::istreambuf_iterator<char>(standardInput), {});
    } else {
        std::ifstream file(name, std::ios::binary);
        if (!file) {
            result.problems.push_back(
                {result.name, 0, GetOvParserStatusText(ParserErrorStream), "cannot open file"});
            return result;
        }
        text.assign(std::istreambuf_iterator<char>(file), {});
    }
    result.opened = true;

    const TextShape textShape = ShapeOf(text);
    const std::map<std::uint32_t, int>& shape = textShape.values;
    for (const auto& [line, word] : textShape.words) {
        result.problems.push_back({result.name, line,
                                   GetOvParserStatusText(ParserErrorNotSpecifiedToken),
                                   "'" + word + "' is not a number"});
    }
    if (columns) {
        result.columns = *columns;
    } else if (shape.empty() || shape.begin()->second == 3) {
        result.columns = ParseColumns("id,x,y", nullptr).value();
    } else if (shape.begin()->second == 4) {
        result.columns = ParseColumns("id,x,y,z", nullptr).value();
    } else {
        result.problems.push_back({result.name, shape.begin()->first,
                                   GetOvParserStatusText(ParserErrorNotSpecifiedToken),
                                   std::to_string(shape.begin()->second) +
                                       " values on a line; name the columns with --columns"});
        return result;
    }
    const int expected = TokensPerRecord(result.columns);
    for (const auto& [line, count] : shape) {
        if (count != expected) {
            result.problems.push_back(
                {result.name, line, GetOvParserStatusText(ParserErrorNotSpecifiedToken),
                 std::to_string(count) + " values on the line, the columns " +
                     ColumnsText(result.columns) + " take " + std::to_string(expected)});
        }
    }

    std::istringstream in(text);
    OvReader reader(in, String(result.name.c_str()));
    result.points.SetMask(result.columns);
    PointFileHandlers handlers;
    reader.SkipUnknownToken(false);
    reader.SetUnknownTokenHdl(MakeLink(&handlers, &PointFileHandlers::OnUnknownWord));
    reader.SetParserErrorHdl(MakeLink(&handlers, &PointFileHandlers::OnParserError));
    reader.RegisterObject(OvReaderObject(MakeLink(&result.points, &OvPointList::ReadHdl)));
    reader.DoProcess(false);
    // A line the text check found fault with needs no second report from the reader (a
    // broken number such as "3D" is both a word and a tokenizer error).
    std::vector<FileProblem> readerProblems;
    CollectReaderErrors(result.name, reader.GetReaderErrorList(), &readerProblems);
    for (FileProblem& problem : readerProblems) {
        bool known = false;
        for (const FileProblem& earlier : result.problems)
            known = known || earlier.line == problem.line;
        if (!known) result.problems.push_back(std::move(problem));
    }
    return result;
}

bool WritePointFile(const std::string& name, const OvPointList& points,
                    const OvPointFormat& columns, std::ostream& standardOutput) {
    OvPointList shaped(columns);
    for (const OvPoint* p = points.First(); p != nullptr; p = p->Next())
        shaped.Add(*p);
    std::ofstream file;
    std::ostream* out = &standardOutput;
    if (name != "-") {
        file.open(name, std::ios::binary | std::ios::trunc);
        if (!file) return false;
        out = &file;
    }
    const std::locale previous = out->imbue(std::locale::classic());
    const std::streamsize precision = out->precision();
    const std::ios::fmtflags flags = out->flags();
    OvWriterReset();
    shaped.Write(*out);
    if (shaped.Count() > 0) *out << "\n";
    out->flush();
    const bool written = static_cast<bool>(*out);
    out->imbue(previous);
    out->precision(precision);
    out->flags(flags);
    if (name != "-") file.close();
    return written && (name == "-" || !file.fail());
}

}  // namespace orvo::cli
