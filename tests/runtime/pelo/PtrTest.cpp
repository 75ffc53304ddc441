#include "pelo/Ptr.h"

#include "pelo/Node.h"
#include "support/Allocations.h"
#include "support/MultiThreaded.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Pelo::newNode;
using Pelo::Ptr;

class Lamp : public Pelo::Node {
public:
    Lamp() { ++alive; }
    explicit Lamp(char const* reason) : Lamp() { throw std::runtime_error(reason); }

    Ptr<Lamp> next;

    static inline int alive = 0;

protected:
    ~Lamp() override { --alive; }
};

class Lantern final : public Lamp {
public:
    Lantern(int heldCandles, std::unique_ptr<int> heldOil)
        : candles(heldCandles), oil(std::move(heldOil)) {}
    int candles;
    std::unique_ptr<int> oil;
};

TEST(Ptr, IsNullAtFirst) {
    Ptr<Lamp> const none;
    Ptr<Lamp> const null = nullptr;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.get(), nullptr);
    EXPECT_TRUE(none == nullptr);
    EXPECT_EQ(none, null);
}

TEST(Ptr, AdoptTakesOverAUse) {
    auto* const lamp = new Lamp;
    {
        auto const ptr = Ptr<Lamp>::adopt(lamp);
        EXPECT_EQ(ptr.get(), lamp);
        EXPECT_EQ(ptr->useCount(), 1u);
    }
    EXPECT_EQ(Lamp::alive, 0);
}

TEST(Ptr, PlainPointerGivesAUseOfItsOwn) {
    auto const owner = newNode<Lamp>();
    {
        Ptr<Lamp> const second(owner.get());
        EXPECT_EQ(owner->useCount(), 2u);
    }
    EXPECT_EQ(owner->useCount(), 1u);
    Ptr<Lamp> const ofNothing(static_cast<Lamp*>(nullptr));
    EXPECT_FALSE(ofNothing);
}

TEST(Ptr, CopyAddsAUseAndMoveDoesNot) {
    auto first = newNode<Lamp>();
    Ptr<Lamp> const copy(first);
    EXPECT_EQ(copy->useCount(), 2u);
    Ptr<Lamp> const moved(std::move(first));
    EXPECT_EQ(moved->useCount(), 2u);
    EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move): a moved-from pointer is null
    EXPECT_EQ(moved, copy);
}

TEST(Ptr, AssignmentReleasesTheFormerNode) {
    auto ptr = newNode<Lamp>();
    auto const other = newNode<Lamp>();
    EXPECT_EQ(Lamp::alive, 2);
    ptr = other;
    EXPECT_EQ(Lamp::alive, 1);
    EXPECT_EQ(other->useCount(), 2u);
    ptr = nullptr;
    EXPECT_EQ(other->useCount(), 1u);
    ptr = newNode<Lamp>();
    EXPECT_EQ(Lamp::alive, 2);
    EXPECT_EQ(ptr->useCount(), 1u);
}

TEST(Ptr, AssignedToItselfItStays) {
    auto ptr = newNode<Lamp>();
    Ptr<Lamp>& self = ptr;
    ptr = self;
    ASSERT_TRUE(ptr);
    EXPECT_EQ(ptr->useCount(), 1u);
    ptr = std::move(self);
    ASSERT_TRUE(ptr);
    EXPECT_EQ(ptr->useCount(), 1u);
}

TEST(Ptr, DetachGivesTheUseAway) {
    auto ptr = newNode<Lamp>();
    Lamp* const lamp = ptr.detach();
    EXPECT_FALSE(ptr);
    EXPECT_EQ(lamp->useCount(), 1u);
    EXPECT_EQ(Ptr<Lamp>::adopt(lamp)->useCount(), 1u);
    EXPECT_EQ(Lamp::alive, 0);
    EXPECT_EQ(ptr.detach(), nullptr);
}

TEST(Ptr, ConvertsToAPointerToABaseOrToConst) {
    auto lantern = newNode<Lantern>(3, std::make_unique<int>(7));
    Ptr<Lamp> const lamp = lantern;
    Ptr<Lantern const> const constant = lantern;
    EXPECT_EQ(lamp->useCount(), 3u);
    EXPECT_TRUE(lamp == lantern);
    EXPECT_TRUE(lamp == lantern.get());
    Ptr<Pelo::Node> const moved = std::move(lantern);
    EXPECT_EQ(moved->useCount(), 3u);
    EXPECT_EQ(constant->candles, 3);
}

TEST(Ptr, ComparesTheNodesThatItPointsTo) {
    auto const one = newNode<Lamp>();
    auto const two = newNode<Lamp>();
    EXPECT_TRUE(one == one);
    EXPECT_TRUE(one != two);
    EXPECT_TRUE(one == one.get());
    EXPECT_TRUE(one != nullptr);
    EXPECT_EQ(&*one, one.get());
}

TEST(Ptr, NodesOfAChainGoWithTheirHead) {
    auto head = newNode<Lamp>();
    head->next = newNode<Lamp>();
    head->next->next = newNode<Lamp>();
    auto const last = head->next->next;
    head = head->next; // the former head owns what replaces it
    EXPECT_EQ(Lamp::alive, 2);
    head = nullptr;
    EXPECT_EQ(Lamp::alive, 1);
}

/// A node that, as it goes, looks at the pointer that held it.
class Witness final : public Pelo::Node {
public:
    Witness(Ptr<Witness>& holder, std::vector<bool>& seen) : holder_(holder), seen_(seen) {}

private:
    ~Witness() override { seen_.push_back(holder_ == nullptr); }
    Ptr<Witness>& holder_;
    std::vector<bool>& seen_;
};

TEST(Ptr, NodeThatGoesByAnAssignmentSeesTheNewValue) {
    std::vector<bool> seen;
    Ptr<Witness> holder;
    holder = newNode<Witness>(holder, seen);
    holder = nullptr;
    EXPECT_EQ(seen, std::vector<bool>{true});
}

TEST(Ptr, ConstructorThatThrowsLeavesNothing) {
    EXPECT_THROW(newNode<Lamp>("broken"), std::runtime_error);
    EXPECT_EQ(Lamp::alive, 0);
}

TEST(Ptr, WithoutMemoryThereIsNoNode) {
    {
        Support::FailingAllocations const none(0);
        EXPECT_THROW(newNode<Lamp>(), std::bad_alloc);
    }
    EXPECT_EQ(Lamp::alive, 0);
}

TEST(Ptr, OneNodeIsSharedByPointersOfManyThreads) {
    auto const shared = newNode<Lamp>();
    {
        Support::MultiThreaded const on;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&shared] {
                std::vector<Ptr<Lamp>> held(16);
                for (std::size_t round = 0; round < 20000; ++round) {
                    held[round % 16] = shared;
                    held[(round + 5) % 16] = held[round % 16];
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    EXPECT_EQ(shared->useCount(), 1u);
}

} // namespace
