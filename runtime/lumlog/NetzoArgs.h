#pragma once

#include "lumlog/ArgTraits.h"
#include "netzo/IntfId.h"

/// An interface goes into a record by its name, of which every id of it keeps the text.
template <> struct Lumlog::ArgTraits<Netzo::IntfId> {
    static auto pieces(Netzo::IntfId const& intf) { return Lumlog::pieces(intf.name()); }
};
