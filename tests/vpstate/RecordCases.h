#pragma once

#include "qor/ValueTraits.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpIndexStatus.h"
#include "vpstate/VpInvalidReferenceList.h"
#include "vpstate/VpReferenceList.h"
#include "vpstate/VxlanBootStatus.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>
#include <typeinfo>

/// What the tests of the records run over: every record type with every kind, and sample members.
namespace Records {

template <class R, class K> struct Case {
    using Record = R;
    using Kind = K;
    using Key = typename K::Key;
    using Value = typename R::Value;
};

template <class R, class Kinds> struct CasesOfRecord;
template <class R, class... K> struct CasesOfRecord<R, std::tuple<K...>> {
    using Type = std::tuple<Case<R, K>...>;
};
template <class Tuple> struct AsTypes;
template <class... T> struct AsTypes<std::tuple<T...>> {
    using Type = testing::Types<T...>;
};
template <class... R> struct CasesOf {
    using Type = typename AsTypes<decltype(std::tuple_cat(
        typename CasesOfRecord<R, VornicCentral::Kinds>::Type()...))>::Type;
};

using Cases = CasesOf<VornicCentral::VpIndexConfig, VornicCentral::VpIndexStatus,
                      VornicCentral::VpReferenceList, VornicCentral::VpInvalidReferenceList,
                      VornicCentral::VxlanBootStatus>::Type;

/// The name of a record type without its namespace.
template <class R> std::string recordName() {
    std::string const name = Qor::sourceName(typeid(R));
    return name.substr(name.rfind(':') + 1);
}

/// Names a test of a case, as "VpIndexConfig_edgeVport".
struct CaseName {
    template <class C> static std::string GetName(int) {
        return recordName<typename C::Record>() + "_" + C::Kind::collection;
    }
};

/// The field number under which a collection publishes.
template <class Kind> inline constexpr Pelo::FieldId fieldOf = 0;
template <> inline constexpr Pelo::FieldId fieldOf<VornicCentral::RemoteVport> = 258;
template <> inline constexpr Pelo::FieldId fieldOf<VornicCentral::MlagRemoteVport> = 259;
template <> inline constexpr Pelo::FieldId fieldOf<VornicCentral::EdgeVport> = 260;
template <> inline constexpr Pelo::FieldId fieldOf<VornicCentral::VlanVport> = 261;
template <> inline constexpr Pelo::FieldId fieldOf<VornicCentral::EFilterDisableVport> = 262;

template <class Key> std::array<Key, 3> sampleKeys(std::array<char const*, 3> const& texts) {
    return {*Key::parse(texts[0]), *Key::parse(texts[1]), *Key::parse(texts[2])};
}

/// Three keys that differ little.
template <class Key> std::array<Key, 3> sampleKeys();
template <> inline std::array<VornicCentral::RemoteVtepKey, 3> sampleKeys() {
    return sampleKeys<VornicCentral::RemoteVtepKey>(
        {"10.0.0.2@17", "10.0.0.2@18", "2001:db8::2@17"});
}
template <> inline std::array<VornicCentral::PortVlanKey, 3> sampleKeys() {
    return sampleKeys<VornicCentral::PortVlanKey>(
        {"Ethernet1/1:100", "Ethernet1/1:101", "Ethernet1/2:100"});
}
template <> inline std::array<Bridging::VlanId, 3> sampleKeys() {
    return sampleKeys<Bridging::VlanId>({"100", "101", "4094"});
}
template <> inline std::array<Netzo::IntfId, 3> sampleKeys() {
    return sampleKeys<Netzo::IntfId>({"Ethernet1", "Ethernet2", "Port-Channel7"});
}

/// Two values that differ; the second one of a bool is the default value, which is a value like any
/// other.
template <class Value> std::array<Value, 2> sampleValues();
template <> inline std::array<bool, 2> sampleValues() { return {true, false}; }
template <> inline std::array<VornicCentral::VirtualPort, 2> sampleValues() {
    return {VornicCentral::VirtualPort(8), VornicCentral::VirtualPort(9)};
}
template <> inline std::array<VornicCentral::VpReference, 2> sampleValues() {
    std::array<VornicCentral::VpReference, 2> values;
    values[0].vPortIs(VornicCentral::VirtualPort(8));
    values[0].referenceIs("bgp", true);
    values[1] = values[0];
    values[1].referenceIs("mlag", true);
    return values;
}

/// The fixture of a case: an empty record, three keys a, b and c, and two values 1 and 2. Members
/// print as "a=1 b=2".
template <class C> class OfCase : public testing::Test {
public:
    using Record = typename C::Record;
    using Kind = typename C::Kind;
    using Key = typename C::Key;
    using Value = typename C::Value;

    std::string nameOf(Key const& key) const {
        return key == a ? "a" : key == b ? "b" : key == c ? "c" : "unknown";
    }
    std::string nameOf(Value const& value) const {
        return value == one ? "1" : value == two ? "2" : "unknown";
    }

    /// The members of the case's collection in order.
    std::string members() const {
        std::string text;
        for (typename Record::template Collection<Kind>::Iterator it(collection()); it;
             it.advance()) {
            text += (text.empty() ? "" : " ") + nameOf(it.key()) + "=" + nameOf(it.value());
        }
        return text;
    }

    typename Record::template Collection<Kind> const& collection() const {
        return record->template collection<Kind>();
    }
    void is(Key const& key, Value const& value) { record->template is<Kind>(key, value); }
    Value del(Key const& key) { return record->template del<Kind>(key); }
    void delAll() { record->template delAll<Kind>(); }
    /// Makes the members a=1 b=1 c=1.
    void fill() {
        is(a, one);
        is(b, one);
        is(c, one);
    }

    Key const a = sampleKeys<Key>()[0];
    Key const b = sampleKeys<Key>()[1];
    Key const c = sampleKeys<Key>()[2];
    Value const one = sampleValues<Value>()[0];
    Value const two = sampleValues<Value>()[1];
    Pelo::Ptr<Record> record = Pelo::newNode<Record>("record");
};

} // namespace Records
