#pragma once

#include <functional>
#include <string>

namespace ModelTest {

/// Sends a text from a forked copy to its parent.
using Report = std::function<void(std::string const&)>;

/// How a forked copy of the process ended.
struct Ending {
    bool finished = false; ///< the work came to its end
    bool aborted = false;  ///< by SIGABRT, as a failed assertion does it
    std::string report;    ///< everything that the copy reported
};

/// Runs `work` in a forked copy of the process, which ends with it. The copy writes nothing but its
/// reports: no core file, and no message when it is terminated by an exception, of which it reports
/// "terminated".
Ending inChild(std::function<void(Report const&)> const& work);

} // namespace ModelTest
