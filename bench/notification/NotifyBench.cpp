// A publication of an entity, beside calls of the same functions without a publisher.

#include "notification/NotifyCase.h"
#include "pelo/Publisher.h"

#include <memory>
#include <vector>

namespace {

using Bench::Reactor;

void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field, void const* key,
              void const* value) noexcept {
    subscriber->owner<Reactor>().changed(field, key, value);
}

class PublisherNotifier {
public:
    explicit PublisherNotifier(std::vector<Reactor>& reactors) {
        for (Reactor& reactor : reactors) {
            subscribers_.push_back(std::make_unique<Pelo::Subscriber>(&reactor, &dispatch));
            publisher_.subscriberAdd(subscribers_.back().get(), false);
        }
    }

    /// As `Qor::Entity` publishes the change of a key.
    void notify(Pelo::FieldId field, U32 const* key, void const* value) {
        publisher_.publishChangeRecursive(field, key, value, &Pelo::keysEqual<U32>);
    }

private:
    Pelo::Publisher publisher_;
    std::vector<std::unique_ptr<Pelo::Subscriber>> subscribers_;
};

/// Calls the same function with the same arguments, through a pointer of which the compiler does
/// not know where it leads, so that the call is neither inlined nor stripped of an argument.
class DirectCall {
public:
    explicit DirectCall(std::vector<Reactor>& reactors) {
        for (Reactor& reactor : reactors) {
            subscribers_.push_back(std::make_unique<Pelo::Subscriber>(&reactor, &dispatch));
        }
    }

    void notify(Pelo::FieldId field, U32 const* key, void const* value) {
        for (auto const& subscriber : subscribers_) {
            call_(nullptr, subscriber.get(), field, key, value);
        }
    }

private:
    Pelo::Subscriber::Dispatch call_ = &dispatch;
    std::vector<std::unique_ptr<Pelo::Subscriber>> subscribers_;
};

[[maybe_unused]] bool const added = [] {
    Bench::addNotifyCases<PublisherNotifier>("ours");
    Bench::addNotifyCases<DirectCall>("directCall");
    return true;
}();

} // namespace
