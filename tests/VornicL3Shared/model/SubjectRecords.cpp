#include "VornicL3Shared/model/Subject.h"

/// The operations on the records, as the library's users carry them out: by template, or by number
/// through generic access.
namespace ModelTest {
namespace {

using Qor::GenericValue;
using Qor::OpCode;

std::string boolText(bool value) { return value ? "true" : "false"; }

std::string text(bool) { return ""; }
std::string text(VornicCentral::VirtualPort vPort) { return "=" + std::to_string(vPort.vpIndex()); }
std::string text(VornicCentral::VpReference const& reference) { return referenceText(reference); }

} // namespace

template <class K, class Record, class Value>
void Subject::put(Record& record, typename K::Key const& key, Value const& value) const {
    if (generic_) {
        Qor::inspectOperation(record, K::field, OpCode::set,
                              {GenericValue::of(key), GenericValue::of(value)});
    } else {
        record.template is<K>(key, value);
    }
}

template <class K, class Record>
typename Record::Value Subject::take(Record& record, typename K::Key const& key) const {
    if (generic_) {
        return Qor::inspectOperation(record, K::field, OpCode::del, {GenericValue::of(key)})
            .template as<typename Record::Value>();
    }
    return record.template del<K>(key);
}

template <class K, class Record> void Subject::clear(Record& record) const {
    if (generic_) {
        Qor::inspectOperation(record, K::field, OpCode::delAll);
    } else {
        record.template delAll<K>();
    }
}

template <class K, class Record>
std::string Subject::lookAt(Record const& record, typename K::Key const& key) const {
    if (!generic_) {
        return boolText(record.template has<K>(key)) + text(record.template get<K>(key)) + " of " +
               std::to_string(record.template collection<K>().memberCount()) + "\n";
    }
    auto const inspect = [&](OpCode code) {
        return Qor::inspectOperation(record, K::field, code, {GenericValue::of(key)});
    };
    return boolText(inspect(OpCode::has).template as<bool>()) +
           text(inspect(OpCode::get).template as<typename Record::Value>()) + " of " +
           std::to_string(
               Qor::inspectOperation(record, K::field, OpCode::count).template as<U32>()) +
           "\n";
}

template <class K> std::string Subject::look(Operation const& operation) {
    auto const& key = keys_.get<K>(operation.key);
    Pelo::String const name = nameOf(operation);
    std::string seen = lookAt<K>(*world_.references, key) + lookAt<K>(*world_.waiting, key) +
                       lookAt<K>(*world_.boot, key);
    if (auto const config = world_.configDir->vpIndexConfig(name)) {
        seen += lookAt<K>(*config, key);
    }
    if (auto const status = world_.statusDir->vpIndexStatus(name)) {
        seen += lookAt<K>(*status, key);
    }
    return seen;
}

template <class K> bool Subject::keyedRecordOperation(Operation const& operation) {
    auto const& key = keys_.get<K>(operation.key);
    VornicCentral::VirtualPort const vPort(static_cast<U16>(operation.number));
    switch (operation.verb) {
    case Verb::putReference:
        put<K>(*world_.references, key, libraryReference(operation));
        return true;
    case Verb::dropReference:
        result_ = referenceText(take<K>(*world_.references, key));
        return true;
    case Verb::putWaiting:
        put<K>(*world_.waiting, key, operation.flag);
        return true;
    case Verb::dropWaiting:
        result_ = boolText(take<K>(*world_.waiting, key));
        return true;
    case Verb::putBoot:
        put<K>(*world_.boot, key, vPort);
        return true;
    case Verb::dropBoot:
        result_ = text(take<K>(*world_.boot, key));
        return true;
    case Verb::look:
        result_ = look<K>(operation);
        return true;
    default:
        return keyedClientOperation<K>(operation);
    }
}

template <class K> bool Subject::keyedClientOperation(Operation const& operation) {
    auto const& key = keys_.get<K>(operation.key);
    auto const status = [&] { return world_.statusDir->vpIndexStatus(nameOf(operation)); };
    switch (operation.verb) {
    case Verb::request:
        put<K>(ownConfig(operation), key, true);
        return true;
    case Verb::putRequest:
        put<K>(ownConfig(operation), key, operation.flag);
        return true;
    case Verb::withdraw:
        result_ = boolText(take<K>(ownConfig(operation), key));
        return true;
    case Verb::withdrawAll:
        clear<K>(ownConfig(operation));
        return true;
    case Verb::putStatus:
        put<K>(*status(), key, VornicCentral::VirtualPort(static_cast<U16>(operation.number)));
        return true;
    case Verb::dropStatus:
        result_ = text(take<K>(*status(), key));
        return true;
    case Verb::clearStatus:
        clear<K>(*status());
        return true;
    default:
        return false;
    }
}

bool Subject::statusOperation(Operation const& operation) {
    auto const status = world_.statusDir->vpIndexStatus(nameOf(operation));
    U32 const number = operation.number;
    if (operation.verb == Verb::putTableSize) {
        status->vpTableSizeIs(number);
        return true;
    }
    if (operation.verb != Verb::putCounter && operation.verb != Verb::addToCounter) {
        return false;
    }
    bool const add = operation.verb == Verb::addToCounter;
    switch (operation.counter) {
    case Counter::requests:
        add ? status->vpAllocRequestsInc(number) : status->vpAllocRequestsIs(number);
        break;
    case Counter::failures:
        add ? status->vpAllocFailuresInc(number) : status->vpAllocFailuresIs(number);
        break;
    case Counter::frees:
        add ? status->vpFreeRequestsInc(number) : status->vpFreeRequestsIs(number);
        break;
    }
    return true;
}

bool Subject::recordOperation(Operation const& operation) {
    switch (operation.verb) {
    case Verb::clearReferences:
        VornicCentral::forEachKind([&](auto kind) { clear<decltype(kind)>(*world_.references); });
        return true;
    case Verb::clearWaiting:
        VornicCentral::forEachKind([&](auto kind) { clear<decltype(kind)>(*world_.waiting); });
        return true;
    case Verb::clearBoot:
        VornicCentral::forEachKind([&](auto kind) { clear<decltype(kind)>(*world_.boot); });
        return true;
    case Verb::saveBoot:
        saveBoot();
        return true;
    default:
        return statusOperation(operation) || withKind(operation.kind, [&](auto kind) {
                   return keyedRecordOperation<decltype(kind)>(operation);
               });
    }
}

} // namespace ModelTest
