#include "statefile/Writer.h"

namespace VpAgent {

Writer::Writer(Connection& connection, U64 firstPosition)
    : clients_(connection, clientTable()),
      eraseConfig_(connection, "DELETE FROM config WHERE client = ?"),
      eraseStatus_(connection, "DELETE FROM status WHERE client = ?"),
      records_(connection, connection, connection, connection, connection),
      nextPosition_(firstPosition) {}

void Writer::checkRoom(U64 number) {
    if (number >= Seal::bound) {
        throw Damage("its numbers are used up");
    }
}

void Writer::writeClient(ClientRow const& client, VornicCentral::VpIndexStatus const& status) {
    checkRoom(client.id);
    RowWriter(clientTable(), clients_.write)
        .add(client.id)
        .add(client.name.view())
        .add(client.configPosition)
        .add(U64{status.vpTableSize()})
        .add(U64{status.vpAllocRequests()})
        .add(U64{status.vpAllocFailures()})
        .add(U64{status.vpFreeRequests()})
        .write(client.statusPosition);
}

void Writer::eraseClient(U64 id) {
    clients_.erase.bind(id).run();
    eraseConfig_.bind(id).run();
    eraseStatus_.bind(id).run();
}

} // namespace VpAgent
