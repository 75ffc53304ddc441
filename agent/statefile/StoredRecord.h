#pragma once

#include "statefile/Rows.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpIndexStatus.h"
#include "vpstate/VpInvalidReferenceList.h"
#include "vpstate/VpReferenceList.h"
#include "vpstate/VxlanBootStatus.h"

#include <string>

namespace VpAgent {

/// How the value of a member stands in the columns of its row. A present key of a config or of the
/// invalid reference list says it all.
template <class Value> struct StoredValue;

template <> struct StoredValue<bool> {
    static std::vector<std::string_view> columns() { return {}; }
    static void write(RowWriter&, bool, std::string&) {}
    static bool read(RowReader&) { return true; }
};

template <> struct StoredValue<VornicCentral::VirtualPort> {
    static std::vector<std::string_view> columns() { return {"vp_index"}; }
    static void write(RowWriter& row, VornicCentral::VirtualPort vPort, std::string&) {
        row.add(U64{vPort.vpIndex()});
    }
    static VornicCentral::VirtualPort read(RowReader& row) {
        return VornicCentral::VirtualPort(
            static_cast<U16>(row.number(VornicCentral::invalidVpIndex)));
    }
};

template <> struct StoredValue<VornicCentral::VpReference> {
    static std::vector<std::string_view> columns() { return {"vp_index", "clients"}; }
    /// The names are put together in `room`, which must stand until the row is written.
    static void write(RowWriter& row, VornicCentral::VpReference const& reference,
                      std::string& room);
    static VornicCentral::VpReference read(RowReader& row);
};

/// The table in which the records of one type stand, and whether there is a record for each client.
template <class Record> struct StoredRecord;

template <> struct StoredRecord<VornicCentral::VpIndexConfig> {
    static constexpr std::string_view name = "config";
    static constexpr bool ofClient = true;
};

template <> struct StoredRecord<VornicCentral::VpIndexStatus> {
    static constexpr std::string_view name = "status";
    static constexpr bool ofClient = true;
};

template <> struct StoredRecord<VornicCentral::VpReferenceList> {
    static constexpr std::string_view name = "reference";
    static constexpr bool ofClient = false;
};

template <> struct StoredRecord<VornicCentral::VpInvalidReferenceList> {
    static constexpr std::string_view name = "waiting";
    static constexpr bool ofClient = false;
};

template <> struct StoredRecord<VornicCentral::VxlanBootStatus> {
    static constexpr std::string_view name = "boot";
    static constexpr bool ofClient = false;
};

template <class Record> Table const& tableOf() {
    using Stored = StoredRecord<Record>;
    static Table const table{Stored::name,
                             Stored::ofClient
                                 ? std::vector<std::string_view>{"client", "kind", "key"}
                                 : std::vector<std::string_view>{"kind", "key"},
                             StoredValue<typename Record::Value>::columns()};
    return table;
}

} // namespace VpAgent
