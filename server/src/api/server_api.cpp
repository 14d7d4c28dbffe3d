#include "api/server_api.h"

#include "api/api_answers.h"
#include "json/json_input.h"

#include <chrono>

namespace qf {

namespace {

// A request body that must be a JSON object.
struct Body {
    explicit Body(const HttpRequest& request) : document(request.body) {
        if (!json::isObject(document.root()))
            throw HttpError(400, "The request body must be a JSON object.");
    }
    // A member that must be text.
    std::string requiredText(std::string_view key) const {
        const std::optional<std::string> value = json::optText(document.root(), key);
        if (!value)
            throw HttpError(400, "The request needs \"" + std::string(key) + "\" as text.");
        return *value;
    }
    std::optional<std::string> optionalText(std::string_view key) const { return json::optText(document.root(), key); }
    json::Document document;
};

} // namespace

int64_t unixNowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

void installApi(Router& router, ApiServices s, ApiSettings settings, std::function<int64_t()> now) {
    using R = HttpRequest&;

    router.add("POST", "/api/auth/register", [s, now](R request) {
        const Body body(request);
        return HttpResponse::json(
            answers::auth(s.auth.registerUser(body.requiredText("email"), body.requiredText("password"),
                                              body.optionalText("name"), request.remoteAddress, now())));
    });
    router.add("POST", "/api/auth/login", [s, now](R request) {
        const Body body(request);
        return HttpResponse::json(answers::auth(
            s.auth.login(body.requiredText("email"), body.requiredText("password"), request.remoteAddress, now())));
    });
    router.add("POST", "/api/auth/league", [s, now](R request) {
        const Body body(request);
        return HttpResponse::json(
            answers::auth(s.auth.leagueLogin(body.requiredText("puuid"), body.requiredText("platform"),
                                             body.optionalText("game_name"), body.optionalText("tag_line"), now())));
    });

    router.add("GET", "/api/riot-accounts", [s, now](R request) {
        return HttpResponse::json(answers::riotAccounts(s.riotAccounts.list(s.auth.userOf(request, now()))));
    });
    router.add("POST", "/api/riot-accounts", [s, now](R request) {
        const int64_t user = s.auth.userOf(request, now());
        const Body body(request);
        return HttpResponse::json(answers::riotAccount(
            s.riotAccounts.link(user, body.requiredText("riot_id"), body.requiredText("platform"), now())));
    });
    router.add("POST", "/api/riot-accounts/refresh", [s, now](R request) {
        return HttpResponse::json(answers::riotAccounts(s.riotAccounts.refresh(s.auth.userOf(request, now()), now())));
    });

    router.add("GET", "/api/sync", [s, now](R request) {
        const int64_t user = s.auth.userOf(request, now());
        return HttpResponse::json(answers::syncPage(s.sync.page(user, request.queryValue("cursor"))));
    });
    router.add("POST", "/api/matches/ingest-local", [s, now](R request) {
        const int64_t user = s.auth.userOf(request, now());
        const Body body(request);
        std::vector<std::string> uploader;
        for (const RiotAccount& account : s.riotAccounts.list(user))
            uploader.push_back(account.puuid);
        const std::optional<json::Element> games = json::member(body.document.root(), "games");
        if (!games || !json::isArray(*games))
            throw HttpError(400, "Expected a JSON object with a \"games\" list.");
        const IngestOutcome outcome = s.ingest.ingest(*games, now(), &uploader);
        return HttpResponse::json(answers::ingest(outcome.ingested, outcome.skipped, outcome.matchIds));
    });
    router.add("GET", "/api/static/version", [settings](R) {
        return HttpResponse::json(answers::staticVersion(settings.currentStaticVersion ? settings.currentStaticVersion()
                                                                                       : settings.staticVersion,
                                                         settings.cdnBase));
    });

    router.add("GET", "/api/stats/duos", [s, now](R request) {
        return HttpResponse::json(answers::duos(s.social.duos(s.auth.userOf(request, now()))));
    });
    router.add("GET", "/api/stats/friend/{}", [s, now](R request) {
        const int64_t user = s.auth.userOf(request, now());
        return HttpResponse::json(answers::friendRecord(s.social.friendRecord(user, request.pathParams.at(0))));
    });
    router.add("GET", "/api/players/{}/profile", [s, now](R request) {
        s.auth.userOf(request, now());
        return HttpResponse::json(
            answers::profile(s.social.profile(request.pathParams.at(0), request.queryValue("platform"))));
    });
    router.add("GET", "/api/matches/{}/timeline", [s, now](R request) {
        const int64_t user = s.auth.userOf(request, now());
        return HttpResponse::json(s.social.timeline(user, request.pathParams.at(0)));
    });
}

} // namespace qf
