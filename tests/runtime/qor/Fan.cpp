#include "Fan.h"

#include "qor/Exceptions.h"
#include "qor/TypeBuilder.h"

namespace Cooling {

Qor::TypeData const& Sensor::typeTable() {
    static Qor::TypeData const table = Qor::TypeBuilder<Sensor>("Cooling::Sensor")
                                           .operation(130, "probe", &Sensor::probe, {"deep"})
                                           .build();
    return table;
}

Qor::TypeData const* Sensor::typeData() const { return &typeTable(); }

Fan::Fan(Pelo::String const& name, U16 slot, Fan const* neighbour)
    : Entity(name), slot_(slot), neighbour_(neighbour) {
    for (U16 i = 0; i < numberOfBlades; ++i) {
        blade_.newMember(i, Pelo::Ptr<Blade>::adopt(new Blade));
    }
}

Pelo::Ptr<Fan> Fan::FanIs(Pelo::String const& name, U16 slot, Fan const* neighbour) {
    if (name.empty()) {
        Qor::throwMutatorArgNullPointerException("FanIs", "name");
    }
    return Pelo::newNode<Fan>(name, slot, neighbour);
}

void Fan::speedIs(U32 speed) {
    if (speed_ != speed) {
        speed_ = speed;
        publishAttribute(258, &speed_);
    }
}

U16 Fan::alarm(Pelo::String const& sensor) const {
    auto const* const member = alarm_.lookupNode(sensor);
    return member == nullptr ? U16{0} : member->value();
}

void Fan::alarmIs(Pelo::String const& sensor, U16 level) {
    alarm_.newMember(sensor, level);
    publisher()->publishChangeRecursive(259, &sensor, &level, Pelo::keysEqual<Pelo::String>);
}

U16 Fan::alarmDel(Pelo::String const& sensor) {
    U16 const level = alarm_.deleteMember(sensor).value_or(U16{0});
    publisher()->publishChangeRecursive(259, &sensor, nullptr, Pelo::keysEqual<Pelo::String>);
    return level;
}

Pelo::Ptr<Fan> Fan::motorIs(Pelo::String const& name, U16 slot) {
    motor_ = FanIs(name, slot, nullptr);
    return motor_;
}

U32 Fan::selfTest(U16 seconds, bool thorough) {
    calls.push_back("selfTest");
    return seconds * (thorough ? 10u : 1u);
}

Qor::TypeData const& Fan::typeTable() {
    static Qor::TypeData const table =
        Qor::TypeBuilder<Fan>("Cooling::Fan")
            .doc("a fan of the tray")
            .constructor(&Fan::FanIs, {"name", "slot", "neighbour"})
            .attribute(Qor::nameStringField, "nameString", &Fan::nameString)
            .attribute(155, "slot", &Fan::slot)
            .attribute(156, "neighbour", &Fan::neighbour)
            .attribute(258, "speed", &Fan::speed)
            .set(&Fan::speedIs)
            .doc("turns a minute")
            .collection(259, "alarm", "sensor", &Fan::alarm)
            .set(&Fan::alarmIs)
            .del(&Fan::alarmDel)
            .delAll(&Fan::alarmDelAll)
            .collection(260, "blade", "position", &Fan::blade)
            .attribute(261, "owner", &Fan::owner)
            .set(&Fan::ownerIs)
            .constant(262, "path", path)
            .attribute(263, "isSpinning", [](Fan const& fan) { return fan.speed() != 0; })
            .operation(264, "selfTest", &Fan::selfTest, {"seconds", "thorough"})
            .operation(265, "serves", &Fan::serves, {"vlan"})
            .operation(266, "isFasterThan", &Fan::isFasterThan, {"other"})
            .operation(267, "handleAlarm",
                       Qor::overload<void(Pelo::String const&)>(&Fan::handleAlarm), {"sensor"})
            .operation(268, "jam", &Fan::jam)
            .attribute(269, "motor", &Fan::motor)
            .create(&Fan::motorIs, {"name", "slot"})
            .detach(&Fan::motorDel)
            .build();
    return table;
}

Qor::TypeData const* Fan::typeData() const { return &typeTable(); }

} // namespace Cooling
