#pragma once

#include "VornicL3Shared/model/ModelState.h"

#include <array>

namespace ModelTest {

/// What an operation works on, and so which words stand behind its name.
enum class Shape {
    plain,
    client,        ///< NAME
    clientKey,     ///< NAME KIND KEY
    clientEntry,   ///< NAME KIND KEY INDEX
    clientNumber,  ///< NAME NUMBER
    clientFlag,    ///< NAME on|off
    clientKind,    ///< NAME KIND
    clientKeyFlag, ///< NAME KIND KEY on|off
    kind,          ///< KIND
    key,           ///< KIND KEY
    entry,         ///< KIND KEY INDEX
    reference,     ///< KIND KEY INDEX NAME...
    number,        ///< NUMBER
    flag,          ///< on|off
    settings,      ///< table-size=N reallocation=on|off remote-low=on|off vfi-forwarding=on|off
    bitmap,        ///< ID SIZE on|off
};

/// All that can be done to a world: X(VERB, SHAPE, WORDS) for each. The first part is what the
/// agent and its clients do to the records, the second the life of the state machine, the third
/// calls of its operations, and the fourth calls of an allocator's.
#define MODEL_TEST_VERBS(X)                                                                        \
    X(clientAdd, client, "client add")                                                             \
    X(clientRemove, client, "client remove")                                                       \
    X(clientRetire, client, "client retire")                                                       \
    X(configReplace, client, "replace config")                                                     \
    X(statusReplace, client, "replace status")                                                     \
    X(statusRemove, client, "remove status")                                                       \
    X(request, clientKey, "request")                                                               \
    X(withdraw, clientKey, "withdraw")                                                             \
    X(putReference, reference, "put reference")                                                    \
    X(dropReference, key, "drop reference")                                                        \
    X(putStatus, clientEntry, "put status")                                                        \
    X(dropStatus, clientKey, "drop status")                                                        \
    X(putTableSize, clientNumber, "put table-size")                                                \
    X(putWaiting, key, "put waiting")                                                              \
    X(dropWaiting, key, "drop waiting")                                                            \
    X(putBoot, entry, "put boot")                                                                  \
    X(dropBoot, key, "drop boot")                                                                  \
    X(clearReferences, plain, "clear references")                                                  \
    X(clearWaiting, plain, "clear waiting")                                                        \
    X(clearBoot, plain, "clear boot")                                                              \
    X(saveBoot, plain, "save-boot")                                                                \
    X(start, settings, "start")                                                                    \
    X(restart, plain, "restart")                                                                   \
    X(stop, plain, "stop")                                                                         \
    X(reactors, flag, "reactors")                                                                  \
    X(zombie, flag, "zombie")                                                                      \
    X(clientReactors, clientFlag, "client reactors")                                               \
    X(clientZombie, clientFlag, "client zombie")                                                   \
    X(allocatorDel, client, "call vpIndexAllocatorDel")                                            \
    X(allocatorDelAll, plain, "call vpIndexAllocatorDelAll")                                       \
    X(handleConfig, client, "call handleVpIndexConfig")                                            \
    X(handleConfigs, plain, "call handleVpIndexConfig")                                            \
    X(handleInvalid, key, "call handleInvalid")                                                    \
    X(handleInvalidAll, kind, "call handleInvalid")                                                \
    X(allocIndex, flag, "call allocVpIndex")                                                       \
    X(freeIndex, number, "call freeVpIndex")                                                       \
    X(setIndex, number, "call setVpBitmap")                                                        \
    X(defaultVp, number, "call isDefaultVp")                                                       \
    X(recycle, number, "call recycleOrFreeVpIndex")                                                \
    X(bitmap, bitmap, "call vpBitmapIs")                                                           \
    X(rebuild, plain, "call vpBitmapDel, call handleInitialized")                                  \
    X(initializeAgain, plain, "call handleInitialized")                                            \
    X(reconcile, plain, "call reconcile")                                                          \
    X(clearStale, plain, "call clearStaleEntries")                                                 \
    X(clientKeyed, clientKey, "call-client")                                                       \
    X(clientSweep, clientKind, "call-client")                                                      \
    X(clientInitialize, client, "call-client handleInitialized")                                   \
    X(clientVerify, client, "call-client verify")                                                  \
    X(clientAllocStats, clientNumber, "call-client verifyAndUpdateAllocStats")                     \
    X(clientFreeStats, clientNumber, "call-client updateFreeStats")                                \
    X(clientRemoteRef, clientKeyFlag, "call-client getRemoteVportRef")

enum class Verb {
#define MODEL_TEST_ENUMERATOR(verb, shape, words) verb,
    MODEL_TEST_VERBS(MODEL_TEST_ENUMERATOR)
#undef MODEL_TEST_ENUMERATOR
};

/// One step of a sequence, free of any state: what it does depends on the world that it meets, and
/// it does nothing where there is nothing to work on.
struct Operation {
    Verb verb = Verb::restart;
    std::string client;
    Kind kind = Kind::remote;
    Key key = 0;
    U32 number = 0;
    U32 size = 0;
    bool flag = false;
    Names names;
    Settings settings;
};

Shape shapeOf(Verb verb);
/// The operation on one line, as in a script.
std::string textOf(Operation const& operation);

} // namespace ModelTest
