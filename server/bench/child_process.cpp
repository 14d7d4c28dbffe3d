// Starting, watching and stopping the benchmarks' helper programs.

#include "child_process.h"

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <netinet/in.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace qf::bench {

namespace {

using Clock = std::chrono::steady_clock;

int exitCodeOf(int status) {
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return -1;
}

} // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& args,
                           std::filesystem::path logFile)
    : m_log(std::move(logFile)) {
    std::vector<std::string> argv{program};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> raw;
    for (std::string& a : argv)
        raw.push_back(a.data());
    raw.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, m_log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int error = posix_spawnp(&m_pid, program.c_str(), &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + program + ": " + std::strerror(error));
}

ChildProcess::~ChildProcess() {
    stop();
}

bool ChildProcess::reap(bool block) {
    if (m_exit)
        return true;
    int status = 0;
    const pid_t r = waitpid(m_pid, &status, block ? 0 : WNOHANG);
    if (r == m_pid) {
        m_exit = exitCodeOf(status);
        return true;
    }
    if (r < 0 && errno == ECHILD) {
        m_exit = -1;
        return true;
    }
    return false;
}

bool ChildProcess::running() {
    return !reap(false);
}

std::optional<std::string> ChildProcess::waitForLine(std::string_view text, std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        {
            std::ifstream in(m_log);
            std::string line;
            while (std::getline(in, line))
                if (line.find(text) != std::string::npos)
                    return line;
        }
        if (!running() || Clock::now() >= deadline)
            return std::nullopt;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (!reap(false)) {
        if (Clock::now() >= deadline)
            return std::nullopt;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return m_exit;
}

int ChildProcess::stop(std::chrono::milliseconds grace) {
    if (m_pid <= 0)
        return -1;
    if (!reap(false)) {
        kill(m_pid, SIGTERM);
        if (!wait(grace)) {
            kill(m_pid, SIGKILL);
            reap(true);
        }
    }
    return *m_exit;
}

std::string ChildProcess::logTail(size_t lines) const {
    std::ifstream in(m_log);
    std::deque<std::string> last;
    std::string line;
    while (std::getline(in, line)) {
        last.push_back(line);
        if (last.size() > lines)
            last.pop_front();
    }
    std::string out;
    for (const std::string& l : last)
        out += "    " + l + "\n";
    return out;
}

int ChildProcess::run(const std::string& program, const std::vector<std::string>& args,
                      const std::filesystem::path& logFile, std::chrono::milliseconds timeout) {
    ChildProcess child(program, args, logFile);
    if (const std::optional<int> code = child.wait(timeout))
        return *code;
    return child.stop();
}

namespace {

// Fields of /proc/PID/stat after the command name (which may hold spaces): state is field 3,
// ppid 4, utime 14, stime 15.
std::vector<std::string> statFields(const std::filesystem::path& statFile) {
    std::ifstream in(statFile);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const size_t close = text.rfind(')');
    std::vector<std::string> fields;
    if (close == std::string::npos)
        return fields;
    fields = {"", ""};
    size_t at = close + 2;
    while (at < text.size()) {
        const size_t space = std::min(text.find(' ', at), text.size());
        fields.push_back(text.substr(at, space - at));
        at = space + 1;
    }
    return fields;
}

double cpuOf(const std::vector<std::string>& f) {
    if (f.size() < 16)
        return 0;
    return double(std::stoll(f[13]) + std::stoll(f[14])) / double(sysconf(_SC_CLK_TCK));
}

} // namespace

double cpuSecondsOf(pid_t pid) {
    double total = cpuOf(statFields("/proc/" + std::to_string(pid) + "/stat"));
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const std::vector<std::string> f = statFields(entry.path() / "stat");
        if (f.size() >= 16 && f[3] == std::to_string(pid))
            total += cpuOf(f);
    }
    return total;
}

uint16_t freeLoopbackPort() {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0)
        throw std::runtime_error("cannot open a socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        close(fd);
        throw std::runtime_error("cannot find a free port on 127.0.0.1");
    }
    close(fd);
    return ntohs(address.sin_port);
}

bool acceptsConnections(uint16_t port) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0)
        return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    const bool ok = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return ok;
}

} // namespace qf::bench
