#include "fake_riot_api.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace qf::test {

namespace {

using Clock = std::chrono::steady_clock;

const char* const kFixturePuuid = "jkxCVExyvEawqoKz-BfIgcvOyT4z8YbYmRSISvxObtrq-JAfX8mCJ4OpEvQ_b9aHJRLZ-NNIfhHr8g";

std::string lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return text;
}

int queryInt(const HttpRequest& request, const std::string& name, int fallback) {
    const std::string* value = request.queryValue(name);
    if (!value)
        return fallback;
    try {
        return std::stoi(*value);
    } catch (const std::exception&) {
        return fallback;
    }
}

} // namespace

namespace {

std::string readFixture(const std::string& dir, const std::string& name) {
    std::ifstream file(dir + "/" + name, std::ios::binary);
    if (!file)
        throw std::runtime_error("fixture missing: " + dir + "/" + name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

FakeRiotApi::FakeRiotApi(std::string fixturesDir, std::vector<FakeWindow> appLimits)
    : m_fixturesDir(std::move(fixturesDir)), m_appLimits(std::move(appLimits)) {
    for (const char* name :
         {"account-v1-1.json", "summoner-v4-1.json", "summoner-v4-2.json", "league-v4-entries-1.json",
          "league-v4-entries-3.json", "mastery-v4-2.json", "webapi-error-404-1.json", "webapi-error-404-2.json",
          "ddragon-versions-1.json", "match-v5-1.json", "match-v5-timeline-1.json"})
        m_fixtures[name] = readFixture(m_fixturesDir, name);
    m_accountsByRiotId["ssg xayah#na1"] = m_fixtures["account-v1-1.json"];
    m_accountsByPuuid[kFixturePuuid] = m_fixtures["account-v1-1.json"];

    addRoutes();
    HttpServerOptions options;
    options.port = 0;
    options.threads = 8;
    m_server = std::make_unique<HttpServer>(options, m_router);
    m_server->start();
    m_thread = std::thread([this] { m_server->run(false); });
}

FakeRiotApi::~FakeRiotApi() {
    m_server->stop();
    m_thread.join();
}

std::string FakeRiotApi::baseUrl() const {
    return "http://127.0.0.1:" + std::to_string(m_server->port());
}

std::string FakeRiotApi::fixtureAccountPuuid() {
    return kFixturePuuid;
}

std::string FakeRiotApi::fixture(const std::string& name) const {
    {
        const std::lock_guard lock(m_mutex);
        if (const auto it = m_fixtures.find(name); it != m_fixtures.end())
            return it->second;
    }
    return readFixture(m_fixturesDir, name);
}

void FakeRiotApi::addAccount(const std::string& gameName, const std::string& tagLine, const std::string& puuid) {
    const std::string json =
        R"({"puuid":")" + puuid + R"(","gameName":")" + gameName + R"(","tagLine":")" + tagLine + R"("})";
    const std::lock_guard lock(m_mutex);
    m_accountsByRiotId[lower(gameName + "#" + tagLine)] = json;
    m_accountsByPuuid[puuid] = json;
}

void FakeRiotApi::setMatchHistory(const std::string& puuid, int games) {
    const std::lock_guard lock(m_mutex);
    auto& ids = m_histories[puuid];
    ids.clear();
    for (int i = 0; i < games; ++i) {
        ids.push_back("EUW1_" + std::to_string(7000000000LL - i));
        m_matches[ids.back()] = true;
    }
}

void FakeRiotApi::addGame(const std::string& puuid, const std::string& matchFixture,
                          const std::string& timelineFixture) {
    const std::lock_guard lock(m_mutex);
    for (const std::string& name : {matchFixture, timelineFixture})
        if (!m_fixtures.contains(name))
            m_fixtures[name] = readFixture(m_fixturesDir, name);
    const std::string& text = m_fixtures[matchFixture];
    const size_t at = text.find("\"matchId\"");
    const size_t open = text.find('"', text.find(':', at) + 1);
    const std::string id = text.substr(open + 1, text.find('"', open + 1) - open - 1);
    m_realGames[id] = {matchFixture, timelineFixture};
    m_matches[id] = true;
    auto& ids = m_histories[puuid];
    ids.insert(ids.begin(), id);
}

void FakeRiotApi::dropTimeline(const std::string& matchId) {
    const std::lock_guard lock(m_mutex);
    m_matches[matchId] = false;
}

void FakeRiotApi::setMethodLimits(std::vector<FakeWindow> limits) {
    const std::lock_guard lock(m_mutex);
    m_methodLimits = std::move(limits);
    m_methodWindows.clear();
}

void FakeRiotApi::inject(int status, int times, std::optional<int> retryAfterSeconds, std::string rateLimitType,
                         std::string body) {
    const std::lock_guard lock(m_mutex);
    m_injections.push_back({status, times, retryAfterSeconds, std::move(rateLimitType), std::move(body)});
}

int FakeRiotApi::requestCount() const {
    const std::lock_guard lock(m_mutex);
    return int(std::count_if(m_log.begin(), m_log.end(), [](const auto& entry) { return !entry.routing.empty(); }));
}

int FakeRiotApi::limitRefusals() const {
    const std::lock_guard lock(m_mutex);
    return m_limitRefusals;
}

std::vector<FakeRequestLog> FakeRiotApi::log() const {
    const std::lock_guard lock(m_mutex);
    return m_log;
}

bool FakeRiotApi::admit(std::vector<Window>& windows, Clock::time_point now, int& retryAfter) {
    for (Window& window : windows) {
        if (window.count > 0 && now - window.start >= std::chrono::seconds(window.limit.seconds))
            window.count = 0;
        if (window.count == 0)
            window.start = now;
    }
    for (const Window& window : windows) {
        if (window.count >= window.limit.count) {
            const auto left =
                std::chrono::duration<double>(window.start + std::chrono::seconds(window.limit.seconds) - now);
            retryAfter = std::max(1, int(std::ceil(left.count())));
            return false;
        }
    }
    for (Window& window : windows)
        ++window.count;
    return true;
}

std::string FakeRiotApi::announce(const std::vector<Window>& windows, bool counts) {
    std::string text;
    for (const Window& window : windows) {
        if (!text.empty())
            text += ',';
        text += std::to_string(counts ? window.count : window.limit.count) + ":" + std::to_string(window.limit.seconds);
    }
    return text;
}

HttpResponse FakeRiotApi::serve(HttpRequest& request, const std::string& method,
                                Answer (FakeRiotApi::*answer)(HttpRequest&)) {
    const std::string routing = request.pathParams.at(0);
    const Clock::time_point now = Clock::now();
    std::unique_lock lock(m_mutex);
    auto record = [&](const HttpResponse& response) {
        m_log.push_back({now, routing, request.path, response.status});
        return response;
    };

    if (!m_injections.empty()) {
        Injection& injection = m_injections.front();
        HttpResponse response = HttpResponse::json(injection.body, injection.status);
        if (injection.retryAfter)
            response.headers.emplace_back("Retry-After", std::to_string(*injection.retryAfter));
        if (!injection.type.empty())
            response.headers.emplace_back("X-Rate-Limit-Type", injection.type);
        if (--injection.times <= 0)
            m_injections.erase(m_injections.begin());
        return record(response);
    }

    auto& app = m_appWindows[routing];
    if (app.empty())
        for (const FakeWindow& limit : m_appLimits)
            app.push_back({limit, {}, 0});
    auto& own = m_methodWindows[routing + " " + method];
    if (own.empty())
        for (const FakeWindow& limit : m_methodLimits)
            own.push_back({limit, {}, 0});

    int retryAfter = 0;
    const bool appRoom = admit(app, now, retryAfter);
    const bool methodRoom = appRoom && admit(own, now, retryAfter);
    HttpResponse response;
    if (!appRoom || !methodRoom) {
        ++m_limitRefusals;
        response = HttpResponse::json(R"({"status":{"message":"Rate limit exceeded","status_code":429}})", 429);
        response.headers.emplace_back("Retry-After", std::to_string(retryAfter));
        response.headers.emplace_back("X-Rate-Limit-Type", appRoom ? "method" : "application");
    } else {
        const Answer served = (this->*answer)(request);
        response = HttpResponse::json(served.body, served.status);
    }
    response.headers.emplace_back("X-App-Rate-Limit", announce(app, false));
    response.headers.emplace_back("X-App-Rate-Limit-Count", announce(app, true));
    response.headers.emplace_back("X-Method-Rate-Limit", announce(own, false));
    response.headers.emplace_back("X-Method-Rate-Limit-Count", announce(own, true));
    return record(response);
}

void FakeRiotApi::addRoutes() {
    auto route = [this](const std::string& pattern, Answer (FakeRiotApi::*answer)(HttpRequest&)) {
        // Riot's method is the pattern without the routing segment.
        const std::string method = pattern.substr(3);
        m_router.add("GET", pattern,
                     [this, method, answer](HttpRequest& request) { return serve(request, method, answer); });
    };
    route("/{}/riot/account/v1/accounts/by-riot-id/{}/{}", &FakeRiotApi::accountByRiotId);
    route("/{}/riot/account/v1/accounts/by-puuid/{}", &FakeRiotApi::accountByPuuid);
    route("/{}/lol/summoner/v4/summoners/by-puuid/{}", &FakeRiotApi::summoner);
    route("/{}/lol/league/v4/entries/by-puuid/{}", &FakeRiotApi::leagueEntries);
    route("/{}/lol/champion-mastery/v4/champion-masteries/by-puuid/{}/top", &FakeRiotApi::masteries);
    route("/{}/lol/match/v5/matches/by-puuid/{}/ids", &FakeRiotApi::matchIds);
    route("/{}/lol/match/v5/matches/{}", &FakeRiotApi::match);
    route("/{}/lol/match/v5/matches/{}/timeline", &FakeRiotApi::timeline);
    m_router.add("GET", "/ddragon/api/versions.json", [this](HttpRequest& request) {
        const std::lock_guard lock(m_mutex);
        m_log.push_back({Clock::now(), {}, request.path, 200});
        return HttpResponse::json(m_fixtures["ddragon-versions-1.json"]);
    });
}

// The handlers below run under m_mutex.

FakeRiotApi::Answer FakeRiotApi::accountByRiotId(HttpRequest& request) {
    const auto it = m_accountsByRiotId.find(lower(request.pathParams[1] + "#" + request.pathParams[2]));
    if (it == m_accountsByRiotId.end())
        return {404, m_fixtures["webapi-error-404-2.json"]};
    return {200, it->second};
}

FakeRiotApi::Answer FakeRiotApi::accountByPuuid(HttpRequest& request) {
    const auto it = m_accountsByPuuid.find(request.pathParams[1]);
    if (it == m_accountsByPuuid.end())
        return {404, m_fixtures["webapi-error-404-2.json"]};
    return {200, it->second};
}

FakeRiotApi::Answer FakeRiotApi::summoner(HttpRequest& request) {
    if (request.pathParams[1] == kFixturePuuid)
        return {200, m_fixtures["summoner-v4-1.json"]};
    if (m_accountsByPuuid.contains(request.pathParams[1]))
        return {200, m_fixtures["summoner-v4-2.json"]};
    return {404, m_fixtures["webapi-error-404-2.json"]};
}

FakeRiotApi::Answer FakeRiotApi::leagueEntries(HttpRequest& request) {
    if (request.pathParams[1] == kFixturePuuid)
        return {200, m_fixtures["league-v4-entries-1.json"]};
    // Riot answers an unranked or unknown player with an empty list.
    return {200, m_accountsByPuuid.contains(request.pathParams[1]) ? m_fixtures["league-v4-entries-3.json"] : "[]"};
}

FakeRiotApi::Answer FakeRiotApi::masteries(HttpRequest& request) {
    // The fixture holds a top three, whatever count was asked for.
    if (request.pathParams[1] != kFixturePuuid)
        return {200, "[]"};
    return {200, m_fixtures["mastery-v4-2.json"]};
}

FakeRiotApi::Answer FakeRiotApi::matchIds(HttpRequest& request) {
    const auto it = m_histories.find(request.pathParams[1]);
    std::string body = "[";
    if (it != m_histories.end()) {
        const int start = std::max(0, queryInt(request, "start", 0));
        const int count = std::clamp(queryInt(request, "count", 20), 0, 100);
        for (int i = start; i < start + count && i < int(it->second.size()); ++i)
            body += (i > start ? ",\"" : "\"") + it->second[size_t(i)] + "\"";
    }
    return {200, body + "]"};
}

FakeRiotApi::Answer FakeRiotApi::match(HttpRequest& request) {
    const std::string& id = request.pathParams[1];
    if (!m_matches.contains(id))
        return {404, m_fixtures["webapi-error-404-1.json"]};
    if (const auto real = m_realGames.find(id); real != m_realGames.end())
        return {200, m_fixtures[real->second.first]};
    // The one fixture game under the id asked for, so a history holds as many games as ids.
    std::string body = m_fixtures["match-v5-1.json"];
    const size_t cut = id.find('_');
    const std::string platform = id.substr(0, cut), number = id.substr(cut + 1);
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"NA1_4223689858", id},
                                   {"\"gameId\": 4223689858", "\"gameId\": " + number},
                                   {"\"platformId\": \"NA1\"", "\"platformId\": \"" + platform + "\""}})
        for (size_t at = body.find(from); at != std::string::npos; at = body.find(from, at + to.size()))
            body.replace(at, from.size(), to);
    return {200, body};
}

FakeRiotApi::Answer FakeRiotApi::timeline(HttpRequest& request) {
    const auto it = m_matches.find(request.pathParams[1]);
    if (it == m_matches.end() || !it->second)
        return {404, m_fixtures["webapi-error-404-1.json"]};
    if (const auto real = m_realGames.find(it->first); real != m_realGames.end())
        return {200, m_fixtures[real->second.second]};
    return {200, m_fixtures["match-v5-timeline-1.json"]};
}

} // namespace qf::test
