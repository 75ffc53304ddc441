#include "text/Utf8.h"

namespace VpAgent {

std::string inQuotes(std::string_view text) { return '"' + printable(text) + '"'; }

} // namespace VpAgent
