#pragma once

#include "pelo/String.h"
#include "statefile/StoredRecord.h"

#include <string>
#include <tuple>

namespace VpAgent {

/// A client as its row says it.
struct ClientRow {
    U64 id = 0; ///< never given twice while a row refers to it
    Pelo::String name;
    U64 configPosition = 0; ///< 0 while the config is taken out of its directory
    U64 statusPosition = 0;
};

/// Writes the rows of changed members within the transaction that the caller has begun, and gives
/// each new row its position.
///
/// Errors are thrown as `SqliteError`. Cost: that of finding the row by its key.
class Writer {
public:
    /// `firstPosition` is above all positions that stand in the file.
    Writer(Connection& connection, U64 firstPosition);

    /// The next position; each is above all those before. Throws `Damage` when there are no more,
    /// which takes a file that this program has not written.
    U64 nextPosition() {
        checkRoom(nextPosition_);
        return nextPosition_++;
    }

    void writeClient(ClientRow const& client, VornicCentral::VpIndexStatus const& status);
    /// Erases the client and all that it requests and was given.
    void eraseClient(U64 id);

    /// A member that has no row yet goes behind all others; one that has a row keeps its place.
    /// `client` is the client whose record it is, if records of this type belong to clients.
    template <class Record, class Kind>
    void write(U64 client, typename Kind::Key const& key, typename Record::Value const& value) {
        std::string const keyText = key.stringValue();
        RowWriter row(tableOf<Record>(), statements<Record>().write);
        if constexpr (StoredRecord<Record>::ofClient) {
            row.add(client);
        }
        row.add(std::string_view(Kind::word)).add(std::string_view(keyText));
        StoredValue<typename Record::Value>::write(row, value, names_);
        row.write(nextPosition());
    }

    template <class Record, class Kind> void erase(U64 client, typename Kind::Key const& key) {
        std::string const keyText = key.stringValue();
        Statement& statement = statements<Record>().erase;
        if constexpr (StoredRecord<Record>::ofClient) {
            statement.bind(client);
        }
        statement.bind(std::string_view(Kind::word)).bind(std::string_view(keyText)).run();
    }

private:
    static void checkRoom(U64 number);

    struct Statements {
        Statements(Connection& connection, Table const& table)
            : write(connection, table.writeSql()), erase(connection, table.eraseSql()) {}

        Statement write;
        Statement erase;
    };
    template <class Record> struct StatementsOf : Statements {
        explicit StatementsOf(Connection& connection) : Statements(connection, tableOf<Record>()) {}
    };

    template <class Record> Statements& statements() {
        return std::get<StatementsOf<Record>>(records_);
    }

    Statements clients_;
    Statement eraseConfig_;
    Statement eraseStatus_;
    std::tuple<StatementsOf<VornicCentral::VpIndexConfig>,
               StatementsOf<VornicCentral::VpIndexStatus>,
               StatementsOf<VornicCentral::VpReferenceList>,
               StatementsOf<VornicCentral::VpInvalidReferenceList>,
               StatementsOf<VornicCentral::VxlanBootStatus>>
        records_;
    U64 nextPosition_;
    std::string names_; ///< room for the names of a reference
};

} // namespace VpAgent
