#pragma once

#include "VornicL3Shared/L3McastGroupApi.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Test {

/// "Ethernet1 Ethernet2" as a set.
inline Interface::IntfSet intfs(std::string_view names) {
    Interface::IntfSet set;
    while (!names.empty()) {
        std::size_t const end = std::min(names.find(' '), names.size());
        set.insert(Netzo::IntfId(names.substr(0, end)));
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    return set;
}

inline Devbus::FapId fap(U8 number) { return Devbus::FapId(number); }

/// Notes each call, and its own end.
class SampleApi final : public VornicL3::L3McastGroupApi {
public:
    explicit SampleApi(std::vector<std::string>& notes, std::string name = "api")
        : notes_(notes), name_(std::move(name)) {}
    ~SampleApi() override { notes_.push_back(name_ + " gone"); }

    std::string const& name() const noexcept { return name_; }

    void updateL2Bitmaps(Devbus::FapId fapId, bool post) override {
        notes_.push_back(name_ + " update " + fapId.stringValue() + (post ? " post" : ""));
    }
    void updateAllL2Bitmaps() override { notes_.push_back(name_ + " update all"); }

private:
    std::vector<std::string>& notes_;
    std::string name_;
};

} // namespace Test
