#pragma once

#include "pelo/Export.h"

#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace Lumlog {

/// Takes values off the front of bytes that nobody vouches for. What is not there reads as zero or
/// as empty text, and `ok` tells that it was missing. The bytes are borrowed, also by the texts
/// taken.
class VORNIC_RUNTIME_API ByteCursor {
public:
    explicit ByteCursor(std::span<std::byte const> bytes) noexcept : rest_(bytes) {}

    bool ok() const noexcept { return ok_; }
    std::size_t remaining() const noexcept { return rest_.size(); }

    template <class T>
        requires std::is_trivially_copyable_v<T>
    T take() noexcept {
        T value{};
        if (auto const bytes = takeBytes(sizeof value); !bytes.empty()) {
            std::memcpy(&value, bytes.data(), sizeof value);
        }
        return value;
    }

    std::string_view takeText(std::size_t size) noexcept {
        auto const bytes = takeBytes(size);
        return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
    }

private:
    std::span<std::byte const> takeBytes(std::size_t size) noexcept {
        if (size > rest_.size()) {
            ok_ = false;
            rest_ = {};
            return {};
        }
        auto const taken = rest_.first(size);
        rest_ = rest_.subspan(size);
        return taken;
    }

    std::span<std::byte const> rest_;
    bool ok_ = true;
};

} // namespace Lumlog
