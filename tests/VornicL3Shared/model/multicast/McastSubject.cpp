#include "VornicL3Shared/model/multicast/McastSubject.h"

#include "qor/Exceptions.h"
#include "qor/Inspection.h"

namespace ModelTest {
namespace {

using Interface::IntfSet;
using Qor::GenericValue;
using Qor::OpCode;
using VornicL3::L3McastGroupApi;
using Api = Pelo::Ptr<L3McastGroupApi>;

constexpr Pelo::FieldId mainField = 258;

IntfSet setOf(Intfs const& names) {
    IntfSet set;
    for (std::string const& name : names) {
        set.insert(Netzo::IntfId(name));
    }
    return set;
}

std::string nameOf(Api const& api) {
    return api ? dynamic_cast<Test::SampleApi const&>(*api).name() : "none";
}

} // namespace

void McastSubject::listen(bool on) {
    listeners_.clear();
    if (!on) {
        return;
    }
    auto const add = [&](Qor::Entity const& entity, auto textOf) {
        listeners_.push_back(std::make_unique<Test::Listener>(
            entity, [this, textOf](Test::Notification const& change) {
                notes_.push_back("told " + std::to_string(change.field) + textOf(change));
            }));
    };
    add(*higig_, [](Test::Notification const& change) {
        auto const* const former = static_cast<IntfSet const*>(change.value);
        return " chip " + static_cast<Devbus::FapId const*>(change.key)->stringValue() +
               " former " + (former == nullptr ? "none" : former->stringValue());
    });
    add(*allowed_, [](Test::Notification const& change) {
        return " former " + static_cast<IntfSet const*>(change.value)->stringValue();
    });
    add(*holder_, [this](Test::Notification const& change) {
        return " former " + nameOf(*static_cast<Api const*>(change.value)) + " now " +
               nameOf(holder_->l3McastGroupApi());
    });
}

std::string McastSubject::setChip(McastStep const& step) {
    Devbus::FapId const chip(step.chip);
    if (step.generic) {
        Qor::inspectOperation(*higig_, mainField, OpCode::set,
                              {GenericValue::of(chip), GenericValue::of(setOf(step.intfs))});
    } else {
        higig_->higigIntfsIs(chip, setOf(step.intfs));
    }
    return "";
}

std::string McastSubject::delChip(McastStep const& step) {
    Devbus::FapId const chip(step.chip);
    if (step.generic) {
        return Qor::inspectOperation(*higig_, mainField, OpCode::del, {GenericValue::of(chip)})
            .text();
    }
    return higig_->higigIntfsDel(chip).stringValue();
}

void McastSubject::clearChips(McastStep const& step) {
    if (step.generic) {
        Qor::inspectOperation(*higig_, mainField, OpCode::delAll);
    } else {
        higig_->higigIntfsDelAll();
    }
}

std::string McastSubject::look(McastStep const& step) const {
    Devbus::FapId const chip(step.chip);
    if (!step.generic) {
        return (higig_->higigIntfsHas(chip) ? "present " : "absent ") +
               higig_->higigIntfs(chip).stringValue();
    }
    auto const inspect = [&](OpCode code) {
        return Qor::inspectOperation(*higig_, mainField, code, {GenericValue::of(chip)});
    };
    bool const there = inspect(OpCode::has).as<bool>();
    GenericValue const found = inspect(OpCode::lookup);
    std::string const value = inspect(OpCode::get).text();
    bool const agree = there ? found.text() == value : found.empty();
    return (there ? "present " : "absent ") + (agree ? value : "or not");
}

void McastSubject::setIntfs(McastStep const& step) {
    if (step.generic) {
        Qor::inspectOperation(*allowed_, mainField, OpCode::set,
                              {GenericValue::of(setOf(step.intfs))});
    } else {
        allowed_->intfsIs(setOf(step.intfs));
    }
}

void McastSubject::install(McastStep const& step, Api const& api) {
    if (step.generic) {
        Qor::inspectOperation(*holder_, mainField, OpCode::set, {GenericValue::of(api)});
    } else {
        holder_->l3McastGroupApiIs(api);
    }
}

/// A number has one service: while it is installed no other is made for it.
std::string McastSubject::makeApi(std::size_t api) {
    std::string const name = "api " + std::to_string(api);
    held_[api] = nullptr;
    if (nameOf(holder_->l3McastGroupApi()) == name) {
        return "installed";
    }
    held_[api] = Pelo::newNode<Test::SampleApi>(notes_, name);
    return "made";
}

std::string McastSubject::call(McastStep const& step) {
    Api const api = holder_->l3McastGroupApi();
    if (!api) {
        return "nobody";
    }
    bool const all = step.verb == McastVerb::updateAll;
    if (step.verb == McastVerb::misuse) {
        try {
            Qor::inspectOperation(*api, step.flag ? 130 : 131,
                                  step.generic ? OpCode::get : OpCode::set);
        } catch (Qor::Exception const&) {
            return "refused";
        }
        return "done";
    }
    Devbus::FapId const chip(step.chip);
    if (step.generic && all) {
        Qor::inspectOperation(*api, 131, OpCode::call);
    } else if (step.generic) {
        Qor::inspectOperation(*api, 130, OpCode::call,
                              {GenericValue::of(chip), GenericValue::of(step.flag)});
    } else if (all) {
        api->updateAllL2Bitmaps();
    } else {
        api->updateL2Bitmaps(chip, step.flag);
    }
    return "";
}

void McastSubject::makeDatabase(McastStep const& step) {
    Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf const> const allowed =
        step.flag ? allowed_ : nullptr;
    auto const higig = step.chip != 0 ? higig_ : nullptr;
    database_ = VornicL3::l3IpmcLocalDbFactory(allowed, higig);
    if (database_->allowedBackplaneIntf() != allowed || database_->hwHigigIntfs() != higig) {
        notes_.push_back("the database binds something else");
    }
}

std::string McastSubject::onServices(McastStep const& step) {
    switch (step.verb) {
    case McastVerb::install:
        if (held_[step.api]) {
            install(step, held_[step.api]);
        }
        return "";
    case McastVerb::installNone:
        install(step, nullptr);
        return "";
    case McastVerb::makeApi:
        return makeApi(step.api);
    case McastVerb::dropApi:
        held_[step.api] = nullptr;
        return "";
    default:
        return call(step);
    }
}

std::string McastSubject::onRecords(McastStep const& step) {
    switch (step.verb) {
    case McastVerb::setChip:
        return setChip(step);
    case McastVerb::delChip:
        return delChip(step);
    case McastVerb::clearChips:
        clearChips(step);
        return "";
    case McastVerb::look:
        return look(step);
    case McastVerb::setIntfs:
        setIntfs(step);
        return "";
    case McastVerb::listen:
        listen(step.flag);
        return "";
    case McastVerb::makeDatabase:
        makeDatabase(step);
        return "";
    case McastVerb::dropDatabase:
        database_ = nullptr;
        return "";
    default:
        return onServices(step);
    }
}

std::string McastSubject::apply(McastStep const& step) {
    notes_.clear();
    std::string const result = onRecords(step);
    std::string text;
    for (std::string const& note : notes_) {
        text += note + "\n";
    }
    return text + "result " + result + "\n";
}

std::string McastSubject::state() const {
    std::string text = "chips";
    for (VornicL3::NonUcastHigigIntfs::HigigIntfs::Iterator it(higig_->higigIntfs()); it;
         it.advance()) {
        text += " " + it.key().stringValue() + it.value().stringValue();
    }
    text += "\nallowed " + allowed_->intfs().stringValue() + "\ninstalled " +
            nameOf(holder_->l3McastGroupApi()) + "\nusers ";
    return text + std::to_string(allowed_->useCount()) + " " + std::to_string(higig_->useCount()) +
           "\n";
}

} // namespace ModelTest
