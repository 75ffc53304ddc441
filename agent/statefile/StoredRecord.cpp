#include "statefile/StoredRecord.h"

#include "language/Parse.h"
#include "text/Utf8.h"

namespace VpAgent {

using namespace VornicCentral;

namespace {

/// No client name holds a control character.
constexpr char betweenNames = '\n';

void joinNames(VpReference const& reference, std::string& room) {
    room.clear();
    for (Pelo::String const& name : reference.references()) {
        if (!room.empty()) {
            room += betweenNames;
        }
        room += name.view();
    }
}

} // namespace

void StoredValue<VpReference>::write(RowWriter& row, VpReference const& reference,
                                     std::string& room) {
    joinNames(reference, room);
    row.add(U64{reference.vPort().vpIndex()}).add(std::string_view(room));
}

VpReference StoredValue<VpReference>::read(RowReader& row) {
    VpReference reference(StoredValue<VirtualPort>::read(row));
    std::string_view const names = row.text();
    std::string_view rest = names;
    while (!rest.empty()) {
        std::string_view const name = rest.substr(0, rest.find(betweenNames));
        if (nameFault(name) || reference.referenceHas(name)) {
            row.refuse(inQuotes(name) + " is no client name, or is there twice");
        }
        reference.referenceIs(name, true);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
    std::string printed;
    joinNames(reference, printed);
    if (printed != names) {
        row.refuse("the names of its clients do not read back as they are printed");
    }
    return reference;
}

} // namespace VpAgent
