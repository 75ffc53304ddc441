#include "vpstate/PortVlanKey.h"

#include <ostream>

namespace VornicCentral {

std::string PortVlanKey::stringValue() const {
    return intf_.stringValue() + ':' + vlan_.stringValue();
}

Pelo::Parsed<PortVlanKey> PortVlanKey::parse(std::string_view text) {
    std::size_t const colon = text.rfind(':');
    auto intf = Netzo::IntfId::parse(text.substr(0, colon));
    if (!intf) {
        return intf.error();
    }
    if (colon == std::string_view::npos) {
        return Pelo::ParseError{text.size(), "':' and a VLAN"};
    }
    auto const vlan = Bridging::VlanId::parse(text.substr(colon + 1));
    if (!vlan) {
        return vlan.errorWithin(colon + 1);
    }
    return PortVlanKey(*std::move(intf), *vlan);
}

std::ostream& operator<<(std::ostream& out, PortVlanKey const& key) {
    QorPelo::print(out, key);
    return out;
}

} // namespace VornicCentral

void QorPelo::print(std::ostream& out, VornicCentral::PortVlanKey const& key) {
    out << key.stringValue();
}
