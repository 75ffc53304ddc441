#include "lumlog/DecodedArg.h"

#include "lumlog/Args.h"
#include "netzo/IpGenAddr.h"

#include <array>
#include <type_traits>

namespace Lumlog {
namespace {

using Taken = std::optional<DecodedArg>;

Taken boolean(U8 value) { return value <= 1 ? Taken(value == 1) : std::nullopt; }

Taken address(ByteCursor& payload) {
    auto const family = static_cast<Netzo::IpGenAddr::Family>(payload.take<U8>());
    auto const bytes = payload.take<Netzo::Ip6Addr::Bytes>();
    switch (family) {
    case Netzo::IpGenAddr::Family::ip4:
        return Netzo::IpGenAddr(std::array<U8, 4>{bytes[0], bytes[1], bytes[2], bytes[3]})
            .stringValue();
    case Netzo::IpGenAddr::Family::ip6:
        return Netzo::IpGenAddr(Netzo::Ip6Addr(bytes)).stringValue();
    }
    return {};
}

Taken take(ArgCode code, ByteCursor& payload) {
    switch (code) {
    case ArgCode::boolean:
        return boolean(payload.take<U8>());
    case ArgCode::u8:
        return U64{payload.take<U8>()};
    case ArgCode::u16:
        return U64{payload.take<U16>()};
    case ArgCode::u32:
        return U64{payload.take<U32>()};
    case ArgCode::u64:
        return payload.take<U64>();
    case ArgCode::s64:
        return payload.take<std::int64_t>();
    case ArgCode::text:
        return std::string(payload.takeText(payload.take<U16>()));
    case ArgCode::address:
        return address(payload);
    case ArgCode::words:
        break;
    }
    return {};
}

} // namespace

std::optional<DecodedArg> takeArg(char code, ByteCursor& payload) {
    Taken arg = take(static_cast<ArgCode>(code), payload);
    return payload.ok() ? arg : std::nullopt;
}

std::string argText(DecodedArg const& arg) {
    return std::visit(
        [](auto const& value) {
            using Value = std::remove_cvref_t<decltype(value)>;
            if constexpr (std::is_same_v<Value, bool>) {
                return std::string(value ? "true" : "false");
            } else if constexpr (std::is_same_v<Value, std::string>) {
                return value;
            } else {
                return std::to_string(value);
            }
        },
        arg);
}

} // namespace Lumlog
