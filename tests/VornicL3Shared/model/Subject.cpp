#include "VornicL3Shared/model/Subject.h"

#include "allocator/Trace.h"
#include "qor/Exceptions.h"

namespace ModelTest {
namespace {

constexpr std::size_t smallRing = 1 << 16; // bytes; nobody reads it

std::string changedText(bool) { return ""; }
std::string changedText(VornicCentral::VirtualPort vPort) {
    return "=" + std::to_string(vPort.vpIndex());
}
std::string changedText(VornicCentral::VpReference const& reference) {
    return referenceText(reference);
}

/// A change of one of the counters, as `requests=3`.
std::string counterText(VornicCentral::VpIndexStatus const& status, Pelo::FieldId field) {
    switch (field) {
    case VornicCentral::VpIndexStatus::vpAllocRequestsField:
        return "requests=" + std::to_string(status.vpAllocRequests());
    case VornicCentral::VpIndexStatus::vpAllocFailuresField:
        return "failures=" + std::to_string(status.vpAllocFailures());
    case VornicCentral::VpIndexStatus::vpFreeRequestsField:
        return "frees=" + std::to_string(status.vpFreeRequests());
    case VornicCentral::VpIndexStatus::vpTableSizeField:
        return "size=" + std::to_string(status.vpTableSize());
    default:
        return "field " + std::to_string(field);
    }
}
std::string counterText(Qor::Entity const&, Pelo::FieldId field) {
    return "field " + std::to_string(field);
}

} // namespace

VornicCentral::VpReference libraryReference(Operation const& operation) {
    VornicCentral::VpReference reference(
        VornicCentral::VirtualPort(static_cast<U16>(operation.number)));
    for (std::string const& name : operation.names) {
        reference.referenceIs(Pelo::String(name), true);
    }
    return reference;
}

std::string referenceText(VornicCentral::VpReference const& reference) {
    std::string text = "=" + std::to_string(reference.vPort().vpIndex()) + "[";
    for (auto const& name : reference.references()) {
        text += (text.back() == '[' ? "" : " ") + std::string(name.view());
    }
    return text + "]";
}

Subject::Subject(bool watched, bool generic)
    : world_(Test::Settings{.ringSize = smallRing}), watched_(watched), generic_(generic) {
    formerTraceSink_ = Qor::traceSinkIs([this](Qor::TraceLine const& line) {
        journal_.line("trace ", line.level, " ", line.text);
    });
    formerLogSink_ = Qor::logSinkIs([this](Qor::LogMessage const& message) {
        journal_.line("log ", message.descriptor.id, ": ", message.text);
    });
    watch(*world_.references, "references");
    watch(*world_.waiting, "waiting");
    watch(*world_.boot, "boot");
    watchDirectory(*world_.configDir, "configs");
    watchDirectory(*world_.statusDir, "statuses");
}

Subject::~Subject() {
    world_.stop();
    Qor::traceSinkIs(formerTraceSink_);
    Qor::logSinkIs(formerLogSink_);
}

void Subject::mutedIs(bool muted) {
    VornicCentral::vpTraceHandle().levelsMaskIs(muted ? 0 : ~U64{0});
}

template <class Record> void Subject::watch(Record const& record, std::string const& title) {
    if (watched_) {
        listeners_.emplace_back(record, [this, &record, title](Test::Notification const& change) {
            report(record, title, change);
        });
    }
}

template <class Directory>
void Subject::watchDirectory(Directory const& directory, char const* title) {
    if (!watched_) {
        return;
    }
    listeners_.emplace_back(directory, [this, title](Test::Notification const& change) {
        using Record = typename Directory::Record;
        auto const& name = *static_cast<Pelo::String const*>(change.key);
        auto const* const record = static_cast<Pelo::Ptr<Record> const*>(change.value);
        journal_.line("changed ", title, " ", name.view(),
                      record == nullptr ? " deleted" : "=" + std::string((*record)->name().view()));
    });
}

template <class Record>
void Subject::report(Record const& record, std::string const& title,
                     Test::Notification const& change) {
    if (change.key == nullptr) {
        journal_.line("changed ", title, " ", counterText(record, change.field));
        return;
    }
    VornicCentral::forEachKind([&](auto kind) {
        using K = decltype(kind);
        if (change.field == K::field) {
            auto const& key = *static_cast<typename K::Key const*>(change.key);
            auto const* const value = static_cast<typename Record::Value const*>(change.value);
            journal_.line("changed ", title, " ", K::word, " ", Test::textOf(key),
                          value == nullptr ? " deleted" : changedText(*value));
        }
    });
}

Pelo::Ptr<VornicCentral::VpIndexConfig> Subject::newConfig(Pelo::String const& name) {
    auto config = VornicCentral::vpIndexConfigFactory(name);
    watch(*config, "config " + std::string(name.view()));
    return ownConfigs_[std::string(name.view())] = config;
}

Pelo::Ptr<VornicCentral::VpIndexStatus> Subject::newStatus(Pelo::String const& name) {
    auto status = VornicCentral::vpIndexStatusFactory(name);
    watch(*status, "status " + std::string(name.view()));
    return status;
}

void Subject::clientAdd(Operation const& operation) {
    Pelo::String const name = nameOf(operation);
    if (!world_.statusDir->vpIndexStatusHas(name)) {
        world_.statusDir->vpIndexStatusIs(name, newStatus(name));
    }
    auto const own = ownConfigs_.find(operation.client);
    world_.configDir->vpIndexConfigIs(name,
                                      own == ownConfigs_.end() ? newConfig(name) : own->second);
}

void Subject::clientRetire(Operation const& operation) {
    Pelo::String const name = nameOf(operation);
    VornicCentral::forEachKind([&](auto kind) {
        using K = decltype(kind);
        auto& config = ownConfig(operation);
        using Requests = VornicCentral::VpIndexConfig::Collection<K>;
        for (typename Requests::Iterator it(config.collection<K>()); it; it.advance()) {
            config.del<K>(it.key());
        }
    });
    world_.configDir->vpIndexConfigDel(name);
    if (world_.sm) {
        world_.sm->vpIndexAllocatorDel(name);
    }
    world_.statusDir->vpIndexStatusDel(name);
    ownConfigs_.erase(operation.client);
}

void Subject::saveBoot() {
    VornicCentral::forEachKind([&](auto kind) {
        using K = decltype(kind);
        world_.boot->delAll<K>();
        using References = VornicCentral::VpReferenceList::Collection<K>;
        for (typename References::Iterator it(world_.references->collection<K>()); it;
             it.advance()) {
            if (it.value().vPort().valid()) {
                world_.boot->is<K>(it.key(), it.value().vPort());
            }
        }
    });
}

void Subject::start(Settings const& settings) {
    using namespace VornicCentral;
    settings_ = settings;
    world_.stop();
    auto const capabilities = vxlanCapabilitiesFactory("capabilities", settings.remoteLow);
    world_.sm = vpIndexAllocatorDirSmFactory(
        world_.references, world_.waiting, settings.configDir ? world_.configDir : nullptr,
        world_.statusDir, settings.tableSize, world_.boot, settings.reallocation,
        settings.vfiForwarding, settings.capabilities ? capabilities : nullptr);
}

std::string Subject::apply(Operation const& operation) {
    result_.clear();
    try {
        if (directoryOperation(operation) || recordOperation(operation) ||
            lifeOperation(operation)) {
            return result_;
        }
        bool const ofClient = operation.verb >= Verb::clientKeyed;
        if (generic_) {
            auto const result = ofClient ? genericClientCall(operation) : genericCall(operation);
            if (result) {
                return *result;
            }
        }
        return ofClient ? callClient(operation) : call(operation);
    } catch (Qor::Exception const& exception) {
        return "refused " + exception.attribute();
    }
}

} // namespace ModelTest
