#include "VornicL3Shared/model/multicast/McastModel.h"

#include "VornicL3Shared/model/Campaign.h"
#include "VornicL3Shared/model/LastWords.h"
#include "VornicL3Shared/model/multicast/McastSubject.h"

#include <gtest/gtest.h>

#include <iostream>

/// The layer-3 multicast records beside their model, in random sequences.
namespace ModelTest {
namespace {

/// Where the two part after one of the steps; empty when they agree to the end.
std::string mismatchOf(McastSteps const& steps, McastModel model = McastModel()) {
    McastSubject subject;
    for (std::size_t at = 0; at < steps.size(); ++at) {
        std::string const expected = model.apply(steps[at]) + model.state();
        std::string const seen = subject.apply(steps[at]) + subject.state();
        if (expected != seen) {
            return "after step " + std::to_string(at) + ", expected:\n" + expected + "seen:\n" +
                   seen;
        }
    }
    return "";
}

/// A part of the failing steps of which none can be left out.
McastSteps shrunk(McastSteps failing) {
    for (std::size_t at = failing.size(); at-- > 0;) {
        McastSteps rest = failing;
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(at));
        if (!mismatchOf(rest).empty()) {
            failing = std::move(rest);
        }
    }
    return failing;
}

std::string scriptOf(McastSteps const& steps) {
    std::string script;
    for (McastStep const& step : steps) {
        script += textOf(step) + "\n";
    }
    return script;
}

TEST(Model, AgreesOnMulticastRecords) {
    Effort const effort = Effort::share(5);
    std::cout << effort.text() << std::endl;
    LastWords lastWords;
    U64 steps = 0;
    for (U64 at = 0; at < effort.sequences; ++at) {
        U64 const seed = effort.firstSeed + at;
        McastSteps const all = mcastSteps(seed, effort.mostSteps);
        lastWords.are("seed " + std::to_string(seed) + "\n" + scriptOf(all));
        steps += all.size();
        if (!mismatchOf(all).empty()) {
            McastSteps const small = shrunk(all);
            FAIL() << "seed " << seed << ", shrunk to " << small.size() << " steps\n"
                   << scriptOf(small) << mismatchOf(small);
        }
    }
    std::cout << effort.sequences << " sequences, " << steps << " steps\n";
}

TEST(ModelCanary, ServiceThatEndsTooEarlyIsFound) {
    bool found = false;
    for (U64 seed = 0; seed < 20 && !found; ++seed) {
        found = !mismatchOf(mcastSteps(seed, 100), McastModel(true)).empty();
    }
    EXPECT_TRUE(found);
}

} // namespace
} // namespace ModelTest
