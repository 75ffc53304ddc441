#include "netzo/IpGenAddr.h"

#include "netzo/IpParse.h"

#include <ostream>

namespace Netzo {

std::string IpGenAddr::stringValue() const {
    if (family_ == Family::ip6) {
        return address_.stringValue();
    }
    auto const& bytes = address_.bytes();
    return ip4Text({bytes[0], bytes[1], bytes[2], bytes[3]});
}

/// The families are tried in turn. When neither takes the text, the error of the one that went
/// further is reported.
Pelo::Parsed<IpGenAddr> IpGenAddr::parse(std::string_view text) {
    auto const ip4 = parseIp4(text);
    if (ip4) {
        return IpGenAddr(*ip4);
    }
    auto const ip6 = Ip6Addr::parse(text);
    if (ip6) {
        return IpGenAddr(*ip6);
    }
    if (ip4.error().at == ip6.error().at) {
        return Pelo::ParseError{ip4.error().at, "an IPv4 or IPv6 address"};
    }
    return ip4.error().at > ip6.error().at ? ip4.error() : ip6.error();
}

std::ostream& operator<<(std::ostream& out, IpGenAddr const& address) {
    return out << address.stringValue();
}

} // namespace Netzo
