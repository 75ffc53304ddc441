#pragma once

#include "netzo/Ip6Addr.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <array>
#include <string>
#include <string_view>

namespace Netzo {

/// Reads a whole text as the four numbers of an IPv4 address. The place of an error is the first
/// byte with which no IPv4 address goes on there.
Pelo::Parsed<std::array<U8, 4>> parseIp4(std::string_view text);

/// Writes four numbers with dots between them.
std::string ip4Text(std::array<U8, 4> const& bytes);

} // namespace Netzo
