// The pool, a notification, and traces.

#include "operations.h"

#include <bask/Bitmap.h>
#include <lumlog/RingBuffer.h>
#include <pelo/Ptr.h>
#include <pelo/Publisher.h>
#include <pelo/String.h>
#include <qor/Trace.h>

namespace Operations {

namespace {

constexpr char const* unit = "/tests/Operations";

/// The ring that traces go to while it is there; null: none.
class CurrentRing {
public:
    explicit CurrentRing(Lumlog::RingBuffer* ring) : former_(Lumlog::RingBuffer::currentIs(ring)) {}
    ~CurrentRing() { Lumlog::RingBuffer::currentIs(former_); }
    CurrentRing(CurrentRing const&) = delete;
    CurrentRing& operator=(CurrentRing const&) = delete;

private:
    Lumlog::RingBuffer* former_;
};

void add(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId, void const* key,
         void const*) noexcept {
    subscriber->owner<U32>() += *static_cast<U32 const*>(key);
}

} // namespace

/// An index is given back and the lowest one taken, in a table that is full but for one entry in a
/// thousand.
void poolChurn(U32 count) {
    constexpr U32 size = 65535;
    auto const pool = Pelo::newNode<Bask::Bitmap>(U64{0}, size, Bask::HBitmap::BitState::clear);
    for (U32 at = 0; at < size - size / 1000; ++at) {
        pool->setBit(at);
    }
    U32 const used = pool->numBitsInSetState();
    counted([&] {
        U32 freed = size / 2;
        for (U32 done = 0; done < count; ++done) {
            pool->clearBit(freed);
            U32 const index = pool->findClearBitInRange(0, size - 1, Bask::Preference::low);
            pool->setBit(index);
            keep(index);
            freed = (freed + 7919) % (size / 2);
        }
    });
    expect(pool->numBitsInSetState() == used, "the pool holds another number of indices");
}

void notification(U32 count) {
    Pelo::Publisher publisher;
    U32 sum = 0;
    Pelo::Subscriber subscriber(&sum, &add);
    publisher.subscriberAdd(&subscriber, false);
    U32 const key = 1;
    // The first of a thread measures its stack.
    publisher.publishChangeRecursive(258, &key, nullptr, &Pelo::keysEqual<U32>);
    counted([&] {
        for (U32 done = 0; done < count; ++done) {
            publisher.publishChangeRecursive(258, &key, nullptr, &Pelo::keysEqual<U32>);
        }
    });
    expect(sum == count + 1, "not every change was heard of");
}

/// Two texts and a number, recorded in a ring that has gone round before.
void ringRecord(U32 count) {
    Lumlog::RingBuffer ring(std::size_t{1} << 16);
    CurrentRing const current(&ring);
    Qor::TraceHandle traces("Operations", false);
    Pelo::String const client("bgp");
    Pelo::String const intf("Ethernet1/1");
    auto const record = [&](U32 number) {
        QOR_TRACE(traces, 5, unit, "ringRecord", " name: ", client, " intf: ", intf,
                  " number: ", number);
    };
    for (U32 at = 0; at < 2000; ++at) {
        record(at);
    }
    counted([&] {
        for (U32 done = 0; done < count; ++done) {
            record(done);
        }
    });
}

/// A trace that neither a sink nor a ring wants.
void traceOff(U32 count) {
    CurrentRing const current(nullptr);
    Qor::TraceHandle traces("Operations", false);
    counted([&] {
        for (U32 done = 0; done < count; ++done) {
            QOR_TRACE(traces, 5, unit, "traceOff", " number: ", done);
            keep(done);
        }
    });
}

} // namespace Operations
