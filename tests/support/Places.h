#pragma once

#include <string>

namespace Support {

/// The folder of the project's sources, without a slash at its end. Tests read examples and pages
/// there.
std::string sourceFolder();

} // namespace Support
