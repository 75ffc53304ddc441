#include "requests/PlainPolicy.h"
#include "requests/ProgramWorld.h"
#include "requests/RequestCases.h"

namespace {

[[maybe_unused]] bool const added =
    (Bench::RequestCases<Bench::ProgramWorld<Bench::PlainPolicy>>::add("plain"), true);

} // namespace
