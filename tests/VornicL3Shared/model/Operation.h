#pragma once

#include "VornicL3Shared/model/ModelState.h"

namespace ModelTest {

/// All that can be done to a world: X(VERB, SCRIPT LINE) for each, the line with its operands in
/// braces (see `textOf`). First what the agent and its clients do to the records, then the life of
/// the state machine, then calls of its operations, and at last calls of an allocator's.
#define MODEL_TEST_VERBS(X)                                                                        \
    X(clientAdd, "client add {client}")                                                            \
    X(clientRemove, "client remove {client}")                                                      \
    X(clientRetire, "client retire {client}")                                                      \
    X(configReplace, "replace config {client}")                                                    \
    X(statusReplace, "replace status {client}")                                                    \
    X(statusRemove, "remove status {client}")                                                      \
    X(configNull, "config {client} = none")                                                        \
    X(statusNull, "status {client} = none")                                                        \
    X(configAlias, "config {client} = config {other}")                                             \
    X(statusAlias, "status {client} = status {other}")                                             \
    X(configClear, "clear configs")                                                                \
    X(statusClear, "clear statuses")                                                               \
    X(request, "request {client} {kind} {key}")                                                    \
    X(withdraw, "withdraw {client} {kind} {key}")                                                  \
    X(putRequest, "put request {client} {kind} {key} {flag}")                                      \
    X(withdrawAll, "withdraw-all {client} {kind}")                                                 \
    X(putReference, "put reference {kind} {key} {number}{names}")                                  \
    X(dropReference, "drop reference {kind} {key}")                                                \
    X(putStatus, "put status {client} {kind} {key} {number}")                                      \
    X(dropStatus, "drop status {client} {kind} {key}")                                             \
    X(clearStatus, "clear status {client} {kind}")                                                 \
    X(putTableSize, "put table-size {client} {number}")                                            \
    X(putCounter, "put counter {client} {counter} {number}")                                       \
    X(addToCounter, "add to counter {client} {counter} {number}")                                  \
    X(putWaiting, "put waiting {kind} {key} {flag}")                                               \
    X(dropWaiting, "drop waiting {kind} {key}")                                                    \
    X(putBoot, "put boot {kind} {key} {number}")                                                   \
    X(dropBoot, "drop boot {kind} {key}")                                                          \
    X(clearReferences, "clear references")                                                         \
    X(clearWaiting, "clear waiting")                                                               \
    X(clearBoot, "clear boot")                                                                     \
    X(saveBoot, "save-boot")                                                                       \
    X(look, "look {client} {kind} {key}")                                                          \
    X(start, "start {settings}")                                                                   \
    X(restart, "restart")                                                                          \
    X(stop, "stop")                                                                                \
    X(reactors, "reactors active={flag}")                                                          \
    X(zombie, "reactors zombie={flag}")                                                            \
    X(clientReactors, "reactors {client} active={flag}")                                           \
    X(clientZombie, "reactors {client} zombie={flag}")                                             \
    X(allocatorDel, "call vpIndexAllocatorDel {client}")                                           \
    X(allocatorDelAll, "call vpIndexAllocatorDelAll")                                              \
    X(allocatorIs, "call vpIndexAllocatorIs {client} {variant} {other}")                           \
    X(handleConfig, "call handleVpIndexConfig {client}")                                           \
    X(handleConfigs, "call handleVpIndexConfig")                                                   \
    X(handleInvalid, "call handleInvalid{Kind} {key}")                                             \
    X(handleInvalidAll, "call handleInvalid{Kind}")                                                \
    X(allocIndex, "call allocVpIndex {flag}")                                                      \
    X(freeIndex, "call freeVpIndex {number}")                                                      \
    X(setIndex, "call setVpBitmap {number}")                                                       \
    X(defaultVp, "call isDefaultVp {number}")                                                      \
    X(recycle, "call recycleOrFreeVpIndex {number}")                                               \
    X(bitmap, "call vpBitmapIs {number} {size} {flag}")                                            \
    X(rebuild, "call vpBitmapDel and handleInitialized")                                           \
    X(initializeAgain, "call handleInitialized")                                                   \
    X(reconcile, "call reconcile")                                                                 \
    X(clearStale, "call clearStaleEntries")                                                        \
    X(clientKeyed, "call-client {client} handle{Kind} {key}")                                      \
    X(clientSweep, "call-client {client} handle{Kind}")                                            \
    X(clientInitialize, "call-client {client} handleInitialized")                                  \
    X(clientVerify, "call-client {client} verify")                                                 \
    X(clientVerifyKind, "call-client {client} verify {kind}")                                      \
    X(clientAllocStats, "call-client {client} verifyAndUpdateAllocStats {number}")                 \
    X(clientFreeStats, "call-client {client} updateFreeStats {number}")                            \
    X(clientRemoteRef, "call-client {client} getRemoteVportRef {key} {flag}")                      \
    X(clientRemoteCommon, "call-client {client} handleRemoteVportCommon {key} {flag}")             \
    X(clientRemoteReferenced, "call-client {client} remoteVportInVpReference {key} {flag}")        \
    X(clientRemoteRequested, "call-client {client} remoteVportInVpIndexConfig {key} {flag}")       \
    X(clientRemoteIndex, "call-client {client} getRemoteVportVpIndex {key} {flag}")                \
    X(clientRemoteToStatus, "call-client {client} addRemoteVportToStatus {key} {number} {flag}")   \
    X(clientRemoteToReference,                                                                     \
      "call-client {client} addRemoteVportToVpRef {key} {number}{names} {flag}")                   \
    X(clientRemoteFromReference, "call-client {client} delRemoteVportFromVpRef {key} {flag}")      \
    X(clientRemoteFromStatus, "call-client {client} delRemoteVportFromVpIndexStatus {key} {flag}")

enum class Verb {
#define MODEL_TEST_ENUMERATOR(verb, line) verb,
    MODEL_TEST_VERBS(MODEL_TEST_ENUMERATOR)
#undef MODEL_TEST_ENUMERATOR
};

/// With what `vpIndexAllocatorIs` is called, apart from the client's own records: all in order, or
/// one argument that is not.
enum class Variant {
    inOrder,
    withoutConfig,
    withoutStateMachine,
    withoutStatus,
    withoutReferences,
    otherSwitch,
    statusOfOther,
};
inline constexpr U32 variantCount = 7;

/// A counter of a status that is written by hand.
enum class Counter { requests, failures, frees };
inline constexpr U32 counterCount = 3;

/// One step of a sequence, free of any state: what it does depends on the world that it meets, and
/// it does nothing where there is nothing to work on.
struct Operation {
    Verb verb = Verb::restart;
    std::string client;
    std::string other; ///< another client
    Kind kind = Kind::remote;
    Key key = 0;
    U32 number = 0;
    U32 size = 0;
    Variant variant = Variant::inOrder;
    Counter counter = Counter::requests;
    bool flag = false;
    Names names;
    Settings settings;
};

/// The reference of its number and names.
Reference referenceOf(Operation const& operation);

/// The operation on one line, as the agent's command language has it as far as it goes.
std::string textOf(Operation const& operation);

} // namespace ModelTest
