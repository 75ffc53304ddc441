#pragma once

#include <string>
#include <string_view>

namespace VpAgentTest {

/// The memory of a run of the program that a failed assertion ends: all that it could write, as the
/// kernel would put it into a core file, part by part without the descriptions of the parts. Taken
/// when the program has aborted and is about to go. Empty when the script did not make it abort.
std::string memoryOfCrashedRun(std::string_view script);

} // namespace VpAgentTest
