// The text forms of keys and of all other values: what is printed reads back as the same.

#include "common/Input.h"
#include "language/Vport.h"
#include "language/Words.h"
#include "netzo/Ip6Addr.h"
#include "netzo/IpGenAddr.h"
#include "qor/TypeModule.h"
#include "vpstate/VirtualPort.h"
#include "vxlan/SwTunnelGroupId.h"

#include <set>
#include <sstream>

namespace {

using Fuzz::expect;

template <class T> std::string printed(T const& value) {
    std::ostringstream out;
    out << value;
    return std::move(out).str();
}

void expectPlace(Pelo::ParseError const& error, std::string_view text) {
    expect(error.at <= text.size(), "an error behind the end of the text");
    expect(!error.expected.empty(), "an error that expects nothing");
}

template <class T> void checkType(std::string_view text) {
    Pelo::Parsed<T> const value = T::parse(text);
    if (!value) {
        expectPlace(value.error(), text);
        return;
    }
    std::string const print = printed(*value);
    Pelo::Parsed<T> const again = T::parse(print);
    expect(again && *again == *value, "not read back: " + print);
    expect(printed(*again) == print, "printed in two ways: " + print);
}

/// As commands take it, which is as records print it.
template <class Kind> void checkKind(std::string_view text) {
    auto const key = VpAgent::parseKey<Kind>(text);
    if (!key) {
        expectPlace(key.error(), text);
        return;
    }
    auto const again = VpAgent::parseKey<Kind>(key->stringValue());
    expect(again && *again == *key, std::string(Kind::word) + " not read back: " + printed(*key));
    expect(again->hash() == key->hash(), "equal keys of different hashes: " + printed(*key));
}

/// The types of all values that generic access reads from texts.
std::set<Qor::ValueType const*> valueTypes() {
    std::set<Qor::ValueType const*> types;
    for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
        for (Qor::TypeData const* const type : module->types()) {
            for (Qor::FieldData const& field : type->fields()) {
                for (Qor::FieldAccess const& access : field.accesses) {
                    for (Qor::ArgumentData const& argument : access.arguments) {
                        types.insert(argument.type);
                    }
                }
            }
        }
    }
    return types;
}

void checkGeneric(Qor::ValueType const& type, std::string_view text) {
    auto const value = type.parse(text);
    if (!value) {
        expectPlace(value.error(), text);
        return;
    }
    auto const again = type.parse(value->text());
    expect(again && *again == *value, type.name() + " not read back: " + value->text());
}

/// A text that is a word comes through quotes as it was.
void checkWord(std::string_view text) {
    std::string const line = VpAgent::asWord(text);
    VpAgent::Words words;
    try {
        words.read(line);
    } catch (VpAgent::Refusal const& refusal) {
        auto const place = refusal.place().value_or(VpAgent::Place{});
        expect(place.at + place.length <= line.size(), "a place behind the end of the line");
        return;
    }
    expect(words.all().size() == 1 && words.all()[0].text == text, "not read back: " + line);
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    std::string_view const text = Fuzz::Input(data, size).rest();
    checkType<Netzo::IpGenAddr>(text);
    checkType<Netzo::IntfId>(text);
    checkType<Bridging::VlanId>(text);
    checkType<Vxlan::SwTunnelGroupId>(text);
    checkType<VornicCentral::RemoteVtepKey>(text);
    checkType<VornicCentral::PortVlanKey>(text);
    checkType<VornicCentral::VirtualPort>(text);
    VornicCentral::forEachKind([&](auto kind) { checkKind<decltype(kind)>(text); });
    static auto const types = valueTypes();
    for (Qor::ValueType const* const type : types) {
        checkGeneric(*type, text);
    }
    checkWord(text);
    return 0;
}
