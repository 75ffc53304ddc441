// Nodes that hold the last uses of each other, in chains and trees of any depth.

#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/Slab.h"
#include "qor/HashMap2018.h"
#include "support/MultiThreaded.h"
#include "support/OwnStack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Pelo::newNode;
using Pelo::NodeFlag;
using Pelo::Ptr;

/// What was destroyed.
struct Graveyard {
    U32 count = 0;
    U32 wrongFlags = 0; ///< those whose flags were not as they had been set
};

/// A node that holds others; its flags say whether its number is even, and whether it is a zombie.
class Link final : public Pelo::Node, public Pelo::SlabAllocated<Link> {
public:
    Link(Graveyard& graveyard, U32 number) : graveyard_(graveyard), number_(number) {
        nodeFlagSet(NodeFlag::notificationActive, number % 2 == 0);
        markAndSweepFlagSet(number % 3 == 0);
    }
    Ptr<Link> next;
    Qor::HashMap2018<U32, Ptr<Link>> children;

private:
    ~Link() override {
        ++graveyard_.count;
        bool const right = nodeFlag(NodeFlag::notificationActive) == (number_ % 2 == 0) &&
                           isZombie() == (number_ % 3 == 0);
        graveyard_.wrongFlags += right ? 0 : 1;
    }

    Graveyard& graveyard_;
    U32 number_;
};

using Support::kibi;

/// Builds so many nodes, of which each holds the next one, and gives the first.
Ptr<Link> chainOf(U32 length, Graveyard& graveyard) {
    Ptr<Link> first;
    for (U32 number = length; number-- > 0;) {
        auto link = newNode<Link>(graveyard, number);
        link->next = std::exchange(first, link);
    }
    return first;
}

/// The same, where each holds the next one and two leaves as its children.
Ptr<Link> treeOf(U32 depth, Graveyard& graveyard) {
    Ptr<Link> root;
    for (U32 number = depth; number-- > 0;) {
        auto link = newNode<Link>(graveyard, number);
        link->children.newMember(0, newNode<Link>(graveyard, 0u));
        link->children.newMember(1, std::exchange(root, link));
        link->children.newMember(2, newNode<Link>(graveyard, 2u));
    }
    return root;
}

/// Lets go of what `build` gives, on a stack of so many bytes, and expects all of it to be gone.
void expectGone(U32 nodes, std::size_t stack, Ptr<Link> (*build)(U32, Graveyard&)) {
    U64 const before = Link::allocationTracker().live();
    Graveyard graveyard;
    auto head = build(nodes, graveyard);
    U64 const built = Link::allocationTracker().live() - before;
    Support::onStackOf(stack, [&] { head = nullptr; });
    EXPECT_GE(built, nodes);
    EXPECT_EQ(graveyard.count, built) << "on a stack of " << stack;
    EXPECT_EQ(graveyard.wrongFlags, 0u);
    EXPECT_EQ(Link::allocationTracker().live(), before);
}

TEST(NodeChain, OfAMillionGoesOnAnyStack) {
    expectGone(1000000, 64 * kibi, chainOf);
    expectGone(200000, Support::usualStack(), chainOf);
}

TEST(NodeChain, OfParentsAndChildrenGoesOnAnyStack) {
    expectGone(50000, 64 * kibi, treeOf);
    expectGone(50000, Support::usualStack(), treeOf);
}

TEST(NodeChain, GoesAsFarAsNobodyElseHoldsIt) {
    Graveyard graveyard;
    auto head = chainOf(200000, graveyard);
    Ptr<Link> middle = head;
    for (U32 step = 0; step < 100000; ++step) {
        middle = middle->next;
    }
    Support::onStackOf(64 * kibi, [&] { head = nullptr; });
    EXPECT_EQ(graveyard.count, 100000u);
    EXPECT_EQ(middle->useCount(), 1u);
    Support::onStackOf(64 * kibi, [&] { middle = nullptr; });
    EXPECT_EQ(graveyard.count, 200000u);
}

TEST(NodeChain, OfEachOfSeveralThreadsGoesByItself) {
    Support::MultiThreaded const on; // the nodes share their storage
    std::array<Graveyard, 4> graveyards;
    std::vector<std::thread> threads;
    for (Graveyard& own : graveyards) {
        threads.emplace_back(
            [&own] { Support::onStackOf(64 * kibi, [&] { chainOf(5000, own); }); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (Graveyard const& graveyard : graveyards) {
        EXPECT_EQ(graveyard.count, 5000u);
        EXPECT_EQ(graveyard.wrongFlags, 0u);
    }
}

/// A node that counts how deep it is within the destruction of others.
class Nested final : public Pelo::Node {
public:
    Nested(U32& depth, U32& deepest) : depth_(depth), deepest_(deepest) {}
    Ptr<Nested> next;

private:
    ~Nested() override {
        deepest_ = std::max(deepest_, ++depth_);
        next = nullptr;
        --depth_;
    }
    U32& depth_;
    U32& deepest_;
};

TEST(NodeChain, GoesEachWithinTheOtherWhileThereIsStack) {
    U32 depth = 0;
    U32 deepest = 0;
    Ptr<Nested> first;
    for (int number = 0; number < 100; ++number) {
        auto link = newNode<Nested>(depth, deepest);
        link->next = std::exchange(first, link);
    }
    first = nullptr;
    EXPECT_EQ(deepest, 100u);
}

} // namespace
