#include "lumlog/ArgText.h"

#include "lumlog/Args.h"
#include "netzo/IpGenAddr.h"
#include "pelo/Integers.h"

#include <array>
#include <cstdint>

namespace Lumlog {
namespace {

bool appendBoolean(std::string& text, U8 value) {
    text += value != 0 ? "true" : "false";
    return value <= 1;
}

bool appendAddress(std::string& text, U8 family, Netzo::Ip6Addr::Bytes const& bytes) {
    switch (static_cast<Netzo::IpGenAddr::Family>(family)) {
    case Netzo::IpGenAddr::Family::ip4:
        text += Netzo::IpGenAddr(std::array<U8, 4>{bytes[0], bytes[1], bytes[2], bytes[3]})
                    .stringValue();
        return true;
    case Netzo::IpGenAddr::Family::ip6:
        text += Netzo::IpGenAddr(Netzo::Ip6Addr(bytes)).stringValue();
        return true;
    }
    return false;
}

template <class T> bool appendNumber(std::string& text, ByteCursor& payload) {
    text += std::to_string(payload.take<T>());
    return true;
}

bool appendArg(std::string& text, ArgCode code, ByteCursor& payload) {
    switch (code) {
    case ArgCode::boolean:
        return appendBoolean(text, payload.take<U8>());
    case ArgCode::u8:
        return appendNumber<U8>(text, payload);
    case ArgCode::u16:
        return appendNumber<U16>(text, payload);
    case ArgCode::u32:
        return appendNumber<U32>(text, payload);
    case ArgCode::u64:
        return appendNumber<U64>(text, payload);
    case ArgCode::s64:
        return appendNumber<std::int64_t>(text, payload);
    case ArgCode::text:
        text += payload.takeText(payload.take<U16>());
        return true;
    case ArgCode::address: {
        U8 const family = payload.take<U8>();
        return appendAddress(text, family, payload.take<Netzo::Ip6Addr::Bytes>());
    }
    case ArgCode::words:
        break;
    }
    return false;
}

} // namespace

bool appendArgText(std::string& text, char code, ByteCursor& payload) {
    return appendArg(text, static_cast<ArgCode>(code), payload) && payload.ok();
}

} // namespace Lumlog
