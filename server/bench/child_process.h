#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// A program a benchmark starts and stops itself: the server, nginx, the PostgreSQL helper. Its
// output goes to a log file, which is also how a start is recognised (the server prints the
// address it listens on). Only the process started here is ever signalled.

namespace qf::bench {

class ChildProcess {
public:
    // Starts program (looked up in PATH when it has no slash) with stdout and stderr appended
    // to logFile. Throws std::runtime_error when it cannot be started.
    ChildProcess(const std::string& program, const std::vector<std::string>& args, std::filesystem::path logFile);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return m_pid; }
    [[nodiscard]] const std::filesystem::path& logFile() const { return m_log; }
    // False once it has exited (its status is then collected).
    [[nodiscard]] bool running();
    // The first log line containing text, waiting for it at most timeout; nullopt when the
    // process exits or time runs out first.
    [[nodiscard]] std::optional<std::string> waitForLine(std::string_view text, std::chrono::milliseconds timeout);
    // Waits for it to exit by itself; its exit code, or nullopt (then it is still running).
    std::optional<int> wait(std::chrono::milliseconds timeout);
    // SIGTERM, then SIGKILL when it has not exited within grace. Its exit code (128+signal when
    // killed by one). Repeating it is harmless.
    int stop(std::chrono::milliseconds grace = std::chrono::seconds(15));
    // The last lines of the log, for error messages.
    [[nodiscard]] std::string logTail(size_t lines = 15) const;

    // Runs a program to its end (at most timeout, then it is stopped); its exit code. The output
    // goes to logFile.
    static int run(const std::string& program, const std::vector<std::string>& args,
                   const std::filesystem::path& logFile, std::chrono::milliseconds timeout);

private:
    bool reap(bool block);

    pid_t m_pid = -1;
    std::optional<int> m_exit;
    std::filesystem::path m_log;
};

// CPU time (user + system) used so far by a running process and its live children (nginx's
// workers), from /proc; 0 when it cannot be read.
[[nodiscard]] double cpuSecondsOf(pid_t pid);

// A TCP port on 127.0.0.1 that nothing listens on at the moment of asking.
[[nodiscard]] uint16_t freeLoopbackPort();
// True when something accepts a connection on 127.0.0.1:port.
[[nodiscard]] bool acceptsConnections(uint16_t port);

} // namespace qf::bench
