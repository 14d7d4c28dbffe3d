// Writes a demo game the way the League client's match history serves it: the shape of the
// retired match-v4 web API, with puuid, gameName and tagLine on each player, and the client's
// own spelling of its team fields ("firstDargon").

#include "demo/demo_games.h"

#include "demo/demo_schedule.h"

#include <algorithm>
#include <set>

namespace qf::demo {

namespace {

struct TeamTally {
    int64_t towers = 0;
    int64_t inhibitors = 0;
    int64_t barons = 0;
    int64_t dragons = 0;
    int64_t heralds = 0;
    bool firstBlood = false;
    bool firstTower = false;
    bool firstInhibitor = false;
    bool firstBaron = false;
    bool firstDragon = false;
};

TeamTally tallyOf(const Game& game, int64_t teamId) {
    TeamTally t;
    if (!game.kills.empty())
        t.firstBlood = game.participants[static_cast<size_t>(game.kills.front().killer)].teamId == teamId;
    std::set<std::string> firsts;
    for (const Objective& o : game.objectives) {
        const bool ours = o.team == teamId;
        const bool first = firsts.insert(o.type).second;
        if (o.type == "TOWER_BUILDING") {
            t.towers += ours;
            t.firstTower = t.firstTower || (first && ours);
        } else if (o.type == "INHIBITOR_BUILDING") {
            t.inhibitors += ours;
            t.firstInhibitor = t.firstInhibitor || (first && ours);
        } else if (o.type == "BARON_NASHOR") {
            t.barons += ours;
            t.firstBaron = t.firstBaron || (first && ours);
        } else if (o.type == "DRAGON") {
            t.dragons += ours;
            t.firstDragon = t.firstDragon || (first && ours);
        } else if (o.type == "RIFTHERALD") {
            t.heralds += ours;
        }
    }
    return t;
}

void writePlayer(json::Writer& out, const Participant& p) {
    out.beginObject();
    out.field("puuid", p.person.puuid);
    out.field("gameName", p.person.gameName);
    out.field("tagLine", p.person.tagLine);
    out.field("summonerName", p.person.gameName);
    out.field("platformId", "EUW1");
    out.field("currentPlatformId", "EUW1");
    out.field("profileIcon", p.person.profileIcon);
    out.endObject();
}

void writeStats(json::Writer& out, const Game& game, size_t index) {
    const Participant& p = game.participants[index];
    const int id = static_cast<int>(index) + 1;
    out.beginObject();
    out.field("participantId", id);
    out.field("win", p.win);
    out.field("kills", p.kills);
    out.field("deaths", p.deaths);
    out.field("assists", p.assists);
    out.field("champLevel", p.level);
    out.field("totalMinionsKilled", p.minions);
    out.field("neutralMinionsKilled", p.neutral);
    out.field("goldEarned", p.gold);
    out.field("goldSpent", p.gold - p.gold % 250);
    out.field("visionScore", p.vision);
    out.field("wardsPlaced", p.wardsPlaced);
    out.field("wardsKilled", p.wardsKilled);
    out.field("totalDamageDealtToChampions", p.damage);
    out.field("totalDamageTaken", p.damageTaken);
    for (size_t slot = 0; slot < p.items.size(); ++slot)
        out.field("item" + std::to_string(slot), p.items[slot]);
    const bool firstBloodKill = !game.kills.empty() && game.kills.front().killer == static_cast<int>(index);
    const bool firstBloodAssist =
        !game.kills.empty() && std::count(game.kills.front().assisters.begin(), game.kills.front().assisters.end(),
                                          static_cast<int>(index)) > 0;
    out.field("firstBloodKill", firstBloodKill);
    out.field("firstBloodAssist", firstBloodAssist);
    if (game.queue->map == Map::Arena) {
        out.field("playerSubteamId", p.subteam);
        out.field("subteamPlacement", p.placement);
    }
    out.endObject();
}

void writeTeam(json::Writer& out, const Game& game, int64_t teamId, Random& random, std::set<int64_t>& banned) {
    const TeamTally t = tallyOf(game, teamId);
    bool won = false;
    for (const Participant& p : game.participants)
        if (p.teamId == teamId && (game.queue->map == Map::Arena ? p.placement == 1 : p.win))
            won = true;
    out.beginObject();
    out.field("teamId", teamId);
    out.field("win", won ? "Win" : "Fail");
    out.field("firstBlood", t.firstBlood);
    out.field("firstTower", t.firstTower);
    out.field("firstInhibitor", t.firstInhibitor);
    out.field("firstBaron", t.firstBaron);
    out.field("firstDargon", t.firstDragon);
    out.field("towerKills", t.towers);
    out.field("inhibitorKills", t.inhibitors);
    out.field("baronKills", t.barons);
    out.field("dragonKills", t.dragons);
    out.field("riftHeraldKills", t.heralds);
    out.field("vilemawKills", int64_t{0});
    out.field("dominionVictoryScore", int64_t{0});
    out.key("bans").beginArray();
    if (game.queue->bans) {
        for (int turn = 1; turn <= 5; ++turn) {
            int64_t champion = random.pick(championPool(Position::None));
            while (!banned.insert(champion).second)
                champion = random.pick(championPool(Position::None));
            out.beginObject()
                .field("championId", champion)
                .field("pickTurn", teamId == 100 ? turn : turn + 5)
                .endObject();
        }
    }
    out.endArray();
    out.endObject();
}

} // namespace

void writeClientGame(json::Writer& out, const Game& game) {
    out.beginObject();
    out.field("gameId", game.gameId);
    out.field("platformId", "EUW1");
    out.field("gameCreation", game.creation);
    out.field("gameCreationDate", isoTime(game.creation));
    out.field("gameDuration", game.duration);
    out.field("gameMode", game.queue->gameMode);
    out.field("gameType", "MATCHED_GAME");
    out.field("gameVersion", game.version);
    out.field("mapId", game.queue->mapId);
    out.field("queueId", game.queue->id);
    out.field("seasonId", game.season);

    out.key("participantIdentities").beginArray();
    for (size_t i = 0; i < game.participants.size(); ++i) {
        out.beginObject().field("participantId", static_cast<int>(i) + 1).key("player");
        writePlayer(out, game.participants[i]);
        out.endObject();
    }
    out.endArray();

    out.key("participants").beginArray();
    for (size_t i = 0; i < game.participants.size(); ++i) {
        const Participant& p = game.participants[i];
        out.beginObject();
        out.field("participantId", static_cast<int>(i) + 1);
        out.field("teamId", p.teamId);
        out.field("championId", p.championId);
        out.field("spell1Id", p.spell1);
        out.field("spell2Id", p.spell2);
        out.key("stats");
        writeStats(out, game, i);
        out.key("timeline").beginObject();
        out.field("participantId", static_cast<int>(i) + 1);
        out.field("lane", clientLane(p.position));
        out.field("role", clientRole(p.position));
        out.endObject();
        out.endObject();
    }
    out.endArray();

    // Bans are not part of the simulation; they only need to be stable and not picked.
    Random random(static_cast<uint64_t>(game.gameId));
    std::set<int64_t> banned;
    for (const Participant& p : game.participants)
        banned.insert(p.championId);
    out.key("teams").beginArray();
    writeTeam(out, game, 100, random, banned);
    writeTeam(out, game, 200, random, banned);
    out.endArray();
    out.endObject();
}

} // namespace qf::demo
