#include "qor/TypeBuilder.h"

#include "qor/Assert.h"

#include <algorithm>
#include <string_view>

namespace Qor::Detail {

void TypeBuilderBase::fieldAdd(FieldData field) {
    for (FieldData const& other : fields_) {
        QOR_ASSERT(other.number != field.number);
        QOR_ASSERT(std::string_view(other.name) != field.name);
    }
    fields_.push_back(std::move(field));
}

void TypeBuilderBase::accessAdd(FieldAccess access) {
    QOR_ASSERT(!fields_.empty());
    FieldData& field = fields_.back();
    QOR_ASSERT((access.code == OpCode::call) == (field.kind == FieldKind::operation));
    QOR_ASSERT(field.access(access.code) == nullptr);
    field.accesses.push_back(std::move(access));
}

void TypeBuilderBase::mutatorAdd(OpCode code, std::vector<ValueType const*> const& types,
                                 AccessRun run, ValueType const* result) {
    QOR_ASSERT(!fields_.empty());
    FieldData const& field = fields_.back();
    bool const isCollection = field.kind == FieldKind::collection;
    QOR_ASSERT(isCollection || (field.kind == FieldKind::attribute && code == OpCode::set));
    std::vector<ArgumentData> expected;
    if (isCollection && code != OpCode::delAll) {
        expected.push_back(field.key);
    }
    if (code == OpCode::set) {
        expected.push_back({"value", field.type});
    }
    auto const sameType = [](ArgumentData const& argument, ValueType const* type) {
        return *argument.type == *type;
    };
    QOR_ASSERT(std::equal(expected.begin(), expected.end(), types.begin(), types.end(), sameType));
    accessAdd({code, true, std::move(expected), result, std::move(run)});
}

void TypeBuilderBase::constructorAdd(TypeData::Constructor constructor) {
    QOR_ASSERT(!constructor_.has_value());
    constructor_ = std::move(constructor);
}

void TypeBuilderBase::documentationAdd(std::string text) {
    std::string& documentation = fields_.empty() ? documentation_ : fields_.back().documentation;
    QOR_ASSERT(documentation.empty());
    documentation = std::move(text);
}

std::vector<ArgumentData> TypeBuilderBase::arguments(std::initializer_list<char const*> names,
                                                     std::vector<ValueType const*> const& types) {
    QOR_ASSERT(names.size() == types.size());
    std::vector<ArgumentData> result;
    auto type = types.begin();
    for (char const* const name : names) {
        result.push_back({name, *type++});
    }
    return result;
}

} // namespace Qor::Detail
