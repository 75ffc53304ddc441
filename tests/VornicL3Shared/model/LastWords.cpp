#include "VornicL3Shared/model/LastWords.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <exception>
#include <string_view>

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the names are the
// sanitizers'
extern "C" {
[[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)());

/// Called by UndefinedBehaviorSanitizer, which does not know the callback above in all compilers.
[[gnu::visibility("default")]] void __ubsan_on_report();
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace ModelTest {
namespace {

constexpr std::array signals{SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};

std::string const* words = nullptr; // nothing is under way, or it has been said
pid_t speaker = -1;
std::array<struct sigaction, signals.size()> former{};
std::array<std::byte, std::size_t{1} << 16> crashStack; // for the overflow of the usual one

void write(std::string_view text) {
    while (!text.empty()) {
        ssize_t const count = ::write(STDERR_FILENO, text.data(), text.size());
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Calls nothing that a signal handler may not call.
void say() {
    std::string const* const text = words;
    words = nullptr;
    if (text != nullptr && ::getpid() == speaker) {
        write("the process ends, with this under way:\n");
        write(*text);
    }
}

/// The same signal comes again when this returns, and ends the process.
void onSignal(int signal) {
    say();
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

/// A sanitizer that looks after a signal itself goes on doing so, and tells its callback.
void watchSignals() {
    stack_t stack{};
    if (::sigaltstack(nullptr, &stack) == 0 && (stack.ss_flags & SS_DISABLE) != 0) {
        stack = {};
        stack.ss_sp = crashStack.data();
        stack.ss_size = crashStack.size();
        ::sigaltstack(&stack, nullptr);
    }
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_ONSTACK;
    for (std::size_t at = 0; at < signals.size(); ++at) {
        ::sigaction(signals[at], nullptr, &former[at]);
        if (former[at].sa_handler == SIG_DFL) {
            ::sigaction(signals[at], &action, nullptr);
        }
    }
}

void deathCallbackIs(void (*callback)()) {
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(callback);
    }
}

} // namespace

LastWords::LastWords() : exceptions_(std::uncaught_exceptions()) {
    speaker = ::getpid();
    deathCallbackIs(say);
    watchSignals();
}

LastWords::~LastWords() {
    if (std::uncaught_exceptions() > exceptions_) {
        say();
    }
    areSaid();
    deathCallbackIs(nullptr);
    for (std::size_t at = 0; at < signals.size(); ++at) {
        ::sigaction(signals[at], &former[at], nullptr);
    }
}

void LastWords::are(std::string text) {
    areSaid();
    words_ = std::move(text);
    words = &words_;
}

void LastWords::areSaid() noexcept { words = nullptr; }

} // namespace ModelTest

void __ubsan_on_report() { ModelTest::say(); }
