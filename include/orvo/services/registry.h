// The registry of named functions: a module registers a `Link` under a name, and any other code
// calls it by that name with a parameter record, without either side knowing the other's classes.
#pragma once

#include <map>
#include <string>

#include "orvo/foundation/link.h"

namespace orvo {

/// The argument and the answer of a call through `OvRuntimeLinker`. The record only carries the
/// two pointers; it owns nothing. Derived records that own what they point to override the
/// destroy hooks, which do nothing here; the destructor does not call them.
class OvRuntimeParameter {
public:
    OvRuntimeParameter() = default;
    OvRuntimeParameter(const OvRuntimeParameter& other) = default;
    OvRuntimeParameter& operator=(const OvRuntimeParameter& other) = default;
    virtual ~OvRuntimeParameter();

    virtual void SetParameter(void* value);
    virtual void SetReturnvalue(void* value);
    virtual void DestroyParameter();
    virtual void DestroyReturnvalue();

    void* GetParameter() const { return parameter; }
    void* GetReturnvalue() const { return returnvalue; }

protected:
    void* parameter = nullptr;
    void* returnvalue = nullptr;
};

/// The process-wide registry of named functions. Names are compared case-sensitively.
///
/// Not thread-safe: the host registers, removes and calls from one thread at a time. A function
/// being called may itself register or remove names, its own included.
class OvRuntimeLinker {
public:
    /// The single instance, created at the first call and kept for the life of the process.
    static OvRuntimeLinker* Instance();

    virtual ~OvRuntimeLinker();
    OvRuntimeLinker(const OvRuntimeLinker&) = delete;
    OvRuntimeLinker& operator=(const OvRuntimeLinker&) = delete;

    /// Stores a copy of `link` under `name`. False, keeping the old link, when the name is taken.
    bool Register(const std::string& name, const Link& link);
    /// Erases `name`; false when it was not registered.
    bool Remove(const std::string& name);
    /// Calls the link registered under `name` with a pointer to `param`; the function reads
    /// `GetParameter()` and answers through `SetReturnvalue`. Returns true whenever the name is
    /// registered, even when its link is unset (nothing is called then) and whatever the function
    /// returned: the result only tells that the name exists. False for an unknown name.
    bool Call(const std::string& name, OvRuntimeParameter& param);

private:
    OvRuntimeLinker() = default;

    static OvRuntimeLinker* instance;
    std::map<std::string, Link> links;
};

}  // namespace orvo
