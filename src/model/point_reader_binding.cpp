// Point records and point files read through the block-file reader.
#include <cstdint>
#include <filesystem>
#include <istream>
#include <system_error>

#include "orvo/model/point_list.h"
#include "orvo/services/progress.h"
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

namespace {

// Reads records into the list up to the end of the data, calling `afterRecord(stream)` after
// each record.
template <class AfterRecord>
int ReadRecords(OvPointList& list, OvReaderObject* object, AfterRecord afterRecord) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 1;
    OvStreamParser source = reader->GetStreamParser();
    OvParser& parser = source.parser;
    OvPoint working;
    const TOvFormatTable<eOvPointRWMask> mask(list.GetMask());
    try {
        // A record that takes no token would be read again and again from the same place.
        while (working.Read(parser, source.stream, mask) > 0) {
            list.Add(working);
            afterRecord(source.stream);
        }
    } catch (const OvParserStatus& status) {
        if (status.GetStatus() == kOvParserStatusEndOfData) return 1;
        throw OvParserStatus(parser.GetStatus());
    }
    return 1;
}

// The records of a point file, read as `OvPointList::Read` reads them, with the progress
// measured by the position in the file.
class PointFileRecords : public LinkHdl {
public:
    // Smaller files are read before a progress display would be worth showing.
    static constexpr std::uint64_t kProgressMinimumBytes = 4 << 20;
    // The position is asked for once per this many records, not for every one.
    static constexpr unsigned kRecordsPerPositionCheck = 1024;

    PointFileRecords(OvPointList& list, const String& fileName)
        : list_(list), progress_("Reading points", FileSize(fileName), kProgressMinimumBytes) {}

    std::int32_t OnRecords(void* readerObject) {
        return ReadRecords(list_, static_cast<OvReaderObject*>(readerObject),
                           [this](std::istream& in) {
                               if (!progress_.IsReporting()) return;
                               if (++records_ % kRecordsPerPositionCheck != 0) return;
                               const std::streamoff at = in.tellg();
                               if (at > 0) progress_.Update(static_cast<std::uint64_t>(at));
                           });
    }

    void Finish() { progress_.Finish(); }

private:
    static std::uint64_t FileSize(const String& fileName) {
        std::error_code error;
        const std::uintmax_t size = std::filesystem::file_size(fileName.chars(), error);
        return error ? 0 : static_cast<std::uint64_t>(size);
    }

    OvPointList& list_;
    OvProgressTask progress_;
    unsigned records_ = 0;
};

}  // namespace

int OvPointList::Read(OvReaderObject* object) {
    return ReadRecords(*this, object, [](std::istream&) {});
}

std::int32_t OvPointList::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

int OvPointList::ReadFile(const String& fileName, const TOvFormatTable<eOvPointRWMask>& mask) {
    SetMask(mask);
    OvReader reader(fileName);
    // The records stand at the top level of a point file, without a keyword: the catch-all
    // object of the reader's first scope receives the first of them.
    PointFileRecords records(*this, fileName);
    OvReaderObject catchAll(Link(&records, &PointFileRecords::OnRecords));
    reader.RegisterObject(catchAll);
    reader.DoProcess(false);
    records.Finish();
    return Count();
}

}  // namespace orvo
