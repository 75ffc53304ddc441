#include "VornicL3Shared/model/Campaign.h"

#include "VornicL3Shared/model/LastWords.h"
#include "VornicL3Shared/model/Shrink.h"
#include "qor/Sinks.h"

#include <cstdlib>
#include <iostream>
#include <random>
#include <string_view>

namespace ModelTest {
namespace {

constexpr U64 allSequences = 2000;

U64 fromEnvironment(char const* name, U64 otherwise) {
    char const* const value = std::getenv(name);
    return value == nullptr ? otherwise : std::stoull(value);
}

U64 seedFromEnvironment() {
    char const* const value = std::getenv("VORNIC_MODEL_SEED");
    if (value != nullptr && std::string_view(value) == "random") {
        return U64{std::random_device()()} << 20;
    }
    return fromEnvironment("VORNIC_MODEL_SEED", Effort::usualSeed);
}

Sequence sequenceOf(Flavour const& flavour, Effort const& effort, U64 seed) {
    std::size_t const range = effort.mostSteps - effort.fewestSteps + 1;
    return generated(flavour, seed, effort.fewestSteps + seed % range);
}

Failure failureOf(Sequence const& sequence, U64 seed, Beliefs const& beliefs) {
    auto const fails = [&](Sequence const& candidate) {
        return runInChild(candidate, beliefs).has_value();
    };
    Sequence const small = shrunk(sequence, fails);
    return {seed, sequence.steps.size(), small,
            runInChild(small, beliefs).value_or(Mismatch{0, "the failure did not come again\n"})};
}

/// What a run says of the sequence under way when the process is about to end. A failed assertion
/// leaves it in good enough order to shrink the sequence; after all else it is told whole.
class UnderWay {
public:
    UnderWay() {
        former_ = Qor::assertionSinkIs([this](Qor::AssertionFailure const&) {
            std::cerr << failureOf(sequence_, seed_, {}).text() << std::flush;
            LastWords::areSaid();
        });
    }
    ~UnderWay() { Qor::assertionSinkIs(former_); }
    UnderWay(UnderWay const&) = delete;
    UnderWay& operator=(UnderWay const&) = delete;

    Sequence const& is(U64 seed, Sequence sequence) {
        seed_ = seed;
        sequence_ = std::move(sequence);
        lastWords_.are("seed " + std::to_string(seed) + "\n" + scriptOf(sequence_));
        return sequence_;
    }

private:
    U64 seed_ = 0;
    Sequence sequence_;
    LastWords lastWords_;
    Qor::AssertionSink former_;
};

} // namespace

Effort Effort::share(U64 percent) {
    U64 const all = fromEnvironment("VORNIC_MODEL_SEQUENCES", allSequences);
    U64 const steps = fromEnvironment("VORNIC_MODEL_STEPS", 0);
    Effort effort{(all * percent + 99) / 100, seedFromEnvironment()};
    if (steps != 0) {
        effort.fewestSteps = effort.mostSteps = steps;
    }
    return effort;
}

std::string Effort::text() const {
    return "first seed " + std::to_string(firstSeed) + ", sequences: " + std::to_string(sequences) +
           ", steps of each: " + std::to_string(fewestSteps) + " to " + std::to_string(mostSteps);
}

std::string Failure::text() const {
    return "seed " + std::to_string(seed) + " (" + std::to_string(steps) + " steps, shrunk to " +
           std::to_string(shrunk.steps.size()) + ")\n" + scriptOf(shrunk) + "after step " +
           std::to_string(mismatch.step) + " (- expected, + seen):\n" + mismatch.what;
}

std::optional<Failure> campaign(Flavour const& flavour, Effort const& effort, Tally& tally) {
    std::cout << effort.text() << std::endl;
    UnderWay underWay;
    for (U64 at = 0; at < effort.sequences; ++at) {
        U64 const seed = effort.firstSeed + at;
        Sequence const& sequence = underWay.is(seed, sequenceOf(flavour, effort, seed));
        if (run(sequence, {}, tally)) {
            return failureOf(sequence, seed, {});
        }
    }
    return std::nullopt;
}

std::optional<Failure> campaignInChildren(Flavour const& flavour, Effort const& effort,
                                          Beliefs const& beliefs) {
    std::cout << effort.text() << std::endl;
    for (U64 at = 0; at < effort.sequences; ++at) {
        U64 const seed = effort.firstSeed + at;
        Sequence const sequence = sequenceOf(flavour, effort, seed);
        if (runInChild(sequence, beliefs)) {
            return failureOf(sequence, seed, beliefs);
        }
    }
    return std::nullopt;
}

} // namespace ModelTest
