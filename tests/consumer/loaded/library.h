#pragma once

#include <dlfcn.h>

#include <cstdlib>
#include <iostream>

/// Loads a library by its SONAME, for this caller alone, with all its symbols resolved.
inline void* load(char const* soname) {
    void* const library = dlopen(soname, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::cout << dlerror() << '\n';
        std::exit(1);
    }
    return library;
}

/// A function of a library by its mangled name.
template <class Function> Function* function(void* library, char const* name) {
    void* const found = dlsym(library, name);
    if (found == nullptr) {
        std::cout << dlerror() << '\n';
        std::exit(1);
    }
    return reinterpret_cast<Function*>(found);
}
