#pragma once

#include "child_process.h"

#include <filesystem>
#include <memory>
#include <string>

// The real quillfern-server binary, started on a free loopback port over a prepared database.

namespace qf::bench {

struct ServerLaunch {
    std::string binary;   // the quillfern-server executable
    std::string database; // SQLite file or postgresql:// URI
    std::filesystem::path dataDir;
    std::filesystem::path logFile;
    int threads = 8;
};

class ServerProcess {
public:
    // Starts it and waits until it listens (at most a minute: it migrates the database first).
    // Throws std::runtime_error with the end of its log when it does not come up.
    explicit ServerProcess(const ServerLaunch& launch);
    ~ServerProcess();

    [[nodiscard]] uint16_t port() const { return m_port; }
    [[nodiscard]] pid_t pid() const { return m_process->pid(); }
    // Stops it gracefully; its exit code.
    int stop();

private:
    std::unique_ptr<ChildProcess> m_process;
    uint16_t m_port = 0;
};

// The binary beside this program's build, or the one named by QFS_SERVER_BINARY.
[[nodiscard]] std::string defaultServerBinary();

} // namespace qf::bench
