// A bound call: an object plus one of its member functions, stored so that the reader, the
// observers and the host's registries can call back into classes they do not know.
#pragma once

#include <concepts>
#include <cstdint>

namespace orvo {

/// Base class of every object that can be the target of a `Link`.
class LinkHdl {
public:
    virtual ~LinkHdl();
};

/// The member-function type a `Link` calls: one untyped argument, a signed 32-bit result.
using LinkFunction = std::int32_t (LinkHdl::*)(void*);

class Link {
public:
    /// An unset link.
    Link() = default;
    /// Set only when both `object` and `function` are non-null.
    Link(LinkHdl* object, LinkFunction function) : object(object), function(function) {}

    /// Binds a member function of a class derived from `LinkHdl`, checked at compile time:
    ///     Link(this, &MyReaderHandler::OnBlock)
    /// `Owner` is the class that declares the function; `Object` the object's own class.
    template <class Object, class Owner>
    requires std::derived_from<Object, Owner> && std::derived_from<Owner, LinkHdl> &&
        (!std::same_as<Owner, LinkHdl>)Link(Object* target,
                                            std::int32_t (Owner::*memberFunction)(void*))
        : object(target), function(static_cast<LinkFunction>(memberFunction)) {}

    Link(const Link&) = default;
    Link& operator=(const Link&) = default;
    virtual ~Link();

    /// Calls the function on the object with `arg` and returns its result; 0 without a call
    /// when the link is not set.
    std::int32_t Call(void* arg) const;
    /// 1 when both object and function are set.
    bool IsSet() const { return object != nullptr && function != nullptr; }
    /// 1 when the object or the function is missing.
    bool operator!() const { return !IsSet(); }

    LinkHdl* GetObject() const { return object; }
    LinkFunction GetFunction() const { return function; }

    /// Same object and same function.
    bool operator==(const Link& other) const {
        return object == other.object && function == other.function;
    }

private:
    LinkHdl* object = nullptr;
    LinkFunction function = nullptr;
};

/// The free-function spelling of the binding constructor: `MakeLink(this, &Handler::OnEvent)`.
template <class Object, class Owner>
requires std::derived_from<Object, Owner> && std::derived_from<Owner, LinkHdl> Link
MakeLink(Object* target, std::int32_t (Owner::*memberFunction)(void*)) {
    return Link(static_cast<LinkHdl*>(target), static_cast<LinkFunction>(memberFunction));
}

}  // namespace orvo
