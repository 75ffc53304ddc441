#pragma once

#include <tuple>
#include <utility>

namespace Lumlog {

/// How a value type goes into a ring-buffer record: as a tuple of simpler pieces, taken apart when
/// the program is compiled and put together to text only when the record is read.
///
///     template <> struct Lumlog::ArgTraits<VornicCentral::PortVlanKey> {
///         static auto pieces(VornicCentral::PortVlanKey const& key) {
///             return Lumlog::pieces(key.intf(), Qor::Words(":"), key.vlan());
///         }
///     };
///
/// A piece is a `bool`, an integer, `std::string_view`, `std::string`, `Pelo::String`,
/// `Netzo::IpGenAddr`, `Qor::Words` for text that never changes, or another type that has traits.
/// The pieces, one after the other, should read as the type's printed form. A string view must
/// refer to text that outlives the value and its copies within the statement; when in doubt, give
/// the `std::string`.
///
/// The specialisation belongs beside the type, so that every user sees it. A type without one is
/// printed when the record is written, which costs a text stream each time.
template <class T> struct ArgTraits {};

template <class T>
concept HasArgTraits = requires(T const& value) { ArgTraits<T>::pieces(value); };

/// The pieces as a tuple: what the caller keeps by reference, what was made for the call by value.
template <class... Pieces> std::tuple<Pieces...> pieces(Pieces&&... values) {
    return std::tuple<Pieces...>(std::forward<Pieces>(values)...);
}

} // namespace Lumlog
