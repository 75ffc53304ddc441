#pragma once

#include "lumlog/DecodedMessage.h"
#include "lumlog/DecodedRecord.h"
#include "output/JsonWriter.h"
#include "pelo/Integers.h"

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace VpAgent {

/// Where records come from: the ring of this process, or one in a file.
struct RingSource {
    std::string file;        ///< empty for the ring of this process
    std::size_t damaged = 0; ///< records of the file that make no sense and are left out
};

/// The records of a ring, the oldest first.
struct RingListing {
    RingSource source;
    std::vector<Lumlog::DecodedRecord> records;
    std::size_t shownToPeople = 0; ///< how many of them, the newest, people see
};

/// Records were written to a folder as a trace.
struct RingTrace {
    RingSource source;
    std::string directory;
    U64 records = 0;
};

/// The ring of this process was written to a file.
struct RingSaved {
    std::string file;
    U64 bytes = 0;
};

/// The messages that the ring of this process knows, in the order of their numbers.
struct MessageListing {
    struct Message {
        Lumlog::DecodedMessage description;
        bool on = true;
    };
    std::vector<Message> messages;
};

/// What the commands on the ring buffer and on its messages report.
using RingReport = std::variant<RingListing, RingTrace, RingSaved, MessageListing>;

/// For people, in lines.
std::string ringText(RingReport const& report);

/// As members of the object that is open.
void writeRing(JsonWriter& json, RingReport const& report);

/// A call site as people see it, `Unit:12`, of a unit whose name may have folders.
std::string callSite(std::string_view unit, U32 line);

} // namespace VpAgent
