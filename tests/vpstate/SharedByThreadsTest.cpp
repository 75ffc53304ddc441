// Values and entities that several threads copy, read and let go of, while the thread-control flag
// says so: every type whose copies share something counted.

#include "interface/IntfSet.h"
#include "pelo/Ptr.h"
#include "pelo/Slab.h"
#include "support/MultiThreaded.h"
#include "vpstate/PortVlanKey.h"
#include "vpstate/RemoteVtepKey.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpNames.h"
#include "vpstate/VpReference.h"
#include "vxlan/SwTunnelGroupId.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

using VornicCentral::VpNames;
using VornicCentral::VpReference;

constexpr U32 threads = 4;

/// An entity that counts how often it is destroyed.
class Counted final : public Pelo::Node, public Pelo::SlabAllocated<Counted> {
public:
    explicit Counted(std::string text) : text_(std::move(text)) {}
    std::string const& text() const { return text_; }
    static inline std::atomic<U32> destroyed = 0;

private:
    ~Counted() override { ++destroyed; }
    std::string text_;
};

template <U32 count> VpNames names() {
    VpNames result;
    for (U32 number = 0; number < count; ++number) {
        result.add(Pelo::String("client" + std::to_string(number)));
    }
    return result;
}

template <class T> struct Sample;
template <> struct Sample<Pelo::Ptr<Counted>> {
    static auto make() { return Pelo::newNode<Counted>("counted"); }
    static std::string text(Pelo::Ptr<Counted> const& value) { return value->text(); }
};
template <> struct Sample<Pelo::Ptr<VornicCentral::VpIndexConfig const>> {
    static Pelo::Ptr<VornicCentral::VpIndexConfig const> make() {
        auto config = VornicCentral::vpIndexConfigFactory("bgp");
        config->eFilterDisableVportIs(Netzo::IntfId("Ethernet7"), true);
        return config;
    }
    static std::string text(Pelo::Ptr<VornicCentral::VpIndexConfig const> const& value) {
        return value->name().data() + std::to_string(value->memberCount());
    }
};
template <> struct Sample<Pelo::String> {
    static Pelo::String make() { return "a text that is shared"; }
    static std::string text(Pelo::String const& value) {
        return value.data() + std::to_string(value.hash());
    }
};
template <> struct Sample<VpNames> {
    static VpNames make() { return names<20>(); }
    static std::string text(VpNames const& value) { return value.stringValue(); }
};
template <> struct Sample<VpReference> {
    static VpReference make() {
        VpReference reference{VornicCentral::VirtualPort(12)};
        for (Pelo::String const& name : names<3>()) {
            reference.referenceIs(name, true);
        }
        return reference;
    }
    static std::string text(VpReference const& value) { return value.references().stringValue(); }
};
template <> struct Sample<Interface::IntfSet> {
    static Interface::IntfSet make() {
        return {Netzo::IntfId("Ethernet1"), Netzo::IntfId("Ethernet9")};
    }
    static std::string text(Interface::IntfSet const& value) { return value.stringValue(); }
};
template <class T> struct Parsed {
    static std::string text(T const& value) { return value.stringValue(); }
};
template <> struct Sample<Netzo::IntfId> : Parsed<Netzo::IntfId> {
    static Netzo::IntfId make() { return Netzo::IntfId("Ethernet3/1"); }
};
template <> struct Sample<Vxlan::SwTunnelGroupId> : Parsed<Vxlan::SwTunnelGroupId> {
    static Vxlan::SwTunnelGroupId make() { return Vxlan::SwTunnelGroupId(77); }
};
template <> struct Sample<VornicCentral::PortVlanKey> : Parsed<VornicCentral::PortVlanKey> {
    static VornicCentral::PortVlanKey make() {
        return *VornicCentral::PortVlanKey::parse("Ethernet3/1:100");
    }
};
template <> struct Sample<VornicCentral::RemoteVtepKey> : Parsed<VornicCentral::RemoteVtepKey> {
    static VornicCentral::RemoteVtepKey make() {
        return *VornicCentral::RemoteVtepKey::parse("10.0.0.2@17");
    }
};

/// Each thread copies the value about, compares what the copies say, and lets go of all of them;
/// the first owner has let go before. Gives how often a copy said something else.
template <class T> U32 hammer(U32 copies) {
    std::string const expected = Sample<T>::text(Sample<T>::make());
    std::atomic<U32> wrong = 0;
    std::vector<std::thread> running;
    std::latch start(threads);
    {
        T const value = Sample<T>::make();
        for (U32 thread = 0; thread < threads; ++thread) {
            running.emplace_back([&, own = value]() mutable {
                std::array<T, 4> held{own, own, own, own};
                start.arrive_and_wait();
                for (U32 copy = 0; copy < copies; ++copy) {
                    held[copy % 4] = held[(copy + 1) % 4];
                    own = T(held[copy % 4]);
                    wrong += Sample<T>::text(own) == expected ? 0 : 1;
                }
            });
        }
    }
    for (std::thread& thread : running) {
        thread.join();
    }
    return wrong;
}

template <class T> class SharedByThreads : public testing::Test {};
using Shared =
    testing::Types<Pelo::Ptr<Counted>, Pelo::Ptr<VornicCentral::VpIndexConfig const>, Pelo::String,
                   VpNames, VpReference, Interface::IntfSet, Netzo::IntfId, Vxlan::SwTunnelGroupId,
                   VornicCentral::PortVlanKey, VornicCentral::RemoteVtepKey>;
TYPED_TEST_SUITE(SharedByThreads, Shared);

TYPED_TEST(SharedByThreads, IsTheSameForAllOfThem) {
    Support::MultiThreaded const on;
    EXPECT_EQ(hammer<TypeParam>(2000), 0u);
}

/// Threads let go at the same time, so that any of them may be the last one.
TYPED_TEST(SharedByThreads, GoesWithWhoeverIsTheLast) {
    Support::MultiThreaded const on;
    for (U32 round = 0; round < 100; ++round) {
        EXPECT_EQ(hammer<TypeParam>(2), 0u);
    }
}

TEST(SharedEntity, IsDestroyedOnce) {
    Support::MultiThreaded const on;
    U64 const live = Counted::allocationTracker().live();
    U32 const destroyed = Counted::destroyed;
    for (U32 round = 0; round < 200; ++round) {
        hammer<Pelo::Ptr<Counted>>(1);
    }
    EXPECT_EQ(Counted::destroyed - destroyed, 2u * 200); // `hammer` makes one to read its text
    EXPECT_EQ(Counted::allocationTracker().live(), live);
}

/// Without other threads the flag may be off: the same counts, by plain arithmetic.
TEST(SharedEntity, IsCountedAlikeWithTheFlagOffAndWhenItIsSwitched) {
    auto const entity = Pelo::newNode<Counted>("counted");
    std::vector<Pelo::Ptr<Counted>> held;
    for (bool const on : {false, true, false}) {
        Pelo::ThreadControl::multiThreadedIs(on);
        for (U32 copy = 0; copy < 1000; ++copy) {
            held.push_back(entity);
        }
        held.resize(held.size() - 500);
    }
    EXPECT_EQ(entity->useCount(), 1501u);
    held.clear();
    EXPECT_EQ(entity->useCount(), 1u);
}

} // namespace
