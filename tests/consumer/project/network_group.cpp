// The network-group unit.

#include "VornicL3Shared/VornicNetworkGroup.h"
#include "qor/Exceptions.h"
#include "shows.h"

#include <iostream>

namespace Consumer {

void showNetworkGroup() {
    using namespace VornicCentral;
    std::cout << "network group\n  " << VpNetworkGroupInstance("mlagVpNetworkGroup") << '\n';
    std::cout << "  "
              << (Qor::EnumType<U32>::findType("VornicCentral::VpNetworkGroup") ==
                          &vpNetworkGroupType()
                      ? "found by its name\n"
                      : "not found\n");
    try {
        VpNetworkGroupInstance(U32{9});
    } catch (Qor::UnknownNameException const& unknown) {
        std::cout << "  " << unknown.what() << '\n';
    }
}

} // namespace Consumer
