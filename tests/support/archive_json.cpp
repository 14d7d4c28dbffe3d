#include "support/archive_json.h"

namespace ArchiveJson {

QJsonObject match(qint64 id, qint64 queueId, const QString& gameCreation) {
    return {{"id", id},
            {"match_id", QStringLiteral("EUW1_%1").arg(7000000000 + id)},
            {"platform", "EUW1"},
            {"queue_id", queueId},
            {"is_ranked", queueId == 420 || queueId == 440},
            {"game_creation", gameCreation},
            {"game_duration", 1799},
            {"game_version", "16.11.512.4321"},
            {"game_mode", "CLASSIC"},
            {"season", 2025},
            {"updated_at", "2025-03-01T19:00:00Z"}};
}

QJsonObject participant(qint64 id, qint64 matchId, const QString& puuid, const QString& champion, bool win) {
    return {{"id", id},
            {"match_id", matchId},
            {"puuid", puuid},
            {"riot_id_game_name", puuid.left(4)},
            {"riot_id_tag_line", "EUW"},
            {"team_id", win ? 100 : 200},
            {"win", win},
            {"champion_id", 103},
            {"champion_name", champion},
            {"team_position", "MIDDLE"},
            {"champ_level", 16},
            {"kills", 7},
            {"deaths", 3},
            {"assists", 9},
            {"total_cs", 201},
            {"gold_earned", 12345},
            {"vision_score", 22},
            {"damage_to_champions", 23456},
            {"items", QJsonArray{3089, 3020, 4645, 0, 0, 0, 3340}},
            {"team_damage_pct", 0.31},
            {"kill_participation", 0.64},
            {"cs_per_min", 6.7},
            {"rank_tier", "GOLD"},
            {"rank_division", "II"},
            {"rank_lp", 41}};
}

QJsonObject snapshot(qint64 id, qint64 accountId, const QString& queue, const QString& tier, qint64 lp) {
    return {{"id", id},
            {"riot_account_id", accountId},
            {"queue", queue},
            {"tier", tier},
            {"division", "II"},
            {"lp", lp},
            {"wins", 40},
            {"losses", 38},
            {"captured_at", "2025-03-02T10:00:00Z"}};
}

QJsonObject score(qint64 id, qint64 accountId, qint64 matchId, double value) {
    return {{"id", id},
            {"riot_account_id", accountId},
            {"match_id", matchId},
            {"champion_id", 103},
            {"team_position", "MIDDLE"},
            {"score", value},
            {"components", QJsonObject{{"kill_participation", 0.64}, {"vision", 0.4}}},
            {"baseline_kind", "self"}};
}

QJsonObject page(const QJsonArray& matches, const QJsonArray& participants, const QJsonArray& snapshots,
                 const QJsonArray& scores, const std::optional<QString>& nextCursor, bool hasMore) {
    QJsonObject result{{"matches", matches},
                       {"participants", participants},
                       {"rank_snapshots", snapshots},
                       {"performance_scores", scores},
                       {"has_more", hasMore}};
    if (nextCursor)
        result.insert("next_cursor", *nextCursor);
    return result;
}

QJsonObject user(qint64 id, const QString& email) {
    return {{"id", id}, {"email", email}, {"name", QJsonValue::Null}};
}

QJsonObject auth(const QString& token) {
    return {{"token", token}, {"user", user()}};
}

QJsonObject riotAccount(qint64 id, const QString& puuid, const QString& name, const QString& tag) {
    return {{"id", id},         {"puuid", puuid},          {"game_name", name},
            {"tag_line", tag},  {"platform", "euw1"},      {"region", "europe"},
            {"is_owner", true}, {"profile_icon_id", 4568}, {"summoner_level", 311}};
}

QJsonObject riotAccounts(const QJsonArray& accounts) {
    return {{"riot_accounts", accounts}};
}

} // namespace ArchiveJson
