// A program that is linked to none of the libraries and knows none of their headers. It finds the
// library by its SONAME along the program's RUNPATH, and the library finds those that it needs
// along its own.

#include "library.h"

#include <string_view>

int main() {
    // Qor::TypeModule::find; a symbol is looked up in a library and in those that it needs.
    char const* const name = "_ZN3Qor10TypeModule4findESt17basic_string_viewIcSt11char_traitsIcEE";
    for (char const* const soname :
         {"libvornic_runtime.so.1", "libvornic_vpstate.so.1", "libVornicL3Shared.so.1"}) {
        auto const find = function<void const*(std::string_view)>(load(soname), name);
        std::cout << soname << ':';
        for (char const* const module : {"Bask", "vpstate", "VornicL3VpIndexAllocator"}) {
            std::cout << ' ' << module << (find(module) == nullptr ? " no" : " yes");
        }
        std::cout << '\n';
    }
}
