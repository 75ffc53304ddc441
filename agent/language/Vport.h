#pragma once

#include "language/Words.h"
#include "pelo/Parsed.h"
#include "vpstate/Kinds.h"

#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace VpAgent {

/// A virtual port as commands name it: one of the kinds, and a key of that kind. A value.
///
///     vport.visit([&](auto kind, auto const& key) { config.is<decltype(kind)>(key, true); });
class Vport {
public:
    template <class Kind> static Vport of(Kind, typename Kind::Key key) {
        return Vport(VornicCentral::kindOrder<Kind>, std::move(key));
    }

    /// Reads a kind word and a key text, as in `edge Ethernet1/1:100`. Throws `Refusal` with the
    /// place.
    static Vport parse(Word const& kind, Word const& key);

    /// Calls `visit(Kind{}, key)`.
    template <class Visit> void visit(Visit&& visit) const {
        VornicCentral::forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            if (VornicCentral::kindOrder<Kind> == order_) {
                visit(kind, std::get<typename Kind::Key>(key_));
            }
        });
    }

    /// The kind word and the key text, as in a command.
    std::string text() const;

private:
    using Key = std::variant<VornicCentral::RemoteVtepKey, VornicCentral::PortVlanKey,
                             Bridging::VlanId, Netzo::IntfId>;

    Vport(std::size_t order, Key key) : order_(order), key_(std::move(key)) {}

    std::size_t order_;
    Key key_;
};

/// A key from its text form of at most `Limits::keyText` bytes, with VLANs held to the range of
/// commands, 1 to 4094.
template <class Key> Pelo::Parsed<Key> parseKeyText(std::string_view text);

extern template Pelo::Parsed<VornicCentral::RemoteVtepKey> parseKeyText(std::string_view);
extern template Pelo::Parsed<VornicCentral::PortVlanKey> parseKeyText(std::string_view);
extern template Pelo::Parsed<Bridging::VlanId> parseKeyText(std::string_view);
extern template Pelo::Parsed<Netzo::IntfId> parseKeyText(std::string_view);

/// The same for a key of the kind.
template <class Kind> Pelo::Parsed<typename Kind::Key> parseKey(std::string_view text) {
    return parseKeyText<typename Kind::Key>(text);
}

/// The kind words as a text: `remote, mlag, edge, vlan or efilter`.
std::string kindWords();

} // namespace VpAgent
