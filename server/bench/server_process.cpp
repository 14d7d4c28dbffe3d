// Starting quillfern-server for a benchmark and learning its port from what it prints.

#include "server_process.h"

#include <cstdlib>
#include <stdexcept>

namespace qf::bench {

ServerProcess::ServerProcess(const ServerLaunch& launch) {
    // Port 0: the server binds a free one and names it in its start-up line, so no other
    // process can take the port between choosing and binding it.
    m_process = std::make_unique<ChildProcess>(
        launch.binary,
        std::vector<std::string>{"--listen", "127.0.0.1:0", "--database", launch.database, "--data-dir",
                                 launch.dataDir.string(), "--threads", std::to_string(launch.threads)},
        launch.logFile);
    const std::optional<std::string> line = m_process->waitForLine("listening on http://", std::chrono::seconds(60));
    if (!line) {
        m_process->stop();
        throw std::runtime_error("quillfern-server did not start:\n" + m_process->logTail());
    }
    // "quillfern-server listening on http://127.0.0.1:40123 (SQLite …)"
    const size_t host = line->find("http://127.0.0.1:");
    if (host != std::string::npos)
        m_port = uint16_t(std::strtoul(line->c_str() + host + 17, nullptr, 10));
    if (m_port == 0) {
        m_process->stop();
        throw std::runtime_error("cannot read the port from: " + *line);
    }
}

ServerProcess::~ServerProcess() {
    stop();
}

int ServerProcess::stop() {
    return m_process->stop();
}

std::string defaultServerBinary() {
    if (const char* given = std::getenv("QFS_SERVER_BINARY"))
        return given;
    return QFS_SERVER_BINARY;
}

} // namespace qf::bench
