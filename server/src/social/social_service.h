#pragma once

#include "archive/champion_directory.h"
#include "riot/riot_client.h"
#include "store/database.h"

#include "text/riot_id.h"

#include <optional>
#include <string>
#include <vector>

// The read-only questions the app's screens ask beyond the archive: frequent duo partners, the
// record with one player, a player's public profile and a game's timeline summary. All are
// computed from the asking user's own games.

namespace qf {

struct Duo {
    std::string puuid;
    std::optional<std::string> riotId;
    int64_t games = 0;
    int64_t wins = 0;
    int64_t losses = 0;
    double winrate = 0;
    int64_t lastPlayed = 0;          // ms
    std::optional<std::string> rank; // "Gold II"
    std::optional<int64_t> profileIconId;
};

struct FriendGame {
    int64_t matchId = 0; // the server's id
    std::optional<int64_t> season;
    int64_t queueId = 0;
    std::string gameMode;
    int64_t playedAt = 0;
    bool win = false;
    std::string ownerChampion;
    std::optional<std::string> ownerPosition;
    std::string friendChampion;
};

struct FriendRecord {
    std::string friendPuuid;
    std::optional<std::string> friendName;
    std::optional<std::string> friendTag;
    std::optional<int64_t> friendIcon;
    int64_t games = 0, wins = 0, losses = 0;
    double winrate = 0;
    std::vector<FriendGame> gamesTogether; // newest first
};

struct RankEntry {
    std::string queueType;
    std::optional<std::string> tier, rank;
    std::optional<int64_t> leaguePoints, wins, losses;
};

struct Mastery {
    int64_t championId = 0;
    int64_t championLevel = 0;
    int64_t championPoints = 0;
};
struct PlayerProfile {
    std::string puuid;
    std::optional<std::string> gameName, tagLine;
    std::string platform;
    std::vector<RankEntry> ranks;
    std::vector<Mastery> masteries; // highest points first; only the Riot API knows them
};

class SocialService {
public:
    static constexpr int64_t minimumDuoGames = 3;

    // Champions shown on a profile, at most.
    static constexpr int profileMasteries = 10;
    // riot: null without a key.
    // champions: names for timelines read from the Riot API (needed with riot).
    explicit SocialService(Database& database, const RiotClient* riot = nullptr,
                           const ChampionDirectory* champions = nullptr)
        : m_database(database), m_riot(riot), m_champions(champions) {}

    // Team-mates in at least three of the user's games, most games first.
    std::vector<Duo> duos(int64_t userId);
    // Every game the user played on the same team as puuid. HttpError 404 for a player never seen.
    FriendRecord friendRecord(int64_t userId, std::string_view puuid);
    // Any player by Riot ID: from the Riot API (account, ranks, top champion mastery) when a key
    // is set and it answers, else a player seen in stored games. HttpError 400/404.
    PlayerProfile profile(std::string_view riotId, const std::string* platform);
    // The timeline summary of one of the user's games, from their side, as JSON text: the stored
    // one, else (with the Riot API) match-v5's timeline condensed once and stored. HttpError 404
    // when the user has no such game or it has no timeline, 503 when Riot cannot be reached.
    std::string timeline(int64_t userId, std::string_view riotMatchId);

private:
    [[nodiscard]] PlayerProfile profileFromArchive(const RiotId& riotId, const std::optional<std::string>& platform);

    [[nodiscard]] std::string timelineFromRiot(int64_t matchRowId, const std::string& ownerPuuid,
                                               std::string_view riotMatchId);

    Database& m_database;
    const RiotClient* m_riot;
    const ChampionDirectory* m_champions;
};

// "Gold II", "Master"; nullopt without a tier. Pure.
std::optional<std::string> rankLabel(const std::optional<std::string>& tier,
                                     const std::optional<std::string>& division);

} // namespace qf
