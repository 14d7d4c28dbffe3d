#pragma once

#include "child_process.h"

#include <filesystem>
#include <memory>
#include <vector>

// Debian's nginx under a configuration of our own, in the foreground, on a free loopback port:
// either serving files (the transport's limit, for the same bytes the server sends) or
// balancing requests round-robin over server processes.

namespace qf::bench {

class NginxServer {
public:
    // Serves folder's files under "/": GET /x/y.json answers folder/x/y.json.
    static std::unique_ptr<NginxServer> serveFiles(const std::filesystem::path& prefix,
                                                   const std::filesystem::path& folder, int workers = 2);
    // Passes every request to the next of these ports in turn, over kept-alive upstream
    // connections. One worker, so the turn order is the one order of all requests. Answers
    // carry "X-Upstream: 127.0.0.1:PORT" naming the process that served them.
    static std::unique_ptr<NginxServer> balance(const std::filesystem::path& prefix,
                                                const std::vector<uint16_t>& upstreams);
    ~NginxServer();

    [[nodiscard]] uint16_t port() const { return m_port; }
    [[nodiscard]] pid_t pid() const { return m_process->pid(); }

private:
    NginxServer() = default;
    static std::unique_ptr<NginxServer> start(const std::filesystem::path& prefix, const std::string& site,
                                              int workers);

    std::unique_ptr<ChildProcess> m_process;
    uint16_t m_port = 0;
};

} // namespace qf::bench
