#include "VornicL3Shared/L3McastGroupApi.h"

#include "qor/TypeBuilder.h"

namespace VornicL3 {

L3McastGroupApi::~L3McastGroupApi() = default;

Qor::TypeData const& L3McastGroupApi::typeTable() {
    using Api = L3McastGroupApi;
    static Qor::TypeData const table =
        Qor::TypeBuilder<Api>("VornicL3::L3McastGroupApi")
            .doc("the service that recomputes the L2 bitmaps of multicast groups")
            .operation(updateL2BitmapsField, "updateL2Bitmaps", &Api::updateL2Bitmaps,
                       {"fapId", "post"})
            .doc("recomputes them for one forwarding chip")
            .operation(updateAllL2BitmapsField, "updateAllL2Bitmaps", &Api::updateAllL2Bitmaps)
            .doc("recomputes them for all chips")
            .build();
    return table;
}

Qor::TypeData const* L3McastGroupApi::typeData() const { return &typeTable(); }

} // namespace VornicL3
