#include "bridging/VlanId.h"

#include "pelo/Decimal.h"

#include <ostream>

namespace Bridging {

Pelo::Parsed<VlanId> VlanId::parse(std::string_view text) {
    auto const number = Pelo::parseDecimal(text, directBound - 1);
    if (!number) {
        return number.error();
    }
    return VlanId(static_cast<U16>(*number));
}

std::ostream& operator<<(std::ostream& out, VlanId vlan) { return out << vlan.stringValue(); }

} // namespace Bridging
