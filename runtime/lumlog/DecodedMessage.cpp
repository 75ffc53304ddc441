#include "lumlog/DecodedMessage.h"

#include "lumlog/Args.h"

namespace Lumlog {
namespace {

std::string_view placeOf(ArgCode code) {
    switch (code) {
    case ArgCode::boolean:
        return "{bool}";
    case ArgCode::u8:
        return "{u8}";
    case ArgCode::u16:
        return "{u16}";
    case ArgCode::u32:
        return "{u32}";
    case ArgCode::u64:
        return "{u64}";
    case ArgCode::s64:
        return "{s64}";
    case ArgCode::text:
        return "{text}";
    case ArgCode::address:
        return "{address}";
    case ArgCode::words:
        break;
    }
    return "{?}"; // a letter of no meaning, in a description that was forged
}

} // namespace

std::string DecodedMessage::wording() const {
    std::string text;
    auto word = words.begin();
    for (char const letter : format) {
        auto const code = static_cast<ArgCode>(letter);
        if (code == ArgCode::words && word != words.end()) {
            text += *word++;
        } else {
            text += placeOf(code);
        }
    }
    return text;
}

} // namespace Lumlog
