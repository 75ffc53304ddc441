#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <string_view>

namespace Qor {

/// One failed assertion, as the assertion sink receives it (see `qor/Sinks.h`).
struct VORNIC_RUNTIME_API AssertionFailure {
    std::string_view text;     ///< the condition that does not hold
    std::string_view unit;     ///< the source unit
    U32 line = 0;              ///< the line of the assertion
    std::string_view function; ///< the full signature of the function that holds the assertion
};

/// Hands the failure to the assertion sink and aborts the process, also when the sink returns or
/// throws. An assertion that fails within the sink is written to standard error instead. The texts
/// are NUL-terminated.
[[noreturn, gnu::cold, gnu::noinline]] VORNIC_RUNTIME_API void
assertionFailed(char const* text, char const* unit, U32 line, char const* function) noexcept;

} // namespace Qor

/// Checks an internal invariant, in every build type; a failure ends the process. There is no way
/// back.
///
/// Cost: the test of the condition, with everything else out of line.
#define QOR_ASSERT(condition)                                                                      \
    QOR_ASSERT_AS(condition, #condition, __FILE_NAME__, __PRETTY_FUNCTION__)

/// As `QOR_ASSERT`, with the text, the source unit and the signature that the report shows given as
/// literals.
#define QOR_ASSERT_AS(condition, text, unit, signature)                                            \
    do {                                                                                           \
        if (!(condition)) [[unlikely]] {                                                           \
            ::Qor::assertionFailed(text, unit, __LINE__, signature);                               \
        }                                                                                          \
    } while (false)
