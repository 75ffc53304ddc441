#include "netzo/IntfId.h"

#include "pelo/CountedTable.h"
#include "pelo/Hash.h"
#include "pelo/Utf8.h"

#include <algorithm>
#include <ostream>

namespace Netzo {
namespace {

bool isLetter(char c) noexcept { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

/// Where the first control character begins; the size of the text when it has none.
std::size_t controlAt(std::string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        Pelo::Utf8Character const character = Pelo::utf8At(text, at);
        if (character.length != 0 && Pelo::isControl(character.codePoint)) {
            break;
        }
        at += character.length == 0 ? 1 : character.length;
    }
    return at;
}

/// Where the digits of a name begin that has a short form, else 0.
U32 digitsAt(std::string_view name) noexcept {
    auto const digit = std::find_if(name.begin(), name.end(), isDigit);
    if (name.size() < 2 || !isLetter(name[0]) || !isLetter(name[1]) || digit == name.end()) {
        return 0;
    }
    return static_cast<U32>(digit - name.begin());
}

} // namespace

/// The names in use. The table is never destroyed: ids with static storage may outlive every other
/// object.
struct IntfId::Table {
    static Pelo::CountedTable<Entry>& instance() {
        static auto* const table = new Pelo::CountedTable<Entry>;
        return *table;
    }

    /// `text` gives the name as a `Pelo::String`, for an entry that has to be made.
    template <class Text> static Entry* take(std::string_view name, U64 hash, Text const& text) {
        if (name.empty()) {
            return nullptr;
        }
        return instance().take(
            hash, [&](Entry const& entry) { return entry.name.view() == name; },
            [&] {
                return new Entry{hash, 1, digitsAt(name), Pelo::String(text)};
            });
    }
};

IntfId::IntfId(std::string_view name)
    : entry_(Table::take(name, Pelo::hashBytes(name.data(), name.size()), name)) {}

IntfId::IntfId(Pelo::String const& name) : entry_(Table::take(name.view(), name.hash(), name)) {}

void IntfId::release(Entry* entry) noexcept { Table::instance().release(entry); }

std::size_t IntfId::namesInUse() { return Table::instance().size(); }

std::string IntfId::shortName() const {
    auto const [letters, rest] = shortNameParts();
    return std::string(letters).append(rest);
}

std::pair<std::string_view, std::string_view> IntfId::shortNameParts() const noexcept {
    std::string_view const full = name();
    if (entry_ == nullptr || entry_->digits == 0) {
        return {full, {}};
    }
    return {full.substr(0, 2), full.substr(entry_->digits)};
}

Pelo::Parsed<IntfId> IntfId::parse(std::string_view text) {
    if (text.empty()) {
        return Pelo::ParseError{0, "an interface name"};
    }
    std::size_t const control = controlAt(text);
    if (control != text.size()) {
        return Pelo::ParseError{control, "an interface name without control characters"};
    }
    return IntfId(text);
}

std::ostream& operator<<(std::ostream& out, IntfId const& intf) { return out << intf.name(); }

} // namespace Netzo
