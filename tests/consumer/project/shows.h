#pragma once

// What the program shows, one unit of the package each, on standard output.

namespace Consumer {

void showAllocation();
void showAllocationTracking();
void showMulticast();
void showNetworkGroup();
void showOwnTypes();

} // namespace Consumer
