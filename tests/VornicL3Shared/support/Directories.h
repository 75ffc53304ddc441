#pragma once

#include "VornicL3Shared/VpIndexConfigDir.h"
#include "VornicL3Shared/VpIndexStatusDir.h"

/// The two directories, each with its operations under one name, for tests that run over both.
namespace Test {

struct ConfigDirectory {
    using Dir = VornicCentral::VpIndexConfigDir;
    using Record = VornicCentral::VpIndexConfig;
    static constexpr char const* name = "VpIndexConfigDir";
    static constexpr char const* collection = "vpIndexConfig";

    static auto creator(char const* dirName) { return Dir::VpIndexConfigDirIs(dirName); }
    static auto factory(char const* dirName) {
        return VornicCentral::vpIndexConfigDirFactory(dirName);
    }
    static Dir::Entries const& entries(Dir const& dir) { return dir.vpIndexConfig(); }
    static auto entry(Dir const& dir, char const* key) { return dir.vpIndexConfig(key); }
    static bool has(Dir const& dir, char const* key) { return dir.vpIndexConfigHas(key); }
    static void is(Dir& dir, Pelo::String const& key, Pelo::Ptr<Record> const& record) {
        dir.vpIndexConfigIs(key, record);
    }
    static auto del(Dir& dir, Pelo::String const& key) { return dir.vpIndexConfigDel(key); }
    static void delAll(Dir& dir) { dir.vpIndexConfigDelAll(); }
};

struct StatusDirectory {
    using Dir = VornicCentral::VpIndexStatusDir;
    using Record = VornicCentral::VpIndexStatus;
    static constexpr char const* name = "VpIndexStatusDir";
    static constexpr char const* collection = "vpIndexStatus";

    static auto creator(char const* dirName) { return Dir::VpIndexStatusDirIs(dirName); }
    static auto factory(char const* dirName) {
        return VornicCentral::vpIndexStatusDirFactory(dirName);
    }
    static Dir::Entries const& entries(Dir const& dir) { return dir.vpIndexStatus(); }
    static auto entry(Dir const& dir, char const* key) { return dir.vpIndexStatus(key); }
    static bool has(Dir const& dir, char const* key) { return dir.vpIndexStatusHas(key); }
    static void is(Dir& dir, Pelo::String const& key, Pelo::Ptr<Record> const& record) {
        dir.vpIndexStatusIs(key, record);
    }
    static auto del(Dir& dir, Pelo::String const& key) { return dir.vpIndexStatusDel(key); }
    static void delAll(Dir& dir) { dir.vpIndexStatusDelAll(); }
};

} // namespace Test
