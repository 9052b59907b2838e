// Named attributes that the host attaches to a photo; the library stores the text as the node's
// name and leaves its meaning to the host.
#pragma once

#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/string.h"

namespace orvo {

class OvPhoto;
class OvAttributeList;

class OvAttribute : public OvListnode {
public:
    OvAttribute() = default;
    /// An attribute with id 0 whose name is `text`.
    explicit OvAttribute(const String& text) : OvListnode(text) {}
    /// Copies id, name and the photo pointer; the copy is unlinked.
    OvAttribute(const OvAttribute& other) = default;
    ~OvAttribute() override;

    /// Copies id, name and the photo pointer, never the links.
    virtual OvAttribute& operator=(const OvAttribute& other);
    /// Called by the owner when the attribute joins a photo; does nothing here and returns 1.
    virtual int OnAdd();
    /// Called by `OvAttributeList::Subtract` before the attribute leaves; returns 1.
    virtual int OnSubtract();

    /// The photo the attribute belongs to (not owned), or null.
    OvPhoto* GetPhoto() const { return photo; }

    /// The neighbours in the list, or null at the ends.
    OvAttribute* Next() const { return static_cast<OvAttribute*>(GetNext()); }
    OvAttribute* Previous() const { return static_cast<OvAttribute*>(GetPrev()); }

protected:
    void SetPhoto(OvPhoto* owner) { photo = owner; }

private:
    friend class OvAttributeList;
    friend class OvPhoto;

    OvPhoto* photo = nullptr;
};

/// The attributes of one photo; owns them.
class OvAttributeList : public TOvListHeader<OvAttribute> {
public:
    OvAttributeList() = default;
    OvAttributeList(const OvAttributeList& other) = default;
    OvAttributeList& operator=(const OvAttributeList& other) = default;
    ~OvAttributeList() override;

    using TOvListHeader<OvAttribute>::Subtract;
    /// When `attribute` is non-null: `OnSubtract()`, the photo pointer cleared, then removed as
    /// the list template does. Returns the attribute (the caller owns it now).
    OvAttribute* Subtract(OvAttribute* attribute) override;
};

extern template class TOvBaseListHeader<OvAttribute>;
extern template class TOvListHeader<OvAttribute>;

}  // namespace orvo
