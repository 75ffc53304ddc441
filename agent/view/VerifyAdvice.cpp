#include "view/VerifyAdvice.h"

#include "state/Agent.h"
#include "view/TextTable.h"
#include "view/WithoutIndex.h"

namespace VpAgent {

using namespace VornicCentral;

namespace {

constexpr U32 reservedIndices = VpIndexAllocatorDirSm::maxSystemSourceVp_;

std::size_t allWithoutIndex(VpReferenceList const& references) {
    std::size_t count = 0;
    forEachKind([&](auto kind) { count += withoutIndex(references.collection<decltype(kind)>()); });
    return count;
}

/// The table-wide count takes every reference for one index in use, also one that has none.
std::string adviceOnCount(Agent const& agent) {
    std::size_t const references = agent.database.references()->memberCount();
    std::size_t const without = allWithoutIndex(*agent.database.references());
    std::size_t const used = agent.machine.stateMachine().vpBitmap()->numBitsInSetState();
    std::string text = "  " + counted(references, "reference") + " and the system's " +
                       grouped(reservedIndices) + " make " + grouped(references + reservedIndices) +
                       ", but " + grouped(used) + " indices are in use.\n";
    if (without == 0) {
        return text + "  An index is in use that no reference holds, or a reference holds one that "
                      "is marked free.\n";
    }
    text += "  The check counts every reference as an index in use, also one that has none: " +
            counted(without, "reference") + " without index here.\n";
    if (references - without + reservedIndices == used) {
        return text + "  All others agree, so this is no damage: the check passes once no "
                      "reference is without index.\n";
    }
    return text + "  The others do not agree either.\n";
}

} // namespace

std::string verifyAdvice(VerifyReply const& reply, Agent const& agent) {
    if (reply.assertion.find("numVps") != std::string::npos) {
        return adviceOnCount(agent);
    }
    if (reply.assertion == "reference.references()") {
        return "  A reference names no client. After a restart this is so until 'clear-stale' has "
               "released what no\n"
               "  client came back for.\n";
    }
    if (reply.assertion == "reference.referenceHas( name() )") {
        return "  A client holds a virtual port, but the reference of that key does not name it.\n";
    }
    if (reply.assertion == "reference.vPort() == vPort" ||
        reply.assertion.starts_with("vPort == ")) {
        return "  A client's status and the reference of the same key hold different indices.\n";
    }
    if (reply.assertion.find("isBitSet") != std::string::npos) {
        return "  A client holds an index that the pool has as free.\n";
    }
    if (reply.assertion.starts_with("vpIndexStatus()->")) {
        return "  A client requests a key that its status does not have.\n";
    }
    if (reply.assertion.starts_with("vpIndexConfig()->")) {
        return "  A client's status has a key that the client does not request.\n";
    }
    if (reply.assertion.starts_with("vpReference()->")) {
        return "  A client's status has a key for which there is no reference.\n";
    }
    return "";
}

} // namespace VpAgent
