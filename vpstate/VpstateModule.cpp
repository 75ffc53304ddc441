// Registers the records, so that they are found by name.

#include "qor/TypeModule.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpIndexStatus.h"
#include "vpstate/VpInvalidReferenceList.h"
#include "vpstate/VpReferenceList.h"
#include "vpstate/VxlanBootStatus.h"
#include "vpstate/VxlanCapabilities.h"

namespace VornicCentral {
namespace {

Qor::TypeModule const module("vpstate",
                             {&VpIndexConfig::typeTable(), &VpIndexStatus::typeTable(),
                              &VpReferenceList::typeTable(), &VpInvalidReferenceList::typeTable(),
                              &VxlanBootStatus::typeTable(), &VxlanCapabilities::typeTable()});

} // namespace
} // namespace VornicCentral
