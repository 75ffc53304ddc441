#include "VornicL3Shared/model/Generator.h"

#include <gtest/gtest.h>

#include <set>

/// What the random sequences reach, by the model alone: each operation, and each assertion that can
/// stop the library.
namespace ModelTest {
namespace {

/// Carries a sequence out and collects, step by step, what comes up.
class Reach {
public:
    explicit Reach(Sequence const& sequence) : model_(false) {
        model_.journal().mutedIs(true);
        for (Operation const& step : sequence.steps) {
            if (model_.applies(step)) {
                verbs.insert(step.verb);
                survive([&] { model_.apply(step); });
            }
            if (model_.running()) {
                survive([&] { model_.verify(); });
            }
        }
    }

    std::set<Verb> verbs;
    std::set<std::string> stops;

private:
    template <class Call> void survive(Call&& call) {
        State const before = model_.state();
        try {
            call();
        } catch (Refused const&) { // what was done before it stays
        } catch (Stop const& stop) {
            stops.insert(stop.text);
            model_.stateIs(before);
        } catch (Terminated const&) {
            stops.insert("terminated");
            model_.stateIs(before);
        }
    }

    Model model_;
};

template <class T> void takeOut(std::set<T>& missing, std::set<T> const& found) {
    for (T const& each : found) {
        missing.erase(each);
    }
}

constexpr U64 mostSequences = 3000;

TEST(ModelReach, EveryOperationComesUp) {
    std::set<Verb> missing = {
#define MODEL_TEST_VERB(verb, line) Verb::verb,
        MODEL_TEST_VERBS(MODEL_TEST_VERB)
#undef MODEL_TEST_VERB
    };
    for (U64 seed = 0; seed < mostSequences && !missing.empty(); ++seed) {
        takeOut(missing, Reach(generated(hostileRecords(), seed, 100)).verbs);
    }
    std::string text;
    for (Verb const verb : missing) {
        Operation operation;
        operation.verb = verb;
        text += textOf(operation) + "\n";
    }
    EXPECT_EQ(text, "");
}

/// All assertions but "vpIndexStatus() != nullptr" and "vpBitmap_ != nullptr": no operation of the
/// model makes an allocator without status, or leaves a machine without a pool.
TEST(ModelReach, EveryStopComesUp) {
    std::set<std::string> missing = {"!vpBitmap()->isBitSet( vpIndex )",
                                     "vpIndexStatusDir()->vpIndexStatusHas( name )",
                                     "vpIndex <= vpIndexStatus()->vpTableSize()",
                                     "vpIndex >= maxSystemSourceVp_",
                                     "vpIndex != Bask::HBitmap::null()",
                                     "!!vpIndexConfig",
                                     "!!vpIndexStatus",
                                     "vpIndexConfig-> vlanVportHas( vlanIter.key() )",
                                     "vpIndexConfig-> remoteVportHas( remoteIter.key() )",
                                     "vpIndexConfig-> mlagRemoteVportHas( remoteIter.key() )",
                                     "vpIndexConfig-> edgeVportHas( edgeIter.key() )",
                                     "vpIndexConfig-> eFilterDisableVportHas( eFDisIter.key() )",
                                     "vpIndexAllocatorDirSm()->vpBitmap()->isBitSet( vpIndex )",
                                     "reference.referenceHas( name() )",
                                     "reference.vPort() == vPort",
                                     "( numVps + maxSystemSourceVp_ ) == "
                                     "vpBitmap()->numBitsInSetState()",
                                     "reference.references()",
                                     "terminated"};
    for (char const* const collection :
         {"remoteVport", "mlagRemoteVport", "edgeVport", "vlanVport", "eFilterDisableVport"}) {
        std::string const name = collection;
        char const* const key = name == "edgeVport"             ? "pvKey"
                                : name == "vlanVport"           ? "vlan"
                                : name == "eFilterDisableVport" ? "intf"
                                                                : "remoteVtepKey";
        for (char const* const record : {"vpIndexStatus()", "vpIndexConfig()", "vpReference()"}) {
            missing.insert(std::string(record) + "->" + name + "Has( " + key + " )");
        }
        missing.insert("vPort == vpIndexStatus->" + name + "( " + key + " )");
    }
    std::size_t const all = missing.size();
    for (U64 seed = 0; seed < mostSequences && !missing.empty(); ++seed) {
        takeOut(missing, Reach(generated(hostileRecords(), seed, 100)).stops);
    }
    EXPECT_EQ(missing, std::set<std::string>()) << "of " << all;
}

} // namespace
} // namespace ModelTest
