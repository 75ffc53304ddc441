#pragma once

#include "bridging/VlanId.h"
#include "pelo/Ptr.h"
#include "pelo/Slab.h"
#include "qor/Entity.h"
#include "qor/HashMap2018.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Cooling {

/// A node without name and without a table.
class Blade final : public Pelo::Node {};

/// An abstract type: it can be called, but not built.
class Sensor : public Pelo::Node {
public:
    virtual U32 probe(bool deep) = 0;

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

/// An entity with a field of every kind.
class Fan final : public Qor::Entity, public Pelo::SlabAllocated<Fan> {
public:
    using Alarms = Qor::HashMap2018<Pelo::String, U16>;
    using Blades = Qor::HashMap2018<U16, Pelo::Ptr<Blade>>;

    static constexpr char const* path = "cooling/fan";
    static constexpr U16 numberOfBlades = 2;

    Fan(Pelo::String const& name, U16 slot, Fan const* neighbour);
    static Pelo::Ptr<Fan> FanIs(Pelo::String const& name, U16 slot, Fan const* neighbour);

    U16 slot() const { return slot_; }
    Fan const* neighbour() const { return neighbour_; }

    U32 speed() const { return speed_; }
    void speedIs(U32 speed);

    Alarms const& alarm() const { return alarm_; }
    U16 alarm(Pelo::String const& sensor) const;
    void alarmIs(Pelo::String const& sensor, U16 level);
    U16 alarmDel(Pelo::String const& sensor);
    void alarmDelAll() { alarm_.memberDelAll(); }

    Blades const& blade() const { return blade_; }
    Pelo::Ptr<Blade> const& owner() const { return owner_; }
    void ownerIs(Pelo::Ptr<Blade> const& owner) { owner_ = owner; }

    Pelo::Ptr<Fan> const& motor() const { return motor_; }
    Pelo::Ptr<Fan> motorIs(Pelo::String const& name, U16 slot);
    Pelo::Ptr<Fan> motorDel() { return std::exchange(motor_, nullptr); }

    U32 selfTest(U16 seconds, bool thorough);
    bool serves(Bridging::VlanId vlan) const { return vlan.value() == slot_; }
    bool isFasterThan(Pelo::Ptr<Fan const> const& other) const { return speed_ > other->speed(); }
    void handleAlarm() { calls.push_back("handleAlarm()"); }
    void handleAlarm(Pelo::String const& sensor) {
        calls.push_back("handleAlarm " + std::string(sensor));
    }
    void jam() { throw std::runtime_error("jammed"); }

    std::vector<std::string> calls;

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    U16 slot_;
    Fan const* neighbour_;
    U32 speed_ = 0;
    Alarms alarm_;
    Blades blade_;
    Pelo::Ptr<Blade> owner_;
    Pelo::Ptr<Fan> motor_;
};

} // namespace Cooling
