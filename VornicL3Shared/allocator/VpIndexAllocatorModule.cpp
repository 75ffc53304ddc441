// Registers the types of the unit, so that they are found by name.

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"
#include "qor/TypeModule.h"

namespace VornicCentral {
namespace {

Qor::TypeModule const module("VornicL3VpIndexAllocator",
                             {&VpIndexConfigDir::typeTable(), &VpIndexStatusDir::typeTable(),
                              &VpIndexAllocator::typeTable(), &VpIndexAllocatorDirSm::typeTable()});

} // namespace
} // namespace VornicCentral
