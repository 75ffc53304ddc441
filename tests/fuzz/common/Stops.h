#pragma once

#include <functional>

namespace Fuzz {

/// Runs `work`, and comes back also when the library stops the process by contract: by a failed
/// assertion of the allocator, or by one of the runtime's exceptions that leaves a reactor (see
/// docs/contracts.md). False when it did. Any other assertion or exception ends the process.
///
/// The stack is left as `longjmp` does: what `work` has made stays where it is and must not be
/// touched any more, and leaks. So everything that lives beyond `work` is held by value outside,
/// all else is allocated; and targets that use this look for no leaks. In a forked copy of the
/// process assertions are those of the library.
bool endsByItself(std::function<void()> const& work);

} // namespace Fuzz
