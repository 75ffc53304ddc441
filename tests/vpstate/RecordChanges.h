#pragma once

#include "RecordCases.h"
#include "pelo/Publisher.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Records {

/// Subscribes to the record of a fixture and notes each notification with what the collection holds
/// at that moment: "a=1 {a=1}" for a member that was set, "a gone {}" for one that was deleted. A
/// notification of another field is noted as "field 263".
template <class F> class Changes {
public:
    using React = std::function<void(Changes&)>;

    /// `react` runs in each notification.
    explicit Changes(F& fixture, React react = {})
        : fixture_(fixture), react_(std::move(react)), subscriber_(this, &dispatch) {
        join();
    }

    void join() { fixture_.record->publisher()->subscriberAdd(&subscriber_, false); }
    void leave() { fixture_.record->publisher()->subscriberRemove(&subscriber_); }

    /// The notes since the last call.
    std::vector<std::string> take() { return std::exchange(notes_, {}); }

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                         void const* key, void const* value) noexcept {
        auto& self = subscriber->owner<Changes>();
        self.note(field, key, value);
        if (self.react_) {
            self.react_(self);
        }
    }

    void note(Pelo::FieldId field, void const* key, void const* value) {
        if (field != fieldOf<typename F::Kind>) {
            notes_.push_back("field " + std::to_string(field));
            return;
        }
        std::string const name = fixture_.nameOf(*static_cast<typename F::Key const*>(key));
        std::string const what =
            value == nullptr ? " gone"
                             : "=" + fixture_.nameOf(*static_cast<typename F::Value const*>(value));
        notes_.push_back(name + what + " {" + fixture_.members() + "}");
    }

    F& fixture_;
    React react_;
    std::vector<std::string> notes_;
    Pelo::Subscriber subscriber_;
};

using Notes = std::vector<std::string>;

} // namespace Records
