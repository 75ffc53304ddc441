#include "qor/TraceStream.h"

#include <sstream>

namespace Qor::Internal {

void appendPrinted(std::string& text, void const* value,
                   void (*print)(std::ostream&, void const*)) {
    std::ostringstream out;
    out.exceptions(std::ios::badbit); // or it swallows those of the printer and cuts the text
    print(out, value);
    text += out.view();
}

} // namespace Qor::Internal
