// Route matching, path and query decoding, and the one place where a handler's failure is
// turned into an answer the app can show.

#include "http/router.h"

#include "json/utf8.h"

#include <cstdio>
#include <stdexcept>

namespace qf {

namespace {

const char* const kUnavailable = "The server could not complete the request. Try again in a moment.";

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// The raw segments of an absolute path, one trailing slash ignored; false when the path is not
// absolute. "/" has no segments; "//x" has an empty first segment, which no route matches.
bool splitSegments(std::string_view path, std::vector<std::string_view>& segments) {
    if (!path.starts_with('/'))
        return false;
    path.remove_prefix(1);
    if (path.ends_with('/'))
        path.remove_suffix(1);
    if (path.empty())
        return true;
    while (true) {
        const size_t slash = path.find('/');
        segments.push_back(path.substr(0, slash));
        if (slash == std::string_view::npos)
            return true;
        path.remove_prefix(slash + 1);
    }
}

bool matches(const std::vector<std::string>& pieces, const std::vector<std::string>& segments) {
    if (pieces.size() != segments.size())
        return false;
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (pieces[i].empty() ? segments[i].empty() : pieces[i] != segments[i])
            return false;
    }
    return true;
}

void logFailure(const HttpRequest& request, const char* what) {
    // One write per line, so lines from concurrent handlers do not interleave.
    std::fprintf(stderr, "quillfern-server: %s %s failed: %s\n", request.method.c_str(), request.path.c_str(), what);
}

} // namespace

void Router::add(std::string method, std::string pattern, Handler handler) {
    std::vector<std::string_view> raw;
    if (!splitSegments(pattern, raw))
        throw std::invalid_argument("Route pattern must start with '/': " + pattern);
    Route route{std::move(method), {}, std::move(handler)};
    for (std::string_view piece : raw) {
        if (piece.empty())
            throw std::invalid_argument("Route pattern has an empty piece: " + pattern);
        route.pieces.emplace_back(piece == "{}" ? std::string_view() : piece);
    }
    m_routes.push_back(std::move(route));
}

HttpResponse Router::dispatch(HttpRequest& request) const {
    std::vector<std::string_view> raw;
    if (!splitSegments(request.path, raw))
        return HttpResponse::text(400, "Bad path.");
    std::vector<std::string> segments;
    segments.reserve(raw.size());
    for (std::string_view piece : raw) {
        auto decoded = percentDecode(piece);
        if (!decoded)
            return HttpResponse::text(400, "Bad path.");
        segments.push_back(std::move(*decoded));
    }

    const Route* chosen = nullptr;
    const Route* getRoute = nullptr;
    std::vector<std::string> allowed;
    for (const Route& route : m_routes) {
        if (!matches(route.pieces, segments))
            continue;
        if (route.method == request.method) {
            chosen = &route;
            break;
        }
        if (route.method == "GET" && !getRoute)
            getRoute = &route;
        bool listed = false;
        for (const auto& method : allowed)
            listed = listed || method == route.method;
        if (!listed)
            allowed.push_back(route.method);
    }
    if (!chosen && request.method == "HEAD")
        chosen = getRoute;
    if (!chosen) {
        if (allowed.empty())
            return HttpResponse::text(404, "No such endpoint.");
        std::string allow;
        for (const auto& method : allowed) {
            allow += allow.empty() ? "" : ", ";
            allow += method;
            if (method == "GET")
                allow += ", HEAD";
        }
        auto response = HttpResponse::text(405, "This endpoint does not accept " + request.method + ".");
        response.headers.emplace_back("Allow", std::move(allow));
        return response;
    }

    request.pathParams.clear();
    for (size_t i = 0; i < chosen->pieces.size(); ++i) {
        if (chosen->pieces[i].empty())
            request.pathParams.push_back(std::move(segments[i]));
    }
    try {
        return chosen->handler(request);
    } catch (const HttpError& e) {
        if (e.status() >= 400 && e.status() <= 599)
            return HttpResponse::text(e.status(), e.what());
        logFailure(request, e.what());
    } catch (const std::exception& e) {
        logFailure(request, e.what());
    } catch (...) {
        logFailure(request, "an exception of unknown type");
    }
    return HttpResponse::text(503, kUnavailable);
}

std::optional<std::string> percentDecode(std::string_view text, bool plusIsSpace) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '%') {
            if (i + 2 >= text.size())
                return std::nullopt;
            const int high = hexValue(text[i + 1]);
            const int low = hexValue(text[i + 2]);
            if (high < 0 || low < 0)
                return std::nullopt;
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else if (c == '+' && plusIsSpace) {
            out += ' ';
        } else {
            out += c;
        }
    }
    if (out.find('\0') != std::string::npos || !isValidUtf8(out))
        return std::nullopt;
    return out;
}

bool parseQuery(std::string_view query, std::map<std::string, std::string>& out) {
    while (!query.empty()) {
        const size_t amp = query.find('&');
        const std::string_view piece = query.substr(0, amp);
        query.remove_prefix(amp == std::string_view::npos ? query.size() : amp + 1);
        if (piece.empty())
            continue;
        const size_t eq = piece.find('=');
        auto name = percentDecode(piece.substr(0, eq), true);
        auto value = eq == std::string_view::npos ? std::optional<std::string>(std::string())
                                                  : percentDecode(piece.substr(eq + 1), true);
        if (!name || !value)
            return false;
        if (!name->empty())
            out.emplace(std::move(*name), std::move(*value));
    }
    return true;
}

} // namespace qf
