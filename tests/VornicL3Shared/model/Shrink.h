#pragma once

#include "VornicL3Shared/model/Runner.h"

#include <functional>

namespace ModelTest {

/// Whether a sequence still fails.
using Fails = std::function<bool(Sequence const&)>;

/// A part of a failing sequence that fails and of which no single step can be left out, in as few
/// clients and as small tables as do. Each attempt begins from scratch.
Sequence shrunk(Sequence failing, Fails const& fails);

} // namespace ModelTest
