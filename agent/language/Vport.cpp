#include "language/Vport.h"

#include "Limits.h"
#include "language/Parse.h"
#include "text/Utf8.h"

#include <optional>
#include <type_traits>

namespace VpAgent {

namespace {

constexpr U16 lowestVlan = 1;
constexpr U16 highestVlan = 4094;

constexpr char const* vlanRange = "a VLAN from 1 to 4094";

std::optional<Pelo::ParseError> vlanFault(Bridging::VlanId vlan, std::size_t at) {
    if (vlan.value() < lowestVlan || vlan.value() > highestVlan) {
        return Pelo::ParseError{at, vlanRange};
    }
    return std::nullopt;
}

std::optional<Pelo::ParseError> rangeFault(Bridging::VlanId vlan, std::string_view) {
    return vlanFault(vlan, 0);
}

std::optional<Pelo::ParseError> rangeFault(VornicCentral::PortVlanKey const& key,
                                           std::string_view text) {
    return vlanFault(key.vlan(), text.rfind(':') + 1);
}

std::optional<Pelo::ParseError> rangeFault(VornicCentral::RemoteVtepKey const&, std::string_view) {
    return std::nullopt;
}

std::optional<Pelo::ParseError> rangeFault(Netzo::IntfId const&, std::string_view) {
    return std::nullopt;
}

/// Where in a key's text its VLAN stands; nothing when there is none.
template <class Key> std::optional<std::size_t> vlanAt(std::string_view text) {
    if constexpr (std::is_same_v<Key, Bridging::VlanId>) {
        return 0;
    } else if constexpr (std::is_same_v<Key, VornicCentral::PortVlanKey>) {
        std::size_t const colon = text.rfind(':');
        return colon == std::string_view::npos ? std::nullopt : std::optional(colon + 1);
    }
    return std::nullopt;
}

} // namespace

template <class Key> Pelo::Parsed<Key> parseKeyText(std::string_view text) {
    if (text.size() > Limits::keyText) {
        return Pelo::ParseError{0,
                                "a key of at most " + std::to_string(Limits::keyText) + " bytes"};
    }
    auto key = Key::parse(text);
    if (key) {
        if (auto const fault = rangeFault(*key, text)) {
            return *fault;
        }
        return key;
    }
    auto const vlan = vlanAt<Key>(text);
    if (vlan && key.error().at >= *vlan) {
        return Pelo::ParseError{key.error().at, vlanRange};
    }
    return key;
}

template Pelo::Parsed<VornicCentral::RemoteVtepKey> parseKeyText(std::string_view);
template Pelo::Parsed<VornicCentral::PortVlanKey> parseKeyText(std::string_view);
template Pelo::Parsed<Bridging::VlanId> parseKeyText(std::string_view);
template Pelo::Parsed<Netzo::IntfId> parseKeyText(std::string_view);

Vport Vport::parse(Word const& kindWord, Word const& keyWord) {
    std::optional<Vport> vport;
    VornicCentral::forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        if (!vport && kindWord.text == Kind::word) {
            auto key = parseKey<Kind>(keyWord.text);
            if (!key) {
                throw badWord(std::string(Kind::word) + " key", keyWord, key.error());
            }
            vport = of(kind, *std::move(key));
        }
    });
    if (!vport) {
        throw badWord("kind", kindWord, {0, kindWords()});
    }
    return *std::move(vport);
}

std::string Vport::text() const {
    std::string text;
    visit([&](auto kind, auto const& key) {
        text = std::string(decltype(kind)::word) + ' ' + key.stringValue();
    });
    return text;
}

std::string kindWords() {
    std::string words;
    VornicCentral::forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        bool const last = VornicCentral::kindOrder<Kind> + 1 == VornicCentral::kindCount;
        words += words.empty() ? "" : last ? " or " : ", ";
        words += Kind::word;
    });
    return words;
}

} // namespace VpAgent
