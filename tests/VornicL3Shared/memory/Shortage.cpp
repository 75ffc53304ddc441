#include "VornicL3Shared/memory/Shortage.h"

#include "VornicL3Shared/memory/Restarted.h"
#include "VornicL3Shared/model/Child.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <sstream>
#include <vector>

namespace MemoryTest {
namespace {

using Support::FailingAllocations;

constexpr unsigned longestRun = 60; // seconds
constexpr char fieldEnd = '\x1E';

/// What the terminate handler of a child knows.
struct Ended {
    ModelTest::Report const* report = nullptr;
    Test::World* world = nullptr;
};
Ended ended;

std::string joined(std::vector<std::string> const& lines) {
    std::string text;
    for (std::string const& line : lines) {
        text += line + "\n";
    }
    return text;
}

std::string nameOfException() {
    if (!std::current_exception()) {
        return "no exception";
    }
    try {
        throw;
    } catch (std::exception const& exception) {
        return exception.what();
    } catch (...) {
        return "an exception without a text";
    }
}

void send(ModelTest::Report const& report, Outcome const& outcome) {
    report(std::to_string(static_cast<int>(outcome.way)) + fieldEnd + outcome.what + fieldEnd +
           outcome.state + fieldEnd + outcome.reports + fieldEnd + outcome.restart.state +
           fieldEnd + (outcome.restart.doubled ? "doubled" : "") + fieldEnd +
           std::to_string(outcome.allocations) + fieldEnd);
}

[[noreturn]] void onTerminate() {
    FailingAllocations::end();
    Outcome outcome;
    outcome.way = Outcome::Way::stopped;
    outcome.what = nameOfException();
    outcome.restart = restarted(*ended.world);
    send(*ended.report, outcome);
    std::abort();
}

/// Whether the operation came to its end.
bool operate(Scenario const& scenario, Test::World& world, Outcome& outcome, U32 passing,
             Support::Shortage shortage) {
    Support::CountedAllocations const allocations;
    try {
        FailingAllocations const fail(passing, shortage);
        scenario.operate(world);
    } catch (std::bad_alloc const&) {
        return false;
    }
    outcome.allocations = allocations.count();
    return true;
}

void runWorld(Scenario const& scenario, ModelTest::Report const& report, U32 passing,
              Support::Shortage shortage) {
    Test::World world(scenario.settings);
    ended = {&report, &world};
    scenario.prepare(world);
    world.capture.forget();
    Outcome outcome;
    if (operate(scenario, world, outcome, passing, shortage)) {
        outcome.way = FailingAllocations::failed() ? Outcome::Way::done : Outcome::Way::untroubled;
    } else {
        outcome.way = Outcome::Way::refused;
        outcome.restart = restarted(world);
        if (shortage == Support::Shortage::momentary) {
            scenario.operate(world);
        }
    }
    outcome.state = world.state();
    outcome.reports = joined(world.capture.traces()) + joined(world.capture.logs());
    if (outcome.way != Outcome::Way::refused) {
        outcome.restart = restarted(world);
    }
    send(report, outcome);
}

U64 livingObjects() {
    return VornicCentral::VpIndexAllocatorDirSm::allocationTracker().live() +
           VornicCentral::VpIndexAllocator::allocationTracker().live() +
           VornicCentral::VpIndexConfig::allocationTracker().live() +
           VornicCentral::VpIndexStatus::allocationTracker().live() +
           VornicCentral::VpReferenceList::allocationTracker().live() +
           Bask::Bitmap::allocationTracker().live();
}

} // namespace

Outcome runShort(Scenario const& scenario, U32 passing, Support::Shortage shortage) {
    ModelTest::Ending const ending = ModelTest::inChild([&](ModelTest::Report const& report) {
        alarm(longestRun);
        std::set_terminate(onTerminate);
        Qor::assertionSinkIs([&](Qor::AssertionFailure const& failure) {
            report("assertion " + std::string(failure.text) + "\n");
        });
        Support::CountedAllocations const counted;
        runWorld(scenario, report, passing, shortage);
        std::int64_t const kept = counted.live();
        report(std::to_string(kept) + fieldEnd + std::to_string(livingObjects()));
    });
    std::istringstream fields(ending.report);
    auto const field = [&fields] {
        std::string text;
        std::getline(fields, text, fieldEnd);
        return text;
    };
    Outcome outcome;
    std::string const way = field();
    if (way.size() != 1) {
        outcome.what = "the process ended: " + ending.report;
        return outcome;
    }
    outcome.way = static_cast<Outcome::Way>(way.front() - '0');
    outcome.what = field();
    outcome.state = field();
    outcome.reports = field();
    outcome.restart.state = field();
    outcome.restart.doubled = !field().empty();
    outcome.allocations = static_cast<U32>(std::stoul(field()));
    bool const stopped = outcome.way == Outcome::Way::stopped;
    if (stopped ? !ending.aborted : !ending.finished) {
        outcome.way = Outcome::Way::broken;
        outcome.what = "the process ended in another way: " + ending.report;
    } else if (!stopped) {
        outcome.kept = std::stol(field());
        outcome.objects = std::stoul(field());
    }
    return outcome;
}

} // namespace MemoryTest
