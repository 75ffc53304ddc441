// The importer: any text is refused, or gives keys that commands could have named.

#include "common/Input.h"
#include "import/RequestedKeys.h"
#include "language/Vport.h"
#include "state/Database.h"
#include "text/Refusal.h"

namespace {

using Fuzz::expect;

void checkKeys(VpAgent::RequestedKeys const& keys) {
    VornicCentral::forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        std::size_t count = 0;
        VpAgent::forEachMember(keys.of<Kind>(), [&](auto const& key, bool) {
            ++count;
            std::string const text = key.stringValue();
            auto const read = VpAgent::parseKey<Kind>(text);
            expect(read && *read == key, std::string("no command could name ") + text);
        });
        expect(count == keys.of<Kind>().memberCount(), "members that a walk does not meet");
    });
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    try {
        checkKeys(VpAgent::RequestedKeys(VpAgent::parseJson(Fuzz::Input(data, size).rest())));
    } catch (VpAgent::Refusal const& refusal) {
        expect(*refusal.what() != '\0', "a refusal that says nothing");
    }
    return 0;
}
