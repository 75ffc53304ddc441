#include "shows.h"

int main() {
    Consumer::showAllocation();
    Consumer::showAllocationTracking();
    Consumer::showMulticast();
    Consumer::showNetworkGroup();
    Consumer::showOwnTypes();
}
