#include "vpstate/VirtualPort.h"

#include "pelo/Decimal.h"

#include <ostream>

namespace VornicCentral {

Pelo::Parsed<VirtualPort> VirtualPort::parse(std::string_view text) {
    auto const index = Pelo::parseDecimal(text, invalidVpIndex);
    if (!index) {
        return index.error();
    }
    return VirtualPort(static_cast<U16>(*index));
}

std::ostream& operator<<(std::ostream& out, VirtualPort vPort) {
    return out << vPort.stringValue();
}

} // namespace VornicCentral
