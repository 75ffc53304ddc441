#include "commands/OperationCall.h"

#include "language/Parse.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"
#include "text/Utf8.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace VpAgent {

namespace {

CallReply callReply(Qor::GenericValue const& value) {
    if (value.empty()) {
        return {};
    }
    switch (value.type()->kind()) {
    case Qor::ValueKind::boolean:
        return {value.as<bool>()};
    case Qor::ValueKind::number:
        return {static_cast<U64>(std::stoull(value.text()))};
    default:
        return {value.text()};
    }
}

[[noreturn]] void refuse(Qor::CallRefusal const& refusal, Word const& operation,
                         std::span<Word const> arguments) {
    if (refusal.argument == Qor::CallRefusal::operationName) {
        throw badWord("operation", operation, refusal.error);
    }
    if (refusal.argument < arguments.size()) {
        throw badWord("argument", arguments[refusal.argument], refusal.error);
    }
    Word const& last = arguments.empty() ? operation : arguments.back();
    throw Refusal("an argument is missing, expected " + refusal.error.expected,
                  Place{last.at + last.raw.size(), 0});
}

template <class Node>
Reply call(Node& node, Word const& operation, std::span<Word const> arguments) {
    std::vector<std::string_view> texts;
    std::transform(arguments.begin(), arguments.end(), std::back_inserter(texts),
                   [](Word const& word) { return word.text; });
    try {
        Qor::CallResult const result = Qor::callByName(node, operation.text, texts);
        if (result.refusal) {
            refuse(*result.refusal, operation, arguments);
        }
        return {callReply(result.value), {}};
    } catch (Qor::Exception const& exception) {
        throw Refusal(inQuotes(operation.text) + " was refused: " + exception.what(),
                      operation.place());
    }
}

} // namespace

Reply callOperation(Pelo::Node& node, Word const& operation, std::span<Word const> arguments) {
    return call(node, operation, arguments);
}

Reply callOperation(Found const& entity, Word const& operation, std::span<Word const> arguments) {
    return entity.constant() ? call(*entity.node(), operation, arguments)
                             : call(entity.mutableNode(), operation, arguments);
}

} // namespace VpAgent
