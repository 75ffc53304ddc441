#include "common/Stops.h"

#include "common/Input.h"
#include "qor/Exceptions.h"
#include "qor/Sinks.h"

#include <unistd.h>

#include <csetjmp>
#include <exception>

namespace Fuzz {
namespace {

std::jmp_buf wayOut;
bool wayOutOpen = false;
pid_t fuzzer = 0;

bool mayLeave() { return wayOutOpen && ::getpid() == fuzzer; }

[[noreturn]] void leave() {
    wayOutOpen = false;
    std::longjmp(wayOut, 1);
}

/// An exception has nowhere to go. Those of the runtime that leave a reactor may do that.
[[noreturn]] void onTerminate() {
    std::string what = "terminated without an exception";
    try {
        if (auto const exception = std::current_exception()) {
            std::rethrow_exception(exception);
        }
    } catch (Qor::Exception const&) {
        if (mayLeave()) {
            leave();
        }
        what = "an exception of the runtime ends the process";
    } catch (std::exception const& exception) {
        what = std::string("an exception ends the process: ") + exception.what();
    } catch (...) {
        what = "an exception of an unknown type ends the process";
    }
    expect(false, what);
    std::abort();
}

/// Apart from its caller, which has no variables that the jump could spoil.
void runOpen(std::function<void()> const& work) {
    fuzzer = ::getpid();
    wayOutOpen = true;
    work();
    wayOutOpen = false;
}

} // namespace

bool endsByItself(std::function<void()> const& work) {
    std::set_terminate(onTerminate);
    if (setjmp(wayOut) != 0) {
        return false;
    }
    runOpen(work);
    return true;
}

} // namespace Fuzz

/// Takes the place of the runtime's function in this program, because that one has no way back.
void Qor::assertionFailed(char const* text, char const* unit, U32 line,
                          char const* function) noexcept {
    if (Fuzz::mayLeave() &&
        std::string_view(unit) == "/src/VornicL3Shared/VornicL3VpIndexAllocator") {
        Fuzz::leave();
    }
    assertionEmit({text, unit, line, function});
    std::abort();
}

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the name is the
// sanitizer's
/// What an abandoned input has made would be reported as leaks.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() { return 1; }
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
