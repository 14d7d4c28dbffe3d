#pragma once

#include "archive/champion_catalog.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

// The champion list of the server's configured data version. It starts from what is at hand (a
// cached download of that version, else the list shipped with the server) and, when that is not
// the configured version, fetches Data Dragon's list once in the background and caches it.
// Readers take the current list as a snapshot, so a download arriving mid-batch changes nothing
// under them.

namespace qf {

struct ChampionDirectoryOptions {
    std::string version = "16.11.1"; // Data Dragon version whose list is wanted
    std::filesystem::path cacheDir;  // where champion-<version>.json is kept; empty: no cache
    std::string cdnBase = "https://ddragon.leagueoflegends.com/cdn";
    bool fetch = true; // false: never reach the network (tests, offline servers)
    long connectTimeoutMs = 3000;
    long totalTimeoutMs = 15000;
};

class ChampionDirectory {
public:
    // Loads synchronously; a fetch, when needed, runs on a thread of its own.
    explicit ChampionDirectory(ChampionDirectoryOptions options);
    // Stops a running fetch (it aborts at once) and waits for its thread.
    ~ChampionDirectory();
    ChampionDirectory(const ChampionDirectory&) = delete;
    ChampionDirectory& operator=(const ChampionDirectory&) = delete;

    [[nodiscard]] std::shared_ptr<const ChampionCatalog> current() const;
    // True once the list of the configured version is in use.
    [[nodiscard]] bool upToDate() const;
    // Blocks until the background fetch, if any, has ended; returns upToDate().
    bool waitForFetch();

    // The address of a version's list below a CDN base.
    [[nodiscard]] static std::string listUrl(std::string_view cdnBase, std::string_view version);

private:
    void fetch();
    void use(std::shared_ptr<const ChampionCatalog> catalog);
    [[nodiscard]] std::filesystem::path cacheFile() const;

    const ChampionDirectoryOptions m_options;
    mutable std::mutex m_mutex;
    std::shared_ptr<const ChampionCatalog> m_current;
    std::atomic<bool> m_stop{false};
    std::thread m_fetcher;
};

} // namespace qf
