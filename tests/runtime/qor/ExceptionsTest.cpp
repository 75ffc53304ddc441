#include "qor/Exceptions.h"

#include <gtest/gtest.h>

namespace {

template <class Thrown> Thrown thrownBy(void (*function)(char const*, char const*)) {
    try {
        function("vpIndexAllocatorIs", "vpIndexStatus");
    } catch (Thrown const& thrown) {
        return thrown;
    }
    throw std::logic_error("another exception was expected");
}

TEST(Exceptions, ReinstantiationNamesTypeAndAttribute) {
    auto const thrown =
        thrownBy<Qor::MutatorReinstantiatingException>(&Qor::throwMutatorReinstantiating);
    EXPECT_EQ(thrown.type(), "vpIndexAllocatorIs");
    EXPECT_EQ(thrown.attribute(), "vpIndexStatus");
    EXPECT_STREQ(thrown.what(), "vpIndexAllocatorIs: the existing object has another "
                                "vpIndexStatus, expected the one that it was built with");
}

TEST(Exceptions, NullArgumentNamesOperationAndArgument) {
    auto const thrown =
        thrownBy<Qor::MutatorArgNullPointerException>(&Qor::throwMutatorArgNullPointerException);
    EXPECT_EQ(thrown.type(), "vpIndexAllocatorIs");
    EXPECT_EQ(thrown.attribute(), "vpIndexStatus");
    EXPECT_STREQ(thrown.what(),
                 "vpIndexAllocatorIs: argument vpIndexStatus is null, expected an entity");
}

TEST(Exceptions, AreAllCaughtAsTheRuntimesException) {
    EXPECT_THROW(Qor::throwMutatorReinstantiating("Fan", "slot"), Qor::Exception);
    EXPECT_THROW(Qor::throwMutatorArgNullPointerException("fanIs", "config"), Qor::Exception);
    EXPECT_THROW(Qor::throwUnknownName("Colour", "mauve"), Qor::Exception);
}

TEST(Exceptions, UnknownNameTellsWhatWasSought) {
    try {
        Qor::throwUnknownName("Colour", "mauve");
    } catch (Qor::UnknownNameException const& thrown) {
        EXPECT_EQ(thrown.type(), "Colour");
        EXPECT_EQ(thrown.attribute(), "mauve");
        EXPECT_STREQ(thrown.what(), "there is no Colour \"mauve\"");
    }
}

} // namespace
