#include "qor/Assert.h"

#include "qor/Sinks.h"

#include <cstdlib>

namespace Qor {

void assertionFailed(char const* text, char const* unit, U32 line, char const* function) noexcept {
    assertionEmit({text, unit, line, function});
    std::abort();
}

} // namespace Qor
