#include "VornicL3Shared/model/Shrink.h"

#include <algorithm>

namespace ModelTest {
namespace {

Sequence without(Sequence const& sequence, std::size_t first, std::size_t count) {
    Sequence rest = sequence;
    auto const from = rest.steps.begin() + static_cast<std::ptrdiff_t>(first);
    rest.steps.erase(from, from + static_cast<std::ptrdiff_t>(count));
    return rest;
}

/// Leaves out every run of `count` steps, from the back, that is not needed. Whether any was.
bool removeRuns(Sequence& failing, std::size_t count, Fails const& fails) {
    bool removed = false;
    for (std::size_t end = failing.steps.size(); end > 0;) {
        std::size_t const first = end < count ? 0 : end - count;
        Sequence candidate = without(failing, first, end - first);
        if (fails(candidate)) {
            failing = std::move(candidate);
            removed = true;
        }
        end = first;
    }
    return removed;
}

/// Takes the candidate for the failing sequence if it fails.
bool adopt(Sequence& failing, Sequence candidate, Fails const& fails) {
    if (!fails(candidate)) {
        return false;
    }
    failing = std::move(candidate);
    return true;
}

void renameClient(Sequence& sequence, std::string const& from, std::string const& to) {
    for (Operation& step : sequence.steps) {
        step.client = step.client == from ? to : step.client;
        step.other = step.other == from ? to : step.other;
        std::replace(step.names.begin(), step.names.end(), from, to);
    }
}

void mergeClients(Sequence& failing, Fails const& fails) {
    for (std::string const& from : clientNames()) {
        for (std::string const& to : clientNames()) {
            Sequence candidate = failing;
            renameClient(candidate, from, to);
            if (from == to || adopt(failing, std::move(candidate), fails)) {
                break;
            }
        }
    }
}

void shrinkTables(Sequence& failing, Fails const& fails) {
    constexpr U32 smallest = 8;
    for (std::size_t at = 0; at < failing.steps.size(); ++at) {
        U32 const size = failing.steps[at].settings.tableSize;
        bool smaller = failing.steps[at].verb != Verb::start;
        for (U32 table = smallest; table < size && !smaller; ++table) {
            Sequence candidate = failing;
            candidate.steps[at].settings.tableSize = table;
            smaller = adopt(failing, std::move(candidate), fails);
        }
    }
}

void simplify(Sequence& failing, Fails const& fails) {
    Sequence candidate = failing;
    candidate.watched = false;
    adopt(failing, std::move(candidate), fails);
    candidate = failing;
    candidate.generic = false;
    adopt(failing, std::move(candidate), fails);
    mergeClients(failing, fails);
    shrinkTables(failing, fails);
}

} // namespace

Sequence shrunk(Sequence failing, Fails const& fails) {
    for (std::size_t count = failing.steps.size() / 2; count > 1; count /= 2) {
        removeRuns(failing, count, fails);
    }
    simplify(failing, fails);
    while (removeRuns(failing, 1, fails)) {
    }
    return failing;
}

} // namespace ModelTest
