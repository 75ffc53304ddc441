// A type of this program's own, registered beside those of the libraries.

#include "pelo/Slab.h"
#include "qor/Entity.h"
#include "qor/Inspection.h"
#include "qor/TypeBuilder.h"
#include "qor/TypeModule.h"
#include "shows.h"

#include <iostream>

namespace Cooling {
namespace {

class Fan final : public Qor::Entity, public Pelo::SlabAllocated<Fan> {
public:
    explicit Fan(Pelo::String const& name) : Entity(name) {}
    static Pelo::Ptr<Fan> FanIs(Pelo::String const& name) { return Pelo::newNode<Fan>(name); }

    U32 speed() const noexcept { return speed_; }
    void speedIs(U32 speed) {
        if (speed_ != speed) {
            speed_ = speed;
            publishAttribute(258, &speed_);
        }
    }

    static Qor::TypeData const& typeTable() {
        static Qor::TypeData const table = Qor::TypeBuilder<Fan>("Cooling::Fan")
                                               .doc("a fan of the tray")
                                               .constructor(&Fan::FanIs, {"name"})
                                               .attribute(258, "speed", &Fan::speed)
                                               .set(&Fan::speedIs)
                                               .build();
        return table;
    }
    Qor::TypeData const* typeData() const override { return &typeTable(); }

private:
    U32 speed_ = 0;
};

Qor::TypeModule const module("Cooling", {&Fan::typeTable()});

} // namespace
} // namespace Cooling

namespace Consumer {

void showOwnTypes() {
    std::cout << "modules\n";
    for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
        std::cout << "  " << module->name() << ':';
        for (Qor::TypeData const* const type : module->types()) {
            std::cout << ' ' << type->unqualifiedName();
        }
        std::cout << '\n';
    }
    auto const fan = Qor::genericIfConstructFromCtorArgs(
        Qor::TypeData::get("Fan"), {Qor::GenericValue::of(Pelo::String("front"))});
    Qor::inspectOperation(*fan, 258, Qor::OpCode::set, {Qor::GenericValue::of(U32{7000})});
    std::cout << "  " << *fan->typeData() << "  speed "
              << Qor::inspectOperation(*fan, 258, Qor::OpCode::get) << ", "
              << Cooling::Fan::allocationTracker().live() << " live\n";
}

} // namespace Consumer
