#include "VornicL3Shared/model/Generator.h"

#include <random>

namespace ModelTest {
namespace {

constexpr U32 firstFree = 8; // the index after the reserved ones

/// Draws a sequence. It knows nothing of the state, so that any part of a sequence is one too.
class Generator {
public:
    Generator(Flavour const& flavour, U64 seed) : flavour_(flavour), engine_(seed) {
        sequence_.watched = oneIn(2);
        sequence_.generic = oneIn(3);
        clients_ = 1 + below(flavour.hostileIndices ? clientNames().size() : 4);
        keys_ = 1 + below(keysPerKind);
        for (auto const& [verb, weight] : flavour.weights) {
            totalWeight_ += weight;
        }
    }

    Sequence all(std::size_t steps);

private:
    U64 below(U64 bound) { return engine_() % bound; }
    bool oneIn(U64 bound) { return below(bound) == 0; }

    void add(Verb verb) { add(drawn(verb)); }
    void add(Operation const& operation);
    void begin();
    void reboot();
    Verb drawnVerb();
    Operation drawn(Verb verb);
    U32 drawnIndex(bool wide);
    Settings drawnSettings();

    Flavour const& flavour_;
    std::mt19937_64 engine_;
    Sequence sequence_;
    U64 clients_;
    U64 keys_;
    U64 totalWeight_ = 0;
    U32 tableSize_ = 16;
};

Settings Generator::drawnSettings() {
    U32 const range = flavour_.largestTable - flavour_.smallestTable + 1;
    tableSize_ = flavour_.smallestTable + static_cast<U32>(below(range));
    return {tableSize_, !oneIn(4), oneIn(2),
            oneIn(2),   !oneIn(8), !(flavour_.hostileIndices && oneIn(16))};
}

/// An index, mostly one that an allocation could give. `wide` ones may have more than sixteen bits.
U32 Generator::drawnIndex(bool wide) {
    U32 const free = tableSize_ > firstFree ? tableSize_ - firstFree : 1;
    U32 const index = firstFree + static_cast<U32>(below(free));
    switch (below(flavour_.hostileIndices || wide ? 12 : 1)) {
    case 1:
        return invalidIndex;
    case 2:
        return flavour_.hostileIndices ? static_cast<U32>(below(firstFree)) : index;
    case 3:
        return tableSize_ + static_cast<U32>(below(3));
    case 4:
        return static_cast<U32>(below(65536));
    case 5:
        return wide ? index + 65536 : index;
    case 6:
        return wide ? invalidIndex + 65536 : invalidIndex;
    default:
        return index;
    }
}

Operation Generator::drawn(Verb verb) {
    bool const wide = verb == Verb::freeIndex || verb == Verb::setIndex ||
                      verb == Verb::defaultVp || verb == Verb::recycle;
    Operation operation;
    operation.verb = verb;
    operation.client = clientNames()[below(clients_)];
    operation.other = clientNames()[below(clients_)];
    operation.kind = fixedOrder[below(kindCount)];
    operation.key = below(keys_);
    operation.flag = oneIn(2);
    operation.number = drawnIndex(wide);
    operation.variant = static_cast<Variant>(below(variantCount));
    operation.counter = static_cast<Counter>(below(counterCount));
    for (U64 names = below(4); names > 0; --names) {
        operation.names.push_back(clientNames()[below(clientNames().size())]);
    }
    if (verb == Verb::start) {
        operation.settings = drawnSettings();
    } else if (verb == Verb::bitmap) {
        operation.number = static_cast<U32>(below(2));
        operation.size = oneIn(2) ? tableSize_ : static_cast<U32>(below(40));
        operation.flag = oneIn(4);
    } else if (verb == Verb::putCounter && oneIn(2)) {
        operation.number = ~operation.number; // the counter is about to start again at 0
    } else if (verb >= Verb::clientRemoteRef) {
        operation.kind = operation.flag ? Kind::mlag : Kind::remote;
    }
    return operation;
}

Verb Generator::drawnVerb() {
    U64 at = below(totalWeight_);
    for (auto const& [verb, weight] : flavour_.weights) {
        if (at < weight) {
            return verb;
        }
        at -= weight;
    }
    return Verb::request;
}

void Generator::add(Operation const& operation) {
    sequence_.steps.push_back(operation);
    if (flavour_.restartEachStep) {
        sequence_.steps.push_back(Operation{});
    }
}

/// Mostly the clients come first and the state machine soon.
void Generator::begin() {
    for (U64 client = 0; client < clients_; ++client) {
        Operation operation = drawn(Verb::clientAdd);
        operation.client = clientNames()[client];
        add(operation);
    }
    for (U64 early = below(8); early > 0; --early) {
        add(oneIn(8) ? Verb::putBoot : Verb::request);
    }
    add(Verb::start);
}

/// What was in use goes into the boot status, and all else is lost.
void Generator::reboot() {
    add(Verb::saveBoot);
    add(Verb::stop);
    add(Verb::clearReferences);
    add(Verb::clearWaiting);
    for (U64 client = 0; client < clients_ && !oneIn(3); ++client) {
        Operation operation = drawn(Verb::statusReplace);
        operation.client = clientNames()[client];
        add(operation);
    }
    add(Verb::start);
}

Sequence Generator::all(std::size_t steps) {
    begin();
    while (sequence_.steps.size() < steps) {
        if (below(1000) < flavour_.rebootsPerThousand) {
            reboot();
        } else {
            add(drawnVerb());
        }
    }
    return std::move(sequence_);
}

} // namespace

Sequence generated(Flavour const& flavour, U64 seed, std::size_t steps) {
    return Generator(flavour, seed).all(steps);
}

} // namespace ModelTest
