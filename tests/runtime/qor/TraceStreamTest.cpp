#include "qor/TraceStream.h"

#include "lumlog/ArgTraits.h"
#include "netzo/IntfId.h"
#include "netzo/IpGenAddr.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

namespace TraceStreamTypes {

/// Prints itself to a text stream.
struct Streamed {
    int value;
};
std::ostream& operator<<(std::ostream& out, Streamed const& streamed) {
    return out << "streamed " << streamed.value;
}

/// Has a printer for traces, which goes before the one for text streams.
struct Traced {
    int value;
};
std::ostream& operator<<(std::ostream& out, Traced const&) { return out << "not this one"; }
Qor::TraceStream& operator<<(Qor::TraceStream& out, Traced const& traced) {
    return out << "traced " << traced.value;
}

enum class Colour { red };
std::ostream& operator<<(std::ostream& out, Colour) { return out << "red"; }

/// Has pieces only.
struct Pieces {
    U16 a;
    U16 b;
};

} // namespace TraceStreamTypes

template <> struct Lumlog::ArgTraits<TraceStreamTypes::Pieces> {
    static auto pieces(TraceStreamTypes::Pieces const& value) {
        return Lumlog::pieces(value.a, Qor::Words("+"), value.b);
    }
};

namespace Qor {
namespace {

using namespace TraceStreamTypes;

template <class... Pieces> std::string textOf(Pieces const&... pieces) {
    TraceStream stream;
    ((stream << pieces), ...);
    return std::string(stream.text());
}

TEST(TraceStream, IsEmptyAtFirst) { EXPECT_EQ(textOf(), ""); }

TEST(TraceStream, TakesText) {
    char const* const pointer = "pointer";
    EXPECT_EQ(textOf("literal ", pointer, ' ', std::string_view("view "), std::string("string "),
                     Pelo::String("name "), Words("words")),
              "literal pointer view string name words");
}

TEST(TraceStream, PrintsBooleansAsWords) { EXPECT_EQ(textOf(true, " ", false), "true false"); }

TEST(TraceStream, PrintsEveryNumberInDecimal) {
    EXPECT_EQ(
        textOf(U8{65}, " ", U16{65535}, " ", U32{4294967295}, " ", U64{18446744073709551615u}),
        "65 65535 4294967295 18446744073709551615");
    EXPECT_EQ(textOf(-1, " ", std::int8_t{-128}, " ", std::int64_t{-5}), "-1 -128 -5");
    EXPECT_EQ(textOf(0.5), "0.5");
}

TEST(TraceStream, PrintsValuesAsTheyPrintThemselves) {
    EXPECT_EQ(textOf(Streamed{1}, ", ", Traced{2}, ", ", Colour::red, ", ", Pieces{3, 4}),
              "streamed 1, traced 2, red, 3+4");
    EXPECT_EQ(textOf(Netzo::IntfId("Ethernet1"), " ", *Netzo::IpGenAddr::parse("10.0.0.1")),
              "Ethernet1 10.0.0.1");
}

} // namespace
} // namespace Qor
