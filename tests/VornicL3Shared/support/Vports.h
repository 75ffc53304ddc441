#pragma once

#include "vpstate/Kinds.h"

#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Test {

/// A key together with its kind, so that a test's verbs know which collection is meant.
template <class K> struct Vport {
    using Kind = K;
    typename K::Key key;
};

template <class Key> Key keyOf(std::string_view text) {
    auto parsed = Key::parse(text);
    if (!parsed) {
        throw std::invalid_argument("not a key: " + std::string(text));
    }
    return *std::move(parsed);
}

inline Vport<VornicCentral::RemoteVport> remote(std::string_view text) {
    return {keyOf<VornicCentral::RemoteVtepKey>(text)};
}
inline Vport<VornicCentral::MlagRemoteVport> mlag(std::string_view text) {
    return {keyOf<VornicCentral::RemoteVtepKey>(text)};
}
inline Vport<VornicCentral::EdgeVport> edge(std::string_view text) {
    return {keyOf<VornicCentral::PortVlanKey>(text)};
}
inline Vport<VornicCentral::VlanVport> vlan(U16 number) { return {Bridging::VlanId(number)}; }
inline Vport<VornicCentral::EFilterDisableVport> efilter(std::string_view name) {
    return {Netzo::IntfId(name)};
}

template <class T> std::string textOf(T const& value) {
    std::ostringstream out;
    out << value;
    return std::move(out).str();
}

} // namespace Test
