#include "orvo/foundation/notify.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "orvo/foundation/link.h"

namespace orvo {
namespace {

// ---- Link -------------------------------------------------------------------------------------

class Counter : public LinkHdl {
public:
    std::int32_t Add(void* arg) {
        total += *static_cast<int*>(arg);
        return total;
    }
    std::int32_t Ping(void*) {
        ++pings;
        return -7;
    }
    int total = 0;
    int pings = 0;
};

// A handler whose LinkHdl part does not start at the object's address.
class Padding {
public:
    virtual ~Padding() = default;
    double pad[3] = {1, 2, 3};
};
class OffsetHandler : public Padding, public Counter {
public:
    std::int32_t Own(void*) { return static_cast<std::int32_t>(pad[2]) + total; }
};

TEST(Link, CallsTheBoundMemberFunction) {
    Counter c;
    Link link(&c, &Counter::Add);
    EXPECT_TRUE(link.IsSet());
    EXPECT_FALSE(!link);
    int five = 5;
    EXPECT_EQ(link.Call(&five), 5);
    EXPECT_EQ(link.Call(&five), 10);
    EXPECT_EQ(c.total, 10);

    Link copy(link);
    Link assigned;
    assigned = link;
    EXPECT_TRUE(copy == link);
    EXPECT_TRUE(assigned == link);
    EXPECT_EQ(assigned.Call(&five), 15);
    EXPECT_EQ(MakeLink(&c, &Counter::Ping).Call(nullptr), -7);
    EXPECT_EQ(c.pings, 1);
}

TEST(Link, BindsThroughMultipleInheritance) {
    OffsetHandler h;
    h.total = 4;
    EXPECT_EQ(Link(&h, &OffsetHandler::Own).Call(nullptr), 7);
    int two = 2;
    EXPECT_EQ(Link(&h, &Counter::Add).Call(&two), 6);  // declared in a base of the object
    EXPECT_EQ(h.total, 6);
}

TEST(Link, AnUnsetLinkCallsNothing) {
    Link unset;
    EXPECT_FALSE(unset.IsSet());
    EXPECT_TRUE(!unset);
    EXPECT_EQ(unset.Call(nullptr), 0);

    Counter c;
    Link noFunction(&c, nullptr);
    Link noObject(nullptr, static_cast<LinkFunction>(&Counter::Ping));
    EXPECT_TRUE(!noFunction);
    EXPECT_TRUE(!noObject);
    EXPECT_EQ(noFunction.Call(nullptr), 0);
    EXPECT_EQ(noObject.Call(nullptr), 0);
    EXPECT_EQ(c.pings, 0);
}

// ---- observers and notifiers ------------------------------------------------------------------

class Recorder : public LinkHdl {
public:
    explicit Recorder(std::vector<int>* order, int tag) : order(order), tag(tag) {}
    std::int32_t Seen(void*) {
        order->push_back(tag);
        return 0;
    }
    Link MakeSeenLink() { return Link(this, &Recorder::Seen); }

    std::vector<int>* order;
    int tag;
};

TEST(Observer, RegistersWithTheNotifierGivenAndLeavesOnDestruction) {
    OvStandardNotifier n;
    std::vector<int> order;
    Recorder r1(&order, 1);
    Recorder r2(&order, 2);
    OvObserver o1(&n, r1.MakeSeenLink());
    {
        OvObserver o2(&n, r2.MakeSeenLink());
        EXPECT_EQ(n.GetObserverCount(), 2);
        EXPECT_EQ(o2.GetNotifyParent(), &n);
    }
    EXPECT_EQ(n.GetObserverCount(), 1);
    EXPECT_EQ(n.GetObserver(0), &o1);

    OvObserver unregistered(r2.MakeSeenLink());
    OvObserver nullParent(static_cast<OvStandardNotifier*>(nullptr));
    EXPECT_EQ(unregistered.GetNotifyParent(), nullptr);
    EXPECT_EQ(nullParent.GetNotifyParent(), nullptr);
    OvNotifyEvent e(eOvNotifyKind::Changed, nullptr, nullptr);
    EXPECT_EQ(n.NotifyObservers(&e, nullptr), 1);
    EXPECT_EQ(order, (std::vector<int>{1}));
}

TEST(Observer, NotifyObserversSkipsExceptAndCountsAllRegistered) {
    OvStandardNotifier n;
    std::vector<int> order;
    Recorder r1(&order, 1), r2(&order, 2), r3(&order, 3);
    OvObserver o1(&n, r1.MakeSeenLink());
    OvObserver o2(&n, r2.MakeSeenLink());
    OvObserver o3(&n, r3.MakeSeenLink());
    OvObserver silent(&n);  // registered without a link: counted, calls nothing

    OvNotifyEvent e(eOvNotifyKind::Added, nullptr, nullptr);
    EXPECT_EQ(n.NotifyObservers(&e, &o2), 4);
    EXPECT_EQ(order, (std::vector<int>{1, 3}));
    order.clear();
    EXPECT_EQ(n.NotifyObservers(&e), 4);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(Observer, AddObserverRefusesAnObserverThatHasAParent) {
    OvStandardNotifier first;
    OvStandardNotifier second;
    OvObserver o(&first);
    EXPECT_FALSE(second.AddObserver(&o));
    EXPECT_FALSE(second.AddObserver(nullptr));
    EXPECT_FALSE(o.SetNotifyParent(&second));
    EXPECT_EQ(first.GetObserverCount(), 1);
    EXPECT_EQ(second.GetObserverCount(), 0);
    EXPECT_EQ(o.GetNotifyParent(), &first);

    EXPECT_TRUE(o.ChangeNotifyParent(&second));
    EXPECT_EQ(first.GetObserverCount(), 0);
    EXPECT_EQ(second.GetObserverCount(), 1);
    EXPECT_EQ(o.GetNotifyParent(), &second);
    EXPECT_FALSE(o.SetNotifyParent(nullptr));
}

TEST(Observer, RemoveObserver) {
    OvStandardNotifier n;
    OvObserver a(&n), b(&n), c(&n);
    OvObserver stranger;
    EXPECT_FALSE(n.RemoveObserver(&stranger));
    EXPECT_FALSE(n.RemoveObserver(nullptr));
    EXPECT_TRUE(n.RemoveObserver(&b));
    EXPECT_EQ(b.GetNotifyParent(), nullptr);
    EXPECT_FALSE(n.RemoveObserver(&b));
    EXPECT_EQ(n.GetObserverCount(), 2);
    EXPECT_EQ(n.GetObserver(0), &a);
    EXPECT_EQ(n.GetObserver(1), &c);
    EXPECT_EQ(n.GetObserver(2), nullptr);
    EXPECT_TRUE(c.RemoveFromNotifyParent());
    EXPECT_FALSE(c.RemoveFromNotifyParent());
    n.RemoveAllObservers();
    EXPECT_EQ(n.GetObserverCount(), 0);
    EXPECT_EQ(a.GetNotifyParent(), nullptr);

    OvStandardNotifier empty;
    EXPECT_FALSE(empty.RemoveObserver(&a));
}

TEST(Observer, ANotifierDyingFirstLeavesItsObserversWithoutParent) {
    OvObserver o;
    {
        OvStandardNotifier n;
        EXPECT_TRUE(n.AddObserver(&o));
    }
    EXPECT_EQ(o.GetNotifyParent(), nullptr);
    OvStandardNotifier other;
    EXPECT_TRUE(o.SetNotifyParent(&other));
}

TEST(Observer, ACopyKeepsTheParentButIsNotRegistered) {
    std::vector<int> order;
    Recorder r(&order, 1);
    auto n = std::make_unique<OvStandardNotifier>();
    OvObserver original(n.get(), r.MakeSeenLink());
    {
        OvObserver copy(original);
        EXPECT_EQ(copy.GetNotifyParent(), n.get());
        EXPECT_EQ(copy.GetLink(), original.GetLink());
        EXPECT_EQ(n->GetObserverCount(), 1);
        EXPECT_FALSE(copy.SetNotifyParent(n.get()));  // it has a parent already
        OvNotifyEvent e(eOvNotifyKind::Changed, nullptr, nullptr);
        n->NotifyObservers(&e);
        EXPECT_EQ(order, (std::vector<int>{1}));  // only the original was called
    }
    EXPECT_EQ(n->GetObserverCount(), 1);  // the copy's end did not take the original out

    OvObserver survivor(original);
    n.reset();  // the parent dies before the copy: the copy must not touch it
    EXPECT_EQ(survivor.GetNotifyParent(), nullptr);
    EXPECT_EQ(original.GetNotifyParent(), nullptr);
}

TEST(Observer, AssignmentLeavesTheOldNotifierFirst) {
    OvStandardNotifier a;
    OvStandardNotifier b;
    OvObserver onA(&a);
    OvObserver onB(&b);
    onA = onB;
    EXPECT_EQ(a.GetObserverCount(), 0);
    EXPECT_EQ(b.GetObserverCount(), 1);
    EXPECT_EQ(onA.GetNotifyParent(), &b);
}

TEST(Observer, CopyingANotifierCopiesNoRegistrations) {
    OvStandardNotifier n;
    OvObserver o(&n);
    OvStandardNotifier copy(n);
    EXPECT_EQ(copy.GetObserverCount(), 0);
    OvStandardNotifier assigned;
    OvObserver own(&assigned);
    assigned = n;
    EXPECT_EQ(assigned.GetObserverCount(), 1);
    EXPECT_EQ(assigned.GetObserver(0), &own);
    EXPECT_EQ(o.GetNotifyParent(), &n);
}

// An observer that leaves while it is being notified must not make the notifier skip the next.
class Leaver : public LinkHdl {
public:
    std::int32_t Leave(void*) {
        ++calls;
        observer->RemoveFromNotifyParent();
        return 0;
    }
    OvObserver* observer = nullptr;
    int calls = 0;
};

TEST(Observer, LeavingDuringNotificationIsSafe) {
    OvStandardNotifier n;
    std::vector<int> order;
    Leaver leaver;
    Recorder after(&order, 2);
    OvObserver leaving(&n, Link(&leaver, &Leaver::Leave));
    leaver.observer = &leaving;
    OvObserver next(&n, after.MakeSeenLink());
    OvNotifyEvent e(eOvNotifyKind::Changed, nullptr, nullptr);
    EXPECT_EQ(n.NotifyObservers(&e), 2);
    EXPECT_EQ(leaver.calls, 1);
    EXPECT_EQ(order, (std::vector<int>{2}));
    EXPECT_EQ(n.GetObserverCount(), 1);
}

}  // namespace
}  // namespace orvo
