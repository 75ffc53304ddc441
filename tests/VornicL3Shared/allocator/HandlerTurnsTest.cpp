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
        turns.leave([&] {
            turns.leave([&] { done += " third"; });
            done += " first";
        });
        turns.leave([&] { done += " second"; });
        done += "handler";
    });
    EXPECT_EQ(done, "handler first second third");
}

TEST(HandlerTurns, RunAHandlerWithinAnotherAsAPartOfIt) {
    HandlerTurns turns;
    std::string done;
    turns.run([&] {
        turns.leave([&] { done += " left"; });
        turns.run([&] { done += "inner"; });
        done += turns.running() ? " outer" : " nobody";
    });
    EXPECT_EQ(done, "inner outer left");
}

TEST(HandlerTurns, KeepWhatIsLeftForTheNextTurnWhenAHandlerThrows) {
    HandlerTurns turns;
    std::string done;
    EXPECT_THROW(turns.run([&] {
        turns.leave([&] { done += " left"; });
        throw std::runtime_error("");
    }),
                 std::runtime_error);
    EXPECT_FALSE(turns.running());
    turns.run([&] { done += "next"; });
    EXPECT_EQ(done, "next left");
}

} // namespace
