#pragma once

/// Marks what the library of the records exports, as "pelo/Export.h" does for the runtime.
#define VORNIC_VPSTATE_API __attribute__((visibility("default")))
