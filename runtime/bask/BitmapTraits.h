#pragma once

#include "bask/HBitmap.h"
#include "qor/ValueTraits.h"

/// How generic access names and reads the enumerations of bitmaps: "set" and "clear", "low" and
/// "high".
namespace Qor {

template <> struct ValueTraits<Bask::HBitmap::BitState> {
    using BitState = Bask::HBitmap::BitState;
    static constexpr ValueKind kind = ValueKind::text;
    static std::string name() { return "Bask::HBitmap::BitState"; }
    static std::string text(BitState state) { return state == BitState::set ? "set" : "clear"; }
    static Pelo::Parsed<BitState> parse(std::string_view text) {
        if (text == "set" || text == "clear") {
            return text == "set" ? BitState::set : BitState::clear;
        }
        return Pelo::ParseError{0, "set or clear"};
    }
};

template <> struct ValueTraits<Bask::Preference> {
    using Preference = Bask::Preference;
    static constexpr ValueKind kind = ValueKind::text;
    static std::string name() { return "Bask::Preference"; }
    static std::string text(Preference end) { return end == Preference::high ? "high" : "low"; }
    static Pelo::Parsed<Preference> parse(std::string_view text) {
        if (text == "low" || text == "high") {
            return text == "high" ? Preference::high : Preference::low;
        }
        return Pelo::ParseError{0, "low or high"};
    }
};

} // namespace Qor
