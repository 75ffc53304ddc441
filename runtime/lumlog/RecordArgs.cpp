#include "lumlog/RecordArgs.h"

#include <algorithm>

namespace Lumlog::Internal {

MsgDescriptor const* described(RingBuffer& ring, MsgDescriptor& site, char const* format,
                               std::span<Qor::Words const> words) noexcept {
    MsgDescriptor const& message = site.withWords(format, words);
    if (!ring.takes(message)) {
        return nullptr;
    }
    if (!ring.knows(message)) {
        ring.describe(message);
    }
    return &message;
}

void cutTexts(std::span<std::string_view> texts, std::size_t excess) noexcept {
    for (std::size_t left = texts.size(); left > 0; --left) {
        std::string_view& text = texts[left - 1];
        std::size_t const cut = std::min(excess, text.size());
        text.remove_suffix(cut);
        excess -= cut;
    }
}

} // namespace Lumlog::Internal
