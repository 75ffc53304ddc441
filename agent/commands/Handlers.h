#pragma once

#include "language/Arguments.h"
#include "output/Reply.h"

namespace VpAgent {

class Agent;

/// What the commands do, a function each; `CommandTable` says how they are written and what they
/// mean.
///
/// A handler either carries its command out or throws `Refusal` before it has changed anything.
namespace Handlers {

// ClientCommands.cpp
Reply clientAdd(Agent& agent, Arguments const& arguments);
Reply clientRemove(Agent& agent, Arguments const& arguments);
Reply clientRetire(Agent& agent, Arguments const& arguments);
Reply request(Agent& agent, Arguments const& arguments);
Reply withdraw(Agent& agent, Arguments const& arguments);
Reply import(Agent& agent, Arguments const& arguments);

// RecordCommands.cpp
Reply putReference(Agent& agent, Arguments const& arguments);
Reply putStatus(Agent& agent, Arguments const& arguments);
Reply putWaiting(Agent& agent, Arguments const& arguments);
Reply putBoot(Agent& agent, Arguments const& arguments);
Reply dropReference(Agent& agent, Arguments const& arguments);
Reply dropStatus(Agent& agent, Arguments const& arguments);
Reply dropWaiting(Agent& agent, Arguments const& arguments);
Reply dropBoot(Agent& agent, Arguments const& arguments);
Reply clearReferences(Agent& agent, Arguments const& arguments);
Reply clearWaiting(Agent& agent, Arguments const& arguments);
Reply clearBoot(Agent& agent, Arguments const& arguments);
Reply saveBoot(Agent& agent, Arguments const& arguments);

// MachineCommands.cpp
Reply start(Agent& agent, Arguments const& arguments);
Reply stop(Agent& agent, Arguments const& arguments);
Reply restart(Agent& agent, Arguments const& arguments);
Reply call(Agent& agent, Arguments const& arguments);
Reply callClient(Agent& agent, Arguments const& arguments);
Reply clearStale(Agent& agent, Arguments const& arguments);
Reply verify(Agent& agent, Arguments const& arguments);

// InspectCommands.cpp
Reply inspect(Agent& agent, Arguments const& arguments);
/// `call` with a path: `word` is the path of an entity and the name of one of its operations.
Reply callAtPath(Agent& agent, Word const& word, std::span<Word const> arguments);

// McastCommands.cpp
Reply mcastCreate(Agent& agent, Arguments const& arguments);
Reply mcastDestroy(Agent& agent, Arguments const& arguments);
Reply mcastHigig(Agent& agent, Arguments const& arguments);
Reply mcastHigigDel(Agent& agent, Arguments const& arguments);
Reply mcastHigigClear(Agent& agent, Arguments const& arguments);
Reply mcastBackplane(Agent& agent, Arguments const& arguments);
Reply mcastInstall(Agent& agent, Arguments const& arguments);
Reply mcastRemove(Agent& agent, Arguments const& arguments);
Reply mcastUpdate(Agent& agent, Arguments const& arguments);
Reply mcastUpdateAll(Agent& agent, Arguments const& arguments);
Reply mcastShow(Agent& agent, Arguments const& arguments);

// RingCommands.cpp
Reply showRing(Agent& agent, Arguments const& arguments);
Reply ringDump(Agent& agent, Arguments const& arguments);
Reply message(Agent& agent, Arguments const& arguments);
Reply messageOff(Agent& agent, Arguments const& arguments);
Reply messageOn(Agent& agent, Arguments const& arguments);

// LookCommands.cpp
Reply dump(Agent& agent, Arguments const& arguments);
Reply show(Agent& agent, Arguments const& arguments);
Reply begin(Agent& agent, Arguments const& arguments);
Reply commit(Agent& agent, Arguments const& arguments);
Reply echo(Agent& agent, Arguments const& arguments);
Reply help(Agent& agent, Arguments const& arguments);
Reply quit(Agent& agent, Arguments const& arguments);

} // namespace Handlers

/// The client that a word names; throws `Refusal` when it is not known.
struct Client;
Client const& knownClient(Agent const& agent, Word const& name);

/// The refusal, at the place of a word, of what would go beyond `Limits::keys`; `where` says what
/// the keys are or where they stand.
Refusal tooManyKeys(std::string_view where, Word const& word);

} // namespace VpAgent
