// A signal of Boost.Signals2 with a slot a reactor, with the mutex that its documentation has for
// programs of one thread.

#include "notification/NotifyCase.h"

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal.hpp>
#include <boost/signals2/signal_type.hpp>

#include <vector>

namespace {

using Bench::Reactor;

class BoostSignal {
public:
    explicit BoostSignal(std::vector<Reactor>& reactors) {
        for (Reactor& reactor : reactors) {
            signal_.connect([&reactor](Pelo::FieldId field, void const* key, void const* value) {
                reactor.changed(field, key, value);
            });
        }
    }

    void notify(Pelo::FieldId field, U32 const* key, void const* value) {
        signal_(field, key, value);
    }

private:
    using Signature = void(Pelo::FieldId, void const*, void const*);
    using Signal = boost::signals2::signal_type<
        Signature, boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>::type;

    Signal signal_;
};

[[maybe_unused]] bool const added = [] {
    Bench::addNotifyCases<BoostSignal>("boost::signals2");
    return true;
}();

} // namespace
