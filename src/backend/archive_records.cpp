#include "backend/archive_records.h"

MatchDto MatchDto::decode(const JsonReader& in) {
    MatchDto m;
    m.id = in.integer("id");
    m.matchId = in.text("matchId");
    m.platform = in.text("platform");
    m.queueId = in.integer("queueId");
    m.isRanked = in.optFlag("isRanked");
    m.gameCreation = in.optText("gameCreation");
    m.gameDuration = in.integer("gameDuration");
    m.gameVersion = in.optText("gameVersion");
    m.gameMode = in.optText("gameMode");
    m.season = in.optInteger("season");
    m.updatedAt = in.optText("updatedAt");
    return m;
}

ParticipantDto ParticipantDto::decode(const JsonReader& in) {
    ParticipantDto p;
    p.id = in.integer("id");
    p.matchId = in.integer("matchId");
    p.puuid = in.text("puuid");
    p.riotIdGameName = in.optText("riotIdGameName");
    p.riotIdTagLine = in.optText("riotIdTagLine");
    p.teamId = in.integer("teamId");
    p.win = in.flag("win");
    p.championId = in.integer("championId");
    p.championName = in.text("championName");
    p.teamPosition = in.optText("teamPosition");
    p.champLevel = in.optInteger("champLevel");
    p.kills = in.integer("kills");
    p.deaths = in.integer("deaths");
    p.assists = in.integer("assists");
    p.totalCs = in.integer("totalCs");
    p.goldEarned = in.integer("goldEarned");
    p.visionScore = in.integer("visionScore");
    p.damageToChampions = in.integer("damageToChampions");
    p.items = in.optIntegers("items");
    p.teamDamagePct = in.optReal("teamDamagePct");
    p.killParticipation = in.optReal("killParticipation");
    p.csPerMin = in.optReal("csPerMin");
    p.rankTier = in.optText("rankTier");
    p.rankDivision = in.optText("rankDivision");
    p.rankLp = in.optInteger("rankLp");
    return p;
}

RankSnapshotDto RankSnapshotDto::decode(const JsonReader& in) {
    RankSnapshotDto r;
    r.id = in.integer("id");
    r.riotAccountId = in.integer("riotAccountId");
    r.queue = in.text("queue");
    r.tier = in.optText("tier");
    r.division = in.optText("division");
    r.lp = in.integer("lp");
    r.wins = in.integer("wins");
    r.losses = in.integer("losses");
    r.capturedAt = in.optText("capturedAt");
    return r;
}

PerformanceScoreDto PerformanceScoreDto::decode(const JsonReader& in) {
    PerformanceScoreDto s;
    s.id = in.integer("id");
    s.riotAccountId = in.integer("riotAccountId");
    s.matchId = in.integer("matchId");
    s.championId = in.integer("championId");
    s.teamPosition = in.optText("teamPosition");
    s.score = in.real("score");
    s.components = in.realMap("components");
    s.baselineKind = in.text("baselineKind");
    return s;
}

IngestLocalResponse IngestLocalResponse::decode(const JsonReader& in) {
    return {in.integer("ingested"), in.integer("skipped"), in.texts("matchIds")};
}

StaticVersionResponse StaticVersionResponse::decode(const JsonReader& in) {
    return {in.text("version"), in.optText("ddragonBaseUrl")};
}
