#include "VornicL3Shared/model/HandlerWords.h"

namespace ModelTest {

HandlerWords const& handlerWords(Kind kind) {
    static std::array<HandlerWords, kindCount> const words = {{
        {"handleRemoteVport", " Vtep: "},
        {"handleMlagRemoteVport", " mlagVtep: ", " mlag "},
        {"handleEdgeVport", " pvKey: ", "", " allocating vp index for pvKey: "},
        {"handleVlanVport", " vlan: ", "", " allocating vp index for vlan: "},
        {"handleEFilterDisableVport", " intf: ", "", " allocating vp index for intf: "},
    }};
    return words.at(static_cast<std::size_t>(kind));
}

std::string fullText(Kind kind, Key key) {
    KeyText const& text = keyText(kind, key);
    switch (kind) {
    case Kind::remote:
        return "vxlan remote  vtep: " + text.group;
    case Kind::mlag:
        return "vxlan remote  mlag  vtep: " + text.group;
    case Kind::edge:
        return "vxlan edge port: " + text.intf + ", vlan: " + text.vlan;
    case Kind::vlan:
        return "vxlan vlan " + text.vlan + " svp";
    default:
        return "eFilterDisable intf " + text.intf + " svp";
    }
}

std::string normalText(Kind kind, Key key) {
    KeyText const& text = keyText(kind, key);
    switch (kind) {
    case Kind::edge:
        return "vxlan edge port: " + text.intf + ", vlan: " + text.vlan;
    case Kind::vlan:
        return "vxlan vlan " + text.vlan + " svp";
    case Kind::efilter:
        return "eFilterDisable intf: " + text.intf;
    default:
        return "vxlan remote vtep: " + text.group;
    }
}

} // namespace ModelTest
