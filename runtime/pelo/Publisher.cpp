#include "pelo/Publisher.h"

#include "qor/Assert.h"

#include <algorithm>

namespace Pelo {

/// One publication under way, on the stack of its `notify`.
struct Publisher::Walk {
    Walk* outer;
    std::size_t addedInFront; ///< by how much the subscribers of this change have moved up since
    bool publisherGone;
};

Subscriber::~Subscriber() {
    if (publisher_ != nullptr) {
        publisher_->subscriberRemove(this);
    }
}

Publisher::~Publisher() {
    for (Subscriber* const subscriber : subscribers_) {
        if (subscriber != nullptr) {
            subscriber->publisher_ = nullptr;
        }
    }
    for (Walk* walk = walks_; walk != nullptr; walk = walk->outer) {
        walk->publisherGone = true;
    }
}

void Publisher::subscriberAdd(Subscriber* subscriber, bool atFront) {
    if (subscriber->publisher_ == this) {
        return;
    }
    if (atFront) {
        subscribers_.insert(subscribers_.begin(), subscriber);
        for (Walk* walk = walks_; walk != nullptr; walk = walk->outer) {
            ++walk->addedInFront;
        }
    } else {
        subscribers_.push_back(subscriber);
    }
    if (subscriber->publisher_ != nullptr) {
        subscriber->publisher_->subscriberRemove(subscriber);
    }
    subscriber->publisher_ = this;
    ++count_;
}

void Publisher::subscriberRemove(Subscriber* subscriber) noexcept {
    if (subscriber->publisher_ != this) {
        return;
    }
    *std::find(subscribers_.begin(), subscribers_.end(), subscriber) = nullptr;
    subscriber->publisher_ = nullptr;
    --count_;
    if (walks_ == nullptr) {
        sweep();
    }
}

void Publisher::notify(FieldId field, void const* key, void const* value) {
    QOR_ASSERT(!Stack::low());
    Walk walk{walks_, 0, false};
    walks_ = &walk;
    std::size_t const count = subscribers_.size();
    for (std::size_t at = 0; at < count; ++at) {
        Subscriber* const subscriber = subscribers_[at + walk.addedInFront];
        if (subscriber == nullptr) {
            continue;
        }
        subscriber->dispatch_(this, subscriber, field, key, value);
        if (walk.publisherGone) {
            return;
        }
    }
    walks_ = walk.outer;
    if (walks_ == nullptr && count_ != subscribers_.size()) {
        sweep();
    }
}

void Publisher::sweep() noexcept { std::erase(subscribers_, nullptr); }

} // namespace Pelo
