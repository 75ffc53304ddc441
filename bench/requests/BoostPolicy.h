#pragma once

#include "lumlog/Record.h"
#include "lumlog/RingBuffer.h"
#include "requests/PlainPolicy.h"

#include <boost/container/flat_set.hpp>
#include <boost/container_hash/hash.hpp>
#include <boost/unordered/unordered_flat_map.hpp>
#include <rte_bitmap.h>

#include <cstddef>
#include <memory>
#include <string>

namespace Bench {

/// Hashes as Boost does by itself: a user's key by the parts that it combines.
inline std::size_t hash_value(NamedKey const& key) {
    std::size_t seed = 0;
    boost::hash_combine(seed, key.intf());
    boost::hash_combine(seed, key.vlan());
    return seed;
}

/// The quickest packages that there are for each part: Boost's flat map and flat set, DPDK's
/// bitmap, and the library's own ring of binary records.
struct BoostPolicy {
    using Key = NamedKey;
    template <class K, class V> using Map = boost::unordered_flat_map<K, V>;
    using Names = boost::container::flat_set<std::string>;

    /// A bit that is set is a free index. The bitmap finds its lowest set bit, so the highest index
    /// has the lowest bit.
    class Pool {
    public:
        explicit Pool(U32 size)
            : size_(size),
              bytes_(rte_bitmap_get_memory_footprint(size)),
              memory_(static_cast<std::byte*>(::operator new(bytes_, alignment))),
              bits_(rte_bitmap_init(size, reinterpret_cast<uint8_t*>(memory_.get()), bytes_)) {
            for (U32 index = 0; index < size; ++index) {
                free(index);
            }
        }
        bool full() const noexcept { return freeCount_ == 0; }
        bool mark(U32 index) {
            if (rte_bitmap_get(bits_, bitOf(index)) == 0) {
                return false;
            }
            rte_bitmap_clear(bits_, bitOf(index));
            --freeCount_;
            return true;
        }
        U32 takeHighest() {
            U32 position = 0;
            uint64_t slab = 0;
            __rte_bitmap_scan_init(bits_); // else it goes on where the last scan ended
            rte_bitmap_scan(bits_, &position, &slab);
            U32 const bit = position + static_cast<U32>(__builtin_ctzll(slab));
            rte_bitmap_clear(bits_, bit);
            --freeCount_;
            return size_ - 1 - bit;
        }
        void free(U32 index) {
            rte_bitmap_set(bits_, bitOf(index));
            ++freeCount_;
        }

    private:
        static constexpr std::align_val_t alignment{RTE_CACHE_LINE_SIZE};
        struct Release {
            void operator()(std::byte* memory) const noexcept {
                ::operator delete(memory, alignment);
            }
        };

        U32 bitOf(U32 index) const noexcept { return size_ - 1 - index; }

        U32 size_;
        U32 bytes_;
        std::unique_ptr<std::byte, Release> memory_;
        rte_bitmap* bits_;
        U32 freeCount_ = 0;
    };

    /// Writes to the process's ring.
    class Recorder {
    public:
        template <U32 line, U32 level, class... Pieces> void write(Pieces const&... pieces) {
            static constinit Lumlog::MsgDescriptor descriptor("requests", line, level);
            if (auto* const ring = Lumlog::RingBuffer::currentIfAny()) {
                Lumlog::record(*ring, descriptor, pieces...);
            }
        }
    };
};

} // namespace Bench
