#pragma once

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "language/StartSettings.h"
#include "pelo/Ptr.h"
#include "state/Database.h"

namespace VpAgent {

/// The allocator directory state machine, while there is one, and the settings with which it was
/// created.
class Machine {
public:
    /// `database` must outlive the machine. `defaults` are the settings of a start that names none.
    Machine(Database const& database, StartSettings const& defaults)
        : database_(database), defaults_(defaults), settings_(defaults) {}
    Machine(Machine const&) = delete;
    Machine& operator=(Machine const&) = delete;

    bool running() const noexcept { return static_cast<bool>(stateMachine_); }

    StartSettings const& defaults() const noexcept { return defaults_; }
    /// The settings of the last start.
    StartSettings const& settings() const noexcept { return settings_; }

    /// Creates the state machine, which serves all requests before this returns. There is none yet.
    void start(StartSettings const& settings);
    /// Destroys it. The database stays.
    void stop() { stateMachine_ = nullptr; }

    /// While it runs.
    VornicCentral::VpIndexAllocatorDirSm& stateMachine() const noexcept { return *stateMachine_; }

private:
    Database const& database_;
    StartSettings defaults_;
    StartSettings settings_;
    Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm> stateMachine_;
};

} // namespace VpAgent
