#include "lumlog/MsgDescriptor.h"

#include <algorithm>

namespace Lumlog {

MsgDescriptor& MsgDescriptor::withWords(char const* format, std::span<Qor::Words const> words) {
    MsgDescriptor* wording = this;
    while (wording->msgId_ >= 0 && !std::ranges::equal(wording->words(), words)) {
        if (wording->next_ == nullptr) {
            wording->next_ = new MsgDescriptor(unit_, line_, level_);
        }
        wording = wording->next_;
    }
    if (wording->msgId_ < 0) {
        wording->assign(format, words);
    }
    return *wording;
}

void MsgDescriptor::assign(char const* format, std::span<Qor::Words const> words) {
    static U32 assigned = 0;
    QOR_ASSERT(assigned < maxMessages);
    QOR_ASSERT(words.size() <= maxWords);
    format_ = format;
    std::ranges::copy(words, words_.begin());
    wordCount_ = static_cast<U32>(words.size());
    msgId_ = static_cast<int>(assigned++);
}

} // namespace Lumlog
