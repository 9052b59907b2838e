// Point records and point files read through the block-file reader.
#include <cstdint>

#include "orvo/model/point_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo {

int OvPoint::Read(OvReaderObject* object, const OvPointFormat& format) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 1;  // an unregistered object has no tokenizer to read from
    OvStreamParser source = reader->GetStreamParser();
    Read(source.parser, source.stream, format);
    return 1;
}

OvPointList::OvPointList(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask) {
    ReadFile(fileName, mask);
}

int OvPointList::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 1;
    OvStreamParser source = reader->GetStreamParser();
    OvParser& parser = source.parser;
    OvPoint working;
    const TOvFormatTable<eOvPointRWMask> mask(GetMask());
    try {
        // A record that takes no token would be read again and again from the same place.
        while (working.Read(parser, source.stream, mask) > 0)
            Add(working);
    } catch (const OvParserStatus& status) {
        if (status.GetStatus() == kOvParserStatusEndOfData) return 1;
        throw OvParserStatus(parser.GetStatus());
    }
    return 1;
}

std::int32_t OvPointList::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

int OvPointList::ReadFile(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask) {
    SetMask(mask);
    OvReader reader(fileName);
    // The records stand at the top level of a point file, without a keyword: the catch-all
    // object of the reader's first scope receives the first of them.
    OvReaderObject catchAll(Link(this, &OvPointList::ReadHdl));
    reader.RegisterObject(catchAll);
    reader.DoProcess(false);
    return Count();
}

}  // namespace orvo
