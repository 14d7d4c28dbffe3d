#pragma once

#include "http/router.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

// A multi-threaded HTTP/1.1 server on Boost.Beast and Asio: keep-alive, a body limit, read and
// idle time-outs, and a graceful stop that lets requests in flight finish and answer.
// Handlers run on the server's own threads and may block (database work): `threads` is also
// the number of requests handled at once.

namespace qf {

struct HttpServerOptions {
    std::string host = "127.0.0.1";
    uint16_t port = 8000; // 0 picks a free port (tests)
    int threads = 4;
    size_t bodyLimit = 64 * 1024 * 1024; // larger bodies get 413
    int headerTimeoutSeconds = 30;       // a request must arrive whole within this
    int idleTimeoutSeconds = 60;         // keep-alive connections close after this much silence
    int writeTimeoutSeconds = 60;        // an answer must be taken by the client within this
    uint32_t headerLimit = 32 * 1024;    // larger request lines and headers get 431
};

class HttpServer {
public:
    HttpServer(HttpServerOptions options, const Router& router);
    ~HttpServer();

    // Binds the address; throws std::runtime_error with a readable text when it cannot.
    void start();
    [[nodiscard]] uint16_t port() const; // the bound port, after start()
    // Blocks until stop() or a SIGTERM/SIGINT (when handleSignals is set), then stops gracefully.
    void run(bool handleSignals);
    // Stops accepting, lets requests in flight finish and answer, closes idle connections.
    // Safe from any thread.
    void stop();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace qf
