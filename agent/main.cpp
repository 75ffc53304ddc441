#include "Program.h"
#include "StandardStreams.h"
#include "text/Utf8.h"

#include <csignal>
#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    try {
        // A write beyond the largest size of a file fails then, and is reported like a full disk.
        std::signal(SIGXFSZ, SIG_IGN);
        VpAgent::occupyStandardStreams();
        auto const options = VpAgent::readOptions(argc, argv);
        if (int const* const status = std::get_if<int>(&options)) {
            return *status;
        }
        return VpAgent::runProgram(std::get<VpAgent::Options>(options));
    } catch (std::exception const& exception) {
        std::cerr << "vpagent: " << VpAgent::printable(exception.what()) << '\n';
        return VpAgent::failureStatus;
    }
}
