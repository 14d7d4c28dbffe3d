// Writing League client games as JSON text.

#include "client_game_maker.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <array>

namespace qf::bench {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

// The client's per-player "stats" members beyond the ones written by name below.
constexpr std::array<const char*, 62> kCountStats{"largestKillingSpree",
                                                  "largestMultiKill",
                                                  "killingSprees",
                                                  "longestTimeSpentLiving",
                                                  "doubleKills",
                                                  "tripleKills",
                                                  "quadraKills",
                                                  "pentaKills",
                                                  "unrealKills",
                                                  "totalDamageDealt",
                                                  "magicDamageDealt",
                                                  "physicalDamageDealt",
                                                  "trueDamageDealt",
                                                  "largestCriticalStrike",
                                                  "magicDamageDealtToChampions",
                                                  "physicalDamageDealtToChampions",
                                                  "trueDamageDealtToChampions",
                                                  "totalHeal",
                                                  "totalUnitsHealed",
                                                  "damageSelfMitigated",
                                                  "damageDealtToObjectives",
                                                  "damageDealtToTurrets",
                                                  "timeCCingOthers",
                                                  "totalDamageTaken",
                                                  "magicalDamageTaken",
                                                  "physicalDamageTaken",
                                                  "trueDamageTaken",
                                                  "goldSpent",
                                                  "turretKills",
                                                  "inhibitorKills",
                                                  "neutralMinionsKilledTeamJungle",
                                                  "neutralMinionsKilledEnemyJungle",
                                                  "totalTimeCrowdControlDealt",
                                                  "visionWardsBoughtInGame",
                                                  "sightWardsBoughtInGame",
                                                  "wardsPlaced",
                                                  "wardsKilled",
                                                  "combatPlayerScore",
                                                  "objectivePlayerScore",
                                                  "totalPlayerScore",
                                                  "totalScoreRank",
                                                  "playerScore0",
                                                  "playerScore1",
                                                  "playerScore2",
                                                  "playerScore3",
                                                  "playerScore4",
                                                  "playerScore5",
                                                  "playerScore6",
                                                  "playerScore7",
                                                  "playerScore8",
                                                  "playerScore9",
                                                  "perkPrimaryStyle",
                                                  "perkSubStyle",
                                                  "statPerk0",
                                                  "statPerk1",
                                                  "statPerk2",
                                                  "perk0",
                                                  "perk1",
                                                  "perk2",
                                                  "perk3",
                                                  "perk4",
                                                  "perk5"};
constexpr std::array<const char*, 6> kFlags{"firstBloodKill",   "firstBloodAssist",   "firstTowerKill",
                                            "firstTowerAssist", "firstInhibitorKill", "firstInhibitorAssist"};
constexpr std::array<const char*, 7> kDeltas{
    "creepsPerMinDeltas", "xpPerMinDeltas",          "goldPerMinDeltas",           "csDiffPerMinDeltas",
    "xpDiffPerMinDeltas", "damageTakenPerMinDeltas", "damageTakenDiffPerMinDeltas"};
// Seats in the order the client lists them: lane, role.
constexpr std::array<std::pair<const char*, const char*>, 5> kSeats{
    {{"TOP", "SOLO"}, {"JUNGLE", "NONE"}, {"MIDDLE", "SOLO"}, {"BOTTOM", "DUO_CARRY"}, {"BOTTOM", "DUO_SUPPORT"}}};

void field(Writer& w, const char* key, int64_t value) {
    w.Key(key);
    w.Int64(value);
}

} // namespace

ClientGameMaker::ClientGameMaker(uint64_t seed, std::string ownPuuid, int poolSize) : m_random(seed) {
    m_own = {std::move(ownPuuid), "Uploader", m_random.between(1, 5000)};
    for (int i = 0; i < poolSize; ++i)
        m_pool.push_back({uuidPuuid(m_random), "Player " + std::to_string(i), m_random.between(1, 5000)});
}

std::string ClientGameMaker::uuidPuuid(BenchRandom& random) {
    static constexpr char hex[] = "0123456789abcdef";
    std::string out;
    for (const int group : {8, 4, 4, 4, 12}) {
        if (!out.empty())
            out += '-';
        for (int i = 0; i < group; ++i)
            out += hex[random.next() % 16];
    }
    out[14] = '4';
    out[19] = '8';
    return out;
}

std::string ClientGameMaker::batch(int64_t firstGameId, int count, int64_t firstCreation) {
    m_json = "{\"games\":[";
    for (int i = 0; i < count; ++i) {
        if (i)
            m_json += ',';
        writeGame(firstGameId + i, firstCreation + int64_t(i) * 120'000);
    }
    m_json += "]}";
    return std::move(m_json);
}

void ClientGameMaker::writeGame(int64_t gameId, int64_t creation) {
    BenchRandom& r = m_random;
    // The uploader at a random seat, nine others from the pool, nobody twice.
    std::array<const Person*, 10> seats{};
    const size_t ownSeat = size_t(r.between(0, 9));
    std::vector<size_t> picked;
    for (size_t seat = 0; seat < 10; ++seat) {
        if (seat == ownSeat) {
            seats[seat] = &m_own;
            continue;
        }
        size_t i = 0;
        do
            i = size_t(r.next() % m_pool.size());
        while (std::find(picked.begin(), picked.end(), i) != picked.end());
        picked.push_back(i);
        seats[seat] = &m_pool[i];
    }
    const bool blueWins = r.chance(0.5);
    const int64_t duration = r.between(900, 2400);

    rapidjson::StringBuffer buffer;
    Writer w(buffer);
    w.StartObject();
    field(w, "gameId", gameId);
    w.Key("platformId");
    w.String("EUW1");
    field(w, "gameCreation", creation);
    field(w, "gameDuration", duration);
    field(w, "queueId", 420);
    field(w, "mapId", 11);
    field(w, "seasonId", 13);
    w.Key("gameVersion");
    w.String("14.3.556.123");
    w.Key("gameMode");
    w.String("CLASSIC");
    w.Key("gameType");
    w.String("MATCHED_GAME");

    w.Key("teams");
    w.StartArray();
    for (const int team : {100, 200}) {
        w.StartObject();
        field(w, "teamId", team);
        w.Key("win");
        w.String((team == 100) == blueWins ? "Win" : "Fail");
        for (const char* flag :
             {"firstBlood", "firstTower", "firstInhibitor", "firstBaron", "firstDragon", "firstRiftHerald"}) {
            w.Key(flag);
            w.Bool(r.chance(0.5));
        }
        for (const char* count : {"towerKills", "inhibitorKills", "baronKills", "dragonKills", "vilemawKills",
                                  "riftHeraldKills", "dominionVictoryScore"})
            field(w, count, r.between(0, 4));
        w.Key("bans");
        w.StartArray();
        for (int turn = 1; turn <= 5; ++turn) {
            w.StartObject();
            field(w, "championId", r.between(1, 45));
            field(w, "pickTurn", turn);
            w.EndObject();
        }
        w.EndArray();
        w.EndObject();
    }
    w.EndArray();

    w.Key("participants");
    w.StartArray();
    for (int seat = 0; seat < 10; ++seat) {
        const int team = seat < 5 ? 100 : 200;
        w.StartObject();
        field(w, "participantId", seat + 1);
        field(w, "teamId", team);
        field(w, "championId", r.between(1, 45));
        field(w, "spell1Id", 4);
        field(w, "spell2Id", seat % 5 == 1 ? 11 : 14);
        w.Key("stats");
        w.StartObject();
        field(w, "participantId", seat + 1);
        w.Key("win");
        w.Bool((team == 100) == blueWins);
        for (int slot = 0; slot < 7; ++slot)
            field(w, ("item" + std::to_string(slot)).c_str(), r.chance(0.15) ? 0 : r.between(1001, 6700));
        field(w, "kills", r.between(0, 14));
        field(w, "deaths", r.between(0, 12));
        field(w, "assists", r.between(0, 20));
        field(w, "totalDamageDealtToChampions", r.between(4000, 40000));
        field(w, "visionScore", r.between(5, 80));
        field(w, "goldEarned", r.between(6000, 17000));
        field(w, "totalMinionsKilled", seat % 5 == 4 ? r.between(10, 60) : r.between(120, 280));
        field(w, "neutralMinionsKilled", seat % 5 == 1 ? r.between(80, 180) : r.between(0, 12));
        field(w, "champLevel", r.between(9, 18));
        for (const char* key : kCountStats)
            field(w, key, r.between(0, 30000));
        for (const char* flag : kFlags) {
            w.Key(flag);
            w.Bool(r.chance(0.1));
        }
        for (int perk = 0; perk < 6; ++perk)
            for (int var = 1; var <= 3; ++var)
                field(w, ("perk" + std::to_string(perk) + "Var" + std::to_string(var)).c_str(), r.between(0, 2000));
        w.EndObject();

        w.Key("timeline");
        w.StartObject();
        field(w, "participantId", seat + 1);
        for (const char* deltas : kDeltas) {
            w.Key(deltas);
            w.StartObject();
            for (const char* span : {"10-20", "0-10", "20-30"}) {
                w.Key(span);
                w.Double(r.unit() * 900.0 - 100.0);
            }
            w.EndObject();
        }
        w.Key("role");
        w.String(kSeats[size_t(seat % 5)].second);
        w.Key("lane");
        w.String(kSeats[size_t(seat % 5)].first);
        w.EndObject();
        w.EndObject();
    }
    w.EndArray();

    w.Key("participantIdentities");
    w.StartArray();
    for (int seat = 0; seat < 10; ++seat) {
        const Person& person = *seats[size_t(seat)];
        w.StartObject();
        field(w, "participantId", seat + 1);
        w.Key("player");
        w.StartObject();
        w.Key("platformId");
        w.String("EUW1");
        w.Key("accountId");
        w.String(("acc-" + person.puuid.substr(0, 20)).c_str());
        w.Key("summonerName");
        w.String(person.name.c_str());
        w.Key("summonerId");
        w.String(("sum-" + person.puuid.substr(0, 24)).c_str());
        w.Key("currentPlatformId");
        w.String("EUW1");
        w.Key("currentAccountId");
        w.String(("acc-" + person.puuid.substr(0, 20)).c_str());
        w.Key("matchHistoryUri");
        w.String(("/v1/stats/player_history/EUW1/" + std::to_string(gameId)).c_str());
        field(w, "profileIcon", person.icon);
        w.Key("puuid");
        w.String(person.puuid.c_str());
        w.Key("gameName");
        w.String(person.name.c_str());
        w.Key("tagLine");
        w.String("EUW");
        w.EndObject();
        w.EndObject();
    }
    w.EndArray();
    w.EndObject();
    m_json.append(buffer.GetString(), buffer.GetSize());
}

} // namespace qf::bench
