#pragma once

#include "http/http_message.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Maps method and path to a handler. A route's pattern is a path whose pieces are literal or
// "{}" (one non-empty path segment, handed to the handler percent-decoded in pathParams).
// Unknown paths answer 404, a known path with another method 405 with an Allow header.
// One trailing slash is ignored ("/api/sync/" is "/api/sync"); empty segments inside a path
// match nothing. A HEAD request runs the path's GET route (the server sends no body).

namespace qf {

class Router {
public:
    using Handler = std::function<HttpResponse(HttpRequest&)>;

    // Routes are added before the server starts; dispatch() may then run on many threads.
    void add(std::string method, std::string pattern, Handler handler);

    // Finds the route, fills request.pathParams and runs it. Turns HttpError into its answer;
    // any other exception becomes 503 "The server could not complete the request. Try again in
    // a moment." (a database outage) — never a 500 with internals. A path piece that does not
    // decode answers 400 "Bad path.".
    HttpResponse dispatch(HttpRequest& request) const;

private:
    struct Route {
        std::string method;
        std::vector<std::string> pieces; // "" stands for "{}"
        Handler handler;
    };
    std::vector<Route> m_routes;
};

// Percent-decoding of one path segment or query piece; nullopt when malformed ("%G1", "%4") or
// when the decoded bytes are not valid UTF-8 or hold a NUL: no handler ever sees such text.
std::optional<std::string> percentDecode(std::string_view text, bool plusIsSpace = false);

// Parses a query string (without the '?'): "a=b&c=d", '+' for space, a name without '=' has
// the empty value, empty pieces are skipped, the first value of a repeated name wins. False
// when a name or value does not decode.
[[nodiscard]] bool parseQuery(std::string_view query, std::map<std::string, std::string>& out);

} // namespace qf
