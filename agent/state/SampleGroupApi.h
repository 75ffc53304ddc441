#pragma once

#include "VornicL3Shared/L3McastGroupApi.h"
#include "output/McastEvent.h"

#include <functional>
#include <string>
#include <string_view>

namespace VpAgent {

/// A multicast group service that computes nothing: it reports each call, and its own end.
class SampleGroupApi final : public VornicL3::L3McastGroupApi {
public:
    using Report = std::function<void(McastEvent const&)>;

    SampleGroupApi(std::string_view name, Report report);
    ~SampleGroupApi() override;

    std::string const& name() const noexcept { return name_; }

    void updateL2Bitmaps(Devbus::FapId fapId, bool post) override;
    void updateAllL2Bitmaps() override;

private:
    std::string name_;
    Report report_;
};

} // namespace VpAgent
