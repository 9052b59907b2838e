#include "orvo/foundation/notify.h"

namespace orvo {

// ---- OvObserver ------------------------------------------------------------------------------

OvObserver::OvObserver(OvStandardNotifier* notifier) {
    SetNotifyParent(notifier);
}

OvObserver::OvObserver(OvStandardNotifier* notifier, const Link& link) : link(link) {
    SetNotifyParent(notifier);
}

OvObserver::OvObserver(const OvObserver& other)
    : link(other.link), parent(other.parent), parentAlive(other.parentAlive) {}

OvObserver& OvObserver::operator=(const OvObserver& other) {
    if (this != &other) {
        RemoveFromNotifyParent();
        link = other.link;
        parent = other.parent;
        parentAlive = other.parentAlive;
    }
    return *this;
}

OvObserver::~OvObserver() {
    RemoveFromNotifyParent();
}

std::int32_t OvObserver::Notify(OvNotifyEvent* event) {
    return link.IsSet() ? link.Call(event) : 0;
}

OvStandardNotifier* OvObserver::GetNotifyParent() const {
    return parentAlive.expired() ? nullptr : parent;
}

bool OvObserver::SetNotifyParent(OvStandardNotifier* notifier) {
    if (notifier == nullptr || GetNotifyParent() != nullptr) return false;
    return notifier->AddObserver(this);
}

bool OvObserver::ChangeNotifyParent(OvStandardNotifier* notifier) {
    RemoveFromNotifyParent();
    return SetNotifyParent(notifier);
}

bool OvObserver::RemoveFromNotifyParent() {
    OvStandardNotifier* current = GetNotifyParent();
    if (current == nullptr) {
        ClearParent();  // drops a stale parent of a copy
        return false;
    }
    const bool found = current->RemoveObserver(this);
    // A copy is not in its parent's array; it forgets the parent all the same.
    ClearParent();
    return found;
}

void OvObserver::SetParent(OvStandardNotifier* notifier) {
    parent = notifier;
    parentAlive = notifier->AliveToken();
}

void OvObserver::ClearParent() {
    parent = nullptr;
    parentAlive.reset();
}

// ---- OvStandardNotifier ----------------------------------------------------------------------

OvStandardNotifier::~OvStandardNotifier() {
    RemoveAllObservers();
}

const std::shared_ptr<const int>& OvStandardNotifier::AliveToken() {
    if (!alive) alive = std::make_shared<const int>(0);
    return alive;
}

bool OvStandardNotifier::AddObserver(OvObserver* observer) {
    if (observer == nullptr || observer->GetNotifyParent() != nullptr) return false;
    observer->SetParent(this);
    observers.Add(observer);
    return true;
}

bool OvStandardNotifier::RemoveObserver(OvObserver* observer) {
    const int index = observers.Search(observer);
    if (index < 0) return false;
    if (observer->GetNotifyParent() == this) observer->ClearParent();
    observers.Remove(index);
    return true;
}

void OvStandardNotifier::RemoveAllObservers() {
    while (observers.Size() > 0)
        RemoveObserver(observers[0]);
}

int OvStandardNotifier::NotifyObservers(OvNotifyEvent* event, OvObserver* except) {
    const int registered = observers.Size();
    // Indexes are re-checked after every call: an observer may leave or join meanwhile.
    for (int i = 0; i < observers.Size();) {
        OvObserver* observer = observers[i];
        if (observer != except) observer->Notify(event);
        if (i < observers.Size() && observers[i] == observer) ++i;
    }
    return registered;
}

OvObserver* OvStandardNotifier::GetObserver(int index) const {
    return index >= 0 && index < observers.Size() ? observers[index] : nullptr;
}

}  // namespace orvo
