#include "backend/social_records.h"

#include "backend/account_records.h"

DuoDto DuoDto::decode(const JsonReader& in) {
    DuoDto d;
    d.puuid = in.text("puuid");
    d.riotId = in.optText("riotId");
    d.games = in.integer("games");
    d.wins = in.integer("wins");
    d.losses = in.integer("losses");
    d.winrate = in.real("winrate");
    d.lastPlayed = in.optText("lastPlayed");
    d.rank = in.optText("rank");
    d.profileIconId = in.optInteger("profileIconId");
    return d;
}

DuosResponse DuosResponse::decode(const JsonReader& in) {
    return {in.records<DuoDto>("duos")};
}

FriendStatsDto::Tally FriendStatsDto::Tally::decode(const JsonReader& in) {
    return {in.integer("games"), in.integer("wins"), in.integer("losses"), in.real("winrate")};
}

FriendStatsDto::Game FriendStatsDto::Game::decode(const JsonReader& in) {
    Game g;
    g.matchId = in.integer("matchId");
    g.season = in.optInteger("season");
    g.queueId = in.integer("queueId");
    g.gameMode = in.optText("gameMode");
    g.playedAt = in.optText("playedAt");
    g.win = in.flag("win");
    g.ownerChampion = in.text("ownerChampion");
    g.ownerPosition = in.optText("ownerPosition");
    g.friendChampion = in.text("friendChampion");
    return g;
}

FriendStatsDto FriendStatsDto::decode(const JsonReader& in) {
    FriendStatsDto f;
    f.friendPuuid = in.text("friendPuuid");
    f.friendName = in.optText("friendName");
    f.friendTag = in.optText("friendTag");
    f.friendIcon = in.optInteger("friendIcon");
    f.total = in.record<Tally>("total");
    f.games = in.records<Game>("games");
    return f;
}

RankEntryDto RankEntryDto::decode(const JsonReader& in) {
    return {in.text("queueType"),          in.optText("tier"),    in.optText("rank"),
            in.optInteger("leaguePoints"), in.optInteger("wins"), in.optInteger("losses")};
}

MasteryDto MasteryDto::decode(const JsonReader& in) {
    return {in.integer("championId"), in.integer("championLevel"), in.integer("championPoints")};
}

QString PlayerProfileDto::AccountInfo::riotId() const {
    return joinRiotId(gameName, tagLine);
}

PlayerProfileDto::AccountInfo PlayerProfileDto::AccountInfo::decode(const JsonReader& in) {
    return {in.text("puuid"), in.optText("gameName"), in.optText("tagLine")};
}

PlayerProfileDto PlayerProfileDto::decode(const JsonReader& in) {
    PlayerProfileDto p;
    p.account = in.record<AccountInfo>("account");
    p.platform = in.text("platform");
    p.ranks = in.records<RankEntryDto>("ranks");
    p.mastery = in.records<MasteryDto>("mastery");
    return p;
}
