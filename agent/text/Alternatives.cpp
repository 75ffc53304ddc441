#include "text/Alternatives.h"

namespace VpAgent {

void Alternatives::add(std::string_view word) {
    if (count_++ >= limit_) {
        return;
    }
    if (!last_.empty()) {
        text_ += text_.empty() ? last_ : ", " + last_;
    }
    last_ = word;
}

std::string Alternatives::text() const {
    std::string const listed = text_.empty() ? last_ : text_ + ", " + last_;
    if (count_ > limit_) {
        return listed + " or one of " + std::to_string(count_ - limit_) + " more";
    }
    return text_.empty() ? last_ : text_ + " or " + last_;
}

} // namespace VpAgent
