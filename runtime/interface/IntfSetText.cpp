// The text form of sets of interfaces, written and read.

#include "interface/IntfSet.h"

#include <algorithm>
#include <utility>

namespace Interface {
namespace {

/// Whether a name can stand without quotes.
bool isBare(std::string_view name) noexcept {
    return !name.empty() && name.front() != ' ' && name.back() != ' ' &&
           name.find_first_of(",]\"") == std::string_view::npos;
}

void appendName(std::string& text, std::string_view name) {
    if (isBare(name)) {
        text += name;
        return;
    }
    text += '"';
    for (char const c : name) {
        text += c == '"' || c == '\\' ? "\\" : "";
        text += c;
    }
    text += '"';
}

/// Reads a set from a text, piece by piece. What returns false has found the error.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    Pelo::Parsed<IntfSet> read() {
        if (!members()) {
            return std::move(error_);
        }
        return std::move(set_);
    }

private:
    bool members() {
        if (!text_.starts_with('[')) {
            return fail(0, "[");
        }
        at_ = 1;
        if (!take(']')) {
            do {
                if (!member()) {
                    return false;
                }
            } while (take(','));
            if (!take(']')) {
                return fail(at_, "a comma or ]");
            }
        }
        if (at_ != text_.size()) {
            return fail(at_, "nothing behind the ]");
        }
        return true;
    }

    bool member() {
        passBlanks();
        std::size_t const start = at_;
        if (stands('"')) {
            std::string name;
            if (!quotedName(name)) {
                return false;
            }
            // Escapes move what stands behind them, so the place is the whole name.
            return name.empty() ? insert(Netzo::IntfId()) : insert(name, start, 0);
        }
        at_ = std::min(text_.find_first_of(",]\"", start), text_.size());
        std::string_view name = text_.substr(start, at_ - start);
        name = name.substr(0, name.find_last_not_of(' ') + 1); // npos + 1 is 0
        return insert(name, start, 1);
    }

    /// Inserts the name that begins at `start`; `step` is how far an offset within it counts.
    bool insert(std::string_view name, std::size_t start, std::size_t step) {
        auto intf = Netzo::IntfId::parse(name);
        if (!intf) {
            return fail(start + intf.error().at * step, intf.error().expected);
        }
        return insert(*std::move(intf));
    }
    bool insert(Netzo::IntfId intf) {
        set_.insert(std::move(intf));
        return true;
    }

    bool quotedName(std::string& name) {
        for (++at_; !stands('"'); ++at_) {
            if (stands('\\')) {
                ++at_;
                if (!stands('"') && !stands('\\')) {
                    return fail(at_, "\" or \\ behind a \\");
                }
            }
            if (at_ == text_.size()) {
                return fail(at_, "a closing quote");
            }
            name += text_[at_];
        }
        ++at_;
        return true;
    }

    bool stands(char c) const noexcept { return at_ < text_.size() && text_[at_] == c; }

    /// Passes over blanks and the character; false when another one stands behind the blanks.
    bool take(char c) noexcept {
        passBlanks();
        bool const there = stands(c);
        at_ += there ? 1 : 0;
        return there;
    }

    void passBlanks() noexcept { at_ = std::min(text_.find_first_not_of(' ', at_), text_.size()); }

    bool fail(std::size_t at, std::string expected) {
        error_ = {at, std::move(expected)};
        return false;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    IntfSet set_;
    Pelo::ParseError error_;
};

} // namespace

std::string IntfSet::stringValue() const {
    std::string text = "[";
    for (Netzo::IntfId const& intf : members_) {
        text += &intf == members_.data() ? "" : ", ";
        appendName(text, intf.name());
    }
    return text + "]";
}

Pelo::Parsed<IntfSet> IntfSet::parse(std::string_view text) { return Reader(text).read(); }

} // namespace Interface
