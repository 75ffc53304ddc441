#pragma once

#include "VornicL3Shared/model/Model.h"
#include "VornicL3Shared/model/Operation.h"

#include <functional>
#include <map>
#include <optional>

namespace ModelTest {

/// Operations to be carried out one after the other in a world that begins empty.
struct Sequence {
    bool watched = false; ///< whether others listen to the records
    bool generic = false; ///< whether records and operations are reached through generic access
    std::vector<Operation> steps;
};

/// The first step after which library and model differ.
struct Mismatch {
    std::size_t step = 0;
    std::string what; ///< what differs, and how
};

/// What has been compared, and what is to be.
struct Tally {
    /// Whether nothing is left out: after every step the traces of `verify` are compared as well,
    /// and each check that fails and each step that stops the process is tried in a child. So with
    /// VORNIC_MODEL_FULL=1 in the environment, at many times the cost.
    bool full = fullFromEnvironment();
    std::function<void()> onStep; ///< called before the library carries a step out

    U64 sequences = 0;
    U64 steps = 0;
    U64 passedChecks = 0;           ///< `verify` in this process
    U64 failedChecks = 0;           ///< `verify` in a child, where it must end as the model says
    U64 stops = 0;                  ///< steps in a child, where they must end as the model says
    std::map<std::string, U64> met; ///< how often the model foresaw a stop with this text

    /// Whether a stop is to be tried in a child, which costs as much as many steps: the first ones
    /// of each text are, and then some.
    bool tries(std::string const& stop) {
        U64 const before = met[stop]++;
        return full || before < 3 || before % 50 == 0;
    }

    static bool fullFromEnvironment();
};

/// Carries a sequence out on the library and on the model and compares after every step: the
/// operation's result, everything that was reported, the whole state, and the outcome of `verify`.
/// Of `verify` the traces are compared after every eighth step only. A check that fails with the
/// text of the one that failed before it is not tried, and of the others, as of the steps that stop
/// the process, those that the tally says.
///
/// A step that stops the process, as the model says, is carried out in a child and then left out. A
/// stop that the model does not foresee stops this process: see `runInChild`.
std::optional<Mismatch> run(Sequence const& sequence, Beliefs const& beliefs, Tally& tally);

/// As `run`, in a child process: whatever ends it is a mismatch too.
std::optional<Mismatch> runInChild(Sequence const& sequence, Beliefs const& beliefs);

/// The sequence as a script, its steps numbered from 0.
std::string scriptOf(Sequence const& sequence);

} // namespace ModelTest
