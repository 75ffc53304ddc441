#include "qor/Inspection.h"

#include "qor/Entity.h"
#include "qor/Exceptions.h"

#include <string>
#include <utility>
#include <vector>

namespace Qor {

namespace {

/// What refuses: a type and, unless it is its constructor, one of its fields.
struct Subject {
    TypeData const& type;
    FieldData const* field;

    std::string fieldName() const { return field == nullptr ? "constructor" : field->name; }
    template <class Refusal> [[noreturn]] void refuse(std::string const& why) const {
        throw Refusal(type.name(), fieldName(),
                      std::string(type.name()) + "." + fieldName() + ": " + why);
    }
};

[[noreturn]] void throwUnknownField(std::string const& type, Pelo::FieldId field) {
    std::string const number = std::to_string(field);
    throw UnknownFieldException(type, number, type + " has no field " + number);
}

bool changes(OpCode code) {
    return code == OpCode::set || code == OpCode::del || code == OpCode::delAll;
}

[[noreturn]] void throwCodeRefused(Subject const& subject, OpCode code) {
    std::string accepted;
    for (FieldAccess const& access : subject.field->accesses) {
        accepted += (accepted.empty() ? "" : ", ") + stringValue(access.code);
    }
    std::string const why = stringValue(code) + " is refused, expected one of " + accepted;
    if (changes(code) && subject.field->kind != FieldKind::operation && subject.field->readOnly()) {
        subject.refuse<ReadOnlyAttributeException>("it is read-only; " + why);
    }
    subject.refuse<OperationRefusedException>(why);
}

/// Refuses arguments that are not those declared.
void argumentsCheck(Subject const& subject, std::span<ArgumentData const> declared,
                    Arguments given) {
    if (given.size() != declared.size()) {
        subject.refuse<ArgumentCountException>(
            std::to_string(given.size()) + " arguments given, expected " +
            std::to_string(declared.size()) + ": (" + listText(declared) + ")");
    }
    for (std::size_t i = 0; i < declared.size(); ++i) {
        ValueType const& wanted = *declared[i].type;
        if (!wanted.accepts(given[i].type())) {
            std::string const found =
                given[i].empty() ? "nothing" : given[i].type()->name() + " " + given[i].text();
            subject.refuse<ArgumentTypeException>(std::string("argument ") + declared[i].name +
                                                  ": got " + found + ", expected a " +
                                                  wanted.name());
        }
    }
}

GenericValue inspect(AccessTarget const& target, Pelo::FieldId number, OpCode code,
                     Arguments arguments) {
    TypeData const* const type = target.node.typeData();
    FieldData const* const field = type == nullptr ? nullptr : type->fieldByNumber(number);
    if (field == nullptr) {
        throwUnknownField(type == nullptr ? sourceName(typeid(target.node)) : type->name(), number);
    }
    Subject const subject{*type, field};
    FieldAccess const* const access = field->access(code);
    if (access == nullptr) {
        throwCodeRefused(subject, code);
    }
    if (access->changes && target.constant) {
        subject.refuse<ConstEntityException>(stringValue(code) + " would change a constant entity");
    }
    argumentsCheck(subject, access->arguments, arguments);
    return access->run(target, arguments);
}

/// What a name stands for when it is called.
struct Callable {
    FieldData const* field = nullptr; ///< null when the name stands for nothing
    OpCode code = OpCode::call;
};

/// An operation by its own name, or, unless the node is an entity that others share, a mutator by
/// the name that it has in the type: that of its field with `Is`, `Del` or `DelAll` behind it.
Callable callableFind(Pelo::Node const& node, TypeData const& type, std::string_view name) {
    FieldData const* const operation = type.fieldByName(name);
    if (operation != nullptr && operation->kind == FieldKind::operation) {
        return {operation, OpCode::call};
    }
    if (dynamic_cast<Entity const*>(&node) != nullptr) {
        return {};
    }
    constexpr std::pair<std::string_view, OpCode> mutators[] = {
        {"Is", OpCode::set}, {"Del", OpCode::del}, {"DelAll", OpCode::delAll}};
    for (auto const& [suffix, code] : mutators) {
        if (name.ends_with(suffix)) {
            FieldData const* const field =
                type.fieldByName(name.substr(0, name.size() - suffix.size()));
            if (field != nullptr && field->access(code) != nullptr) {
                return {field, code};
            }
        }
    }
    return {};
}

/// The same, or why there is nothing of that name.
Callable callableFind(Pelo::Node const& node, std::string_view name,
                      std::optional<CallRefusal>& refusal) {
    TypeData const* const type = node.typeData();
    Callable const found = type == nullptr ? Callable() : callableFind(node, *type, name);
    if (found.field != nullptr) {
        return found;
    }
    std::string operations;
    if (type != nullptr) {
        for (FieldData const& other : type->fields()) {
            if (other.kind == FieldKind::operation) {
                operations += (operations.empty() ? ": " : ", ") + std::string(other.name);
            }
        }
    }
    std::string const owner = type == nullptr ? "an entity that has any" : type->name();
    std::string const which =
        type != nullptr && operations.empty() ? ", which has none" : operations;
    refusal = {CallRefusal::operationName, {0, "an operation of " + owner + which}};
    return {};
}

/// The arguments that the texts stand for, as far as they do; why not the rest.
std::vector<GenericValue> argumentsRead(std::span<ArgumentData const> declared,
                                        std::span<std::string_view const> texts,
                                        std::optional<CallRefusal>& refusal) {
    std::vector<GenericValue> values;
    for (std::size_t i = 0; i < declared.size() && i < texts.size(); ++i) {
        Pelo::Parsed<GenericValue> value = declared[i].type->parse(texts[i]);
        if (!value) {
            Pelo::ParseError error = value.error();
            error.expected += std::string(" (argument ") + declared[i].name + ")";
            refusal = {i, std::move(error)};
            return values;
        }
        values.push_back(*std::move(value));
    }
    if (texts.size() > declared.size()) {
        refusal = {declared.size(), {0, "no more arguments: (" + listText(declared) + ")"}};
    } else if (texts.size() < declared.size()) {
        ArgumentData const& missing = declared[texts.size()];
        refusal = {texts.size(),
                   {0, std::string("argument ") + missing.name + ": " + missing.type->name()}};
    }
    return values;
}

template <class Node>
CallResult call(Node& node, std::string_view operation, std::span<std::string_view const> texts) {
    CallResult result;
    auto const [field, code] = callableFind(node, operation, result.refusal);
    if (field == nullptr) {
        return result;
    }
    std::vector<GenericValue> const arguments =
        argumentsRead(field->access(code)->arguments, texts, result.refusal);
    if (!result.refusal) {
        result.value = inspectOperation(node, field->number, code, arguments);
    }
    return result;
}

} // namespace

GenericValue inspectOperation(Pelo::Node& node, Pelo::FieldId field, OpCode code,
                              Arguments arguments) {
    return inspect({node, false}, field, code, arguments);
}

GenericValue inspectOperation(Pelo::Node const& node, Pelo::FieldId field, OpCode code,
                              Arguments arguments) {
    // Only accesses that do not change the entity are run on a constant target.
    return inspect({const_cast<Pelo::Node&>(node), true}, field, code, arguments);
}

CollectionIterator collectionIterator(Pelo::Node& node, Pelo::FieldId field) {
    return inspectOperation(node, field, OpCode::iterate).as<CollectionIterator>();
}

CollectionIterator collectionIterator(Pelo::Node const& node, Pelo::FieldId field) {
    return inspectOperation(node, field, OpCode::iterate).as<CollectionIterator>();
}

Pelo::Ptr<Pelo::Node> genericIfConstructFromCtorArgs(TypeData const& type, Arguments arguments) {
    Subject const subject{type, nullptr};
    TypeData::Constructor const* const constructor = type.constructor();
    if (constructor == nullptr) {
        subject.refuse<OperationRefusedException>("it has none, expected a type that can be built");
    }
    argumentsCheck(subject, constructor->arguments, arguments);
    return constructor->create(arguments);
}

CallResult callByName(Pelo::Node& node, std::string_view operation,
                      std::span<std::string_view const> texts) {
    return call(node, operation, texts);
}

CallResult callByName(Pelo::Node const& node, std::string_view operation,
                      std::span<std::string_view const> texts) {
    return call(node, operation, texts);
}

} // namespace Qor
