#pragma once

/// Marks what the shared library exports, as "pelo/Export.h" does for the runtime.
#define VORNICL3SHARED_API __attribute__((visibility("default")))
/// Takes a member of an exported class out again: a private template, which only the library
/// instantiates.
#define VORNICL3SHARED_LOCAL __attribute__((visibility("hidden")))
