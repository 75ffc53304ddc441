// A target that fails when its corpus is changed in one place, to show that a failing one is
// noticed and its input kept.

#include "common/Input.h"

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    std::string_view const text = Fuzz::Input(data, size).rest();
    Fuzz::expect(!text.starts_with("canary") || text.substr(6, 6) == " lives",
                 "the canary is dead");
    return 0;
}
