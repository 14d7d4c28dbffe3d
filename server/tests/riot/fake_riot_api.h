#pragma once

#include "http/http_server.h"

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

// A stand-in for the Riot API on a loopback port, reached through the client's base override
// (base + "/" + routing value + path). It serves the real answers of the shared fixtures, and it
// enforces rate limits as Riot does: fixed windows per routing value started by the first
// request, the limits and counts announced in every answer's headers, and 429 with Retry-After
// and X-Rate-Limit-Type beyond them. It counts and logs every request, and can be told to answer
// the next requests with a status of the test's choosing. Plain C++, so the benchmark uses it too.

namespace qf::test {

struct FakeWindow {
    int count = 0;
    int seconds = 0;
};

struct FakeRequestLog {
    std::chrono::steady_clock::time_point at;
    std::string routing; // "europe", "euw1"; empty for Data Dragon
    std::string path;    // as received, percent-encoded, with the routing value
    int status = 0;
};

class FakeRiotApi {
public:
    // Fixtures are read from fixturesDir (account-v1-1.json, match-v5-*.json, …).
    explicit FakeRiotApi(std::string fixturesDir, std::vector<FakeWindow> appLimits = {{20, 1}, {100, 120}});
    ~FakeRiotApi();
    FakeRiotApi(const FakeRiotApi&) = delete;
    FakeRiotApi& operator=(const FakeRiotApi&) = delete;

    [[nodiscard]] std::string baseUrl() const; // "http://127.0.0.1:PORT"

    // Known players: the fixture account (SSG Xayah#NA1) is there from the start; its puuid
    // answers the fixture summoner, league entries and masteries.
    void addAccount(const std::string& gameName, const std::string& tagLine, const std::string& puuid);
    // The puuid's match history: `games` ids, newest first, each answering the fixture game
    // match-v5-1.json under its own id and the fixture timeline match-v5-timeline-1.json.
    void setMatchHistory(const std::string& puuid, int games);
    // The puuid's history gains (as its newest game) a real game with its real timeline, both
    // served exactly as the fixtures hold them (e.g. "match-v5-5.json", "match-v5-timeline-6.json").
    void addGame(const std::string& puuid, const std::string& matchFixture, const std::string& timelineFixture);
    // The game's timeline answers 404, as for games Riot keeps none of.
    void dropTimeline(const std::string& matchId);
    // Limits of each method (by path pattern), announced and enforced like the application's.
    void setMethodLimits(std::vector<FakeWindow> limits);

    // The next `times` Riot API requests answer `status` (with Retry-After and
    // X-Rate-Limit-Type when given, and `body`) without being served or counted by the limits.
    void inject(int status, int times, std::optional<int> retryAfterSeconds = std::nullopt,
                std::string rateLimitType = {}, std::string body = {});

    [[nodiscard]] int requestCount() const;
    // 429s the fake gave because a limit was exceeded (not the injected ones).
    [[nodiscard]] int limitRefusals() const;
    [[nodiscard]] std::vector<FakeRequestLog> log() const;

    [[nodiscard]] std::string fixture(const std::string& name) const;
    [[nodiscard]] static std::string fixtureAccountPuuid();

private:
    struct Window {
        FakeWindow limit;
        std::chrono::steady_clock::time_point start{};
        int count = 0;
    };
    struct Injection {
        int status;
        int times;
        std::optional<int> retryAfter;
        std::string type;
        std::string body;
    };
    struct Answer {
        int status = 200;
        std::string body;
    };

    void addRoutes();
    HttpResponse serve(HttpRequest& request, const std::string& method, Answer (FakeRiotApi::*answer)(HttpRequest&));
    // Counts a request against windows; false, with the seconds to wait, when one is full.
    static bool admit(std::vector<Window>& windows, std::chrono::steady_clock::time_point now, int& retryAfter);
    static std::string announce(const std::vector<Window>& windows, bool counts);

    Answer accountByRiotId(HttpRequest& request);
    Answer accountByPuuid(HttpRequest& request);
    Answer summoner(HttpRequest& request);
    Answer leagueEntries(HttpRequest& request);
    Answer masteries(HttpRequest& request);
    Answer matchIds(HttpRequest& request);
    Answer match(HttpRequest& request);
    Answer timeline(HttpRequest& request);

    std::string m_fixturesDir;
    std::vector<FakeWindow> m_appLimits;
    std::vector<FakeWindow> m_methodLimits{{2000, 10}};
    std::map<std::string, std::string> m_fixtures; // name → text, read once

    mutable std::mutex m_mutex;
    std::map<std::string, std::vector<Window>> m_appWindows;    // per routing value
    std::map<std::string, std::vector<Window>> m_methodWindows; // per routing value + method
    std::map<std::string, std::string> m_accountsByRiotId;      // "name#tag" → account JSON
    std::map<std::string, std::string> m_accountsByPuuid;
    std::map<std::string, std::vector<std::string>> m_histories;            // puuid → match ids, newest first
    std::map<std::string, bool> m_matches;                                  // id → has a timeline
    std::map<std::string, std::pair<std::string, std::string>> m_realGames; // id → fixtures
    std::vector<Injection> m_injections;
    std::vector<FakeRequestLog> m_log;
    int m_limitRefusals = 0;

    Router m_router;
    std::unique_ptr<HttpServer> m_server;
    std::thread m_thread;
};

} // namespace qf::test
