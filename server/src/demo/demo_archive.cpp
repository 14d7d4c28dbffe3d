// Installs the demo through the server's own paths: the games go through the ingest exactly as
// the app's uploads do, the accounts are linked and scored as a League sign-in links them.

#include "demo/demo_archive.h"

#include "auth/password_hasher.h"
#include "demo/demo_games.h"
#include "demo/demo_ranks.h"
#include "demo/demo_roster.h"
#include "demo/demo_timeline.h"
#include "json/json_input.h"
#include "json/json_writer.h"

#include <algorithm>
#include <cctype>

namespace qf {

namespace {

// The app uploads at most this many games in one request.
constexpr size_t kBatch = 100;

std::string emailKeyOf(std::string_view email) {
    std::string key(email);
    std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::tolower(c); });
    return key;
}

RiotAccount accountOf(const demo::Person& person, int64_t userId, bool isOwner, int64_t level, int64_t now) {
    RiotAccount a;
    a.userId = userId;
    a.puuid = person.puuid;
    a.gameName = person.gameName;
    a.tagLine = person.tagLine;
    a.platform = "euw1";
    a.region = "europe";
    a.isOwner = isOwner;
    a.profileIconId = person.profileIcon;
    a.summonerLevel = level;
    a.linkedAt = now;
    return a;
}

} // namespace

DemoSummary installDemo(Database& database, IngestService& ingest, int64_t now) {
    const std::string emailKey = emailKeyOf(DemoCredentials::email);
    DemoSummary summary;
    if (database.read([&](Repository& r) { return r.userByEmailKey(emailKey).has_value(); }))
        return summary;

    const std::vector<demo::Game> games = demo::generateGames(now);
    summary.games = static_cast<int64_t>(games.size());
    for (size_t from = 0; from < games.size(); from += kBatch) {
        json::Writer out;
        out.beginArray();
        for (size_t i = from; i < std::min(games.size(), from + kBatch); ++i)
            demo::writeClientGame(out, games[i]);
        out.endArray();
        const std::string text = out.take();
        const json::Document batch(text);
        const IngestOutcome outcome = ingest.ingest(batch.root(), now);
        summary.ingested += outcome.ingested;
        summary.skipped += outcome.skipped;
    }

    // Hashing takes a moment and much memory: not inside the transaction.
    const std::string passwordHash = hashPassword(DemoCredentials::password);
    const demo::Roster& roster = demo::roster();
    try {
        summary.created = database.write([&](Repository& r) {
            if (r.userByEmailKey(emailKey))
                return false; // another server got there first
            User user;
            user.email = DemoCredentials::email;
            user.emailKey = emailKey;
            user.name = "Demo";
            user.passwordHash = passwordHash;
            user.createdAt = now;
            r.insertUser(user);
            RiotAccount main = accountOf(roster.main, user.id, true, 287, now);
            RiotAccount alt = accountOf(roster.alt, user.id, false, 94, now);
            r.insertAccount(main);
            r.insertAccount(alt);
            IngestService::scoreAccount(r, main);
            IngestService::scoreAccount(r, alt);

            // Only the main account climbs: the Rank screen draws every linked account's
            // snapshots of a queue as one line, and a second ladder would zigzag across it.
            for (RankSnapshot& snapshot : demo::rankSnapshots(games, demo::Owner::Main, now)) {
                snapshot.riotAccountId = main.id;
                r.insertRankSnapshot(snapshot);
                ++summary.snapshots;
            }

            for (const demo::Game& game : games) {
                const std::optional<GameWithRows> stored = r.gameByMatchId(demo::riotMatchId(game));
                if (!stored)
                    continue;
                const std::string& puuid = game.participants[static_cast<size_t>(game.owner)].person.puuid;
                // The champion's name as the archive holds it, so the screen shows the same one.
                const auto me = std::find_if(stored->participants.begin(), stored->participants.end(),
                                             [&](const Participant& p) { return p.puuid == puuid; });
                if (me == stored->participants.end())
                    continue;
                if (const auto json = demo::timelineSummaryJson(game, me->championName)) {
                    r.storeTimeline(stored->match.id, puuid, *json);
                    ++summary.timelines;
                }
            }
            return true;
        });
    } catch (const UniqueViolation&) {
        // A server starting at the same moment linked the same accounts: its demo stands.
        summary.created = false;
    }
    if (!summary.created) {
        summary.snapshots = 0;
        summary.timelines = 0;
    }
    return summary;
}

} // namespace qf
