#pragma once

#include "qor/TypeBuilder.h"
#include "vpstate/Kinds.h"

namespace VornicCentral {

/// Begins the inspection table of a record: its creator, its name and its five collections.
template <class Record>
Qor::TypeBuilder<Record> recordTable(char const* typeName,
                                     Pelo::Ptr<Record> (*create)(Pelo::String const&)) {
    Qor::TypeBuilder<Record> table(typeName);
    table.constructor(create, {"name"})
        .attribute(Qor::nameStringField, "nameString", &Record::nameString);
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        table
            .collection(Kind::field, Kind::collection, Kind::keyName,
                        &Record::template collection<Kind>)
            .set(&Record::template is<Kind>)
            .del(&Record::template del<Kind>)
            .delAll(&Record::template delAll<Kind>);
    });
    return table;
}

} // namespace VornicCentral
