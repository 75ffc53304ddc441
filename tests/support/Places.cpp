#include "support/Places.h"

namespace Support {

std::string sourceFolder() { return VORNIC_SOURCE_DIR; }

} // namespace Support
