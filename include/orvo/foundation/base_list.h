// The owning intrusive list of records, without the operations that use ids and names
// (those are added by TOvListHeader in list.h).
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "orvo/foundation/notify.h"
#include "orvo/foundation/object.h"

namespace orvo {

/// A doubly linked list of records of type T (derived from `OvListnode`) that owns its nodes.
///
/// Ownership: the destructor and `Destroy` delete the nodes. `Add(T*)`, `Insert`, `SortedInsert`
/// (and `Push`, `Replace(T*)`, `SortedReplace(T*)`) take ownership of the node passed in;
/// `Add(const T&)`, `Replace(const T&)` and `SortedReplace(const T&)` allocate a copy
/// themselves. `Subtract` and the other removals hand the node back undeleted: the caller owns
/// it from then on.
///
/// Safety: every node knows the list that holds it, so membership costs no search. Removing a
/// node that this list does not hold (an unlinked node, or any node of another list) is
/// refused: removal returns null and changes nothing. A node that some list holds is refused by
/// `Add`/`Insert`, which then return null and take no ownership. A node belongs to at most one
/// list at a time.
///
/// Node order: `SortedInsert`, `Sort` and `Find(const T&)` use the record's node comparison
/// `OvListnode::Compare(const OvListnode*)`. `SortedInsert` places a node in front of the first
/// list node whose comparison with the new node gives 1 or more, so a list that only ever grows
/// through `SortedInsert` (or was `Sort`ed) has no node that compares 1 or more with a later
/// one. For a record that keeps `OvListnode`'s comparison (1 when its id is less) that is
/// descending id order; a record whose comparison is "this minus other" sorts ascending.
///
/// Notification: every change is reported to the observers registered with `GetNotifier()`
/// while notification is on, i.e. while the lock counter is 0 (`SetNotify(false)` raises it,
/// `SetNotify(true)` lowers it; calls nest). Events raised while it is locked are dropped, not
/// queued. `ForceNotify` sends a change event even while locked.
///
/// Copying a list copies its records, never its observers.
template <class T>
class TOvBaseListHeader {
public:
    TOvBaseListHeader() = default;
    /// Copies every record (unlinked copies, in list order); observers are not copied.
    TOvBaseListHeader(const TOvBaseListHeader& other);

    // The virtual operations are declared in their fixed slot order; hosts derive from lists.

    /// Deletes all nodes (`Destroy`), tells the observers the list is destroyed, then the
    /// notifier leaves every observer without a parent.
    virtual ~TOvBaseListHeader();
    /// If notification is on, tells the observers that `node` was added.
    virtual void NotifyAdd(T* node);
    /// If notification is on, tells the observers that several nodes were added.
    virtual void NotifyMultiAdd();
    /// If notification is on, tells the observers that `node` was taken out.
    virtual void NotifySubtract(T* node);
    /// If notification is on, tells every observer but `except` that `node` (or, when null, the
    /// list as a whole) changed.
    virtual void NotifyChanged(T* node, OvObserver* except);
    /// If notification is on, tells the observers that the list was reordered.
    virtual void NotifySort();
    /// If notification is on, tells the observers that the list is being destroyed.
    virtual void NotifyDestroyed();
    /// false raises the lock counter; true lowers it unless it is 0. Returns whether
    /// notification is on afterwards.
    virtual bool SetNotify(bool on);
    /// Sends a change notification for the whole list, even while notification is off.
    virtual void ForceNotify();
    /// Replaces the records with copies of the other's (one change notification); the
    /// observers stay.
    virtual TOvBaseListHeader& operator=(const TOvBaseListHeader& other);
    /// Appends copies of the other's records (as `CopyTo`; the list may be appended to itself).
    virtual TOvBaseListHeader& operator+=(const TOvBaseListHeader& other);
    virtual T* First() const;
    virtual T* Last() const;
    /// The n-th node from the head (0 = head); null for a negative n or past the end.
    virtual T* Get(int n) const;
    /// Appends `node` at the tail, then `NotifyAdd`; ids are not touched. Returns the node, or
    /// null (nothing taken) for a null or still-linked node.
    virtual T* Add(T* node);
    /// Links `node` in front of `before` (at the head when `before` is the head), then
    /// `NotifyAdd`. An empty list, a null `before` or a `before` that cannot be in this list
    /// make it an `Add`. Returns as `Add`.
    virtual T* Insert(T* before, T* node);
    /// Inserts `node` in front of the first list node whose node comparison with it gives 1 or
    /// more, else appends it. A null node is ignored (returns null).
    virtual T* SortedInsert(T* node);
    /// `Subtract(Get(n))`.
    virtual T* Subtract(int n);
    /// Unlinks `node`, then `NotifySubtract`; returns it (the caller owns it now), or null.
    virtual T* Subtract(T* node);
    virtual T* SubtractFirst();
    virtual T* SubtractLast();
    /// Stable sort by the node comparison, then `NotifySort`.
    virtual void Sort();
    /// Moves every node, in order, to the tail of `target`; returns the number moved (0 for a
    /// null target or the list itself). One change notification here, one multi-add there.
    virtual int MoveTo(TOvBaseListHeader* target);
    /// Empty list: returns 0 and does nothing. Otherwise switches the target's notification off,
    /// appends a copy of every node through the target's `Add(T*)`, switches it on again, calls
    /// the target's `NotifyMultiAdd` and returns the number copied.
    virtual int CopyTo(TOvBaseListHeader* target) const;
    /// Notification off; takes out and deletes node after node from the head; notification on;
    /// then one `NotifyChanged(null, null)`.
    virtual void Destroy();
    /// Like `Destroy` but the nodes are only unlinked, not deleted; returns their number.
    virtual int SubtractAll();
    /// The number of nodes; kept up to date by every link and unlink, so it costs nothing.
    virtual int Count() const;
    /// Whether `node` is in this list (the node knows its list: no walk).
    virtual bool Exist(const T* node) const;
    /// The position of `node` from the head, or -1.
    virtual int Index(const T* node) const;
    virtual bool IsEmpty() const;
    /// The first node whose node comparison with `record` gives 0, or null.
    virtual T* Find(const T& record) const;
    /// `Add`.
    virtual T* Push(T* node);
    /// `SubtractLast`.
    virtual T* Pop();
    /// Appends a copy of `record`; returns the copy.
    virtual T* Add(const T& record);
    /// A copy of `record`, then as `Replace(T*)`.
    virtual T* Replace(const T& record);
    /// If a node with the same id exists (the first from the head), `node` is inserted in front
    /// of it and the old node is taken out and deleted; otherwise `node` is appended. Returns
    /// `node`, or null (nothing taken) for a null or still-linked node.
    virtual T* Replace(T* node);
    /// A copy of `record`, then as `SortedReplace(T*)`.
    virtual T* SortedReplace(const T& record);
    /// Like `Replace`, but a node without a same-id node is placed by `SortedInsert`.
    virtual T* SortedReplace(T* node);

    bool IsNotifyEnabled() const { return notifyLock == 0; }
    std::uint32_t GetNotifyLock() const { return notifyLock; }
    OvStandardNotifier& GetNotifier() { return notifier; }
    const OvStandardNotifier& GetNotifier() const { return notifier; }
    /// Whether `event` was raised by this list.
    bool IsSourceOf(const OvNotifyEvent& event) const {
        return event.GetList() == static_cast<const void*>(this);
    }
    /// The record behind a pointer to a node's `OvBaseListnode` part.
    static T* Cast(const void* node) {
        return static_cast<T*>(static_cast<OvBaseListnode*>(const_cast<void*>(node)));
    }

protected:
    /// Switches notification off for its lifetime (exception-safe `SetNotify` pairs).
    class NotifyPause {
    public:
        explicit NotifyPause(TOvBaseListHeader* list) : list(list) { list->SetNotify(false); }
        ~NotifyPause() { list->SetNotify(true); }
        NotifyPause(const NotifyPause&) = delete;
        NotifyPause& operator=(const NotifyPause&) = delete;

    private:
        TOvBaseListHeader* list;
    };

    /// The first node from the head with the given id, or null.
    T* FindFirstById(std::uint32_t id) const;
    /// `a->Compare(b)` through the record's node comparison slot.
    static int NodeCompare(const T* a, const T* b) {
        return static_cast<const OvListnode*>(a)->Compare(static_cast<const OvListnode*>(b));
    }
    static T* Next(const T* node) {
        return AsRecord(static_cast<const OvBaseListnode*>(node)->next);
    }
    static T* Prev(const T* node) {
        return AsRecord(static_cast<const OvBaseListnode*>(node)->prev);
    }

    T* head = nullptr;
    T* tail = nullptr;
    std::uint32_t notifyLock = 0;
    OvStandardNotifier notifier;
    // Nodes linked in this list. Long jobs over a list (conversions with progress reporting)
    // need the total up front, and a counting walk would double their memory traffic.
    int count = 0;

private:
    static T* AsRecord(OvBaseListnode* node) { return static_cast<T*>(node); }
    void Raise(eOvNotifyKind kind, T* node, OvObserver* except = nullptr);
    bool CanBeLinkedHere(const T* node) const;
    bool IsUnlinked(const T* node) const;
    void LinkBefore(T* before, T* node);
    void LinkAtTail(T* node);
    template <class Insertion>
    T* InsertCopy(const T& record, Insertion insert);
};

// ---- construction ----------------------------------------------------------------------------

template <class T>
TOvBaseListHeader<T>::TOvBaseListHeader(const TOvBaseListHeader& other) {
    for (T* p = other.head; p != nullptr; p = Next(p))
        LinkAtTail(new T(*p));
}

template <class T>
TOvBaseListHeader<T>::~TOvBaseListHeader() {
    Destroy();
    NotifyDestroyed();
}

// ---- notification ----------------------------------------------------------------------------

template <class T>
void TOvBaseListHeader<T>::Raise(eOvNotifyKind kind, T* node, OvObserver* except) {
    OvNotifyEvent event(kind, static_cast<void*>(this), node);
    notifier.NotifyObservers(&event, except);
}

template <class T>
void TOvBaseListHeader<T>::NotifyAdd(T* node) {
    if (IsNotifyEnabled()) Raise(eOvNotifyKind::Added, node);
}

template <class T>
void TOvBaseListHeader<T>::NotifyMultiAdd() {
    if (IsNotifyEnabled()) Raise(eOvNotifyKind::MultiAdded, nullptr);
}

template <class T>
void TOvBaseListHeader<T>::NotifySubtract(T* node) {
    if (IsNotifyEnabled()) Raise(eOvNotifyKind::Subtracted, node);
}

template <class T>
void TOvBaseListHeader<T>::NotifyChanged(T* node, OvObserver* except) {
    if (IsNotifyEnabled()) Raise(eOvNotifyKind::Changed, node, except);
}

template <class T>
void TOvBaseListHeader<T>::NotifySort() {
    if (IsNotifyEnabled()) Raise(eOvNotifyKind::Sorted, nullptr);
}

template <class T>
void TOvBaseListHeader<T>::NotifyDestroyed() {
    if (IsNotifyEnabled()) Raise(eOvNotifyKind::Destroyed, nullptr);
}

template <class T>
bool TOvBaseListHeader<T>::SetNotify(bool on) {
    if (!on) {
        if (notifyLock != std::numeric_limits<std::uint32_t>::max()) ++notifyLock;
    } else if (notifyLock != 0) {
        --notifyLock;
    }
    return IsNotifyEnabled();
}

template <class T>
void TOvBaseListHeader<T>::ForceNotify() {
    Raise(eOvNotifyKind::Changed, nullptr);
}

// ---- assignment ------------------------------------------------------------------------------

template <class T>
TOvBaseListHeader<T>& TOvBaseListHeader<T>::operator=(const TOvBaseListHeader& other) {
    if (this == &other) return *this;
    {
        NotifyPause pause(this);
        Destroy();
        for (T* p = other.head; p != nullptr; p = Next(p))
            Add(*p);
    }
    NotifyChanged(nullptr, nullptr);
    return *this;
}

template <class T>
TOvBaseListHeader<T>& TOvBaseListHeader<T>::operator+=(const TOvBaseListHeader& other) {
    other.CopyTo(this);
    return *this;
}

// ---- access ----------------------------------------------------------------------------------

template <class T>
T* TOvBaseListHeader<T>::First() const {
    return head;
}

template <class T>
T* TOvBaseListHeader<T>::Last() const {
    return tail;
}

template <class T>
T* TOvBaseListHeader<T>::Get(int n) const {
    if (n < 0) return nullptr;
    T* p = head;
    while (p != nullptr && n-- > 0)
        p = Next(p);
    return p;
}

template <class T>
int TOvBaseListHeader<T>::Count() const {
    return count;
}

template <class T>
bool TOvBaseListHeader<T>::Exist(const T* node) const {
    return node != nullptr && static_cast<const OvBaseListnode*>(node)->owner == this;
}

template <class T>
int TOvBaseListHeader<T>::Index(const T* node) const {
    int i = 0;
    for (T* p = head; p != nullptr; p = Next(p), ++i) {
        if (p == node) return i;
    }
    return -1;
}

template <class T>
bool TOvBaseListHeader<T>::IsEmpty() const {
    return head == nullptr;
}

template <class T>
T* TOvBaseListHeader<T>::Find(const T& record) const {
    for (T* p = head; p != nullptr; p = Next(p)) {
        if (NodeCompare(p, &record) == 0) return p;
    }
    return nullptr;
}

template <class T>
T* TOvBaseListHeader<T>::FindFirstById(std::uint32_t id) const {
    for (T* p = head; p != nullptr; p = Next(p)) {
        if (p->GetId() == id) return p;
    }
    return nullptr;
}

// ---- linking ---------------------------------------------------------------------------------

template <class T>
bool TOvBaseListHeader<T>::IsUnlinked(const T* node) const {
    const OvBaseListnode* b = node;
    return b->owner == nullptr && b->prev == nullptr && b->next == nullptr && node != head;
}

template <class T>
bool TOvBaseListHeader<T>::CanBeLinkedHere(const T* node) const {
    const OvBaseListnode* b = node;
    if (b->owner != this) return false;
    if (b->prev == nullptr ? node != head : b->prev->next != b) return false;
    if (b->next == nullptr ? node != tail : b->next->prev != b) return false;
    return true;
}

template <class T>
void TOvBaseListHeader<T>::LinkAtTail(T* node) {
    OvBaseListnode* b = node;
    b->owner = this;
    b->prev = tail;
    b->next = nullptr;
    if (tail != nullptr) {
        static_cast<OvBaseListnode*>(tail)->next = b;
    } else {
        head = node;
    }
    tail = node;
    ++count;
}

template <class T>
void TOvBaseListHeader<T>::LinkBefore(T* before, T* node) {
    OvBaseListnode* b = node;
    OvBaseListnode* at = before;
    b->owner = this;
    b->next = at;
    b->prev = at->prev;
    if (at->prev != nullptr) {
        at->prev->next = b;
    } else {
        head = node;
    }
    at->prev = b;
    ++count;
}

template <class T>
T* TOvBaseListHeader<T>::Add(T* node) {
    if (node == nullptr || !IsUnlinked(node)) return nullptr;
    LinkAtTail(node);
    NotifyAdd(node);
    return node;
}

template <class T>
T* TOvBaseListHeader<T>::Insert(T* before, T* node) {
    if (node == nullptr || !IsUnlinked(node)) return nullptr;
    if (head == nullptr || before == nullptr || !CanBeLinkedHere(before)) return Add(node);
    LinkBefore(before, node);
    NotifyAdd(node);
    return node;
}

template <class T>
T* TOvBaseListHeader<T>::SortedInsert(T* node) {
    if (node == nullptr) return nullptr;
    for (T* p = head; p != nullptr; p = Next(p)) {
        if (NodeCompare(p, node) >= 1) return Insert(p, node);
    }
    return Add(node);
}

template <class T>
T* TOvBaseListHeader<T>::Push(T* node) {
    return Add(node);
}

// ---- removal ---------------------------------------------------------------------------------

template <class T>
T* TOvBaseListHeader<T>::Subtract(T* node) {
    if (node == nullptr || !CanBeLinkedHere(node)) return nullptr;
    OvBaseListnode* b = node;
    if (b->prev != nullptr) {
        b->prev->next = b->next;
    } else {
        head = AsRecord(b->next);
    }
    if (b->next != nullptr) {
        b->next->prev = b->prev;
    } else {
        tail = AsRecord(b->prev);
    }
    --count;
    b->owner = nullptr;
    b->Init();
    NotifySubtract(node);
    return node;
}

template <class T>
T* TOvBaseListHeader<T>::Subtract(int n) {
    return Subtract(Get(n));
}

template <class T>
T* TOvBaseListHeader<T>::SubtractFirst() {
    return Subtract(First());
}

template <class T>
T* TOvBaseListHeader<T>::SubtractLast() {
    return Subtract(Last());
}

template <class T>
T* TOvBaseListHeader<T>::Pop() {
    return SubtractLast();
}

template <class T>
void TOvBaseListHeader<T>::Destroy() {
    {
        NotifyPause pause(this);
        while (head != nullptr) {
            T* node = Subtract(First());
            if (node == nullptr) break;  // a derived Subtract that refuses must not hang us
            delete node;
        }
    }
    NotifyChanged(nullptr, nullptr);
}

template <class T>
int TOvBaseListHeader<T>::SubtractAll() {
    int n = 0;
    {
        NotifyPause pause(this);
        while (head != nullptr) {
            if (Subtract(First()) == nullptr) break;
            ++n;
        }
    }
    NotifyChanged(nullptr, nullptr);
    return n;
}

// ---- bulk operations -------------------------------------------------------------------------

template <class T>
void TOvBaseListHeader<T>::Sort() {
    std::vector<T*> nodes;
    for (T* p = head; p != nullptr; p = Next(p))
        nodes.push_back(p);

    // Bottom-up merge sort: stable, and safe with any comparison a record may implement. A node
    // of the right run goes first only when the left one compares 1 or more with it.
    std::vector<T*> merged(nodes.size());
    const std::size_t n = nodes.size();
    for (std::size_t width = 1; width < n; width *= 2) {
        for (std::size_t lo = 0; lo < n; lo += 2 * width) {
            const std::size_t mid = std::min(lo + width, n);
            const std::size_t hi = std::min(lo + 2 * width, n);
            std::size_t i = lo;
            std::size_t j = mid;
            std::size_t k = lo;
            while (i < mid && j < hi) {
                merged[k++] = NodeCompare(nodes[i], nodes[j]) >= 1 ? nodes[j++] : nodes[i++];
            }
            while (i < mid)
                merged[k++] = nodes[i++];
            while (j < hi)
                merged[k++] = nodes[j++];
        }
        nodes.swap(merged);
    }

    head = nullptr;
    tail = nullptr;
    count = 0;
    for (T* node : nodes)
        LinkAtTail(node);
    NotifySort();
}

template <class T>
int TOvBaseListHeader<T>::MoveTo(TOvBaseListHeader* target) {
    if (target == nullptr || target == this) return 0;
    int moved = 0;
    {
        NotifyPause pauseHere(this);
        NotifyPause pauseThere(target);
        while (head != nullptr) {
            T* node = Subtract(First());
            if (node == nullptr) break;
            if (target->Add(node) == nullptr) {
                delete node;  // refused by a derived Add: nobody else owns it
                continue;
            }
            ++moved;
        }
    }
    if (moved > 0) {
        NotifyChanged(nullptr, nullptr);
        target->NotifyMultiAdd();
    }
    return moved;
}

template <class T>
int TOvBaseListHeader<T>::CopyTo(TOvBaseListHeader* target) const {
    if (target == nullptr || head == nullptr) return 0;
    // Counted first so that a list can be copied onto its own tail.
    const int n = Count();
    int copied = 0;
    {
        NotifyPause pause(target);
        T* p = head;
        for (int i = 0; i < n && p != nullptr; ++i, p = Next(p)) {
            auto copy = std::make_unique<T>(*p);
            if (target->Add(copy.get()) != nullptr) {
                copy.release();
                ++copied;
            }
        }
    }
    target->NotifyMultiAdd();
    return copied;
}

// ---- copies and replacement ------------------------------------------------------------------

template <class T>
template <class Insertion>
T* TOvBaseListHeader<T>::InsertCopy(const T& record, Insertion insert) {
    auto copy = std::make_unique<T>(record);
    T* placed = insert(copy.get());
    if (placed == copy.get()) copy.release();
    return placed;
}

template <class T>
T* TOvBaseListHeader<T>::Add(const T& record) {
    return InsertCopy(record, [this](T* node) { return Add(node); });
}

template <class T>
T* TOvBaseListHeader<T>::Replace(const T& record) {
    return InsertCopy(record, [this](T* node) { return Replace(node); });
}

template <class T>
T* TOvBaseListHeader<T>::Replace(T* node) {
    if (node == nullptr) return nullptr;
    T* old = FindFirstById(node->GetId());
    if (old == nullptr) return Add(node);
    if (old == node) return node;
    if (Insert(old, node) == nullptr) return nullptr;
    delete Subtract(old);
    return node;
}

template <class T>
T* TOvBaseListHeader<T>::SortedReplace(const T& record) {
    return InsertCopy(record, [this](T* node) { return SortedReplace(node); });
}

template <class T>
T* TOvBaseListHeader<T>::SortedReplace(T* node) {
    if (node == nullptr) return nullptr;
    T* old = FindFirstById(node->GetId());
    if (old == nullptr) return SortedInsert(node);
    if (old == node) return node;
    if (Insert(old, node) == nullptr) return nullptr;
    delete Subtract(old);
    return node;
}

}  // namespace orvo
