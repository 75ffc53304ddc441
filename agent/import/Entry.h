#pragma once

#include "bridging/VlanId.h"
#include "import/JsonFile.h"
#include "netzo/IpGenAddr.h"
#include "pelo/Integers.h"

#include <string>
#include <string_view>

namespace VpAgent {

/// What is shown of a value that is not what it should be.
std::string sample(Json const& value);

/// One entry of an imported file: its name, for messages, and its fields. What it reads is checked;
/// what is missing or malformed is refused with the entry's name.
class Entry {
public:
    /// `fields` must outlive the entry and be an object, with each name once.
    Entry(std::string name, Json const& fields);

    std::string const& name() const noexcept { return name_; }

    /// The field of that name; null when there is none.
    Json const* find(std::string_view field) const;

    /// The text of a field that must be there.
    std::string const& text(std::string_view field) const;

    /// A number of a field that must be there, as a number or a text.
    U32 number(std::string_view field, U32 lowest, U32 highest) const;

    U32 vni() const;

    Netzo::IpGenAddr address(std::string_view text) const;

    /// The VLAN that `Vlan100` names.
    Bridging::VlanId vlan(std::string_view text) const;

    /// Refuses a part of the entry.
    [[noreturn]] void refuse(std::string_view found, std::string_view expected) const;

private:
    std::string name_;
    Json const& fields_;
};

} // namespace VpAgent
