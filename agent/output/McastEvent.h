#pragma once

#include "devbus/FapId.h"
#include "interface/IntfSet.h"
#include "pelo/Publisher.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace VpAgent {

/// What an attribute or a member of the multicast entities holds: nothing, interfaces, or the group
/// API of that name.
using McastValue = std::variant<std::monostate, Interface::IntfSet, std::string>;

/// A notification of a multicast entity, as a subscriber gets it.
struct McastChange {
    std::string_view entity; ///< the path or the name under which it is shared
    Pelo::FieldId field;
    std::string_view attribute;       ///< the field's name
    std::optional<Devbus::FapId> key; ///< of a collection
    McastValue former;
    McastValue present;
};

/// The installed group API was called.
struct McastCall {
    struct Update {
        Devbus::FapId fapId;
        bool post;
    };

    std::string_view api; ///< its name
    std::string_view operation;
    std::optional<Update> update; ///< the arguments; nothing when there are none
};

/// Nobody holds the group API any more.
struct McastRelease {
    std::string_view api;
};

/// What happens in the multicast entities.
using McastEvent = std::variant<McastChange, McastCall, McastRelease>;

} // namespace VpAgent
