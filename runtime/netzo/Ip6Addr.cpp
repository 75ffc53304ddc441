#include "netzo/Ip6Addr.h"

#include "netzo/IpParse.h"

#include <algorithm>
#include <optional>
#include <ostream>

namespace Netzo {
namespace {

constexpr std::size_t groupCount = 8;
using Groups = std::array<U16, groupCount>;

std::optional<unsigned> hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') {
        return static_cast<unsigned>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<unsigned>(c - 'a') + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return static_cast<unsigned>(c - 'A') + 10;
    }
    return std::nullopt;
}

/// Reads an IPv6 address group by group. Each step returns false when the text does not go on as it
/// should; `error_` then says where and why.
class Ip6Reader {
public:
    explicit Ip6Reader(std::string_view text) : text_(text) {}

    Pelo::Parsed<Ip6Addr> read() {
        if (!readLeadingColons() || !readGroups()) {
            return error_;
        }
        return Ip6Addr(bytes());
    }

private:
    bool atEnd() const noexcept { return at_ == text_.size(); }
    bool here(char c) const noexcept { return !atEnd() && text_[at_] == c; }
    bool refuse(char const* expected) {
        error_ = {at_, expected};
        return false;
    }

    /// The groups that the text may still have; `::` stands for one at least.
    std::size_t room() const noexcept { return groupCount - count_ - (gap_ ? 1 : 0); }

    bool readLeadingColons() {
        if (!here(':')) {
            return true;
        }
        ++at_;
        return here(':') ? readGap() : refuse("':'");
    }

    /// The second colon of `::`.
    bool readGap() {
        gap_ = count_;
        ++at_;
        return true;
    }

    bool readGroups() {
        if (gap_ && atEnd()) {
            return true;
        }
        while (true) {
            bool ip4 = false;
            if (!readGroup(ip4)) {
                return false;
            }
            if (atEnd() && (ip4 || gap_ || room() == 0)) {
                return true;
            }
            if (room() == 0) {
                return refuse("the end of the address");
            }
            if (!here(':')) {
                return refuse("':'");
            }
            ++at_;
            if (here(':') && !gap_) {
                readGap();
                if (atEnd()) {
                    return true;
                }
                if (room() == 0) {
                    return refuse("the end of the address");
                }
            }
        }
    }

    /// One group, or the IPv4 address that stands for the last two.
    bool readGroup(bool& ip4) {
        std::size_t const begin = at_;
        unsigned value = 0;
        for (; !atEnd() && at_ - begin < 4; ++at_) {
            std::optional<unsigned> const digit = hexDigit(text_[at_]);
            if (!digit) {
                break;
            }
            value = value * 16 + *digit;
        }
        if (at_ == begin) {
            return refuse("a group of 1 to 4 hexadecimal digits");
        }
        bool const ip4Fits = gap_ ? room() >= 2 : room() == 2;
        if (here('.') && ip4Fits) {
            ip4 = true;
            return readIp4(begin);
        }
        groups_[count_++] = static_cast<U16>(value);
        return true;
    }

    bool readIp4(std::size_t begin) {
        auto const address = parseIp4(text_.substr(begin));
        if (!address) {
            error_ = address.errorWithin(begin);
            // What does not begin an IPv4 address is a group, and it is the dot that does not fit
            // behind it.
            error_.at = std::max(error_.at, at_);
            return false;
        }
        groups_[count_++] = static_cast<U16>((*address)[0] << 8 | (*address)[1]);
        groups_[count_++] = static_cast<U16>((*address)[2] << 8 | (*address)[3]);
        at_ = text_.size();
        return true;
    }

    Ip6Addr::Bytes bytes() const noexcept {
        Ip6Addr::Bytes result{};
        std::size_t const behindGap = gap_ ? count_ - *gap_ : 0;
        for (std::size_t from = 0; from < count_; ++from) {
            bool const moved = from >= count_ - behindGap;
            std::size_t const to = moved ? from + groupCount - count_ : from;
            result[2 * to] = static_cast<U8>(groups_[from] >> 8);
            result[2 * to + 1] = static_cast<U8>(groups_[from] & 0xFF);
        }
        return result;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    Groups groups_{};
    std::size_t count_ = 0;          // groups read
    std::optional<std::size_t> gap_; // the groups before `::`
    Pelo::ParseError error_;
};

struct Run {
    std::size_t begin = 0;
    std::size_t size = 0;
};

/// The first of the longest runs of zero groups; empty unless it has two groups or more.
Run longestZeroRun(Groups const& groups, std::size_t count) noexcept {
    Run longest;
    Run run;
    for (std::size_t at = 0; at < count; ++at) {
        run = groups[at] != 0 ? Run{at + 1, 0} : Run{run.begin, run.size + 1};
        if (run.size > longest.size) {
            longest = run;
        }
    }
    return longest.size >= 2 ? longest : Run{};
}

void appendHex(std::string& text, U16 group) {
    constexpr char digits[] = "0123456789abcdef";
    bool leading = true;
    for (int shift = 12; shift >= 0; shift -= 4) {
        auto const digit = static_cast<std::size_t>(group >> shift & 0xF);
        leading = leading && digit == 0 && shift != 0;
        if (!leading) {
            text += digits[digit];
        }
    }
}

/// The first `count` groups; a colon stands behind the last one when others are to follow.
std::string groupsText(Groups const& groups, std::size_t count) {
    Run const gap = longestZeroRun(groups, count);
    std::string text;
    for (std::size_t at = 0; at < count; ++at) {
        if (gap.size != 0 && at == gap.begin) {
            text += at == 0 ? "::" : ":";
            at += gap.size - 1;
            continue;
        }
        appendHex(text, groups[at]);
        if (at + 1 < groupCount) {
            text += ':';
        }
    }
    return text;
}

bool isIp4Mapped(Groups const& groups) noexcept {
    return groups[5] == 0xFFFF &&
           std::all_of(groups.begin(), groups.begin() + 5, [](U16 group) { return group == 0; });
}

} // namespace

std::string Ip6Addr::stringValue() const {
    Groups groups{};
    for (std::size_t at = 0; at < groupCount; ++at) {
        groups[at] = static_cast<U16>(bytes_[2 * at] << 8 | bytes_[2 * at + 1]);
    }
    if (isIp4Mapped(groups)) {
        return groupsText(groups, 6) + ip4Text({bytes_[12], bytes_[13], bytes_[14], bytes_[15]});
    }
    return groupsText(groups, groupCount);
}

Pelo::Parsed<Ip6Addr> Ip6Addr::parse(std::string_view text) { return Ip6Reader(text).read(); }

std::ostream& operator<<(std::ostream& out, Ip6Addr const& address) {
    return out << address.stringValue();
}

} // namespace Netzo
