#include "riot/curl_transport.h"

#include <curl/curl.h>

#include <algorithm>
#include <cctype>

namespace qf {

namespace {

struct Exchange {
    TransportAnswer* answer;
    size_t bodyLimit;
    bool tooLong = false;
};

size_t onBody(char* data, size_t size, size_t count, void* user) {
    auto* exchange = static_cast<Exchange*>(user);
    const size_t bytes = size * count;
    if (exchange->answer->body.size() + bytes > exchange->bodyLimit) {
        exchange->tooLong = true;
        return 0; // libcurl stops the transfer
    }
    exchange->answer->body.append(data, bytes);
    return bytes;
}

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
        s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
        s.remove_suffix(1);
    return s;
}

size_t onHeader(char* data, size_t size, size_t count, void* user) {
    auto* exchange = static_cast<Exchange*>(user);
    const size_t bytes = size * count;
    const std::string_view line(data, bytes);
    if (line.starts_with("HTTP/")) {
        // A status line starts a new answer (an interim 100 Continue came first).
        exchange->answer->headers.clear();
        return bytes;
    }
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0)
        return bytes;
    std::string name(trimmed(line.substr(0, colon)));
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    exchange->answer->headers.emplace_back(std::move(name), std::string(trimmed(line.substr(colon + 1))));
    return bytes;
}

void initialiseOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

} // namespace

std::string_view TransportAnswer::header(std::string_view lowerCaseName) const {
    for (const auto& [name, value] : headers)
        if (name == lowerCaseName)
            return value;
    return {};
}

CurlTransport::CurlTransport(CurlTransportOptions options) : m_options(options) {
    initialiseOnce();
}

CurlTransport::~CurlTransport() {
    for (void* handle : m_idle)
        curl_easy_cleanup(handle);
}

void* CurlTransport::borrowHandle() {
    {
        const std::lock_guard lock(m_mutex);
        if (!m_idle.empty()) {
            void* handle = m_idle.back();
            m_idle.pop_back();
            return handle;
        }
    }
    return curl_easy_init();
}

void CurlTransport::returnHandle(void* handle) {
    const std::lock_guard lock(m_mutex);
    m_idle.push_back(handle);
}

TransportAnswer CurlTransport::get(const std::string& url, const std::vector<std::string>& requestHeaders) {
    TransportAnswer answer;
    CURL* curl = borrowHandle();
    if (!curl) {
        answer.error = "the HTTP library could not start a request";
        return answer;
    }
    // reset() keeps the handle's connections and caches, and forgets the previous request's
    // options (its headers among them).
    curl_easy_reset(curl);

    curl_slist* headers = nullptr;
    for (const std::string& line : requestHeaders)
        headers = curl_slist_append(headers, line.c_str());

    Exchange exchange{&answer, m_options.bodyLimit};
    char errorText[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, long(m_options.connectTimeout.count()));
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, long(m_options.totalTimeout.count()));
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);        // time-outs from many threads
    curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, ""); // whatever libcurl can decode
    curl_easy_setopt(curl, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorText);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &exchange);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &exchange);

    const CURLcode code = curl_easy_perform(curl);
    if (code == CURLE_OK) {
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        answer.reached = true;
        answer.status = int(status);
    } else {
        answer.error = exchange.tooLong ? "the answer was longer than the server accepts"
                                        : (errorText[0] ? errorText : curl_easy_strerror(code));
        answer.body.clear();
        answer.headers.clear();
    }
    // The error buffer lives on this stack frame: the handle must not keep pointing at it.
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, nullptr);
    curl_slist_free_all(headers);
    returnHandle(curl);
    return answer;
}

} // namespace qf
