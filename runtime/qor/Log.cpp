#include "qor/Log.h"

#include "qor/Sinks.h"

#include <string>

namespace Qor {

void log(LogHandle& handle, std::string_view text) noexcept {
    if (!handle.passes()) {
        return;
    }
    LogDescriptor const& descriptor = handle.descriptor();
    std::string message = descriptor.format;
    message.replace(message.find("%s"), 2, text);
    logEmit({descriptor, message, handle.suppressedTake()});
}

} // namespace Qor
