// A signal of libsigc++ with a slot a reactor.

#include "notification/NotifyCase.h"

#include <sigc++/functors/mem_fun.h>
#include <sigc++/signal.h>

#include <vector>

namespace {

using Bench::Reactor;

class SigcSignal {
public:
    explicit SigcSignal(std::vector<Reactor>& reactors) {
        for (Reactor& reactor : reactors) {
            signal_.connect(sigc::mem_fun(reactor, &Reactor::changed));
        }
    }

    void notify(Pelo::FieldId field, U32 const* key, void const* value) {
        signal_.emit(field, key, value);
    }

private:
    sigc::signal<void(Pelo::FieldId, void const*, void const*)> signal_;
};

[[maybe_unused]] bool const added = [] {
    Bench::addNotifyCases<SigcSignal>("sigc++");
    return true;
}();

} // namespace
