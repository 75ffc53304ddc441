#pragma once

#include "VornicL3Shared/model/multicast/McastStep.h"
#include "VornicL3Shared/multicast/Multicast.h"
#include "VornicL3Shared/support/Listener.h"

#include <array>
#include <memory>

namespace ModelTest {

/// The library's multicast records under the same steps as the model, with the same texts.
class McastSubject {
public:
    std::string apply(McastStep const& step);
    std::string state() const;

private:
    void listen(bool on);
    std::string setChip(McastStep const& step);
    std::string delChip(McastStep const& step);
    void clearChips(McastStep const& step);
    std::string look(McastStep const& step) const;
    void setIntfs(McastStep const& step);
    void install(McastStep const& step, Pelo::Ptr<VornicL3::L3McastGroupApi> const& api);
    std::string makeApi(std::size_t api);
    std::string call(McastStep const& step);
    void makeDatabase(McastStep const& step);
    std::string onRecords(McastStep const& step);
    std::string onServices(McastStep const& step);

    std::vector<std::string> notes_; ///< first, since services write into it when they end
    Pelo::Ptr<VornicL3::NonUcastHigigIntfs> higig_ = VornicL3::nonUcastHigigIntfsFactory("higig");
    Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf> allowed_ =
        VornicL3::bumAllowedBackplaneIntfFactory("allowed");
    Pelo::Ptr<VornicL3::L3McastGroupApiHolder> holder_ =
        VornicL3::l3McastGroupApiHolderFactory("holder");
    std::array<Pelo::Ptr<VornicL3::L3McastGroupApi>, mcastApis> held_;
    Pelo::Ptr<VornicL3::L3IpmcLocalDb> database_;
    std::vector<std::unique_ptr<Test::Listener>> listeners_;
};

} // namespace ModelTest
