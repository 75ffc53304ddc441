#include "state/SampleGroupApi.h"

#include <utility>

namespace VpAgent {

SampleGroupApi::SampleGroupApi(std::string_view name, Report report)
    : name_(name), report_(std::move(report)) {}

SampleGroupApi::~SampleGroupApi() { report_(McastRelease{name_}); }

void SampleGroupApi::updateL2Bitmaps(Devbus::FapId fapId, bool post) {
    report_(McastCall{name_, "updateL2Bitmaps", McastCall::Update{fapId, post}});
}

void SampleGroupApi::updateAllL2Bitmaps() {
    report_(McastCall{name_, "updateAllL2Bitmaps", std::nullopt});
}

} // namespace VpAgent
