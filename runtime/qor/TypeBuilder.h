#pragma once

#include "pelo/Export.h"
#include "qor/FieldAccessors.h"
#include "qor/TypeData.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Qor {

namespace Detail {

/// The part of a table under construction that does not depend on the type. Everything that is
/// declared twice or does not fit stops the process.
class VORNIC_RUNTIME_API TypeBuilderBase {
protected:
    explicit TypeBuilderBase(char const* typeName) : name_(typeName) {}
    ~TypeBuilderBase() = default;

    void fieldAdd(FieldData field);
    /// Adds an access to the field declared last.
    void accessAdd(FieldAccess access);
    /// As `accessAdd`, for a mutator of an attribute or collection: `types` are those of its
    /// parameters.
    void mutatorAdd(OpCode code, std::vector<ValueType const*> const& types, AccessRun run,
                    ValueType const* result);
    void constructorAdd(TypeData::Constructor constructor);
    /// Of the field declared last; of the type while none is.
    void documentationAdd(std::string text);

    static std::vector<ArgumentData> arguments(std::initializer_list<char const*> names,
                                               std::vector<ValueType const*> const& types);

    char const* name_;
    std::string documentation_;
    std::vector<FieldData> fields_;
    std::optional<TypeData::Constructor> constructor_;
};

} // namespace Detail

/// Makes the table of an entity type, in one statement next to the type:
///
///     Qor::TypeData const& Fan::typeTable() {
///         static Qor::TypeData const table =
///             Qor::TypeBuilder<Fan>("Cooling::Fan")
///                 .doc("a fan of the tray")
///                 .constructor(&Fan::FanIs, {"name", "slot"})
///                 .attribute(Qor::nameStringField, "nameString", &Fan::nameString)
///                 .attribute(258, "speed", &Fan::speed).set(&Fan::speedIs)
///                 .doc("turns a minute")
///                 .collection(259, "alarm", "sensor", &Fan::alarm)
///                     .set(&Fan::alarmIs).del(&Fan::alarmDel).delAll(&Fan::alarmDelAll)
///                 .constant(260, "path", Fan::path)
///                 .operation(261, "selfTest", &Fan::selfTest, {"seconds"})
///                 .build();
///         return table;
///     }
///     Qor::TypeData const* Fan::typeData() const { return &typeTable(); }
///
/// A mutator belongs to the attribute or collection before it; one without mutators can only be
/// read. `doc` says what the field before it is (the type, when it stands before all fields), in a
/// few words for people; each may have one. The types of values, keys, arguments and results are
/// those of the accessors. Of an overloaded accessor the one that fits is taken (the getter of an
/// attribute or collection is the one without parameters); of an overloaded operation
/// `Qor::overload` picks one. Names are literals. A number, name or `doc` that is there already, a
/// number of argument names that is not that of the parameters, and a mutator whose types are not
/// those of its field stop the process.
///
/// For the source of a type: it should not be included by headers.
template <class T> class TypeBuilder : private Detail::TypeBuilderBase {
    static_assert(std::derived_from<T, Pelo::Node>);

public:
    explicit TypeBuilder(char const* typeName) : TypeBuilderBase(typeName) {}

    /// What the field declared last is; the type itself, before the first one.
    TypeBuilder& doc(std::string text) {
        documentationAdd(std::move(text));
        return *this;
    }

    /// The creator by which `genericIfConstructFromCtorArgs` builds an object. An abstract type
    /// declares none.
    template <class R, class... A>
    TypeBuilder& constructor(Pelo::Ptr<R> (*creator)(A...),
                             std::initializer_list<char const*> names) {
        constructorAdd({arguments(names, {&Detail::parameterType<A>()...}),
                        Detail::createRun(creator, std::index_sequence_for<A...>())});
        return *this;
    }

    /// An attribute that `get` reads: a const member function without parameters, or anything that
    /// can be called with a `T const&`.
    template <class R, class C>
    TypeBuilder& attribute(Pelo::FieldId number, char const* fieldName, R (C::*get)() const) {
        return attributeAdd<R>(number, fieldName, get);
    }
    template <class Get>
        requires std::is_invocable_v<Get, T const&>
    TypeBuilder& attribute(Pelo::FieldId number, char const* fieldName, Get get) {
        return attributeAdd<std::invoke_result_t<Get, T const&>>(number, fieldName, get);
    }

    /// An attribute that has the same value in every object.
    template <class Value>
    TypeBuilder& constant(Pelo::FieldId number, char const* fieldName, Value const& value) {
        GenericValue kept = GenericValue::of(value);
        fieldAdd({number, fieldName, FieldKind::attribute, kept.type()});
        accessAdd({OpCode::get, false, {}, kept.type(), [kept](AccessTarget const&, Arguments) {
                       return kept;
                   }});
        return *this;
    }

    /// A collection that `members` gives; `keyName` is what the key is called as an argument.
    template <class K, class V, class C>
    TypeBuilder& collection(Pelo::FieldId number, char const* fieldName, char const* keyName,
                            HashMap2018<K, V> const& (C::*members)() const) {
        ArgumentData const key{keyName, &valueTypeOf<K>()};
        fieldAdd({number, fieldName, FieldKind::collection, &valueTypeOf<V>(), key});
        for (FieldAccess& access : Detail::collectionReads<T, K, V>(number, key, members)) {
            accessAdd(std::move(access));
        }
        return *this;
    }

    /// The mutators of the attribute or collection declared last.
    template <class R, class C, class... A> TypeBuilder& set(R (C::*mutator)(A...)) {
        return mutatorOf<R, A...>(OpCode::set, mutator);
    }
    template <class R, class C, class A> TypeBuilder& del(R (C::*mutator)(A)) {
        return mutatorOf<R, A>(OpCode::del, mutator);
    }
    template <class R, class C> TypeBuilder& delAll(R (C::*mutator)()) {
        return mutatorOf<R>(OpCode::delAll, mutator);
    }

    /// For an attribute or collection declared last whose values are entities that this entity
    /// builds: `set` takes the construction arguments of one, with these names, and `del` of such
    /// an attribute detaches it.
    template <class R, class C, class... A>
    TypeBuilder& create(R (C::*mutator)(A...), std::initializer_list<char const*> names) {
        accessAdd({OpCode::set, true, arguments(names, {&Detail::parameterType<A>()...}),
                   Detail::resultType<R>(), Detail::memberRun<T, R, A...>(mutator)});
        return *this;
    }
    template <class R, class C> TypeBuilder& detach(R (C::*mutator)()) {
        accessAdd(
            {OpCode::del, true, {}, Detail::resultType<R>(), Detail::memberRun<T, R>(mutator)});
        return *this;
    }

    /// An operation, with the names of its arguments. A const member function may be called on a
    /// constant.
    template <class R, class C, class... A>
    TypeBuilder& operation(Pelo::FieldId number, char const* fieldName, R (C::*function)(A...),
                           std::initializer_list<char const*> names = {}) {
        return operationAdd<R, A...>(number, fieldName, true, function, names);
    }
    template <class R, class C, class... A>
    TypeBuilder& operation(Pelo::FieldId number, char const* fieldName,
                           R (C::*function)(A...) const,
                           std::initializer_list<char const*> names = {}) {
        return operationAdd<R, A...>(number, fieldName, false, function, names);
    }

    TypeData build() {
        return {name_, std::move(documentation_), std::move(fields_), std::move(constructor_)};
    }

private:
    template <class R, class Get>
    TypeBuilder& attributeAdd(Pelo::FieldId number, char const* fieldName, Get get) {
        ValueType const& type = Detail::parameterType<R>();
        fieldAdd({number, fieldName, FieldKind::attribute, &type});
        accessAdd({OpCode::get, false, {}, &type, Detail::memberRun<T const, R>(get)});
        return *this;
    }

    template <class R, class... A, class Function>
    TypeBuilder& mutatorOf(OpCode code, Function function) {
        mutatorAdd(code, {&Detail::parameterType<A>()...}, Detail::memberRun<T, R, A...>(function),
                   Detail::resultType<R>());
        return *this;
    }

    template <class R, class... A, class Function>
    TypeBuilder& operationAdd(Pelo::FieldId number, char const* fieldName, bool changes,
                              Function function, std::initializer_list<char const*> names) {
        fieldAdd({number, fieldName, FieldKind::operation, Detail::resultType<R>()});
        accessAdd({OpCode::call, changes, arguments(names, {&Detail::parameterType<A>()...}),
                   Detail::resultType<R>(), Detail::memberRun<T, R, A...>(function)});
        return *this;
    }
};

/// Picks one of several member functions of the same name by its type:
/// `Qor::overload<void(Pelo::String const&)>(&Fan::handleAlarm)`, `Qor::overload<U32()
/// const>(&Fan::speed)`.
template <class Function, class C> constexpr Function C::*overload(Function C::*member) noexcept {
    return member;
}

} // namespace Qor
