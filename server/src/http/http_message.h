#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

// A request as the handlers see it and the answer they give, free of the HTTP library.

namespace qf {

struct HttpRequest {
    std::string method;                       // "GET", "POST", …
    std::string path;                         // percent-encoded, without the query: "/api/players/Name%23TAG/profile"
    std::vector<std::string> pathParams;      // decoded values of the route's "{}" pieces, in order
    std::map<std::string, std::string> query; // decoded; the first value of a repeated name wins
    std::string authorization;                // the Authorization header, or empty
    std::string contentType;
    std::string body;
    std::string remoteAddress; // the peer's IP address, for throttling

    [[nodiscard]] const std::string* queryValue(const std::string& name) const {
        auto it = query.find(name);
        return it == query.end() ? nullptr : &it->second;
    }
};

struct HttpResponse {
    int status = 200;
    std::string contentType = "application/json";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers; // extra headers (Retry-After, Allow)

    static HttpResponse json(std::string body, int status = 200) {
        return HttpResponse{status, "application/json", std::move(body), {}};
    }
    // A refusal: a short sentence the app shows after "Server error N. ".
    static HttpResponse text(int status, std::string body) {
        return HttpResponse{status, "text/plain; charset=utf-8", std::move(body), {}};
    }
};

// Thrown by handlers and services to refuse a request; the server answers with the status and
// the text as a plain-text body.
class HttpError : public std::runtime_error {
public:
    HttpError(int status, const std::string& text) : std::runtime_error(text), m_status(status) {}
    [[nodiscard]] int status() const { return m_status; }

private:
    int m_status;
};

} // namespace qf
