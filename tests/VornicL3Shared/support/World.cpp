#include "VornicL3Shared/support/World.h"

namespace Test {
namespace {

std::string valueText(bool) { return ""; }
std::string valueText(VornicCentral::VirtualPort vPort) {
    return "=" + std::to_string(vPort.vpIndex());
}
std::string valueText(VornicCentral::VpReference const& reference) {
    std::string text = "=" + std::to_string(reference.vPort().vpIndex()) + "[";
    for (auto const& name : reference.references()) {
        text += (text.back() == '[' ? "" : " ") + std::string(name.view());
    }
    return text + "]";
}

template <class Record> std::string recordText(Record const& record) {
    std::string text;
    VornicCentral::forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        std::string members;
        for (typename Record::template Collection<Kind>::Iterator it(
                 record.template collection<Kind>());
             it; it.advance()) {
            members += (members.empty() ? "" : " ") + textOf(it.key()) + valueText(it.value());
        }
        if (!members.empty()) {
            text += " " + std::string(Kind::word) + "{" + members + "}";
        }
    });
    return text;
}

std::string countersText(VornicCentral::VpIndexStatus const& status) {
    return " requests=" + std::to_string(status.vpAllocRequests()) +
           " failures=" + std::to_string(status.vpAllocFailures()) +
           " frees=" + std::to_string(status.vpFreeRequests()) +
           " size=" + std::to_string(status.vpTableSize());
}

} // namespace

void World::start() {
    stop();
    sm = VornicCentral::vpIndexAllocatorDirSmFactory(
        references, waiting, configDir, statusDir, settings.tableSize, boot, settings.reallocation,
        settings.vfiForwarding,
        VornicCentral::vxlanCapabilitiesFactory("capabilities", settings.remoteLow));
}

std::string World::pool() const {
    if (!sm || !sm->vpBitmap()) {
        return "none";
    }
    auto const& bitmap = *sm->vpBitmap();
    std::string text = std::to_string(bitmap.size()) + ":";
    for (U32 at = 0; at < bitmap.size(); ++at) {
        if (!bitmap.isBitSet(at)) {
            continue;
        }
        U32 const first = at;
        while (at + 1 < bitmap.size() && bitmap.isBitSet(at + 1)) {
            ++at;
        }
        text += " " + std::to_string(first) + (at == first ? "" : "-" + std::to_string(at));
    }
    return text;
}

std::string World::state() const {
    std::string text = "pool " + pool() + "\n";
    for (VornicCentral::VpIndexConfigDir::Entries::Iterator it(configDir->vpIndexConfig()); it;
         it.advance()) {
        text += "config " + std::string(it.key().view()) + ":" + recordText(*it.value()) + "\n";
    }
    for (VornicCentral::VpIndexStatusDir::Entries::Iterator it(statusDir->vpIndexStatus()); it;
         it.advance()) {
        text += "status " + std::string(it.key().view()) + ":" + recordText(*it.value()) +
                countersText(*it.value()) + "\n";
    }
    text += "references:" + recordText(*references) + "\n";
    text += "waiting:" + recordText(*waiting) + "\n";
    return text + "boot:" + recordText(*boot) + "\n";
}

} // namespace Test
