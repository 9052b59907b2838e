#include "demo_truth.h"

#include "orvo/textfile/reader.h"

namespace orvo::cli {

namespace {

const eOvPointRWMask kImageColumns[] = {eOvPointRWId, eOvPointRWX, eOvPointRWY, eOvPointRWEnd};

// Reads the PHOTO blocks into the truth.
class TruthReader : public LinkHdl {
public:
    explicit TruthReader(Truth& truth) : truth_(truth) {}

    std::int32_t ReadPhoto(void* readerObject) {
        auto* object = static_cast<OvReaderObject*>(readerObject);
        TruthPhoto photo;
        photo.image.SetMask(kImageColumns);
        object->RegisterObject(OvReaderObject("ID", &photo.id));
        object->RegisterObject(
            OvReaderObject("SCANTRAFO", MakeLink(&photo, &TruthPhoto::ReadScan)));
        object->RegisterObject(
            OvReaderObject("IMAGEPOINTS", MakeLink(&photo.image, &OvPointList::ReadHdl)));
        object->DoProcess();
        if (photo.id > 0) truth_.photos[static_cast<unsigned>(photo.id)] = photo;
        return 1;
    }

private:
    Truth& truth_;
};

}  // namespace

TruthPhoto::TruthPhoto() = default;
TruthPhoto::TruthPhoto(const TruthPhoto& other) = default;
TruthPhoto& TruthPhoto::operator=(const TruthPhoto& other) = default;
TruthPhoto::~TruthPhoto() = default;

std::int32_t TruthPhoto::ReadScan(void* readerObject) {
    hasScan = true;
    return scan.Read(static_cast<OvReaderObject*>(readerObject));
}

const TruthPhoto* Truth::Find(unsigned id) const {
    const auto found = photos.find(id);
    return found != photos.end() ? &found->second : nullptr;
}

Truth ReadTruthFile(const std::string& file) {
    Truth truth;
    OvReader reader{String(file.c_str())};
    TruthReader handler(truth);
    reader.RegisterObject(OvReaderObject("PHOTO", MakeLink(&handler, &TruthReader::ReadPhoto)));
    reader.DoProcess(false);
    CollectReaderErrors(file, reader.GetReaderErrorList(), &truth.problems);
    return truth;
}

}  // namespace orvo::cli
