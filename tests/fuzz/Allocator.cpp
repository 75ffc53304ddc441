// Sequences of operations on the allocator, with the model of `tests/VornicL3Shared/model` beside
// it.
//
// An input is a script, one operation a line: the verb, then numbers for client, kind, key, index,
// options, another client and a variant, of which those at the end may be missing. A line "watched"
// lets others listen to the records, and a line "generic" reaches everything through generic
// access. What is no operation is passed over.

#include "VornicL3Shared/model/Runner.h"
#include "VornicL3Shared/model/Shrink.h"
#include "common/Input.h"
#include "qor/Sinks.h"

#include <pthread.h>

#include <csignal>
#include <map>

namespace {

using namespace ModelTest;

constexpr std::size_t mostSteps = 60;
constexpr U32 largestTable = 64; ///< entries; the model copies the pool before each step

std::map<std::string_view, Verb> const verbs = {
#define FUZZ_VERB(verb, line) {#verb, Verb::verb},
    MODEL_TEST_VERBS(FUZZ_VERB)
#undef FUZZ_VERB
};

/// Takes the text up to a character off the front.
std::string_view takeUpTo(std::string_view& text, char end) {
    std::string_view const taken = text.substr(0, text.find(end));
    text.remove_prefix(std::min(taken.size() + 1, text.size()));
    return taken;
}

/// The next number of a line; 0 when there is none. Behind its digits anything may stand.
U32 takeNumber(std::string_view& line) {
    U32 number = 0;
    for (char const digit : takeUpTo(line, ' ')) {
        if (digit < '0' || digit > '9') {
            break;
        }
        number = number * 10 + static_cast<U32>(digit - '0');
    }
    return number;
}

/// The options are bits: the flag, the number of names (two bits) and the first of them; of a
/// start, reallocation, the order of remote indices, forwarding, and whether there is no record of
/// the capabilities and no directory of configs. The variant chooses arguments and a counter.
Operation operationOf(Verb verb, std::string_view numbers) {
    Operation operation;
    operation.verb = verb;
    operation.client = clientNames()[takeNumber(numbers) % clientNames().size()];
    operation.kind = fixedOrder.at(takeNumber(numbers) % kindCount);
    operation.key = takeNumber(numbers) % keysPerKind;
    operation.number = takeNumber(numbers);
    U32 const options = takeNumber(numbers);
    operation.flag = (options & 1) != 0;
    for (U32 name = 0; name < (options >> 1) % 4; ++name) {
        operation.names.push_back(clientNames()[(name + (options >> 3)) % clientNames().size()]);
    }
    operation.size = operation.number % largestTable;
    operation.settings.tableSize = operation.size;
    operation.settings.reallocation = (options & 1) != 0;
    operation.settings.remoteLow = (options & 2) != 0;
    operation.settings.vfiForwarding = (options & 4) != 0;
    operation.settings.capabilities = (options & 8) == 0;
    operation.settings.configDir = (options & 16) == 0;
    operation.other = clientNames()[takeNumber(numbers) % clientNames().size()];
    U32 const variant = takeNumber(numbers);
    operation.variant = static_cast<Variant>(variant % variantCount);
    operation.counter = static_cast<Counter>(variant % counterCount);
    return operation;
}

/// As those who write records and call operations have to: what a record holds is an index of
/// sixteen bits, a pool is made anew or not, and a question about a remote VTEP is of its kind.
void keepToTypes(Operation& operation, std::string_view verb) {
    if (verb.starts_with("clientRemote")) {
        operation.kind = operation.flag ? Kind::mlag : Kind::remote;
    }
    switch (operation.verb) {
    case Verb::freeIndex:
    case Verb::setIndex:
    case Verb::defaultVp:
    case Verb::recycle:
    case Verb::putCounter:
    case Verb::addToCounter:
        break;
    case Verb::bitmap:
        operation.number %= 2;
        break;
    default:
        operation.number %= 65536;
    }
}

Sequence sequenceOf(std::string_view script) {
    Sequence sequence;
    while (!script.empty() && sequence.steps.size() < mostSteps) {
        std::string_view line = takeUpTo(script, '\n');
        sequence.watched |= line == "watched";
        sequence.generic |= line == "generic";
        auto const verb = verbs.find(takeUpTo(line, ' '));
        if (verb != verbs.end()) {
            sequence.steps.push_back(operationOf(verb->second, line));
            keepToTypes(sequence.steps.back(), verb->first);
        }
    }
    return sequence;
}

/// A copy of the process that ends by SIGABRT is no finding.
bool restInCopies() {
    return ::pthread_atfork(nullptr, nullptr, [] { std::signal(SIGABRT, SIG_DFL); }) == 0;
}

/// Shrinks what failed, because a script of a few steps says more than the input.
[[noreturn]] void failWith(Sequence const& sequence) {
    Sequence const small =
        shrunk(sequence, [](Sequence const& each) { return runInChild(each, {}).has_value(); });
    auto const mismatch = runInChild(small, {});
    Fuzz::expect(false, scriptOf(small) + (mismatch ? mismatch->what : "did not fail again"));
    std::abort();
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    // Stops of the process that the model foresees are tried in a child, the first of each kind and
    // then few: what is counted is counted over all inputs.
    static Tally tally;
    static bool const resting = restInCopies();
    Fuzz::expect(resting, "the copies of the process cannot be told to end quietly");
    Sequence const sequence = sequenceOf(Fuzz::Input(data, size).rest());
    auto const former = Qor::assertionSinkIs([&](Qor::AssertionFailure const&) {
        failWith(sequence); // a stop that the model does not foresee
    });
    if (run(sequence, {}, tally)) {
        failWith(sequence);
    }
    Qor::assertionSinkIs(former);
    return 0;
}
