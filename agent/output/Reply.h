#pragma once

#include "inspect/Inspected.h"
#include "pelo/Integers.h"
#include "pelo/String.h"
#include "ring/RingReport.h"
#include "vpstate/Kinds.h"

#include <array>
#include <cstddef>
#include <string>
#include <variant>

namespace VpAgent {

/// The result of an operation that has one.
struct CallReply {
    std::variant<std::monostate, U64, bool, std::string> result;
};

struct VerifyReply {
    bool passed = true;
    std::string assertion; ///< the text of the failed check
    std::string function;  ///< the signature of the function that holds it
};

struct ImportReply {
    Pelo::String client;
    std::array<std::size_t, VornicCentral::kindCount>
        requests{}; ///< by kind, in the order of kinds
};

/// Something to read: of `echo`, `show` and `help`.
struct TextReply {
    std::string text; ///< lines, the last one without its end
};

struct InspectReply {
    Inspected inspected;
};

struct RingReply {
    RingReport report;
};

/// The whole state, to be written as it stands.
struct DumpReply {};

/// The multicast entities, to be written as they stand.
struct McastReply {};

/// No more commands are to be read.
struct QuitReply {};

/// What a command that was carried out has to say.
struct Reply {
    std::variant<std::monostate, CallReply, VerifyReply, ImportReply, TextReply, InspectReply,
                 RingReply, DumpReply, McastReply, QuitReply>
        content;
    std::string note;     ///< what a person at a terminal would like to know; may be empty
    bool pending = false; ///< it belongs to an open unit, which is not on disk yet
};

} // namespace VpAgent
