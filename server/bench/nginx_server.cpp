// nginx configurations for the benchmarks, and starting nginx with them.

#include "nginx_server.h"

#include <fstream>
#include <stdexcept>
#include <thread>

namespace qf::bench {

namespace fs = std::filesystem;

namespace {

// Everything nginx would otherwise write under /var goes into the prefix, so it runs beside
// any system nginx and leaves nothing behind.
std::string config(const fs::path& prefix, uint16_t port, const std::string& site, int workers) {
    const std::string p = prefix.string();
    return "daemon off;\n"
           "worker_processes " +
           std::to_string(workers) +
           ";\n"
           "pid " +
           p + "/nginx.pid;\n" + "error_log " + p +
           "/error.log warn;\n"
           "events { worker_connections 1024; }\n"
           "http {\n"
           "    access_log off;\n"
           "    client_body_temp_path " +
           p + "/tmp/body;\n    proxy_temp_path " + p + "/tmp/proxy;\n    fastcgi_temp_path " + p +
           "/tmp/fastcgi;\n    uwsgi_temp_path " + p + "/tmp/uwsgi;\n    scgi_temp_path " + p +
           "/tmp/scgi;\n"
           "    sendfile on;\n"
           "    tcp_nopush on;\n"
           "    tcp_nodelay on;\n"
           "    keepalive_timeout 65;\n"
           "    keepalive_requests 1000000;\n"
           "    types { application/json json; }\n"
           "    default_type application/json;\n" +
           site +
           "    server {\n"
           "        listen 127.0.0.1:" +
           std::to_string(port) +
           ";\n"
           "        location / {\n" +
           "            include " + p + "/location.conf;\n" +
           "        }\n"
           "    }\n"
           "}\n";
}

} // namespace

std::unique_ptr<NginxServer> NginxServer::start(const fs::path& prefix, const std::string& site, int workers) {
    fs::create_directories(prefix / "tmp");
    // A port chosen free can be taken before nginx binds it: then it exits, and another is tried.
    for (int attempt = 1; attempt <= 5; ++attempt) {
        const uint16_t port = freeLoopbackPort();
        std::ofstream(prefix / "nginx.conf") << config(prefix, port, site, workers);
        std::unique_ptr<NginxServer> server(new NginxServer);
        server->m_port = port;
        server->m_process = std::make_unique<ChildProcess>(
            "nginx",
            std::vector<std::string>{"-p", prefix.string(), "-e", (prefix / "error.log").string(), "-c",
                                     (prefix / "nginx.conf").string()},
            prefix / "nginx.log");
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (std::chrono::steady_clock::now() < deadline && server->m_process->running()) {
            if (acceptsConnections(port))
                return server;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        const std::string log = server->m_process->logTail();
        server->m_process->stop();
        if (attempt == 5)
            throw std::runtime_error("nginx did not start:\n" + log);
    }
    return nullptr;
}

std::unique_ptr<NginxServer> NginxServer::serveFiles(const fs::path& prefix, const fs::path& folder, int workers) {
    fs::create_directories(prefix);
    std::ofstream(prefix / "location.conf") << "root " << folder.string() << ";\n";
    return start(prefix, "", workers);
}

std::unique_ptr<NginxServer> NginxServer::balance(const fs::path& prefix, const std::vector<uint16_t>& upstreams) {
    fs::create_directories(prefix);
    std::string site = "    upstream quillfern {\n";
    for (const uint16_t port : upstreams)
        site += "        server 127.0.0.1:" + std::to_string(port) + ";\n";
    site += "        keepalive 16;\n    }\n";
    std::ofstream(prefix / "location.conf") << "proxy_pass http://quillfern;\n"
                                               "proxy_http_version 1.1;\n"
                                               "proxy_set_header Connection \"\";\n"
                                               "proxy_buffering off;\n"
                                               "proxy_read_timeout 120s;\n"
                                               "add_header X-Upstream $upstream_addr always;\n";
    return start(prefix, site, 1);
}

NginxServer::~NginxServer() {
    if (m_process)
        m_process->stop();
}

} // namespace qf::bench
