#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Blocking HTTPS GETs on libcurl. Each call borrows an easy handle from a pool and gives it back,
// so connections (and TLS sessions) to a host are reused by the next request, from any thread.
// Certificates and host names are verified, redirects are never followed (a request carrying
// the API key goes to the address given and nowhere else), only http and https are spoken.

namespace qf {

// What came back: an HTTP answer (reached), or why none arrived.
struct TransportAnswer {
    bool reached = false;
    int status = 0;
    std::string body;
    // The answer's headers, names in lower case, in arrival order.
    std::vector<std::pair<std::string, std::string>> headers;
    // When nothing was reached: libcurl's description ("Could not connect to server",
    // "Timeout was reached"); it never holds request headers.
    std::string error;

    // The first value of a header, or empty.
    [[nodiscard]] std::string_view header(std::string_view lowerCaseName) const;
};

struct CurlTransportOptions {
    std::chrono::milliseconds connectTimeout{5000};
    std::chrono::milliseconds totalTimeout{30000};
    size_t bodyLimit = 64 * 1024 * 1024; // a longer answer is cut off and reported as a failure
};

class CurlTransport {
public:
    explicit CurlTransport(CurlTransportOptions options = {});
    ~CurlTransport();
    CurlTransport(const CurlTransport&) = delete;
    CurlTransport& operator=(const CurlTransport&) = delete;

    // requestHeaders are complete lines ("X-Riot-Token: …"). Safe from any thread.
    [[nodiscard]] TransportAnswer get(const std::string& url, const std::vector<std::string>& requestHeaders);

private:
    void* borrowHandle();
    void returnHandle(void* handle);

    CurlTransportOptions m_options;
    std::mutex m_mutex;
    std::vector<void*> m_idle;
};

} // namespace qf
