#pragma once

#include "qor/Entity.h"
#include "qor/TypeBuilder.h"
#include "vpstate/Kinds.h"

#include <string>

namespace VornicCentral {

/// What the documentation of a record says: of the record, of its name, and of a collection, where
/// the members of each kind stand between `before` and `after`.
struct RecordWords {
    char const* record;
    char const* name;
    char const* before;
    char const* after;
};

/// Begins the inspection table of a record: its creator, its name and its five collections.
template <class Record>
Qor::TypeBuilder<Record> recordTable(char const* typeName, RecordWords const& words,
                                     Pelo::Ptr<Record> (*create)(Pelo::String const&)) {
    Qor::TypeBuilder<Record> table(typeName);
    table.doc(words.record)
        .constructor(create, {"name"})
        .attribute(Qor::nameStringField, "nameString", &Record::nameString)
        .doc(words.name);
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        table
            .collection(Kind::field, Kind::collection, Kind::keyName,
                        &Record::template collection<Kind>)
            .set(&Record::template is<Kind>)
            .del(&Record::template del<Kind>)
            .delAll(&Record::template delAll<Kind>)
            .doc(std::string(words.before) + Kind::members + words.after);
    });
    return table;
}

} // namespace VornicCentral
