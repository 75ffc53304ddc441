#include "state/Multicast.h"

#include "pelo/NoThrow.h"
#include "qor/TypeData.h"

namespace VpAgent {

using namespace VornicL3;

namespace {

std::string_view fieldName(Qor::TypeData const& type, Pelo::FieldId field) {
    return type.fieldByNumber(field)->name;
}

/// Only samples are ever installed.
std::string const* nameOf(Pelo::Ptr<L3McastGroupApi> const& api) {
    return api ? &static_cast<SampleGroupApi const&>(*api).name() : nullptr;
}

McastValue valueOf(Interface::IntfSet const* intfs) {
    return intfs == nullptr ? McastValue() : *intfs;
}

McastValue valueOf(Pelo::Ptr<L3McastGroupApi> const& api) {
    return api ? McastValue(*nameOf(api)) : McastValue();
}

} // namespace

Multicast::~Multicast() { silent_ = true; }

void Multicast::create() {
    auto const holder = l3McastGroupApiHolderFactory("holder");
    auto const higig = nonUcastHigigIntfsFactory("higig");
    auto const backplane = bumAllowedBackplaneIntfFactory("backplane");
    ipmc_ = l3IpmcLocalDbFactory(backplane, higig);
    higig->publisher()->subscriberAdd(&higigWatch_, false);
    backplane->publisher()->subscriberAdd(&backplaneWatch_, false);
    holder->publisher()->subscriberAdd(&holderWatch_, false);
    backplane_ = backplane;
    higig_ = higig;
    holder_ = holder;
}

void Multicast::destroy() {
    ipmc_ = nullptr;
    backplane_ = nullptr;
    higig_ = nullptr;
    holder_ = nullptr;
}

void Multicast::install(std::string_view name) {
    std::string const* const present = installed();
    Pelo::Ptr<L3McastGroupApi> api = holder_->l3McastGroupApi();
    if (present == nullptr || *present != name) {
        api =
            Pelo::newNode<SampleGroupApi>(name, [this](McastEvent const& event) { report(event); });
    }
    holder_->l3McastGroupApiIs(api);
}

std::string const* Multicast::installed() const noexcept {
    return nameOf(holder_->l3McastGroupApi());
}

void Multicast::higigChanged(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                             void const* key, void const* former) noexcept {
    auto& self = subscriber->owner<Multicast>();
    auto const fapId = *static_cast<Devbus::FapId const*>(key);
    auto const* const member = self.higig_->higigIntfs().lookupNode(fapId);
    Pelo::runNoThrow([&] {
        self.report(McastChange{NonUcastHigigIntfs::path(), field,
                                fieldName(NonUcastHigigIntfs::typeTable(), field), fapId,
                                valueOf(static_cast<Interface::IntfSet const*>(former)),
                                valueOf(member == nullptr ? nullptr : &member->value())});
    });
}

void Multicast::backplaneChanged(Pelo::Publisher*, Pelo::Subscriber* subscriber,
                                 Pelo::FieldId field, void const*, void const* former) noexcept {
    auto& self = subscriber->owner<Multicast>();
    Pelo::runNoThrow([&] {
        self.report(McastChange{BumAllowedBackplaneIntf::path(), field,
                                fieldName(BumAllowedBackplaneIntf::typeTable(), field),
                                std::nullopt,
                                valueOf(static_cast<Interface::IntfSet const*>(former)),
                                valueOf(&self.backplane_->intfs())});
    });
}

void Multicast::holderChanged(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                              void const*, void const* former) noexcept {
    auto& self = subscriber->owner<Multicast>();
    Pelo::runNoThrow([&] {
        self.report(McastChange{L3McastGroupApiHolder::sharedEntityName(), field,
                                fieldName(L3McastGroupApiHolder::typeTable(), field), std::nullopt,
                                valueOf(*static_cast<Pelo::Ptr<L3McastGroupApi> const*>(former)),
                                valueOf(self.holder_->l3McastGroupApi())});
    });
}

void Multicast::report(McastEvent const& event) {
    if (!silent_) {
        ++eventCount_;
        reporter_.multicast(event);
    }
}

} // namespace VpAgent
