#include "orvo/foundation/list.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

#include "list_test_support.h"

namespace orvo {

// Every member of the templates must compile, not only the ones the tests call.
template class TOvBaseListHeader<test::CountingNode>;
template class TOvListHeader<test::CountingNode>;
template class TOvListHeader<OvListnode>;

namespace {

using test::CountingNode;
using test::DeathRegister;
using test::EventLog;
using test::IdsBackwards;
using test::IdsOf;
using test::KeyedNode;
using Ids = std::vector<std::uint32_t>;
using Kinds = std::vector<eOvNotifyKind>;

using CountingList = TOvListHeader<CountingNode>;

// ---- ownership --------------------------------------------------------------------------------

TEST(ListOwnership, DestructorDeletesEveryNodeExactlyOnce) {
    DeathRegister reg;
    {
        CountingList list;
        for (std::uint32_t id = 1; id <= 5; ++id)
            list.Add(new CountingNode(reg, id));
        list.Add(CountingNode(reg, 6));  // the temporary dies here, the list holds a copy
        EXPECT_EQ(list.Count(), 6);
    }
    EXPECT_EQ(reg.Made(), 7);
    EXPECT_TRUE(reg.AllDiedOnce());
}

TEST(ListOwnership, SubtractHandsTheNodeBackUndeleted) {
    DeathRegister reg;
    std::unique_ptr<CountingNode> handedBack;
    {
        CountingList list;
        list.Add(new CountingNode(reg, 1));
        CountingNode* middle = list.Add(new CountingNode(reg, 2));
        list.Add(new CountingNode(reg, 3));

        handedBack.reset(list.Subtract(middle));
        ASSERT_EQ(handedBack.get(), middle);
        EXPECT_EQ(handedBack->GetNext(), nullptr);
        EXPECT_EQ(handedBack->GetPrev(), nullptr);
        EXPECT_EQ(IdsOf(list), (Ids{1, 3}));
        EXPECT_EQ(IdsBackwards(list), (Ids{1, 3}));
    }
    EXPECT_EQ(reg.DeathsOf(handedBack->Serial()), 0);
    EXPECT_EQ(reg.DeathsOf(0), 1);
    EXPECT_EQ(reg.DeathsOf(2), 1);
    handedBack.reset();
    EXPECT_TRUE(reg.AllDiedOnce());
}

TEST(ListOwnership, DestroyDeletesAndLeavesTheListUsable) {
    DeathRegister reg;
    CountingList list;
    for (std::uint32_t id = 1; id <= 3; ++id)
        list.Add(new CountingNode(reg, id));
    list.Destroy();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_TRUE(reg.AllDiedOnce());
    list.Add(new CountingNode(reg, 9));
    EXPECT_EQ(IdsOf(list), (Ids{9}));
}

TEST(ListOwnership, RemovalsHandBackWithoutDeleting) {
    DeathRegister reg;
    CountingList list;
    std::vector<CountingNode*> made;
    for (std::uint32_t id = 1; id <= 6; ++id)
        made.push_back(list.Add(new CountingNode(reg, id)));

    std::vector<std::unique_ptr<CountingNode>> back;
    back.emplace_back(list.SubtractFirst());
    back.emplace_back(list.SubtractLast());
    back.emplace_back(list.Pop());
    back.emplace_back(list.Subtract(1));   // by position: the node with id 3
    back.emplace_back(list.Subtract(4u));  // by id
    EXPECT_EQ(back[0].get(), made[0]);
    EXPECT_EQ(back[1].get(), made[5]);
    EXPECT_EQ(back[2].get(), made[4]);
    EXPECT_EQ(back[3].get(), made[2]);
    EXPECT_EQ(back[4].get(), made[3]);
    EXPECT_EQ(IdsOf(list), (Ids{2}));
    for (int i = 0; i < reg.Made(); ++i)
        EXPECT_EQ(reg.DeathsOf(i), 0);

    EXPECT_EQ(list.SubtractAll(), 1);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(reg.DeathsOf(made[1]->Serial()), 0);
    delete made[1];
    back.clear();
    EXPECT_TRUE(reg.AllDiedOnce());
}

TEST(ListOwnership, SubtractOfTheOnlyNodeEmptiesHeadAndTail) {
    TOvListHeader<OvListnode> list;
    std::unique_ptr<OvListnode> node(list.Add(new OvListnode(1)));
    node.reset(list.Subtract(node.release()));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(list.First(), nullptr);
    EXPECT_EQ(list.Last(), nullptr);
    EXPECT_TRUE(list.IsEmpty());
}

TEST(ListOwnership, NodesThatCannotBelongHereAreRefused) {
    TOvListHeader<OvListnode> a;
    TOvListHeader<OvListnode> b;
    OvListnode* a1 = a.Add(new OvListnode(1));
    a.Add(new OvListnode(2));
    OvListnode* b1 = b.Add(new OvListnode(7));
    OvListnode loose(5);

    EXPECT_EQ(a.Subtract(&loose), nullptr);  // unlinked
    EXPECT_EQ(a.Subtract(b1), nullptr);      // the only node of another list
    EXPECT_EQ(b.Subtract(a1), nullptr);      // the head of another list
    EXPECT_EQ(a.Add(b1), nullptr);           // the only node of another list: not shared
    EXPECT_EQ(a.Insert(a1, b1), nullptr);
    EXPECT_TRUE(b1->IsListed());
    EXPECT_FALSE(loose.IsListed());
    EXPECT_EQ(a.Subtract(static_cast<OvListnode*>(nullptr)), nullptr);
    EXPECT_EQ(a.Add(a1), nullptr);  // still linked: not taken twice
    EXPECT_EQ(b.Add(a1), nullptr);
    EXPECT_EQ(a.Add(static_cast<OvListnode*>(nullptr)), nullptr);
    EXPECT_EQ(IdsOf(a), (Ids{1, 2}));
    EXPECT_EQ(IdsOf(b), (Ids{7}));

    // An inner node of another list has neighbours that point back at it; it is still not ours.
    TOvListHeader<OvListnode> c;
    c.Add(new OvListnode(8));
    OvListnode* inner = c.Add(new OvListnode(9));
    c.Add(new OvListnode(10));
    EXPECT_EQ(a.Subtract(inner), nullptr);
    EXPECT_EQ(IdsOf(c), (Ids{8, 9, 10}));
    EXPECT_EQ(c.Count(), 3);
    EXPECT_EQ(a.Count(), 2);
}

TEST(ListOwnership, CopiesAreDeepAndUnlinked) {
    DeathRegister reg;
    {
        CountingList original;
        original.Add(new CountingNode(reg, 1, "a"));
        original.Add(new CountingNode(reg, 2, "b"));
        CountingList copy(original);
        EXPECT_EQ(IdsOf(copy), (Ids{1, 2}));
        EXPECT_NE(copy.First(), original.First());

        CountingList assigned;
        assigned.Add(new CountingNode(reg, 9));
        assigned = original;
        EXPECT_EQ(IdsOf(assigned), (Ids{1, 2}));
        EXPECT_EQ(reg.DeathsOf(4), 1);  // the old node 9 of `assigned`

        assigned += assigned;  // appending to itself copies the original two once
        EXPECT_EQ(IdsOf(assigned), (Ids{1, 2, 1, 2}));
        EXPECT_EQ(IdsBackwards(assigned), (Ids{1, 2, 1, 2}));
    }
    EXPECT_TRUE(reg.AllDiedOnce());
}

// ---- positions and lookups --------------------------------------------------------------------

TEST(ListAccess, GetIndexExistCount) {
    TOvListHeader<OvListnode> list;
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Get(0), nullptr);
    OvListnode* n10 = list.Add(new OvListnode(10));
    OvListnode* n20 = list.Push(new OvListnode(20));
    OvListnode* n30 = list.Add(new OvListnode(30));
    OvListnode outside(40);

    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Get(0), n10);
    EXPECT_EQ(list.Get(2), n30);
    EXPECT_EQ(list.Get(3), nullptr);
    EXPECT_EQ(list.Get(-1), nullptr);
    EXPECT_EQ(list.Index(n20), 1);
    EXPECT_EQ(list.Index(&outside), -1);
    EXPECT_TRUE(list.Exist(n30));
    EXPECT_FALSE(list.Exist(&outside));
    EXPECT_FALSE(list.Exist(nullptr));
    EXPECT_EQ(list.First(), n10);
    EXPECT_EQ(list.Last(), n30);
}

// Count is kept as nodes come and go rather than walked; any operation that links or unlinks
// without telling it would show up here as a difference to a walk of the list.
TEST(ListAccess, CountFollowsEveryOperationThatChangesTheList) {
    using List = TOvListHeader<OvListnode>;
    const auto walked = [](const List& list) { return static_cast<int>(IdsOf(list).size()); };
    List a;
    List b;
    std::mt19937 random(20261121);
    std::uint32_t nextId = 1;
    for (int step = 0; step < 3000; ++step) {
        List& list = step % 2 == 0 ? a : b;
        List& other = step % 2 == 0 ? b : a;
        const int n = list.Count();
        OvListnode* some = n > 0 ? list.Get(static_cast<int>(random() % n)) : nullptr;
        switch (random() % 13) {
            case 0:
            case 1:
                list.Add(new OvListnode(nextId++ % 50));
                break;
            case 2:
                list.Insert(some, new OvListnode(nextId++ % 50));
                break;
            case 3:
                delete list.Subtract(some);
                break;
            case 4:
                delete list.SubtractFirst();
                break;
            case 5:
                list.Replace(OvListnode(nextId++ % 50));
                break;
            case 6:
                list.SortedReplace(OvListnode(nextId++ % 50));
                break;
            case 7:
                list.SortedInsert(new OvListnode(nextId++ % 50));
                break;
            case 8:
                list.Sort();
                break;
            case 9:
                if (random() % 4 == 0) list.MoveTo(&other);
                break;
            case 10:
                if (n < 200) list.CopyTo(&list);  // onto its own tail
                break;
            case 11:
                if (some != nullptr) {
                    EXPECT_EQ(other.Add(some), nullptr);  // linked elsewhere: refused
                    EXPECT_TRUE(list.Exist(some));
                    EXPECT_FALSE(other.Exist(some));
                    EXPECT_GE(list.Index(some), 0);
                }
                break;
            case 12:
                if (random() % 8 == 0 && random() % 2 == 0) {
                    list.Destroy();
                } else if (random() % 8 == 0) {
                    // SubtractAll hands the nodes back unlinked: keep them to delete.
                    std::vector<std::unique_ptr<OvListnode>> handedBack;
                    for (OvListnode* p = list.First(); p != nullptr;
                         p = static_cast<OvListnode*>(p->GetNext()))
                        handedBack.emplace_back(p);
                    EXPECT_EQ(list.SubtractAll(), static_cast<int>(handedBack.size()));
                }
                break;
        }
        ASSERT_EQ(list.Count(), walked(list)) << "step " << step;
        ASSERT_EQ(other.Count(), walked(other)) << "step " << step;
    }
    List copy(a);
    EXPECT_EQ(copy.Count(), a.Count());
    copy = b;
    EXPECT_EQ(copy.Count(), b.Count());
}

TEST(ListAccess, InsertAtHeadMiddleAndIntoAnEmptyList) {
    TOvListHeader<OvListnode> list;
    list.Insert(nullptr, new OvListnode(2));  // empty list: an Add
    OvListnode* n4 = list.Add(new OvListnode(4));
    list.Insert(list.First(), new OvListnode(1));  // new head
    list.Insert(n4, new OvListnode(3));
    list.Insert(nullptr, new OvListnode(5));  // no place given: appended
    EXPECT_EQ(IdsOf(list), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(IdsBackwards(list), (Ids{1, 2, 3, 4, 5}));
}

TEST(ListAccess, LookupsReturnTheFirstMatchFromTheHead) {
    TOvListHeader<OvListnode> list;
    OvListnode* first5 = list.Add(new OvListnode(5, "Alpha"));
    list.Add(new OvListnode(5, "beta"));
    OvListnode* beta = list.Add(new OvListnode(6, "Beta"));
    list.Add(new OvListnode(7, "alpha"));

    EXPECT_EQ(list.Find(5u), first5);
    EXPECT_EQ(list.Find(8u), nullptr);
    EXPECT_EQ(list.Find(String("Beta")), beta);
    EXPECT_EQ(list.Find(String("Beta"), true), beta);
    EXPECT_EQ(list.Find(String("BETA"), true), nullptr);
    EXPECT_EQ(list.Find(String("BETA"), false)->GetId(), 5u);  // "beta" comes first
    EXPECT_EQ(list.Find(String("ALPHA"), false), first5);
    EXPECT_EQ(list.Find(OvListnode(6)), beta);  // node comparison 0: same id

    std::unique_ptr<OvListnode> byName(list.Subtract(String("alpha")));
    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(byName->GetId(), 7u);
    std::unique_ptr<OvListnode> byId(list.Subtract(5u));
    EXPECT_EQ(byId.get(), first5);
    EXPECT_EQ(list.Subtract(String("nothing")), nullptr);
    EXPECT_EQ(list.Subtract(99u), nullptr);
    EXPECT_EQ(IdsOf(list), (Ids{5, 6}));
}

// ---- ids --------------------------------------------------------------------------------------

TEST(ListIds, GetFreeId) {
    TOvListHeader<OvListnode> list;
    EXPECT_EQ(list.GetFreeId(0), 1u);
    EXPECT_EQ(list.GetFreeId(4), 4u);
    list.Add(new OvListnode(3));
    list.Add(new OvListnode(7));
    EXPECT_EQ(list.GetFreeId(0), 8u);
    EXPECT_EQ(list.GetFreeId(3), 4u);
    EXPECT_EQ(list.GetFreeId(5), 5u);
    EXPECT_EQ(list.GetFreeId(7), 8u);
    list.Add(new OvListnode(4));
    list.Add(new OvListnode(4));
    list.Add(new OvListnode(5));
    EXPECT_EQ(list.GetFreeId(3), 6u);
    EXPECT_EQ(list.GetFreeId(), 8u);
}

TEST(ListIds, GetFreeIdAtTheTopOfTheRange) {
    TOvListHeader<OvListnode> list;
    list.Add(new OvListnode(1));
    list.Add(new OvListnode(0xFFFFFFFFu));
    EXPECT_EQ(list.GetFreeId(0), 2u);  // no id above the largest: the smallest free from 1
    EXPECT_EQ(list.GetFreeId(0xFFFFFFFFu), 0u);
    EXPECT_EQ(list.GetFreeId(0xFFFFFFFEu), 0xFFFFFFFEu);
}

TEST(ListIds, Renumber) {
    TOvListHeader<OvListnode> list;
    EXPECT_EQ(list.Renumber(1, nullptr, 1), 0);
    for (std::uint32_t id : {9u, 9u, 4u, 1u})
        list.Add(new OvListnode(id));
    EXPECT_EQ(list.Renumber(1, nullptr, 1), 4);
    EXPECT_EQ(IdsOf(list), (Ids{1, 2, 3, 4}));
    EXPECT_EQ(list.Renumber(100, list.Get(1), 10), 3);
    EXPECT_EQ(IdsOf(list), (Ids{1, 100, 110, 120}));
    EXPECT_EQ(list.Renumber(), 4);
    EXPECT_EQ(IdsOf(list), (Ids{1, 2, 3, 4}));
    OvListnode outside(50);
    EXPECT_EQ(list.Renumber(7, &outside, 1), 0);
    EXPECT_EQ(outside.GetId(), 50u);
}

// ---- order ------------------------------------------------------------------------------------

TEST(ListOrder, SortedInsertGoesInFrontOfTheFirstNodeComparingOneOrMore) {
    // OvListnode's comparison gives 1 when its id is the smaller, so a node goes in front of
    // the first node with a smaller id: the list comes out in descending id order.
    TOvListHeader<OvListnode> list;
    for (std::uint32_t id : {3u, 1u, 4u, 1u, 5u, 9u, 2u, 6u})
        list.SortedInsert(new OvListnode(id));
    EXPECT_EQ(IdsOf(list), (Ids{9, 6, 5, 4, 3, 2, 1, 1}));
    EXPECT_EQ(IdsBackwards(list), (Ids{9, 6, 5, 4, 3, 2, 1, 1}));
    EXPECT_EQ(list.SortedInsert(nullptr), nullptr);
}

TEST(ListOrder, SortedInsertWithADifferenceComparisonIsAscendingAndStable) {
    TOvListHeader<KeyedNode> list;
    // ids tell equal keys apart: an equal key goes behind the ones already there
    list.SortedInsert(new KeyedNode(1, 30));
    list.SortedInsert(new KeyedNode(2, 10));
    list.SortedInsert(new KeyedNode(3, 20));
    list.SortedInsert(new KeyedNode(4, 10));
    list.SortedInsert(new KeyedNode(5, 40));
    list.SortedInsert(new KeyedNode(6, 20));
    EXPECT_EQ(IdsOf(list), (Ids{2, 4, 3, 6, 1, 5}));
}

TEST(ListOrder, SortIsStableAndAgreesWithSortedInsert) {
    TOvListHeader<KeyedNode> sorted;
    TOvListHeader<KeyedNode> inserted;
    const int keys[] = {5, 3, 8, 3, 1, 9, 5, 2, 7, 3, 0, 8};
    std::uint32_t id = 1;
    for (int key : keys) {
        sorted.Add(new KeyedNode(id, key));
        inserted.SortedInsert(new KeyedNode(id, key));
        ++id;
    }
    EventLog log(&sorted.GetNotifier());
    sorted.Sort();
    EXPECT_EQ(IdsOf(sorted), IdsOf(inserted));
    EXPECT_EQ(IdsOf(sorted), (Ids{11, 5, 8, 2, 4, 10, 1, 7, 9, 3, 12, 6}));
    EXPECT_EQ(IdsBackwards(sorted), IdsOf(sorted));
    EXPECT_EQ(log.Kinds(), (Kinds{eOvNotifyKind::Sorted}));

    TOvListHeader<KeyedNode> empty;
    empty.Sort();
    EXPECT_TRUE(empty.IsEmpty());
}

TEST(ListOrder, ReplaceTakesThePlaceOfTheFirstSameIdNode) {
    DeathRegister reg;
    {
        CountingList list;
        list.Add(new CountingNode(reg, 1, "one"));
        const int oldSerial = list.Add(new CountingNode(reg, 2, "two"))->Serial();
        list.Add(new CountingNode(reg, 3, "three"));
        list.Add(new CountingNode(reg, 2, "second two"));

        CountingNode* fresh = list.Replace(new CountingNode(reg, 2, "new two"));
        EXPECT_EQ(reg.DeathsOf(oldSerial), 1);
        EXPECT_EQ(list.Get(1), fresh);
        EXPECT_EQ(IdsOf(list), (Ids{1, 2, 3, 2}));
        EXPECT_STREQ(list.Get(3)->GetName().chars(), "second two");

        CountingNode* appended = list.Replace(CountingNode(reg, 8, "eight"));
        EXPECT_EQ(list.Last(), appended);
        EXPECT_STREQ(appended->GetName().chars(), "eight");
        EXPECT_EQ(list.Replace(fresh), fresh);  // replacing a node by itself changes nothing
        EXPECT_EQ(IdsOf(list), (Ids{1, 2, 3, 2, 8}));
    }
    EXPECT_TRUE(reg.AllDiedOnce());
}

TEST(ListOrder, SortedReplacePlacesANewIdBySortedInsert) {
    TOvListHeader<KeyedNode> list;
    list.Add(new KeyedNode(1, 10));
    list.Add(new KeyedNode(2, 20));
    list.Add(new KeyedNode(3, 30));
    list.SortedReplace(KeyedNode(4, 25));  // new id: by key between 20 and 30
    EXPECT_EQ(IdsOf(list), (Ids{1, 2, 4, 3}));
    KeyedNode* replaced = list.SortedReplace(KeyedNode(1, 99));  // same id: in place, key ignored
    EXPECT_EQ(list.First(), replaced);
    EXPECT_EQ(replaced->key, 99);
    EXPECT_EQ(IdsOf(list), (Ids{1, 2, 4, 3}));
}

// ---- bulk -------------------------------------------------------------------------------------

TEST(ListBulk, CopyToAppendsCopiesWithOneNotification) {
    DeathRegister reg;
    {
        CountingList source;
        CountingList target;
        EventLog log(&target.GetNotifier());
        EXPECT_EQ(source.CopyTo(&target), 0);
        EXPECT_TRUE(log.entries.empty());

        target.Add(new CountingNode(reg, 100));
        log.entries.clear();
        source.Add(new CountingNode(reg, 1, "a"));
        source.Add(new CountingNode(reg, 2, "b"));
        EXPECT_EQ(source.CopyTo(&target), 2);
        EXPECT_EQ(IdsOf(target), (Ids{100, 1, 2}));
        EXPECT_NE(target.Get(1), source.First());
        EXPECT_STREQ(target.Get(2)->GetName().chars(), "b");
        EXPECT_EQ(IdsOf(source), (Ids{1, 2}));
        EXPECT_EQ(log.Kinds(), (Kinds{eOvNotifyKind::MultiAdded}));
        EXPECT_TRUE(target.IsNotifyEnabled());
        EXPECT_EQ(source.CopyTo(nullptr), 0);
    }
    EXPECT_TRUE(reg.AllDiedOnce());
}

TEST(ListBulk, MoveToTransfersTheNodesThemselves) {
    TOvListHeader<OvListnode> from;
    TOvListHeader<OvListnode> to;
    to.Add(new OvListnode(1));
    OvListnode* n2 = from.Add(new OvListnode(2));
    from.Add(new OvListnode(3));
    EventLog fromLog(&from.GetNotifier());
    EventLog toLog(&to.GetNotifier());

    EXPECT_EQ(from.MoveTo(&to), 2);
    EXPECT_TRUE(from.IsEmpty());
    EXPECT_EQ(IdsOf(to), (Ids{1, 2, 3}));
    EXPECT_EQ(to.Get(1), n2);
    EXPECT_EQ(fromLog.Kinds(), (Kinds{eOvNotifyKind::Changed}));
    EXPECT_EQ(toLog.Kinds(), (Kinds{eOvNotifyKind::MultiAdded}));
    EXPECT_EQ(to.MoveTo(&to), 0);
    EXPECT_EQ(to.MoveTo(nullptr), 0);
}

// ---- notification -----------------------------------------------------------------------------

TEST(ListNotify, EachOperationRaisesItsKindWithListAndNode) {
    TOvListHeader<OvListnode> list;
    EventLog log(&list.GetNotifier());
    OvListnode* a = list.Add(new OvListnode(1));
    OvListnode* b = list.Insert(a, new OvListnode(2));
    std::unique_ptr<OvListnode> gone(list.Subtract(a));
    list.Sort();
    list.NotifyChanged(b, nullptr);

    ASSERT_EQ(log.entries.size(), 5u);
    EXPECT_EQ(log.Kinds(),
              (Kinds{eOvNotifyKind::Added, eOvNotifyKind::Added, eOvNotifyKind::Subtracted,
                     eOvNotifyKind::Sorted, eOvNotifyKind::Changed}));
    EXPECT_EQ(log.entries[0].node, a);
    EXPECT_EQ(log.entries[1].node, b);
    EXPECT_EQ(log.entries[2].node, a);
    EXPECT_EQ(log.entries[3].node, nullptr);
    for (const auto& e : log.entries)
        EXPECT_EQ(e.list, static_cast<void*>(&list));
    OvNotifyEvent probe(eOvNotifyKind::Changed, log.entries[4].list, nullptr);
    EXPECT_TRUE(list.IsSourceOf(probe));
}

TEST(ListNotify, DestroySendsOneChangeAndTheDestructorADestroyedEvent) {
    EventLog log;
    {
        TOvListHeader<OvListnode> list;
        log.observer.SetNotifyParent(&list.GetNotifier());
        list.Add(new OvListnode(1));
        list.Add(new OvListnode(2));
        log.entries.clear();
        list.Destroy();
        EXPECT_EQ(log.Kinds(), (Kinds{eOvNotifyKind::Changed}));
        EXPECT_EQ(log.entries[0].node, nullptr);
        list.Add(new OvListnode(3));
        log.entries.clear();
    }
    EXPECT_EQ(log.Kinds(), (Kinds{eOvNotifyKind::Changed, eOvNotifyKind::Destroyed}));
    EXPECT_EQ(log.observer.GetNotifyParent(), nullptr);  // the dead list's notifier let go
}

TEST(ListNotify, TheLockCounterNestsAndDropsEventsWhileRaised) {
    TOvListHeader<OvListnode> list;
    EventLog log(&list.GetNotifier());
    EXPECT_TRUE(list.IsNotifyEnabled());
    EXPECT_FALSE(list.SetNotify(false));
    EXPECT_FALSE(list.SetNotify(false));
    EXPECT_EQ(list.GetNotifyLock(), 2u);
    list.Add(new OvListnode(1));
    std::unique_ptr<OvListnode> gone(list.SubtractFirst());
    list.Add(new OvListnode(2));
    list.Sort();
    list.NotifyMultiAdd();
    EXPECT_TRUE(log.entries.empty());

    list.ForceNotify();  // forced through the lock
    EXPECT_EQ(log.Kinds(), (Kinds{eOvNotifyKind::Changed}));

    EXPECT_FALSE(list.SetNotify(true));  // still locked once
    list.Add(new OvListnode(3));
    EXPECT_EQ(log.entries.size(), 1u);
    EXPECT_TRUE(list.SetNotify(true));
    EXPECT_TRUE(list.SetNotify(true));  // does not go below 0
    EXPECT_EQ(list.GetNotifyLock(), 0u);
    list.Add(new OvListnode(4));
    EXPECT_EQ(log.Kinds(), (Kinds{eOvNotifyKind::Changed, eOvNotifyKind::Added}));
}

TEST(ListNotify, ChangedSkipsTheObserverThatMadeTheChange) {
    TOvListHeader<OvListnode> list;
    EventLog editor(&list.GetNotifier());
    EventLog viewer(&list.GetNotifier());
    OvListnode* node = list.Add(new OvListnode(1));
    editor.entries.clear();
    viewer.entries.clear();
    list.NotifyChanged(node, &editor.observer);
    EXPECT_TRUE(editor.entries.empty());
    ASSERT_EQ(viewer.entries.size(), 1u);
    EXPECT_EQ(viewer.entries[0].node, node);
}

TEST(ListNotify, CopiesOfAListDoNotTakeItsObservers) {
    TOvListHeader<OvListnode> list;
    EventLog log(&list.GetNotifier());
    list.Add(new OvListnode(1));
    TOvListHeader<OvListnode> copy(list);
    log.entries.clear();
    copy.Add(new OvListnode(2));
    EXPECT_TRUE(log.entries.empty());
    EXPECT_EQ(copy.GetNotifier().GetObserverCount(), 0);
    copy = list;
    EXPECT_EQ(list.GetNotifier().GetObserverCount(), 1);
}

TEST(ListCast, CastRecoversTheRecordFromItsNodePart) {
    DeathRegister reg;
    CountingList list;
    CountingNode* node = list.Add(new CountingNode(reg, 4));
    const OvBaseListnode* part = node;
    EXPECT_EQ(CountingList::Cast(part), node);
}

}  // namespace
}  // namespace orvo
