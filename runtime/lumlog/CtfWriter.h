#pragma once

#include "lumlog/DecodedMessage.h"
#include "lumlog/DecodedRecord.h"
#include "lumlog/Reader.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <filesystem>
#include <map>
#include <string>

namespace Lumlog {

/// The records of a ring as a trace in the Common Trace Format, version 1.8, which is a folder that
/// `babeltrace2` and other viewers of traces read.
///
///     Lumlog::Reader reader(bytes);
///     Lumlog::CtfWriter(reader).write("trace");
///
/// Each message is an event class, named after its call site and its wording. An event has the
/// fields `sequence`, `time`, `msgId`, `level`, `unit`, `line`, `text`, and the arguments as
/// `arg0`, `arg1` and so on: numbers as numbers, truth values as 0 and 1, texts and addresses as
/// texts. Characters that a terminal would act upon, zero bytes among them, stand in texts as
/// `\x1B`.
///
/// The clock counts nanoseconds since 1970 (UTC). The time of an event is that of its record, or
/// that of the event before if the record's is earlier: viewers require a time that never goes
/// back, which the system's clock may do when it is set. The field `time` is the record's own.
///
/// The same records give the same trace, byte by byte, with the same identifier (UUID).
class VORNIC_RUNTIME_API CtfWriter {
public:
    /// Takes all further records of the reader, which is not needed afterwards. The whole trace is
    /// kept in memory.
    explicit CtfWriter(Reader& reader);

    U64 recordCount() const noexcept { return recordCount_; }

    /// The contents of the two files of the trace.
    std::string const& metadata() const noexcept { return metadata_; }
    std::string const& stream() const noexcept { return stream_; }

    /// Writes the trace to a folder that is empty, or not there yet in one that is there. Throws
    /// `std::filesystem::filesystem_error` when the folder is neither, or when it cannot be
    /// written, and then leaves it as it was.
    void write(std::filesystem::path const& directory) const;

private:
    void appendRecord(DecodedRecord const& record);
    DecodedMessage const& messageOf(DecodedRecord const& record);
    void endPacket(U64 begin);

    std::map<U32, DecodedMessage> messages_;
    U64 recordCount_ = 0;
    U64 time_ = 0; ///< of the last event
    std::string metadata_;
    std::string stream_;
};

} // namespace Lumlog
