// operations           lists the operations, a line each: its name, and how often it is done
// operations NAME      does one of them

#include "operations.h"

#include <qor/Sinks.h>

#include <exception>
#include <iostream>

namespace {

using namespace Operations;

constexpr Operation operations[] = {
    {"pool.churn", 20000, poolChurn},
    {"collection.hit", 20000, collectionHit},
    {"collection.miss", 20000, collectionMiss},
    {"collection.insert", 16384, collectionInsert},
    {"collection.erase", 16384, collectionErase},
    {"collection.walk", 16384, collectionWalk},
    {"collection.vlanHit", 20000, collectionVlanHit},
    {"ring.record", 10000, ringRecord},
    {"trace.off", 10000, traceOff},
    {"notification", 10000, notification},
    {"client.request", 4000, request},
    {"client.release", 4000, release},
    {"client.handOver", 2000, handOver},
    {"machine.start", 4000, startWithReferences},
};

int runOne(std::string_view name) {
    for (Operation const& operation : operations) {
        if (operation.name == name) {
            operation.run(operation.count);
            return 0;
        }
    }
    std::cerr << "operations: there is no operation " << name << '\n';
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    Qor::logSinkIs([](Qor::LogMessage const&) {});
    try {
        if (argc == 2) {
            return runOne(argv[1]);
        }
    } catch (std::exception const& error) {
        std::cerr << "operations: " << error.what() << '\n';
        return 1;
    }
    for (Operation const& operation : operations) {
        std::cout << operation.name << ' ' << operation.count << '\n';
    }
    return 0;
}
