#include "pelo/Node.h"

#include "qor/Entity.h"
#include "support/MultiThreaded.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <latch>
#include <thread>
#include <vector>

namespace {

using Pelo::Node;
using Pelo::NodeFlag;

/// A node that says when it is destroyed.
class CountedLamp : public Node {
public:
    explicit CountedLamp(int& destroyed) : destroyed_(destroyed) {}
    ~CountedLamp() override { ++destroyed_; }

private:
    int& destroyed_;
};

TEST(Node, StartsWithOneUse) {
    int destroyed = 0;
    auto* const lamp = new CountedLamp(destroyed);
    EXPECT_EQ(lamp->useCount(), 1u);
    lamp->decUseImpl();
    EXPECT_EQ(destroyed, 1);
}

TEST(Node, LivesAsLongAsItHasAUse) {
    int destroyed = 0;
    auto* const lamp = new CountedLamp(destroyed);
    lamp->incUse();
    lamp->incUse();
    EXPECT_EQ(lamp->useCount(), 3u);
    lamp->decUseImpl();
    lamp->decUseImpl();
    EXPECT_EQ(lamp->useCount(), 1u);
    EXPECT_EQ(destroyed, 0);
    lamp->decUseImpl();
    EXPECT_EQ(destroyed, 1);
}

TEST(Node, IsDestroyedAsWhatItIsThroughAPointerToItsBase) {
    int destroyed = 0;
    Node const* const node = new CountedLamp(destroyed);
    node->decUseImpl();
    EXPECT_EQ(destroyed, 1);
}

TEST(Node, TypeMayDecideWhatHappensAfterTheLastUse) {
    class Kept : public Node {
    public:
        int gone = 0;

    private:
        void lastUserGone() noexcept override { ++gone; }
    };
    Kept kept;
    kept.incUse();
    kept.decUseImpl();
    EXPECT_EQ(kept.gone, 0);
    kept.decUseImpl();
    EXPECT_EQ(kept.gone, 1);
}

TEST(Node, FlagsAreClearAtFirstAndSetOneByOne) {
    struct Flags : Node {
        std::array<bool, 3> state() const {
            return {nodeFlag(NodeFlag::notificationActive), nodeFlag(NodeFlag::zombie), isZombie()};
        }
    };
    using State = std::array<bool, 3>;
    Flags node;
    EXPECT_EQ(node.state(), (State{false, false, false}));
    node.nodeFlagSet(NodeFlag::notificationActive, true);
    EXPECT_EQ(node.state(), (State{true, false, false}));
    node.markAndSweepFlagSet(true);
    EXPECT_EQ(node.state(), (State{true, true, true}));
    node.nodeFlagSet(NodeFlag::notificationActive, true);
    EXPECT_EQ(node.state(), (State{true, true, true}));
    node.nodeFlagSet(NodeFlag::notificationActive, false);
    EXPECT_EQ(node.state(), (State{false, true, true}));
    node.markAndSweepFlagSet(false);
    node.markAndSweepFlagSet(false);
    EXPECT_EQ(node.state(), (State{false, false, false}));
    EXPECT_EQ(node.useCount(), 1u);
}

TEST(Node, PublishesNothingAndDescribesNothingUnlessItsTypeDoes) {
    int destroyed = 0;
    CountedLamp const lamp(destroyed);
    EXPECT_EQ(lamp.publisher(), nullptr);
    EXPECT_EQ(lamp.typeData(), nullptr);
}

/// The place of a virtual function in the table of its class, as the Itanium C++ ABI keeps it in a
/// pointer to member: the offset in bytes, on some processors plus one.
template <class Function> std::size_t slotOf(Function function) {
    struct Pointer {
        std::ptrdiff_t offset;
        std::ptrdiff_t adjustment;
    };
    return static_cast<std::size_t>(std::bit_cast<Pointer>(function).offset) / sizeof(void*);
}

TEST(Node, VirtualFunctionsHaveTheSlotsThatOthersCallThemBy) {
    struct Opened : Qor::Entity {
        static std::size_t slotOfLastUserGone() { return slotOf(&Opened::lastUserGone); }
    };
    std::vector<std::size_t> const slots{Opened::slotOfLastUserGone(), slotOf(&Node::publisher),
                                         slotOf(&Node::typeData),
                                         slotOf(&Qor::Entity::handleParent)};
    std::vector<std::size_t> const behindTheDestructor{2, 3, 4, 5}; // which takes two
    EXPECT_EQ(slots, behindTheDestructor);
}

TEST(Node, UsesTakenAndGivenBackByManyThreadsAreAllCounted) {
    int destroyed = 0;
    auto* const lamp = new CountedLamp(destroyed);
    {
        Support::MultiThreaded const on;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([lamp] {
                for (int round = 0; round < 20000; ++round) {
                    lamp->incUse();
                    lamp->incUse();
                    lamp->decUseImpl();
                }
            });
        }
        while (lamp->useCount() < 2) { // reading it meanwhile is allowed
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    EXPECT_EQ(lamp->useCount(), 80001u);
    for (int use = 0; use < 80000; ++use) {
        lamp->decUseImpl();
    }
    EXPECT_EQ(destroyed, 0);
    lamp->decUseImpl();
    EXPECT_EQ(destroyed, 1);
}

/// A node that threads write to, each in its own place, before they give their use back.
class Board : public Node {
public:
    static constexpr std::size_t writers = 3;

    Board(std::atomic<int>& destroyed, std::atomic<U64>& sum) : destroyed_(destroyed), sum_(sum) {}
    ~Board() override {
        ++destroyed_;
        for (U64 const written : place) {
            sum_ += written;
        }
    }
    std::array<U64, writers> place{};

private:
    std::atomic<int>& destroyed_;
    std::atomic<U64>& sum_;
};

TEST(Node, LastOfManyThreadsDestroysItAndSeesWhatTheOthersWrote) {
    constexpr std::size_t boards = 2000;
    std::atomic<int> destroyed = 0;
    std::atomic<U64> sum = 0;
    std::vector<Board*> nodes;
    for (std::size_t i = 0; i < boards; ++i) {
        nodes.push_back(new Board(destroyed, sum));
        nodes.back()->incUse();
        nodes.back()->incUse();
    }
    Support::MultiThreaded const on;
    std::latch start(Board::writers);
    std::vector<std::thread> threads;
    for (std::size_t writer = 0; writer < Board::writers; ++writer) {
        threads.emplace_back([&, writer] {
            start.arrive_and_wait();
            for (Board* const board : nodes) {
                board->place[writer] = writer + 1;
                board->decUseImpl();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(destroyed, static_cast<int>(boards));
    EXPECT_EQ(sum, boards * (1 + 2 + 3));
}

} // namespace
