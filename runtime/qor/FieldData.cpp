#include "qor/FieldData.h"

#include <algorithm>

namespace Qor {

std::string stringValue(OpCode code) {
    switch (code) {
    case OpCode::get:
        return "get";
    case OpCode::lookup:
        return "lookup";
    case OpCode::set:
        return "set";
    case OpCode::has:
        return "has";
    case OpCode::del:
        return "del";
    case OpCode::delAll:
        return "delAll";
    case OpCode::count:
        return "count";
    case OpCode::iterate:
        return "iterate";
    case OpCode::call:
        return "call";
    }
    return std::to_string(static_cast<int>(code));
}

FieldAccess const* FieldData::access(OpCode code) const noexcept {
    auto const at = std::find_if(accesses.begin(), accesses.end(),
                                 [code](FieldAccess const& a) { return a.code == code; });
    return at == accesses.end() ? nullptr : &*at;
}

std::span<ArgumentData const> FieldData::arguments() const noexcept {
    FieldAccess const* const call = access(OpCode::call);
    return call == nullptr ? std::span<ArgumentData const>() : call->arguments;
}

bool FieldData::readOnly() const noexcept {
    return std::none_of(accesses.begin(), accesses.end(),
                        [](FieldAccess const& a) { return a.changes; });
}

std::string FieldData::signature() const {
    std::string text = name;
    if (kind == FieldKind::operation) {
        text += "(" + listText(arguments()) + ")";
    } else if (kind == FieldKind::collection) {
        text += "[" + listText({&key, 1}) + "]";
    }
    if (type != nullptr) {
        text += ": " + type->name();
    }
    if (readOnly()) {
        text += kind == FieldKind::operation ? " const" : " (read-only)";
    }
    return text;
}

std::string listText(std::span<ArgumentData const> arguments) {
    std::string text;
    for (ArgumentData const& argument : arguments) {
        text += text.empty() ? "" : ", ";
        text += argument.name;
        text += ": " + argument.type->name();
    }
    return text;
}

} // namespace Qor
