#include "VornicL3Shared/model/Runner.h"

#include "VornicL3Shared/model/Child.h"
#include "VornicL3Shared/model/Difference.h"
#include "VornicL3Shared/model/Subject.h"

#include <cstdlib>
#include <string_view>

namespace ModelTest {
namespace {

/// How a call ended, as far as one can compare.
struct Outcome {
    enum class Way { returned, stopped };
    Way way = Way::returned;
    std::string text;         ///< the result, or what stopped the process
    std::string_view journal; ///< valid until the next outcome of the same side
};

std::string const unit = "/src/VornicL3Shared/VornicL3VpIndexAllocator";

std::string stopText(std::string_view text, std::string_view function, std::string_view where) {
    return "assertion '" + std::string(text) + "' in " + std::string(function) + " of " +
           std::string(where);
}

/// A full comparison of the traces of `verify`, which are many, comes after every so many steps.
constexpr std::size_t fullCheckEvery = 8;

/// Both sides under one sequence.
class Run {
public:
    Run(Sequence const& sequence, Beliefs const& beliefs, Tally& tally)
        : sequence_(sequence),
          tally_(tally),
          model_(sequence.watched, beliefs),
          subject_(sequence.watched, sequence.generic) {}

    std::optional<Mismatch> all();

private:
    template <class Call> Outcome predict(Call&& call);
    template <class Call> Outcome observe(Call&& call);
    template <class Call> Outcome observeStop(Call&& call);
    void step(Operation const& operation);
    void verify(bool full);
    void compare(char const* what, Outcome const& expected, Outcome const& seen);
    void compareState();
    void compareStateText();
    void mutedIs(bool muted);

    Sequence const& sequence_;
    Tally& tally_;
    Model model_;
    Subject subject_;
    std::string lastFailedCheck_;
    std::string childsReport_;
    std::string difference_;
};

template <class Call> Outcome Run::predict(Call&& call) {
    Outcome outcome;
    model_.journal().clear();
    try {
        outcome.text = call();
    } catch (Refused const& refused) {
        outcome.text = "refused " + refused.attribute;
    } catch (Stop const& stop) {
        outcome = {Outcome::Way::stopped, stopText(stop.text, stop.function, unit), {}};
    } catch (Terminated const&) {
        outcome = {Outcome::Way::stopped, "terminated", {}};
    }
    outcome.journal = model_.journal().text();
    return outcome;
}

template <class Call> Outcome Run::observe(Call&& call) {
    subject_.journal().clear();
    std::string text = call();
    return {Outcome::Way::returned, std::move(text), subject_.journal().text()};
}

/// The call in a child, which reports its journal and in the last line what stopped it. When that
/// is an exception, the journal is lost.
template <class Call> Outcome Run::observeStop(Call&& call) {
    subject_.journal().clear();
    Ending const ending = inChild([&](Report const& report) {
        Qor::assertionSinkIs([&](Qor::AssertionFailure const& failure) {
            report(std::string(subject_.journal().text()));
            report(stopText(failure.text, failure.function, failure.unit));
        });
        call();
        report("went on");
    });
    childsReport_ = ending.report;
    std::size_t const last = childsReport_.rfind('\n') + 1;
    return {ending.aborted ? Outcome::Way::stopped : Outcome::Way::returned,
            childsReport_.substr(last), std::string_view(childsReport_).substr(0, last)};
}

void Run::compare(char const* what, Outcome const& expected, Outcome const& seen) {
    if (expected.way != seen.way || expected.text != seen.text) {
        difference_ += std::string(what) + ": expected '" + expected.text + "'" +
                       (expected.way == Outcome::Way::stopped ? " to stop the process" : "") +
                       ", got '" + seen.text + "'\n";
    }
    if (expected.journal != seen.journal && expected.text != "terminated") {
        difference_ += std::string(what) + ": reports differ\n" +
                       differenceOf(linesOf(expected.journal), linesOf(seen.journal));
    }
}

void Run::compareState() {
    if (!subject_.holds(model_.state())) {
        difference_ += "state differs\n";
        compareStateText();
    }
}

void Run::compareStateText() {
    std::string const expected = textOf(model_.state());
    std::string const seen = subject_.state();
    if (expected != seen) {
        difference_ += differenceOf(linesOf(expected), linesOf(seen));
    }
}

void Run::mutedIs(bool muted) {
    model_.journal().mutedIs(muted);
    subject_.mutedIs(muted);
}

void Run::step(Operation const& operation) {
    if (!model_.applies(operation)) {
        return;
    }
    ++tally_.steps;
    if (tally_.onStep) {
        tally_.onStep();
    }
    State const before = model_.state();
    Outcome const expected = predict([&] { return model_.apply(operation); });
    if (expected.way == Outcome::Way::returned) {
        compare("step", expected, observe([&] { return subject_.apply(operation); }));
        compareState();
        return;
    }
    model_.stateIs(before);
    if (tally_.tries(expected.text)) {
        ++tally_.stops;
        compare("step", expected, observeStop([&] { subject_.apply(operation); }));
    }
}

/// A check that fails as the last one did is not tried again, unless nothing is left out.
void Run::verify(bool full) {
    if (!model_.running()) {
        return;
    }
    auto const check = [&](auto& side) {
        side.verify();
        return std::string();
    };
    mutedIs(!full);
    Outcome const expected = predict([&] { return check(model_); });
    if (expected.way == Outcome::Way::returned) {
        ++tally_.passedChecks;
        compare("verify", expected, observe([&] { return check(subject_); }));
    }
    mutedIs(false);
    bool const again = expected.text == lastFailedCheck_ && !tally_.full;
    if (expected.way != Outcome::Way::stopped || again) {
        return;
    }
    lastFailedCheck_ = expected.text;
    if (tally_.tries(expected.text)) {
        ++tally_.failedChecks;
        Outcome const inFull = predict([&] { return check(model_); });
        compare("verify", inFull, observeStop([&] { subject_.verify(); }));
    }
}

std::optional<Mismatch> Run::all() {
    ++tally_.sequences;
    for (std::size_t at = 0; at < sequence_.steps.size(); ++at) {
        step(sequence_.steps[at]);
        if (difference_.empty()) {
            verify(tally_.full || at % fullCheckEvery == 0);
        }
        if (difference_.empty() && at + 1 == sequence_.steps.size()) {
            compareStateText();
        }
        if (!difference_.empty()) {
            return Mismatch{at, difference_};
        }
    }
    return std::nullopt;
}

} // namespace

bool Tally::fullFromEnvironment() {
    char const* const value = std::getenv("VORNIC_MODEL_FULL");
    return value != nullptr && std::string_view(value) == "1";
}

std::optional<Mismatch> run(Sequence const& sequence, Beliefs const& beliefs, Tally& tally) {
    return Run(sequence, beliefs, tally).all();
}

std::optional<Mismatch> runInChild(Sequence const& sequence, Beliefs const& beliefs) {
    std::optional<Mismatch> found;
    Ending const ending = inChild([&](Report const& report) {
        Qor::assertionSinkIs([&](Qor::AssertionFailure const& failure) {
            report("unforeseen " + stopText(failure.text, failure.function, failure.unit));
        });
        Tally tally;
        found = run(sequence, beliefs, tally);
        if (found) {
            report(std::to_string(found->step) + "\n" + found->what);
        }
    });
    if (ending.finished && ending.report.empty()) {
        return std::nullopt;
    }
    if (!ending.finished) {
        return Mismatch{sequence.steps.size(), "the process ended: " + ending.report};
    }
    std::size_t const newline = ending.report.find('\n');
    return Mismatch{std::stoul(ending.report.substr(0, newline)),
                    ending.report.substr(newline + 1)};
}

std::string scriptOf(Sequence const& sequence) {
    std::string script = sequence.watched ? "# the records are watched\n" : "";
    script += sequence.generic ? "# through generic access\n" : "";
    for (std::size_t at = 0; at < sequence.steps.size(); ++at) {
        script += textOf(sequence.steps[at]) + "  # " + std::to_string(at) + "\n";
    }
    return script;
}

} // namespace ModelTest
