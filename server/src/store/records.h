#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// The rows the server keeps. Plain values: the storage layer reads and writes them, the
// services compute on them, the API turns them into JSON. Times are Unix milliseconds (UTC).

namespace qf {

struct User {
    int64_t id = 0;
    std::string email;    // as registered, trimmed; looked up by emailKey
    std::string emailKey; // lower-cased e-mail: the unique key
    std::optional<std::string> name;
    std::string passwordHash; // libsodium argon2id string; empty for users made by League sign-in
    int64_t createdAt = 0;
};

// A Riot account linked to a user. A puuid belongs to at most one user.
struct RiotAccount {
    int64_t id = 0;
    int64_t userId = 0;
    std::string puuid;
    std::optional<std::string> gameName;
    std::optional<std::string> tagLine;
    std::string platform; // "euw1", lower case
    std::string region;   // "europe", "americas", "asia", "sea"
    bool isOwner = false;
    std::optional<int64_t> profileIconId;
    std::optional<int64_t> summonerLevel;
    int64_t linkedAt = 0;
};

// Everyone the server has seen in a stored game, by puuid, with the Riot ID they last had.
// nameKey and tagKey are Unicode case-folded (UTF-8) for look-ups by Riot ID.
struct Player {
    std::string puuid;
    std::string gameName;
    std::string tagLine;
    std::string nameKey;
    std::string tagKey;
    std::string platform;
    std::optional<int64_t> profileIconId;
    int64_t lastSeen = 0; // creation time of the newest game they were seen in
};

struct Match {
    int64_t id = 0;
    std::string matchId;  // "EUW1_7123456789"
    std::string platform; // "EUW1", as the game names it
    int64_t queueId = 0;
    bool isRanked = false;
    int64_t gameCreation = 0; // ms
    int64_t gameDuration = 0; // seconds
    std::string gameVersion;
    std::string gameMode;
    std::optional<int64_t> season;
    int64_t updatedAt = 0; // ms, last change
    int64_t changeSeq = 0; // position in the change order; assigned by the store
};

struct Participant {
    int64_t id = 0;
    int64_t matchId = 0; // Match::id
    std::string puuid;
    std::optional<std::string> riotIdGameName;
    std::optional<std::string> riotIdTagLine;
    int64_t teamId = 0;
    bool win = false;
    int64_t championId = 0;
    std::string championName;
    std::optional<std::string> teamPosition; // TOP, JUNGLE, MIDDLE, BOTTOM, UTILITY
    std::optional<int64_t> champLevel;
    int64_t kills = 0;
    int64_t deaths = 0;
    int64_t assists = 0;
    int64_t totalCs = 0;
    int64_t goldEarned = 0;
    int64_t visionScore = 0;
    int64_t damageToChampions = 0;
    std::vector<int64_t> items;
    std::optional<double> teamDamagePct;
    std::optional<double> killParticipation;
    std::optional<double> csPerMin;
    std::optional<std::string> rankTier;
    std::optional<std::string> rankDivision;
    std::optional<int64_t> rankLp;
    std::optional<int64_t> profileIconId;
};

struct RankSnapshot {
    int64_t id = 0;
    int64_t riotAccountId = 0;
    std::string queue; // "RANKED_SOLO_5x5"
    std::optional<std::string> tier;
    std::optional<std::string> division;
    int64_t lp = 0;
    int64_t wins = 0;
    int64_t losses = 0;
    int64_t capturedAt = 0; // ms
    int64_t changeSeq = 0;
};

struct PerformanceScore {
    int64_t id = 0;
    int64_t riotAccountId = 0;
    int64_t matchId = 0; // Match::id
    int64_t championId = 0;
    std::optional<std::string> teamPosition;
    double score = 0;
    std::vector<std::pair<std::string, double>> components; // snake_case keys, in a fixed order
    std::string baselineKind = "self";
    int64_t changeSeq = 0;
};

// The Riot API backfill of one linked account: reads its match history newest first, page by
// page, until the newest game of the previous finished run or the end of the history.
struct Backfill {
    int64_t riotAccountId = 0;
    std::string riotPuuid;                // the account's puuid as the Riot API knows it
    std::string platform;                 // "euw1": routes its requests
    int64_t nextStart = 0;                // position in the history of the next page
    int64_t found = 0;                    // match ids read in this run
    int64_t fetched = 0;                  // of them, games stored (fetched, or already there)
    std::optional<std::string> runNewest; // the newest match id of this run
    std::optional<std::string> stopAt;    // the newest match id of the last finished run
    bool done = false;
    int64_t claimedUntil = 0; // ms; a worker holds the run until then
    int64_t updatedAt = 0;
};

// A game as the ingest path hands it to the store: the match (id and changeSeq unset), its
// players (id and matchId unset), and optionally the timeline summary as JSON text.
struct GameRecord {
    Match match;
    std::vector<Participant> participants;
    std::optional<std::string> timelineJson;
};

// One of a user's games as the statistics read it: the match, and its rows.
struct GameWithRows {
    Match match;
    std::vector<Participant> participants;
};

} // namespace qf
