#include "VornicL3Shared/model/HandlerWords.h"
#include "VornicL3Shared/model/Model.h"

/// The two remote kinds.
namespace ModelTest {

void Model::handleRemote(Client client, Kind kind, Key key) {
    HandlerWords const& words = handlerWords(kind);
    trace(1, words.handler, words.label, keyText(kind, key).text);
    handleRemoteCommon(client, kind, key);
}

void Model::handleRemoteCommon(Client client, Kind kind, Key key) {
    char const* const tag = handlerWords(kind).tag;
    trace(1, "handleRemoteVportCommon", tag, " vtep: ", keyText(kind, key).vtep);
    Reference const reference = getRemoteVportRef(kind, key);
    if (requested(client, kind, key)) {
        addRemote(client, kind, key, reference);
    } else {
        trace(5, "handleRemoteVportCommon", tag, " vport deletion for: ", nameOf(client));
        withdraw(client, kind, key, reference);
    }
}

Reference Model::getRemoteVportRef(Kind kind, Key key) {
    Reference const* const found = state_.references[kind].find(key);
    Reference const reference = found == nullptr ? Reference() : *found;
    bool const mlag = kind == Kind::mlag;
    trace(5,
          "VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
          "const VornicCentral::RemoteVtepKey&, bool) const",
          " : remoteVtep : ", keyText(kind, key).text, ", mlag = ", mlag ? "true" : "false",
          ", vpIndex = ", reference.vPort.index, " -- ",
          found == nullptr ? " No Match "
          : mlag           ? " Mlag SameVpType Match "
                           : " NonMlag Vport Match ");
    return reference;
}

void Model::addRemote(Client client, Kind kind, Key key, Reference reference) {
    char const* const tag = handlerWords(kind).tag;
    KeyText const& text = keyText(kind, key);
    trace(5, "handleRemoteVportCommon", tag, " vport addition for: ", nameOf(client));
    VPort vPort;
    if (state_.references[kind].has(key)) {
        trace(5, "handleRemoteVportCommon", tag, ": existing vport found");
        vPort = reference.vPort;
    } else {
        bool const preferHigh =
            kind == Kind::mlag || !machine().settings.capabilities || !machine().settings.remoteLow;
        trace(5, "handleRemoteVportCommon", tag, ": allocating vp index for vtep: ", text.vtep);
        vPort = allocate(client, kind, key, preferHigh);
        reference.vPort = vPort;
    }
    trace(5, "handleRemoteVportCommon", " remoteVtepKey: ", text.text, " vPort: ", vPort.index);
    statusIs(client.status, kind, key, vPort);
    reference.add(nameOf(client));
    referenceIs(kind, key, reference);
}

} // namespace ModelTest
