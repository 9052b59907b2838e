// Synchronous change notification: a list owns an `OvStandardNotifier`; parties that want to
// hear about changes register an `OvObserver` whose `Link` is called with an `OvNotifyEvent`.
#pragma once

#include <cstdint>
#include <memory>

#include "orvo/foundation/array.h"
#include "orvo/foundation/link.h"

namespace orvo {

class OvListnode;
class OvStandardNotifier;

/// What happened to a list.
enum class eOvNotifyKind : std::int32_t {
    Added = 1,       ///< one node was added (`Add`, `Insert`, `SortedInsert`, ...)
    MultiAdded = 2,  ///< several nodes were added at once (`CopyTo`, `MoveTo`, `+=`)
    Subtracted = 3,  ///< one node was taken out (it is still alive: the caller owns it now)
    Changed = 4,     ///< a node changed, or with a null node: the list changed as a whole
    Sorted = 5,      ///< the list was reordered
    Destroyed = 6,   ///< the list is being destroyed; its nodes are already gone
};

/// The event an observer's link is called with (as the `void*` argument).
class OvNotifyEvent {
public:
    OvNotifyEvent(eOvNotifyKind kind, void* list, OvListnode* node)
        : kind(kind), list(list), node(node) {}

    eOvNotifyKind GetKind() const { return kind; }
    /// The list that raised the event: the address of its `TOvBaseListHeader<T>` part (compare
    /// with `IsSourceOf` of the list).
    void* GetList() const { return list; }
    /// The node concerned, or null for events about the whole list.
    OvListnode* GetNode() const { return node; }

private:
    eOvNotifyKind kind;
    void* list;
    OvListnode* node;
};

/// One registration with a notifier. The observer never owns its notifier and the notifier never
/// owns its observers; whichever dies first unregisters the pair.
class OvObserver {
    friend class OvStandardNotifier;

protected:
    /// Calls the link with the event when the link is set; returns the link's result (0 when
    /// nothing was called).
    virtual std::int32_t Notify(OvNotifyEvent* event);

public:
    virtual ~OvObserver();

    /// Unregistered.
    OvObserver() = default;
    explicit OvObserver(const Link& link) : link(link) {}
    /// Registered with `notifier` when it is non-null.
    explicit OvObserver(OvStandardNotifier* notifier);
    OvObserver(OvStandardNotifier* notifier, const Link& link);

    /// Copies the link and the parent pointer but does not register the copy: the copy is not
    /// in the parent's array, is not notified, and cannot `SetNotifyParent` until it leaves
    /// (`ChangeNotifyParent` does that). The copy may outlive the parent safely.
    OvObserver(const OvObserver& other);
    /// As the copy constructor. An observer that was registered leaves its notifier first, so
    /// that no notifier keeps a pointer to an observer that no longer points back at it.
    OvObserver& operator=(const OvObserver& other);

    void SetLink(const Link& newLink) { link = newLink; }
    const Link& GetLink() const { return link; }

    /// Registers with `notifier` only when it is non-null and this observer has no parent.
    bool SetNotifyParent(OvStandardNotifier* notifier);
    /// Leaves the current parent (if any), then as `SetNotifyParent`.
    bool ChangeNotifyParent(OvStandardNotifier* notifier);
    /// Leaves the parent, if there is one; true when it was found in the parent's array.
    bool RemoveFromNotifyParent();

    /// The parent notifier, or null. A parent that no longer exists reads as null.
    OvStandardNotifier* GetNotifyParent() const;

private:
    void SetParent(OvStandardNotifier* notifier);
    void ClearParent();

    Link link;
    OvStandardNotifier* parent = nullptr;
    std::weak_ptr<const int> parentAlive;  // expires with the parent notifier
};

/// The observers of one list, in registration order.
class OvStandardNotifier {
public:
    OvStandardNotifier() = default;
    /// An observer is registered with exactly one notifier, so a copy starts without observers
    /// (the observers stay with the original).
    OvStandardNotifier(const OvStandardNotifier&) : OvStandardNotifier() {}
    /// Keeps this notifier's own observers: registrations are not transferable.
    OvStandardNotifier& operator=(const OvStandardNotifier&) { return *this; }
    /// Every observer is left without a parent.
    virtual ~OvStandardNotifier();

    /// False when `observer` is null or already has a parent; otherwise makes this notifier
    /// its parent, appends it and returns true.
    bool AddObserver(OvObserver* observer);
    /// Removes the first entry equal to `observer` (later entries move down) and clears its
    /// parent; false when it is not registered here.
    bool RemoveObserver(OvObserver* observer);
    /// Removes the first observer until none is left.
    void RemoveAllObservers();
    /// Calls `Notify(event)` of every registered observer in array order except `except`;
    /// returns the number of observers registered when the call began (not the number
    /// notified). Observers may register or leave (themselves included) during the call.
    int NotifyObservers(OvNotifyEvent* event, OvObserver* except = nullptr);

    int GetObserverCount() const { return observers.Size(); }
    OvObserver* GetObserver(int index) const;

private:
    friend class OvObserver;
    const std::shared_ptr<const int>& AliveToken();

    TOvArray<OvObserver*> observers;
    std::shared_ptr<const int> alive;  // made on the first registration
};

}  // namespace orvo
