#include "VornicL3Shared/model/Model.h"
#include "VornicL3Shared/model/Operation.h"

/// The operations on the records, as the model carries them out.
namespace ModelTest {
namespace {

U32 Status::*fieldOf(Counter counter) {
    switch (counter) {
    case Counter::requests:
        return &Status::requests;
    case Counter::failures:
        return &Status::failures;
    default:
        return &Status::frees;
    }
}

std::string boolText(bool value) { return value ? "true" : "false"; }

/// Whether a key is there, and its value or a default one.
template <class V> std::string lookText(Members<Key, V> const& members, Key key) {
    return boolText(members.has(key)) + valueText(members.get(key)) + " of " +
           std::to_string(members.size()) + "\n";
}

} // namespace

bool Model::requestOperation(Operation const& operation) {
    RecordId const config = ownConfig(operation.client);
    Kind const kind = operation.kind;
    switch (operation.verb) {
    case Verb::request:
        configIs(config, kind, operation.key, {true});
        return true;
    case Verb::putRequest:
        configIs(config, kind, operation.key, {operation.flag});
        return true;
    case Verb::withdraw:
        result_ = boolText(state_.configs[config].keys[kind].get(operation.key).on);
        configDel(config, kind, operation.key);
        return true;
    case Verb::withdrawAll:
        state_.configs[config].keys[kind].walk([&](Key key) { configDel(config, kind, key); });
        return true;
    default:
        return false;
    }
}

bool Model::recordOperation(Operation const& operation) {
    Kind const kind = operation.kind;
    Key const key = operation.key;
    switch (operation.verb) {
    case Verb::putReference:
        referenceIs(kind, key, referenceOf(operation));
        return true;
    case Verb::dropReference:
        result_ = valueText(state_.references[kind].get(key));
        referenceDel(kind, key);
        return true;
    case Verb::putWaiting:
        waitingIs(kind, key, {operation.flag});
        return true;
    case Verb::dropWaiting:
        result_ = boolText(state_.waiting[kind].get(key).on);
        waitingDel(kind, key);
        return true;
    case Verb::putBoot:
        bootIs(kind, key, {operation.number});
        return true;
    case Verb::dropBoot:
        result_ = valueText(state_.boot[kind].get(key));
        bootDel(kind, key);
        return true;
    case Verb::saveBoot:
        saveBoot();
        return true;
    case Verb::look:
        result_ = look(operation);
        return true;
    default:
        return false;
    }
}

bool Model::statusOperation(Operation const& operation) {
    RecordId const id = statusOf(operation.client);
    Kind const kind = operation.kind;
    U32 Status::*const counter = fieldOf(operation.counter);
    switch (operation.verb) {
    case Verb::putStatus:
        statusIs(id, kind, operation.key, {operation.number});
        return true;
    case Verb::dropStatus:
        result_ = valueText(state_.statuses[id].vports[kind].get(operation.key));
        statusDel(id, kind, operation.key);
        return true;
    case Verb::clearStatus:
        state_.statuses[id].vports[kind].walk([&](Key key) { statusDel(id, kind, key); });
        return true;
    case Verb::putTableSize:
        counterIs(id, &Status::size, operation.number);
        return true;
    case Verb::putCounter:
        counterIs(id, counter, operation.number);
        return true;
    case Verb::addToCounter:
        counterIs(id, counter, state_.statuses[id].*counter + operation.number);
        return true;
    default:
        return false;
    }
}

bool Model::clearOperation(Operation const& operation) {
    if (operation.verb != Verb::clearReferences && operation.verb != Verb::clearWaiting &&
        operation.verb != Verb::clearBoot) {
        return false;
    }
    for (Kind const each : fixedOrder) {
        if (operation.verb == Verb::clearReferences) {
            state_.references[each].walk([&](Key member) { referenceDel(each, member); });
        } else if (operation.verb == Verb::clearWaiting) {
            state_.waiting[each].walk([&](Key member) { waitingDel(each, member); });
        } else {
            state_.boot[each].walk([&](Key member) { bootDel(each, member); });
        }
    }
    return true;
}

/// What all records say of a key.
std::string Model::look(Operation const& operation) {
    Kind const kind = operation.kind;
    std::string text = lookText(state_.references[kind], operation.key) +
                       lookText(state_.waiting[kind], operation.key) +
                       lookText(state_.boot[kind], operation.key);
    if (state_.configDir.has(operation.client)) {
        text += lookText(state_.configs[state_.configDir.get(operation.client)].keys[kind],
                         operation.key);
    }
    if (state_.statusDir.has(operation.client)) {
        text += lookText(state_.statuses[statusOf(operation.client)].vports[kind], operation.key);
    }
    return text;
}

} // namespace ModelTest
