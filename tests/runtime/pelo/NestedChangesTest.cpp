// Reactors that change what they are told of, without an end or nearly so.

#include "pelo/Publisher.h"
#include "runtime/pelo/Reactor.h"
#include "support/OwnStack.h"

#include <gtest/gtest.h>
#include <ucontext.h>

#include <array>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Pelo::Publisher;

/// Subscribes to a publisher and does something in each notification.
class Actor {
public:
    Actor(Publisher& publisher, std::function<void()> act) : act_(std::move(act)) {
        publisher.subscriberAdd(&subscriber_, false);
    }

private:
    static void dispatch(Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId, void const*,
                         void const*) noexcept {
        [[maybe_unused]] char volatile used[1024]; // as much as a handler well may; tools count
                                                   // calls, not bytes
        used[0] = 1;
        subscriber->owner<Actor>().act_();
        used[1] = 1;
    }

    std::function<void()> act_;
    Pelo::Subscriber subscriber_{this, &dispatch};
};

using Support::kibi;
constexpr std::size_t stackSizes[] = {64 * kibi, 256 * kibi, 1024 * kibi, 8192 * kibi};
constexpr char const* refusal = "Publisher\\.cpp:[0-9]+: .*Assertion '!Stack::low\\(\\)' failed\\.";

/// One reactor, or several of which the middle one does it.
void changeWithoutEnd(int reactors) {
    Publisher publisher;
    std::vector<std::unique_ptr<Actor>> actors;
    for (int number = 0; number < reactors; ++number) {
        bool const writes = number == reactors / 2;
        actors.push_back(std::make_unique<Actor>(publisher, [&publisher, writes] {
            if (writes) {
                Support::publish(publisher, 131, 1);
            }
        }));
    }
    Support::publish(publisher, 131, 1);
}

void changeEachOtherWithoutEnd() {
    Publisher left;
    Publisher right;
    Actor const ofLeft(left, [&] { Support::publish(right, 131, 1); });
    Actor const ofRight(right, [&] { Support::publish(left, 131, 1); });
    Support::publish(left, 131, 1);
}

/// Each publisher of a row passes a change on to the next one; gives how many were told.
std::size_t passOn(std::size_t publishers) {
    std::size_t told = 0;
    std::vector<Publisher> row(publishers);
    std::vector<std::unique_ptr<Actor>> actors;
    for (Publisher& publisher : row) {
        actors.push_back(std::make_unique<Actor>(publisher, [&row, &told] {
            if (++told < row.size()) {
                Support::publish(row[told], 131, 1);
            }
        }));
    }
    Support::publish(row.front(), 131, 1);
    return told;
}

TEST(NestedChangesDeath, OfOneThatNeverEndsStopTheProcessWithStackLeft) {
    for (int const reactors : {1, 3}) {
        EXPECT_DEATH(changeWithoutEnd(reactors), refusal);
        for (std::size_t const size : stackSizes) {
            EXPECT_DEATH(Support::onStackOf(size, [&] { changeWithoutEnd(reactors); }), refusal);
        }
    }
}

TEST(NestedChangesDeath, OfTwoThatChangeEachOtherStopTheProcessWithStackLeft) {
    EXPECT_DEATH(changeEachOtherWithoutEnd(), refusal);
    for (std::size_t const size : stackSizes) {
        EXPECT_DEATH(Support::onStackOf(size, changeEachOtherWithoutEnd), refusal);
    }
}

TEST(NestedChangesDeath, OfARowTooLongForTheStackStopTheProcess) {
    EXPECT_DEATH(Support::onStackOf(256 * kibi, [] { passOn(100000); }), refusal);
}

TEST(NestedChanges, GoAsDeepAsTheStackAllows) {
    Support::onStackOf(8192 * kibi, [] { EXPECT_EQ(passOn(1000), 1000u); });
    Support::onStackOf(64 * kibi, [] { EXPECT_EQ(passOn(5), 5u); });
}

/// Each thread with its own publishers, as the rule of one thread for an entity at a time allows.
TEST(NestedChanges, OfSeveralThreadsHaveTheirOwnStacks) {
    std::vector<std::thread> threads;
    std::array<std::size_t, 4> told{};
    for (std::size_t& own : told) {
        threads.emplace_back([&own] {
            for (int round = 0; round < 20; ++round) {
                own += passOn(100);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(told, (std::array<std::size_t, 4>{2000, 2000, 2000, 2000}));
}

TEST(NestedChanges, OnAStackThatIsNotTheThreadsOwnAreNotRefused) {
    EXPECT_EQ(passOn(1), 1u); // measures the thread's own stack
    static std::size_t told;
    told = 0;
    ucontext_t here;
    ucontext_t there;
    std::vector<char> stack(256 * kibi);
    ASSERT_EQ(getcontext(&there), 0);
    there.uc_stack.ss_sp = stack.data();
    there.uc_stack.ss_size = stack.size();
    there.uc_link = &here;
    makecontext(
        &there, [] { told = passOn(20); }, 0);
    ASSERT_EQ(swapcontext(&here, &there), 0);
    EXPECT_EQ(told, 20u);
}

} // namespace
