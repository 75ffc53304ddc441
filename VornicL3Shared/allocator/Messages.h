#pragma once

#include "qor/Log.h"

#include <cstdio>
#include <string>

namespace VornicCentral {

/// Both messages are built when the library is loaded; nothing is suppressed.
Qor::LogHandle& resourceNormalLog(); ///< a waiting virtual port has been given an index
Qor::LogHandle& resourceFullLog();   ///< a virtual port was requested and the table is full

/// How a log message names a virtual port: formatted text, cut to what a buffer of 128 bytes holds.
class VportText {
public:
    template <class... Args> explicit VportText(char const* format, Args... args) {
        std::snprintf(text_, sizeof(text_), format, args...);
    }
    char const* text() const noexcept { return text_; }

private:
    char text_[128];
};

} // namespace VornicCentral
