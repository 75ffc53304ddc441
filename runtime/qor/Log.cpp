#include "qor/Log.h"

#include "qor/Sinks.h"

#include <string>

namespace Qor {

void log(LogHandle& handle, std::string_view text) noexcept {
    if (!handle.passes()) {
        return;
    }
    LogDescriptor const& descriptor = handle.descriptor();
    std::string_view const format = descriptor.format;
    std::size_t const place = format.find("%s");
    std::string message;
    message.reserve(format.size() + text.size());
    message.append(format, 0, place).append(text).append(format, place + 2);
    logEmit({descriptor, message, handle.suppressedTake()});
}

} // namespace Qor
