// Uses the lowest floor alone.

#include "bask/Bitmap.h"
#include "pelo/String.h"
#include "qor/TypeModule.h"

#include <iostream>

int main() {
    Pelo::String const name("runtime");
    std::cout << name << ", " << Qor::TypeModule::all().size() << " module:";
    for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
        std::cout << ' ' << module->name();
    }
    std::cout << '\n';
}
