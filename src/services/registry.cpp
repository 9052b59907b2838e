#include "orvo/services/registry.h"

namespace orvo {

// ---- OvRuntimeParameter --------------------------------------------------------------------

OvRuntimeParameter::~OvRuntimeParameter() = default;

void OvRuntimeParameter::SetParameter(void* value) {
    parameter = value;
}
void OvRuntimeParameter::SetReturnvalue(void* value) {
    returnvalue = value;
}
void OvRuntimeParameter::DestroyParameter() {}
void OvRuntimeParameter::DestroyReturnvalue() {}

// ---- OvRuntimeLinker -----------------------------------------------------------------------

// Never deleted: modules may still call through the registry while the process shuts down.
OvRuntimeLinker* OvRuntimeLinker::instance = nullptr;

OvRuntimeLinker* OvRuntimeLinker::Instance() {
    if (instance == nullptr) instance = new OvRuntimeLinker();
    return instance;
}

OvRuntimeLinker::~OvRuntimeLinker() = default;

bool OvRuntimeLinker::Register(const std::string& name, const Link& link) {
    return links.emplace(name, link).second;
}

bool OvRuntimeLinker::Remove(const std::string& name) {
    return links.erase(name) > 0;
}

bool OvRuntimeLinker::Call(const std::string& name, OvRuntimeParameter& param) {
    const auto found = links.find(name);
    if (found == links.end()) return false;
    // A copy, because the called function may remove its own entry.
    const Link link = found->second;
    if (link.IsSet()) link.Call(&param);
    return true;
}

}  // namespace orvo
