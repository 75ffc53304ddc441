#include "pelo/Publisher.h"

#include <algorithm>

namespace Pelo {

/// One publication under way, on the stack of its `notify`.
struct Publisher::Walk {
    Walk* outer;
    std::size_t next;  ///< position of the subscriber to call next
    std::size_t bound; ///< position past the last subscriber of this change
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
            ++walk->next;
            ++walk->bound;
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
    Walk walk{walks_, 0, subscribers_.size(), false};
    walks_ = &walk;
    while (walk.next < walk.bound) {
        Subscriber* const subscriber = subscribers_[walk.next++];
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
