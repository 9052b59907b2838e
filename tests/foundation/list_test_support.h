// Record types and an event recorder shared by the list tests.
#pragma once

#include <cstdint>
#include <vector>

#include "orvo/foundation/list.h"
#include "orvo/foundation/notify.h"

namespace orvo::test {

// Counts how often each node ever made was destroyed, so a test can prove every node is
// deleted exactly once (and that handed-back nodes are not deleted at all).
class DeathRegister {
public:
    int Enrol() {
        deaths.push_back(0);
        return static_cast<int>(deaths.size()) - 1;
    }
    void Died(int serial) { ++deaths[static_cast<std::size_t>(serial)]; }
    int DeathsOf(int serial) const { return deaths[static_cast<std::size_t>(serial)]; }
    int Made() const { return static_cast<int>(deaths.size()); }
    bool AllDiedOnce() const {
        for (int d : deaths) {
            if (d != 1) return false;
        }
        return true;
    }

private:
    std::vector<int> deaths;
};

class CountingNode : public OvListnode {
public:
    CountingNode(DeathRegister& reg, std::uint32_t id, const char* name = "")
        : OvListnode(id, String(name)), reg(&reg), serial(reg.Enrol()) {}
    CountingNode(const CountingNode& other)
        : OvListnode(other), reg(other.reg), serial(other.reg->Enrol()) {}
    CountingNode& operator=(const CountingNode& other) {
        OvListnode::operator=(other);
        return *this;
    }
    ~CountingNode() override { reg->Died(serial); }
    int Serial() const { return serial; }

private:
    DeathRegister* reg;
    int serial;
};

// A record ordered by "this minus other" on a key, the convention the model's records use.
class KeyedNode : public OvListnode {
public:
    KeyedNode(std::uint32_t id, int key) : OvListnode(id), key(key) {}
    using OvListnode::Compare;
    int Compare(const OvListnode* other) const override {
        return key - static_cast<const KeyedNode*>(other)->key;
    }
    int key;
};

// Records every event a list raises, through an observer bound with a Link.
class EventLog : public LinkHdl {
public:
    struct Entry {
        eOvNotifyKind kind;
        void* list;
        OvListnode* node;
    };

    explicit EventLog(OvStandardNotifier* notifier = nullptr)
        : observer(notifier, Link(this, &EventLog::OnEvent)) {}

    std::int32_t OnEvent(void* arg) {
        auto* event = static_cast<OvNotifyEvent*>(arg);
        entries.push_back({event->GetKind(), event->GetList(), event->GetNode()});
        return 1;
    }

    std::vector<eOvNotifyKind> Kinds() const {
        std::vector<eOvNotifyKind> kinds;
        for (const Entry& e : entries)
            kinds.push_back(e.kind);
        return kinds;
    }

    std::vector<Entry> entries;
    OvObserver observer;
};

template <class T>
std::vector<std::uint32_t> IdsOf(const TOvBaseListHeader<T>& list) {
    std::vector<std::uint32_t> ids;
    for (T* p = list.First(); p != nullptr; p = static_cast<T*>(p->GetNext())) {
        ids.push_back(p->GetId());
    }
    return ids;
}

// Walks the list backwards as well, so broken back links show up.
template <class T>
std::vector<std::uint32_t> IdsBackwards(const TOvBaseListHeader<T>& list) {
    std::vector<std::uint32_t> ids;
    for (T* p = list.Last(); p != nullptr; p = static_cast<T*>(p->GetPrev())) {
        ids.insert(ids.begin(), p->GetId());
    }
    return ids;
}

}  // namespace orvo::test
