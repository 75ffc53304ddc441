#include "vpstate/RemoteVtepKey.h"

#include "pelo/Decimal.h"

#include <ostream>

namespace VornicCentral {
namespace {

/// The text from `begin` up to a slash, of which there may be none.
std::string_view partFrom(std::string_view text, std::size_t begin) noexcept {
    return text.substr(begin, text.find('/', begin) - begin);
}

/// The number behind the slash at `at`, which is moved behind the number.
Pelo::Parsed<U64> parseByte(std::string_view text, std::size_t& at) {
    if (at == text.size()) {
        return Pelo::ParseError{at, "'/' and a number from 0 to 255"};
    }
    std::string_view const part = partFrom(text, at + 1);
    auto byte = Pelo::parseDecimal(part, 255);
    if (!byte) {
        return byte.errorWithin(at + 1);
    }
    at += 1 + part.size();
    return byte;
}

} // namespace

std::string RemoteVtepKey::stringValue() const {
    return address_.stringValue() + '@' + tunnelGroup_.stringValue() + bytesText();
}

std::string RemoteVtepKey::bytesText() const {
    if (byte0_ == 0 && byte1_ == 0) {
        return {};
    }
    return '/' + std::to_string(byte0_) + '/' + std::to_string(byte1_);
}

Pelo::Parsed<RemoteVtepKey> RemoteVtepKey::parse(std::string_view text) {
    std::size_t const sign = text.find('@');
    auto const address = Netzo::IpGenAddr::parse(text.substr(0, sign));
    if (!address) {
        return address.error();
    }
    if (sign == std::string_view::npos) {
        return Pelo::ParseError{text.size(), "'@' and a tunnel group"};
    }
    std::string_view const groupText = partFrom(text, sign + 1);
    auto group = Vxlan::SwTunnelGroupId::parse(groupText);
    if (!group) {
        return group.errorWithin(sign + 1);
    }
    std::size_t at = sign + 1 + groupText.size();
    if (at == text.size()) {
        return RemoteVtepKey(*std::move(group), *address);
    }
    auto const byte0 = parseByte(text, at);
    if (!byte0) {
        return byte0.error();
    }
    auto const byte1 = parseByte(text, at);
    if (!byte1) {
        return byte1.error();
    }
    if (at != text.size()) {
        return Pelo::ParseError{at, "the end of the key"};
    }
    return RemoteVtepKey(*std::move(group), *address, static_cast<U8>(*byte0),
                         static_cast<U8>(*byte1));
}

std::ostream& operator<<(std::ostream& out, RemoteVtepKey const& key) {
    QorPelo::print(out, key);
    return out;
}

} // namespace VornicCentral

void QorPelo::print(std::ostream& out, VornicCentral::RemoteVtepKey const& key) {
    out << key.stringValue();
}
