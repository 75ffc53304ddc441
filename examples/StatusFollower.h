#pragma once

#include "AgentRecords.h"

#include <functional>
#include <string>
#include <utility>

namespace Examples {

/// Tells a function what one client was given, whatever the kind: first all that is there, then
/// each change, until the follower is destroyed.
///
/// The function is called within the change, on the event thread, and must not throw.
class StatusFollower {
public:
    /// `given` is null for a virtual port that the client has withdrawn, and holds no index while
    /// the virtual port waits for one. It is valid during the call.
    using Tell =
        std::function<void(std::string const& vport, VornicCentral::VirtualPort const* given)>;

    StatusFollower(Pelo::Ptr<VornicCentral::VpIndexStatus const> const& status, Tell tell)
        : status_(status), tell_(std::move(tell)), subscriber_(this, &onChange) {
        VornicCentral::forEachKind([this](auto kind) { tellAll<decltype(kind)>(); });
        bool const beforeOthers = false; // who subscribed first is told first
        status_->publisher()->subscriberAdd(&subscriber_, beforeOthers);
    }

private:
    template <class Kind> void tellAll() {
        using Results = VornicCentral::VpIndexStatus::Collection<Kind>;
        for (typename Results::Iterator it(status_->collection<Kind>()); it; it.advance()) {
            tell_(vportText<Kind>(it.key()), &it.value());
        }
    }

    /// What a publisher calls: the field number says which collection changed, and thereby what
    /// `key` and `value` point to. The fields of no kind are the status's counters.
    static void onChange(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                         void const* key, void const* value) noexcept {
        auto const& self = subscriber->owner<StatusFollower>();
        VornicCentral::forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            if (field == Kind::field) {
                self.tell_(vportText<Kind>(*static_cast<typename Kind::Key const*>(key)),
                           static_cast<VornicCentral::VirtualPort const*>(value));
            }
        });
    }

    Pelo::Ptr<VornicCentral::VpIndexStatus const> status_;
    Tell tell_;
    Pelo::Subscriber subscriber_; // leaves the status when it is destroyed, the last member first
};

} // namespace Examples
