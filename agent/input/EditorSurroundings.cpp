#include "input/EditorSurroundings.h"

#include "Limits.h"
#include "text/Utf8.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

namespace VpAgent {

namespace {

constexpr char const* settingsName = "EDITRC";

/// Rows or columns. For a terminal that does not know how many it has, the system's library asks
/// the environment, and then the terminal's type, which hardly ever has more than `usual`.
U64 extent(unsigned short told, char const* variable, U64 usual) {
    if (told != 0) {
        return told;
    }
    char const* const text = std::getenv(variable);
    if (text == nullptr || *text == '\0') {
        return usual;
    }
    char* end = nullptr;
    long const number = std::strtol(text, &end, 0); // as the library reads it
    return *end == '\0' && number > 0 ? static_cast<U64>(number) : usual;
}

/// Where the line editor looks for its settings; empty when nowhere.
std::string settingsPath() {
    if (char const* const path = std::getenv(settingsName)) {
        return path;
    }
    char const* const home = std::getenv("HOME");
    return home == nullptr ? std::string() : std::string(home) + "/.editrc";
}

} // namespace

bool hasUsualScreen() {
    winsize size{};
    if (::ioctl(STDIN_FILENO, TIOCGWINSZ, &size) != 0) {
        size = {};
    }
    U64 const rows = extent(size.ws_row, "LINES", 24);
    U64 const columns = extent(size.ws_col, "COLUMNS", 80);
    return rows <= Limits::terminal && columns <= Limits::terminal / rows;
}

bool hasUsualType() {
    char const* const type = std::getenv("TERM");
    std::string_view const name = type == nullptr ? "" : type;
    return name.size() <= NAME_MAX && plainEnd(name, 0) == name.size();
}

void leaveOutUnusualSettings() {
    struct stat about {};
    bool const there = ::stat(settingsPath().c_str(), &about) == 0;
    if (there && (!S_ISREG(about.st_mode) || about.st_size > Limits::editorSettings)) {
        ::setenv(settingsName, "", 1);
    }
}

} // namespace VpAgent
