// Helpers of the rectification tests: reading a block text through the block reader, and
// writing with a fresh indentation level.
#pragma once

#include <functional>
#include <sstream>
#include <string>

#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo::test {

/// Reads `text` with a reader on which `registerKeywords` has registered its bindings; returns
/// the number of read errors.
inline int ReadText(const std::string& text,
                    const std::function<void(OvReader&)>& registerKeywords) {
    std::istringstream in(text);
    OvReader reader(in, "test");
    registerKeywords(reader);
    reader.DoProcess(false);
    return reader.GetReadErrorCount();
}

/// What `write` puts on a stream, starting at indentation level 0.
template <class Write>
std::string Written(Write write) {
    OvWriterReset();
    std::ostringstream out;
    write(out);
    OvWriterReset();
    return out.str();
}

/// A handler object that runs a function for a keyword's block: lets a test read a record
/// through its `OvReaderObject` constructor or `Read`.
class BlockHandler : public LinkHdl {
public:
    explicit BlockHandler(std::function<void(OvReaderObject*)> body) : body_(std::move(body)) {}
    std::int32_t Call(void* object) {
        body_(static_cast<OvReaderObject*>(object));
        return 1;
    }
    Link AsLink() { return Link(this, &BlockHandler::Call); }

private:
    std::function<void(OvReaderObject*)> body_;
};

}  // namespace orvo::test
