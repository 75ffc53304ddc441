#include "inspect/Found.h"

#include "inspect/Fields.h"
#include "inspect/Roots.h"
#include "qor/Inspection.h"
#include "text/Alternatives.h"
#include "text/Utf8.h"

namespace VpAgent {

using Qor::FieldData;
using Qor::FieldKind;
using Qor::GenericValue;

namespace {

/// As many keys as a person reads.
constexpr std::size_t listedKeys = 20;

std::string keysOf(Pelo::Node const& node, FieldData const& collection) {
    Alternatives keys(listedKeys);
    forEachMember(node, collection, [&](GenericValue const& key, GenericValue const&) {
        keys.add(printable(asStep(key.text())));
    });
    return keys.empty() ? "a key, but there is none" : keys.text();
}

std::string fieldsOf(Pelo::Node const& node) {
    Alternatives names;
    for (FieldKind const kind : {FieldKind::attribute, FieldKind::collection}) {
        forEachField(node.typeData(), kind, [&](FieldData const& field) { names.add(field.name); });
    }
    return names.empty() ? "the end of the path" : names.text();
}

std::string rootNames() {
    Alternatives names;
    for (Root const& root : roots()) {
        names.add(root.name);
    }
    return names.text();
}

} // namespace

Found Found::entity(GenericValue const& pointer, bool throughConstant) {
    Found found;
    found.node_ = pointer.node();
    found.constant_ = throughConstant || !pointer.type()->pointsToMutable();
    return found;
}

Found Found::next(Step const& step, Word const& word) const {
    if (collection_ != nullptr) {
        return memberOf(step, word);
    }
    if (node_) {
        return fieldOf(step, word);
    }
    throw Refusal(inQuotes(step.text) + " follows a value, expected the end of the path",
                  step.place(word));
}

Found Found::fieldOf(Step const& step, Word const& word) const {
    Qor::TypeData const* const type = node_->typeData();
    FieldData const* const field = type == nullptr ? nullptr : type->fieldByName(step.text);
    if (field == nullptr || field->kind == FieldKind::operation) {
        std::string const name = inQuotes(step.text);
        std::string const why = field == nullptr ? typeName(*node_) + " has no field " + name
                                                 : name + " is an operation, which 'call' calls";
        throw Refusal(why + ", expected " + fieldsOf(*node_), step.place(word));
    }
    if (field->kind == FieldKind::collection) {
        Found found = *this;
        found.collection_ = field;
        return found;
    }
    return valueAt(Qor::inspectOperation(*node_, field->number, Qor::OpCode::get), step, word);
}

Found Found::memberOf(Step const& step, Word const& word) const {
    std::string const where = std::string(" in ") + collection_->name + ", expected ";
    auto const key = collection_->key.type->parse(step.text);
    if (!key) {
        throw Refusal("bad key " + inQuotes(step.text) + where + key.error().expected + " (key " +
                          collection_->key.name + ')',
                      step.place(word));
    }
    GenericValue const member =
        Qor::inspectOperation(*node_, collection_->number, Qor::OpCode::lookup, {*key});
    if (member.empty()) {
        throw Refusal("no key " + inQuotes(step.text) + where + keysOf(*node_, *collection_),
                      step.place(word));
    }
    return valueAt(member, step, word);
}

Found Found::valueAt(GenericValue const& value, Step const& step, Word const& word) const {
    if (value.type()->kind() != Qor::ValueKind::entity) {
        Found found;
        found.value_ = value;
        return found;
    }
    Found found = entity(value, constant_);
    if (found.node() == nullptr) {
        throw Refusal(inQuotes(step.text) + " is a null pointer, expected a " +
                          value.type()->name() + " that points to an entity",
                      step.place(word));
    }
    return found;
}

Found follow(Agent const& agent, std::span<Step const> steps, Word const& word) {
    Step const& first = steps.front();
    Root const* const root = findRoot(first.text);
    if (root == nullptr) {
        throw Refusal("unknown root " + inQuotes(first.text) + ", expected " + rootNames(),
                      first.place(word));
    }
    Found found = Found::entity(root->entity(agent));
    if (found.node() == nullptr) {
        throw Refusal(std::string(root->missing), first.place(word));
    }
    for (Step const& step : steps.subspan(1)) {
        found = found.next(step, word);
    }
    return found;
}

} // namespace VpAgent
