// The operations on remote virtual ports that pick the collection by whether the VTEP is an MLAG
// one.

#include "VornicL3Shared/VpIndexAllocator.h"

namespace VornicCentral {

bool VpIndexAllocator::remoteVportInVpReference(RemoteVtepKey const& key, bool mlag) const {
    return mlag ? vpReference_->mlagRemoteVportHas(key) : vpReference_->remoteVportHas(key);
}

bool VpIndexAllocator::remoteVportInVpIndexConfig(RemoteVtepKey const& key, bool mlag) const {
    return vpIndexConfig_ &&
           (mlag ? vpIndexConfig_->mlagRemoteVportHas(key) : vpIndexConfig_->remoteVportHas(key));
}

U16 VpIndexAllocator::getRemoteVportVpIndex(RemoteVtepKey const& key, bool mlag) const {
    return (mlag ? vpIndexStatus_->mlagRemoteVport(key) : vpIndexStatus_->remoteVport(key))
        .vpIndex();
}

void VpIndexAllocator::addRemoteVportToVpRef(RemoteVtepKey const& key, VpReference const& reference,
                                             bool mlag) {
    mlag ? vpReference_->mlagRemoteVportIs(key, reference)
         : vpReference_->remoteVportIs(key, reference);
}

void VpIndexAllocator::delRemoteVportFromVpRef(RemoteVtepKey const& key, bool mlag) {
    mlag ? vpReference_->mlagRemoteVportDel(key) : vpReference_->remoteVportDel(key);
}

void VpIndexAllocator::delRemoteVportFromVpIndexStatus(RemoteVtepKey const& key, bool mlag) {
    mlag ? vpIndexStatus_->mlagRemoteVportDel(key) : vpIndexStatus_->remoteVportDel(key);
}

} // namespace VornicCentral
