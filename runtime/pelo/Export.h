#pragma once

/// Marks what the runtime's library exports: everything else in it is hidden.
///
/// Functions and classes of public headers that are not templates carry it, and templates of
/// classes whose identity matters across libraries: their type information, or a static of theirs.
#define VORNIC_RUNTIME_API __attribute__((visibility("default")))
