#include "import/Entry.h"

#include "language/Vport.h"
#include "pelo/Decimal.h"
#include "text/Refusal.h"
#include "text/Utf8.h"

#include <utility>

namespace VpAgent {

std::string sample(Json const& value) {
    if (value.is_structured()) {
        return value.is_array() ? "an array" : "an object";
    }
    constexpr std::size_t longest = 40;
    std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (text.size() > longest) {
        text.replace(longest, std::string::npos, "...");
    }
    return printable(text);
}

Entry::Entry(std::string name, Json const& fields) : name_(std::move(name)), fields_(fields) {
    if (!fields.is_object()) {
        refuse(sample(fields), "an object");
    }
    checkNames(fields, [](std::string_view) { return true; });
}

Json const* Entry::find(std::string_view field) const {
    auto const found = fields_.find(field);
    return found == fields_.end() ? nullptr : &*found;
}

std::string const& Entry::text(std::string_view field) const {
    Json const* const value = find(field);
    if (value == nullptr) {
        refuse("no field " + inQuotes(field), "one");
    }
    if (!value->is_string()) {
        refuse(std::string(field) + ' ' + sample(*value), "a text");
    }
    return value->get_ref<std::string const&>();
}

U32 Entry::number(std::string_view field, U32 lowest, U32 highest) const {
    Json const* const value = find(field);
    std::string const expected =
        "a number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    if (value == nullptr) {
        refuse("no field " + inQuotes(field), expected);
    }
    std::string const digits = value->is_string()            ? value->get<std::string>()
                               : value->is_number_unsigned() ? value->dump()
                                                             : std::string();
    auto const number = Pelo::parseDecimal(digits, highest);
    if (!number || *number < lowest) {
        refuse(std::string(field) + ' ' + sample(*value), expected);
    }
    return static_cast<U32>(*number);
}

U32 Entry::vni() const {
    constexpr U32 highestVni = (1u << 24) - 1;
    return number("vni", 1, highestVni);
}

Netzo::IpGenAddr Entry::address(std::string_view text) const {
    auto const address = Netzo::IpGenAddr::parse(text);
    if (!address) {
        refuse("address " + inQuotes(text), address.error().expected);
    }
    return *address;
}

Bridging::VlanId Entry::vlan(std::string_view text) const {
    constexpr std::string_view prefix = "Vlan";
    if (text.starts_with(prefix)) {
        if (auto const vlan = parseKey<VornicCentral::VlanVport>(text.substr(prefix.size()))) {
            return *vlan;
        }
    }
    refuse("VLAN " + inQuotes(text), "Vlan1 to Vlan4094");
}

void Entry::refuse(std::string_view found, std::string_view expected) const {
    throw Refusal(shortened(name_) + ": " + std::string(found) + ", expected " +
                  std::string(expected));
}

} // namespace VpAgent
