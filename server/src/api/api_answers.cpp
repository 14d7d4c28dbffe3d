#include "api/api_answers.h"

#include "text/timestamps.h"
#include "json/json_writer.h"

namespace qf::answers {

namespace {

void writeAccount(json::Writer& w, const RiotAccount& a) {
    w.beginObject()
        .field("id", a.id)
        .field("puuid", a.puuid)
        .field("game_name", a.gameName)
        .field("tag_line", a.tagLine)
        .field("platform", a.platform)
        .field("region", a.region)
        .field("is_owner", a.isOwner)
        .field("profile_icon_id", a.profileIconId)
        .field("summoner_level", a.summonerLevel)
        .endObject();
}

void writeMatch(json::Writer& w, const Match& m) {
    w.beginObject()
        .field("id", m.id)
        .field("match_id", m.matchId)
        .field("platform", m.platform)
        .field("queue_id", m.queueId)
        .field("is_ranked", m.isRanked)
        .field("game_creation", isoTimestamp(m.gameCreation))
        .field("game_duration", m.gameDuration);
    w.key("game_version");
    m.gameVersion.empty() ? w.null() : w.value(m.gameVersion);
    w.key("game_mode");
    m.gameMode.empty() ? w.null() : w.value(m.gameMode);
    w.field("season", m.season).field("updated_at", isoTimestamp(m.updatedAt)).endObject();
}

void writeSnapshot(json::Writer& w, const RankSnapshot& s) {
    w.beginObject()
        .field("id", s.id)
        .field("riot_account_id", s.riotAccountId)
        .field("queue", s.queue)
        .field("tier", s.tier)
        .field("division", s.division)
        .field("lp", s.lp)
        .field("wins", s.wins)
        .field("losses", s.losses)
        .field("captured_at", isoTimestamp(s.capturedAt))
        .endObject();
}

void writeScore(json::Writer& w, const PerformanceScore& s) {
    w.beginObject()
        .field("id", s.id)
        .field("riot_account_id", s.riotAccountId)
        .field("match_id", s.matchId)
        .field("champion_id", s.championId)
        .field("team_position", s.teamPosition)
        .field("score", s.score);
    w.key("components").beginObject();
    for (const auto& [name, value] : s.components)
        w.field(name, value);
    w.endObject().field("baseline_kind", s.baselineKind).endObject();
}

} // namespace

std::string auth(const SignedIn& signedIn) {
    json::Writer w;
    w.beginObject().field("token", signedIn.token).key("user").beginObject();
    w.field("id", signedIn.user.id).field("email", signedIn.user.email).field("name", signedIn.user.name);
    w.endObject().endObject();
    return w.take();
}

std::string riotAccounts(const std::vector<RiotAccount>& accounts) {
    json::Writer w;
    w.beginObject().key("riot_accounts").beginArray();
    for (const RiotAccount& a : accounts)
        writeAccount(w, a);
    w.endArray().endObject();
    return w.take();
}

std::string riotAccount(const RiotAccount& account) {
    json::Writer w;
    w.beginObject().key("riot_account");
    writeAccount(w, account);
    w.endObject();
    return w.take();
}

std::string syncPage(const SyncPage& page) {
    size_t size = 4096;
    for (const SyncedGame& g : page.games)
        size += 400 + g.participantsJson.size();
    json::Writer w(size);
    w.beginObject().key("matches").beginArray();
    for (const SyncedGame& g : page.games)
        writeMatch(w, g.match);
    w.endArray().key("participants").beginArray();
    for (const SyncedGame& g : page.games)
        w.rawList(g.participantsJson);
    w.endArray().key("rank_snapshots").beginArray();
    for (const RankSnapshot& s : page.rankSnapshots)
        writeSnapshot(w, s);
    w.endArray().key("performance_scores").beginArray();
    for (const PerformanceScore& s : page.performanceScores)
        writeScore(w, s);
    w.endArray().field("next_cursor", page.nextCursor).field("has_more", page.hasMore).endObject();
    return w.take();
}

std::string ingest(int64_t ingested, int64_t skipped, const std::vector<std::string>& matchIds) {
    json::Writer w;
    w.beginObject().field("ingested", ingested).field("skipped", skipped).key("match_ids").beginArray();
    for (const std::string& id : matchIds)
        w.value(id);
    w.endArray().endObject();
    return w.take();
}

std::string staticVersion(const std::string& version, const std::string& cdnBase) {
    json::Writer w;
    w.beginObject().field("version", version).field("ddragon_base_url", cdnBase).endObject();
    return w.take();
}

std::string duos(const std::vector<Duo>& duos) {
    json::Writer w;
    w.beginObject().key("duos").beginArray();
    for (const Duo& d : duos) {
        w.beginObject()
            .field("puuid", d.puuid)
            .field("riot_id", d.riotId)
            .field("games", d.games)
            .field("wins", d.wins)
            .field("losses", d.losses)
            .field("winrate", d.winrate)
            .field("last_played", isoTimestamp(d.lastPlayed))
            .field("rank", d.rank)
            .field("profile_icon_id", d.profileIconId)
            .endObject();
    }
    w.endArray().endObject();
    return w.take();
}

std::string friendRecord(const FriendRecord& r) {
    json::Writer w;
    w.beginObject()
        .field("friend_puuid", r.friendPuuid)
        .field("friend_name", r.friendName)
        .field("friend_tag", r.friendTag)
        .field("friend_icon", r.friendIcon);
    w.key("total").beginObject();
    w.field("games", r.games).field("wins", r.wins).field("losses", r.losses).field("winrate", r.winrate);
    w.endObject().key("games").beginArray();
    for (const FriendGame& g : r.gamesTogether) {
        w.beginObject().field("match_id", g.matchId).field("season", g.season).field("queue_id", g.queueId);
        w.key("game_mode");
        g.gameMode.empty() ? w.null() : w.value(g.gameMode);
        w.field("played_at", isoTimestamp(g.playedAt))
            .field("win", g.win)
            .field("owner_champion", g.ownerChampion)
            .field("owner_position", g.ownerPosition)
            .field("friend_champion", g.friendChampion)
            .endObject();
    }
    w.endArray().endObject();
    return w.take();
}

std::string profile(const PlayerProfile& p) {
    json::Writer w;
    w.beginObject().key("account").beginObject();
    w.field("puuid", p.puuid).field("game_name", p.gameName).field("tag_line", p.tagLine);
    w.endObject().field("platform", p.platform).key("ranks").beginArray();
    for (const RankEntry& r : p.ranks) {
        w.beginObject()
            .field("queue_type", r.queueType)
            .field("tier", r.tier)
            .field("rank", r.rank)
            .field("league_points", r.leaguePoints)
            .field("wins", r.wins)
            .field("losses", r.losses)
            .endObject();
    }
    // Champion mastery needs the Riot API; without it the list is honestly empty.
    w.endArray().key("mastery").beginArray();
    for (const Mastery& m : p.masteries) {
        w.beginObject()
            .field("champion_id", m.championId)
            .field("champion_level", m.championLevel)
            .field("champion_points", m.championPoints)
            .endObject();
    }
    w.endArray().endObject();
    return w.take();
}

} // namespace qf::answers
