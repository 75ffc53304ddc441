// Registers the types of the unit, so that they are found by name. Their order is their indices.

#include "VornicL3Shared/L3McastGroupApi.h"
#include "qor/TypeModule.h"

namespace VornicL3 {
namespace {

Qor::TypeModule const module("L3McastGroupApi",
                             {&NonUcastHigigIntfs::typeTable(),
                              &BumAllowedBackplaneIntf::typeTable(), &L3IpmcLocalDb::typeTable(),
                              &L3McastGroupApi::typeTable(), &L3McastGroupApiHolder::typeTable()});

} // namespace
} // namespace VornicL3
