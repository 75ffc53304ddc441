#pragma once

#include "VornicL3Shared/model/Universe.h"

namespace ModelTest {

/// The words of a kind in the traces and messages of an allocator.
struct HandlerWords {
    char const* handler;  ///< the operation that handles one key, and that sweeps all
    char const* label;    ///< before the key
    char const* tag = ""; ///< of the MLAG kind
    char const* allocating = "";
};

HandlerWords const& handlerWords(Kind kind);

/// What a message calls the virtual port when the table is full.
std::string fullText(Kind kind, Key key);
/// What a message calls the virtual port when it takes an index at last.
std::string normalText(Kind kind, Key key);

} // namespace ModelTest
