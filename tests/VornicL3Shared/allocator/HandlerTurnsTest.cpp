#include "VornicL3Shared/HandlerTurns.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using VornicCentral::HandlerTurns;

TEST(HandlerTurns, RunAHandlerAtOnce) {
    HandlerTurns turns;
    std::string done;
    turns.run([&] { done += turns.running() ? "handler" : "outside"; });
    EXPECT_EQ(done, "handler");
    EXPECT_FALSE(turns.running());
}

TEST(HandlerTurns, RunWhatIsLeftAfterTheHandlerInTheOrderOfItsComing) {
    HandlerTurns turns;
    std::string done;
    turns.run([&] {
        turns.leave(nullptr, [&]() noexcept {
            turns.leave(nullptr, [&]() noexcept { done += " third"; });
            done += " first";
        });
        turns.leave(nullptr, [&]() noexcept { done += " second"; });
        done += "handler";
    });
    EXPECT_EQ(done, "handler first second third");
}

TEST(HandlerTurns, RunAHandlerWithinAnotherAsAPartOfIt) {
    HandlerTurns turns;
    std::string done;
    turns.run([&] {
        turns.leave(nullptr, [&]() noexcept { done += " left"; });
        turns.run([&] { done += "inner"; });
        done += turns.running() ? " outer" : " nobody";
    });
    EXPECT_EQ(done, "inner outer left");
}

TEST(HandlerTurns, KeepWhatIsLeftForTheNextTurnWhenAHandlerThrows) {
    HandlerTurns turns;
    std::string done;
    EXPECT_THROW(turns.run([&] {
        turns.leave(nullptr, [&]() noexcept { done += " left"; });
        throw std::runtime_error("");
    }),
                 std::runtime_error);
    EXPECT_FALSE(turns.running());
    turns.run([&] { done += "next"; });
    EXPECT_EQ(done, "next left");
}

TEST(HandlerTurns, RunReleasesOnlyWhenNoChangeIsLeft) {
    HandlerTurns turns;
    std::string done;
    turns.run([&] {
        turns.leaveRelease([&]() noexcept {
            turns.leave(nullptr, [&]() noexcept { done += " third"; });
            done += " release";
        });
        turns.leaveRelease([&]() noexcept { done += " again"; });
        turns.leave(nullptr, [&]() noexcept {
            turns.leave(nullptr, [&]() noexcept { done += " second"; });
            done += " first";
        });
        done += "handler";
    });
    EXPECT_EQ(done, "handler first second release third again");
}

TEST(HandlerTurns, TellWhetherSomethingWaitsForTheHandlerThatIsRunning) {
    HandlerTurns turns;
    EXPECT_FALSE(turns.somethingLeft());
    turns.run([&] {
        EXPECT_FALSE(turns.somethingLeft());
        turns.leaveRelease([&]() noexcept { EXPECT_FALSE(turns.somethingLeft()); });
        EXPECT_TRUE(turns.somethingLeft());
    });
    EXPECT_THROW(turns.run([&] {
        turns.leave(nullptr, []() noexcept {});
        EXPECT_TRUE(turns.somethingLeft());
        throw std::runtime_error("");
    }),
                 std::runtime_error);
    EXPECT_FALSE(turns.somethingLeft()); // nobody is running
}

TEST(HandlerTurns, ForgetWhatAnOwnerHasLeft) {
    HandlerTurns turns;
    std::string done;
    turns.run([&] {
        turns.leave(&turns, [&]() noexcept { done += "owner"; });
        turns.leave(nullptr, [&]() noexcept { done += "other"; });
        turns.forget(&turns);
    });
    EXPECT_EQ(done, "other");
}

} // namespace
