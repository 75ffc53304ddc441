#include "VornicL3Shared/model/Generator.h"

namespace ModelTest {
namespace {

Flavour::Weights const requests = {
    {Verb::request, 500},     {Verb::withdraw, 300},   {Verb::clientAdd, 30},
    {Verb::saveBoot, 10},     {Verb::clientRetire, 8}, {Verb::clientKeyed, 30},
    {Verb::restart, 30},      {Verb::clearStale, 25},  {Verb::clientSweep, 15},
    {Verb::stop, 10},         {Verb::start, 12},       {Verb::handleConfigs, 5},
    {Verb::handleInvalid, 5}, {Verb::withdrawAll, 4},  {Verb::look, 15}};

Flavour::Weights const calls = {{Verb::clientKeyed, 60},
                                {Verb::clientSweep, 30},
                                {Verb::clientRemoteRef, 20},
                                {Verb::clientAllocStats, 8},
                                {Verb::clientFreeStats, 8},
                                {Verb::clientInitialize, 10},
                                {Verb::clientVerify, 10},
                                {Verb::allocIndex, 40},
                                {Verb::freeIndex, 40},
                                {Verb::setIndex, 20},
                                {Verb::defaultVp, 10},
                                {Verb::recycle, 40},
                                {Verb::handleInvalid, 25},
                                {Verb::handleInvalidAll, 25},
                                {Verb::handleConfig, 20},
                                {Verb::handleConfigs, 15},
                                {Verb::clearStale, 25},
                                {Verb::reconcile, 6},
                                {Verb::initializeAgain, 2},
                                {Verb::rebuild, 8},
                                {Verb::bitmap, 5},
                                {Verb::allocatorDel, 12},
                                {Verb::allocatorDelAll, 4},
                                {Verb::reactors, 12},
                                {Verb::zombie, 12},
                                {Verb::clientReactors, 12},
                                {Verb::clientZombie, 12},
                                {Verb::allocatorIs, 25},
                                {Verb::clientVerifyKind, 10},
                                {Verb::clientRemoteCommon, 15},
                                {Verb::clientRemoteReferenced, 5},
                                {Verb::clientRemoteRequested, 5},
                                {Verb::clientRemoteIndex, 5},
                                {Verb::clientRemoteToStatus, 8},
                                {Verb::clientRemoteToReference, 8},
                                {Verb::clientRemoteFromReference, 8},
                                {Verb::clientRemoteFromStatus, 8}};

Flavour::Weights const records = {
    {Verb::putReference, 60},    {Verb::dropReference, 40}, {Verb::putStatus, 40},
    {Verb::dropStatus, 30},      {Verb::putTableSize, 6},   {Verb::putWaiting, 40},
    {Verb::dropWaiting, 25},     {Verb::putBoot, 40},       {Verb::dropBoot, 15},
    {Verb::clearReferences, 12}, {Verb::clearWaiting, 8},   {Verb::clearBoot, 5},
    {Verb::clientRemove, 25},    {Verb::configReplace, 6},  {Verb::statusReplace, 6},
    {Verb::statusRemove, 6},     {Verb::statusNull, 3},     {Verb::configNull, 6},
    {Verb::configAlias, 5},      {Verb::statusAlias, 5},    {Verb::configClear, 2},
    {Verb::statusClear, 1},      {Verb::putRequest, 30},    {Verb::clearStatus, 5},
    {Verb::putCounter, 8},       {Verb::addToCounter, 8}};

Flavour::Weights operator+(Flavour::Weights a, Flavour::Weights const& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Flavour::Weights lighter(Flavour::Weights weights) {
    for (auto& [verb, weight] : weights) {
        weight = weight / 4 + 1;
    }
    return weights;
}

} // namespace

Flavour const& politeClients() {
    static Flavour const flavour{requests, 8, 72, 10, false, false};
    return flavour;
}

Flavour const& fullTables() {
    static Flavour const flavour{requests, 8, 14, 10, false, false};
    return flavour;
}

Flavour const& restartEachStep() {
    static Flavour const flavour{requests, 8, 24, 10, true, false};
    return flavour;
}

Flavour const& directCalls() {
    static Flavour const flavour{requests + calls, 8, 24, 5, false, false};
    return flavour;
}

Flavour const& hostileRecords() {
    static Flavour const flavour{requests + records + lighter(calls), 0, 24, 15, false, true};
    return flavour;
}

} // namespace ModelTest
