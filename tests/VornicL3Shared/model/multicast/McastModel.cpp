#include "VornicL3Shared/model/multicast/McastModel.h"

namespace ModelTest {
namespace {

std::string nameOf(std::optional<std::size_t> api) {
    return api ? "api " + std::to_string(*api) : "none";
}

} // namespace

void McastModel::told(std::string const& line) {
    if (listening_) {
        note("told " + line);
    }
}

Intfs const* McastModel::chip(U8 number) const {
    for (auto const& [each, intfs] : chips_) {
        if (each == number) {
            return &intfs;
        }
    }
    return nullptr;
}

std::string McastModel::setChip(McastStep const& step) {
    for (auto& [number, intfs] : chips_) {
        if (number != step.chip) {
            continue;
        }
        if (intfs != step.intfs) {
            Intfs const former = std::exchange(intfs, step.intfs);
            told("258 chip " + std::to_string(number) + " former " + textOf(former));
        }
        return "";
    }
    chips_.emplace_back(step.chip, step.intfs);
    told("258 chip " + std::to_string(step.chip) + " former none");
    return "";
}

std::string McastModel::delChip(U8 number) {
    for (auto at = chips_.begin(); at != chips_.end(); ++at) {
        if (at->first == number) {
            Intfs const removed = at->second;
            chips_.erase(at);
            told("258 chip " + std::to_string(number) + " former " + textOf(removed));
            return textOf(removed);
        }
    }
    return "[]";
}

/// The former service is given back when the listener has been told.
std::string McastModel::install(std::optional<std::size_t> api) {
    if (api == installed_) {
        return "";
    }
    std::optional<std::size_t> const former = std::exchange(installed_, api);
    bool const ends = former && !held_[*former];
    if (ends && givesBackFirst_) {
        note(nameOf(former) + " gone");
    }
    told("258 former " + nameOf(former) + " now " + nameOf(installed_));
    if (ends && !givesBackFirst_) {
        note(nameOf(former) + " gone");
    }
    return "";
}

std::string McastModel::dropApi(std::size_t api) {
    if (std::exchange(held_[api], false) && installed_ != api) {
        note(nameOf(api) + " gone");
    }
    return "";
}

std::string McastModel::call(McastStep const& step) {
    if (!installed_) {
        return "nobody";
    }
    if (step.verb == McastVerb::misuse) {
        return "refused";
    }
    if (step.verb == McastVerb::updateAll) {
        note(nameOf(installed_) + " update all");
    } else {
        note(nameOf(installed_) + " update " + std::to_string(step.chip) +
             (step.flag ? " post" : ""));
    }
    return "";
}

std::string McastModel::apply(McastStep const& step) {
    notes_.clear();
    std::string result;
    switch (step.verb) {
    case McastVerb::setChip:
        result = setChip(step);
        break;
    case McastVerb::delChip:
        result = delChip(step.chip);
        break;
    case McastVerb::clearChips:
        while (!chips_.empty()) {
            delChip(chips_.front().first);
        }
        break;
    case McastVerb::look: {
        Intfs const* const there = chip(step.chip);
        result = there == nullptr ? "absent []" : "present " + textOf(*there);
        break;
    }
    case McastVerb::setIntfs:
        if (allowed_ != step.intfs) {
            Intfs const former = std::exchange(allowed_, step.intfs);
            told("258 former " + textOf(former));
        }
        break;
    case McastVerb::install:
        result = held_[step.api] ? install(step.api) : "";
        break;
    case McastVerb::installNone:
        result = install(std::nullopt);
        break;
    case McastVerb::makeApi:
        dropApi(step.api);
        result = installed_ == step.api ? "installed" : "made";
        held_[step.api] = installed_ != step.api;
        break;
    case McastVerb::dropApi:
        result = dropApi(step.api);
        break;
    case McastVerb::updateChip:
    case McastVerb::updateAll:
    case McastVerb::misuse:
        result = call(step);
        break;
    case McastVerb::listen:
        listening_ = step.flag;
        break;
    case McastVerb::makeDatabase:
        database_ = {step.flag, step.chip != 0};
        break;
    case McastVerb::dropDatabase:
        database_.reset();
        break;
    }
    return notes_ + "result " + result + "\n";
}

std::string McastModel::state() const {
    std::string text = "chips";
    for (auto const& [number, intfs] : chips_) {
        text += " " + std::to_string(number) + textOf(intfs);
    }
    text += "\nallowed " + textOf(allowed_) + "\ninstalled " + nameOf(installed_) + "\nusers ";
    text += std::to_string(1 + (database_ && database_->first ? 1 : 0)) + " ";
    return text + std::to_string(1 + (database_ && database_->second ? 1 : 0)) + "\n";
}

} // namespace ModelTest
