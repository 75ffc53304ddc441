#include "devbus/FapId.h"

#include "pelo/Decimal.h"

#include <ostream>

namespace Devbus {

Pelo::Parsed<FapId> FapId::parse(std::string_view text) {
    auto const number = Pelo::parseDecimal(text, directBound - 1);
    if (!number) {
        return number.error();
    }
    return FapId(static_cast<U8>(*number));
}

std::ostream& operator<<(std::ostream& out, FapId fap) { return out << fap.stringValue(); }

} // namespace Devbus
