#pragma once

namespace Support {

/// Whether this program runs below the address sanitizer.
constexpr bool addressSanitizer() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#elif defined(__has_feature)
    return __has_feature(address_sanitizer);
#else
    return false;
#endif
}

/// Whether this program runs below the thread sanitizer.
constexpr bool threadSanitizer() {
#if defined(__SANITIZE_THREAD__)
    return true;
#elif defined(__has_feature)
    return __has_feature(thread_sanitizer);
#else
    return false;
#endif
}

} // namespace Support
