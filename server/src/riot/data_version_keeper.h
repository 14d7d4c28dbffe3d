#pragma once

#include "riot/riot_client.h"

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

// The newest Data Dragon version, which the app's static data (champion and item images) is
// read from: asked of the CDN when the server starts and once a day after, and kept in a file so
// a server started offline announces the last one it knew rather than its built-in default.

namespace qf {

class DataVersionKeeper {
public:
    // fallback: the version announced until one is known. file: where the last one is kept
    // (empty: nowhere).
    DataVersionKeeper(const RiotClient& riot, std::string fallback, std::filesystem::path file);
    ~DataVersionKeeper();
    DataVersionKeeper(const DataVersionKeeper&) = delete;
    DataVersionKeeper& operator=(const DataVersionKeeper&) = delete;

    [[nodiscard]] std::string current() const;
    // Asks the CDN now; false (the version kept) when it cannot be reached.
    bool refresh();
    // A thread that refreshes now and every `every` after, until stop().
    void start(std::chrono::seconds every = std::chrono::hours(24));
    void stop();

private:
    const RiotClient& m_riot;
    std::filesystem::path m_file;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::string m_version;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace qf
