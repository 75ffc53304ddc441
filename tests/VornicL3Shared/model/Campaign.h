#pragma once

#include "VornicL3Shared/model/Generator.h"

namespace ModelTest {

/// A sequence that failed, and the shortest part of it that does.
struct Failure {
    U64 seed = 0;
    std::size_t steps = 0; ///< of the whole sequence
    Sequence shrunk;
    Mismatch mismatch; ///< of the shrunk sequence

    std::string text() const;
};

/// How much a run of random sequences does.
///
/// Every run does the same, unless the environment overrides it: VORNIC_MODEL_SEQUENCES (of all
/// tests together), VORNIC_MODEL_STEPS, and VORNIC_MODEL_SEED, the seed of the first sequence (each
/// next one has the next number) or `random`. See `Tally` for VORNIC_MODEL_FULL.
struct Effort {
    static constexpr U64 usualSeed = 4711;

    U64 sequences; ///< of this run
    U64 firstSeed = usualSeed;
    std::size_t fewestSteps = 36; ///< so that the usual run costs a minute under sanitizers
    std::size_t mostSteps = 52;

    /// `percent` of all sequences, at least one.
    static Effort share(U64 percent);

    /// One line, from which the run can be made again.
    std::string text() const;
};

/// Runs sequences until one fails, and prints at its start which ones. A stop that the model does
/// not foresee cannot be survived: its failure is written to standard error before the process
/// ends. After a crash or a sanitizer's report that is the seed and the whole sequence.
std::optional<Failure> campaign(Flavour const& flavour, Effort const& effort, Tally& tally);

/// The same with each sequence in a child process, for beliefs that are known to be wrong.
std::optional<Failure> campaignInChildren(Flavour const& flavour, Effort const& effort,
                                          Beliefs const& beliefs);

} // namespace ModelTest
