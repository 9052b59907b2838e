// The root record of the data model, the intrusive list links every record carries, and the
// flag word of points and photos.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/string.h"

namespace orvo {

class OvReaderObject;
template <class T>
class TOvBaseListHeader;

/// Every record has a numeric id (0 means "none") and a name. Ids are not unique by themselves:
/// the lists hand out free ids on request (`GetFreeId`) but never assign them.
class OvObject {
public:
    OvObject() = default;
    explicit OvObject(std::uint32_t id) : id(id) {}
    explicit OvObject(const String& name) : name(name) {}
    OvObject(std::uint32_t id, const String& name) : id(id), name(name) {}
    OvObject(const OvObject&) = default;
    OvObject& operator=(const OvObject&) = default;
    virtual ~OvObject();

    /// Compares by id as `Compare(other->GetId())` does; a null object gives 0.
    virtual int Compare(const OvObject* other) const;
    /// 1 when this id is less than `otherId`, 0 when equal, -1 when greater.
    virtual int Compare(std::uint32_t otherId) const;

    std::uint32_t GetId() const { return id; }
    void SetId(std::uint32_t newId) { id = newId; }
    const String& GetName() const { return name; }
    void SetName(const String& newName) { name = newName; }

    /// Reads the stored form written by `Write`: the current token must be an integer (the id,
    /// clamped to 0..4294967295), then, after advancing, a double-quoted string (the name);
    /// advances once more and returns 1. A token of another kind throws the parser's
    /// `OvParserStatus` (status 5), which the reader records; the id may then already be set.
    /// Returns 0 for an object that belongs to no reader.
    int Read(OvReaderObject* reader);
    /// Writes " ", the id right-aligned in 4 columns, " " and the name in double quotes: the
    /// form in which an object is stored in the block files.
    std::ostream& Write(std::ostream& out) const;

protected:
    std::uint32_t id = 0;
    String name;
};

/// The links of an intrusive doubly linked list. A node belongs to at most one list at a time;
/// the list header (`TOvBaseListHeader`) is the only code that changes the links.
class OvBaseListnode {
public:
    OvBaseListnode() = default;
    /// A copy is never linked: the copy of a listed record starts on its own.
    OvBaseListnode(const OvBaseListnode&) noexcept {}
    /// Assignment leaves the links of both sides alone.
    OvBaseListnode& operator=(const OvBaseListnode&) noexcept { return *this; }
    /// Deleting a node that is still in a list leaves that list dangling: take it out first
    /// (`Subtract`) or let the list delete it.
    virtual ~OvBaseListnode();

    /// The untyped node order: every node compares as 1. Records order themselves through
    /// `OvListnode::Compare(const OvListnode*)`.
    virtual int Compare(const OvBaseListnode* other) const;

    /// Clears both links. Only for nodes that are in no list.
    void Init() {
        prev = nullptr;
        next = nullptr;
    }
    OvBaseListnode* GetPrev() const { return prev; }
    OvBaseListnode* GetNext() const { return next; }
    /// Whether some list holds this node.
    bool IsListed() const { return owner != nullptr; }

private:
    template <class T>
    friend class TOvBaseListHeader;

    OvBaseListnode* prev = nullptr;
    OvBaseListnode* next = nullptr;
    // The list that holds this node, or null. The links alone cannot tell an unlinked node from
    // the only node of some other list, and a list that took such a node would share it (and
    // delete it twice); nor can they tell this list's inner nodes from another list's.
    const void* owner = nullptr;
};

/// A record that can be held in a `TOvListHeader`: list links plus id and name.
class OvListnode : public OvBaseListnode, public OvObject {
public:
    OvListnode() = default;
    explicit OvListnode(std::uint32_t id) : OvObject(id) {}
    explicit OvListnode(const String& name) : OvObject(name) {}
    OvListnode(std::uint32_t id, const String& name) : OvObject(id, name) {}
    /// Copies id and name; the copy is unlinked.
    OvListnode(const OvListnode&) = default;
    /// Copies id and name, never the links.
    OvListnode& operator=(const OvListnode&) = default;
    ~OvListnode() override;

    using OvBaseListnode::Compare;
    using OvObject::Compare;
    /// The node comparison used by `SortedInsert`, `Sort` and `Find(const T&)`: 1 when this id
    /// is less than the other's, 0 when equal, -1 when greater; a null node gives 0. Records
    /// with an order of their own override this.
    virtual int Compare(const OvListnode* other) const;
};

/// A 32-bit word of state bits.
class OvFlag {
public:
    OvFlag() = default;
    explicit OvFlag(std::uint32_t bits) : flag(bits) {}

    /// OR in `bits`; returns the new word.
    std::uint32_t SetFlag(std::uint32_t bits) { return flag |= bits; }
    /// Clear `bits`; returns the new word.
    std::uint32_t ClearFlag(std::uint32_t bits) { return flag &= ~bits; }
    /// Flip `bits`; returns the new word.
    std::uint32_t ToggleFlag(std::uint32_t bits) { return flag ^= bits; }
    /// The word ANDed with `bits` (non-zero when any of them is set).
    std::uint32_t IsFlagSet(std::uint32_t bits) const { return flag & bits; }

    std::uint32_t GetFlag() const { return flag; }
    void SetFlagWord(std::uint32_t word) { flag = word; }

private:
    std::uint32_t flag = 0;
};

}  // namespace orvo
