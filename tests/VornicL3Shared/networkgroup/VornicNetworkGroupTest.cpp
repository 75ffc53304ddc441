#include "VornicL3Shared/VornicNetworkGroup.h"

#include "qor/Exceptions.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string_view>
#include <utility>

namespace {

using VornicCentral::VpNetworkGroup;
using VornicCentral::VpNetworkGroupInstance;

constexpr std::pair<U32, std::string_view> groups[] = {
    {0, "invalidVpNetworkGroup"},    {1, "remoteVpNetworkGroup"},
    {2, "peerlinkVpNetworkGroup"},   {3, "accessPointNetworkGroup"},
    {4, "mlagVpNetworkGroup"},       {5, "vxlanHostArpNdpNetworkGroup"},
    {6, "v6MlagPeerVpNetworkGroup"}, {7, "isolatedPortNetworkGroup"},
};

TEST(VpNetworkGroup, HasNameAndNumberForAllEight) {
    for (auto const& group : groups) {
        auto const expected = static_cast<VpNetworkGroup>(group.first);
        EXPECT_EQ(VpNetworkGroupInstance(group.first), expected);
        EXPECT_EQ(VpNetworkGroupInstance(group.second), expected);
        EXPECT_EQ(stringValue(expected), group.second);
        std::ostringstream out;
        out << expected;
        EXPECT_EQ(out.str(), group.second);
    }
    EXPECT_EQ(VornicCentral::vpNetworkGroupType().enumerators().size(), std::size(groups));
    EXPECT_EQ(static_cast<U32>(VpNetworkGroup::v6MlagPeerVpNetworkGroup), 6u);
}

TEST(VpNetworkGroup, RefusesUnknownNumbersAndNames) {
    EXPECT_THROW(VpNetworkGroupInstance(8), Qor::UnknownNameException);
    EXPECT_THROW(VpNetworkGroupInstance("remoteVpNetwork"), Qor::UnknownNameException);
    EXPECT_THROW(VpNetworkGroupInstance(""), Qor::UnknownNameException);
    EXPECT_EQ(stringValue(static_cast<VpNetworkGroup>(8)), "VornicCentral::VpNetworkGroup(8)");
}

TEST(VpNetworkGroup, IsReadFromTheBeginningOfAText) {
    for (auto const& group : groups) {
        for (std::string_view const rest : {"", " x", ",", "\n"}) {
            std::string const text = std::string(group.second).append(rest);
            VpNetworkGroup read{99};
            EXPECT_EQ(sequenceToValue(text.data(), text.data() + text.size(), read),
                      group.second.size());
            EXPECT_EQ(read, static_cast<VpNetworkGroup>(group.first));
        }
    }
}

TEST(VpNetworkGroup, StaysAsItIsWhereNoNameStands) {
    for (std::string_view const text :
         {"", " mlagVpNetworkGroup", "mlagVpNetworkGroup2", "mlagVp", "4"}) {
        VpNetworkGroup read = VpNetworkGroup::peerlinkVpNetworkGroup;
        EXPECT_EQ(sequenceToValue(text.data(), text.data() + text.size(), read), 0u) << text;
        EXPECT_EQ(read, VpNetworkGroup::peerlinkVpNetworkGroup);
    }
}

TEST(VpNetworkGroup, IsRegisteredWhenTheLibraryIsLoaded) {
    EXPECT_EQ(Qor::EnumType<U32>::findType("VornicCentral::VpNetworkGroup"),
              &VornicCentral::vpNetworkGroupType());
}

} // namespace
