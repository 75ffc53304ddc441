#include "VornicL3Shared/model/Subject.h"

/// The operations that tools reach through generic access, by the numbers on which those rely.
namespace ModelTest {
namespace {

using Qor::GenericValue;
using Values = std::vector<GenericValue>;

/// Calls an operation by its number and gives its result as text.
std::string called(Pelo::Node& node, Pelo::FieldId number, Values const& arguments = {}) {
    return Qor::inspectOperation(node, number, Qor::OpCode::call, arguments).text();
}

/// The number of a kind's operation, where those of the five kinds follow one another.
Pelo::FieldId ofKind(Pelo::FieldId first, Kind kind) {
    return first + static_cast<Pelo::FieldId>(kind);
}

GenericValue keyOf(Operation const& operation, LibraryKeys const& keys) {
    return withKind(operation.kind, [&](auto kind) {
        return GenericValue::of(keys.get<decltype(kind)>(operation.key));
    });
}

} // namespace

std::optional<std::string> Subject::genericCall(Operation const& operation) {
    Pelo::Node& sm = *world_.sm;
    Values const number{GenericValue::of(operation.number)};
    switch (operation.verb) {
    case Verb::handleConfig:
        return called(sm, 141, {GenericValue::of(nameOf(operation))});
    case Verb::handleInvalid:
        return called(sm, ofKind(142, operation.kind), {keyOf(operation, keys_)});
    case Verb::allocIndex:
        return called(sm, 147, {GenericValue::of(operation.flag)});
    case Verb::freeIndex:
        return called(sm, 148, number);
    case Verb::setIndex:
        return called(sm, 149, number);
    case Verb::defaultVp:
        return called(sm, 150, number);
    case Verb::recycle:
        return called(sm, 151, number);
    case Verb::reconcile:
        return called(sm, 153);
    case Verb::clearStale:
        return called(sm, 154);
    case Verb::initializeAgain:
        return called(sm, 156);
    default:
        return std::nullopt;
    }
}

std::optional<std::string> Subject::genericClientCall(Operation const& operation) {
    Pelo::Node& client = allocator(operation);
    switch (operation.verb) {
    case Verb::clientKeyed:
        return called(client, ofKind(136, operation.kind), {keyOf(operation, keys_)});
    case Verb::clientVerify:
        return called(client, 141);
    case Verb::clientVerifyKind:
        return called(client, ofKind(142, operation.kind));
    default:
        return std::nullopt;
    }
}

void Subject::verify() {
    if (generic_) {
        called(*world_.sm, 152);
    } else {
        world_.sm->verify();
    }
}

} // namespace ModelTest
