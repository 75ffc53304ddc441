#include "pelo/ThreadControl.h"

namespace Pelo {

std::atomic<bool> ThreadControl::multiThreaded_{false};

} // namespace Pelo
