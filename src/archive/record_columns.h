#pragma once

#include "archive/local_match.h"
#include "archive/local_participant.h"
#include "archive/local_performance_score.h"
#include "archive/local_rank_snapshot.h"

#include <type_traits>

// Which database table and columns hold each stored record type. One visitor per type names
// every stored field once, so reading, writing and the column list cannot drift apart.
template <class Record> struct RecordColumns;

template <> struct RecordColumns<LocalMatch> {
    static constexpr const char* table = "matches";
    template <class M, class Visit> static void visit(M& m, Visit&& v) {
        v("server_id", m.serverId);
        v("match_id", m.matchId);
        v("platform", m.platform);
        v("queue_id", m.queueId);
        v("is_ranked", m.isRanked);
        v("game_creation", m.gameCreation);
        v("game_duration", m.gameDuration);
        v("game_version", m.gameVersion);
        v("game_mode", m.gameMode);
        v("season", m.season);
    }
};

// The same fields for a row as it is held (compact) and as the backend sent it (exact), so that
// a row whose figures do not fit the compact form is written and read back whole. On disk only
// the keys are columns of their own; the rest lie packed in one (ParticipantLine).
template <> struct RecordColumns<LocalParticipant> {
    static constexpr const char* table = "participants";
    template <class P, class Visit> static void visit(P& p, Visit&& v) {
        visitKeys(p, v);
        visitLine(p, v);
    }
    template <class P, class Visit> static void visitKeys(P& p, Visit&& v) {
        if constexpr (std::is_same_v<std::remove_const_t<P>, ParticipantDto>) {
            v("server_id", p.id);
            v("match_server_id", p.matchId);
        } else {
            v("server_id", p.serverId);
            v("match_server_id", p.matchServerId);
        }
    }
    // A row's line is read in this order: a field added later goes at the end, with a step of
    // the archive's schema that rewrites every line.
    template <class P, class Visit> static void visitLine(P& p, Visit&& v) {
        v("puuid", p.puuid);
        v("riot_id_game_name", p.riotIdGameName);
        v("riot_id_tag_line", p.riotIdTagLine);
        v("team_id", p.teamId);
        v("win", p.win);
        v("champion_id", p.championId);
        v("champion_name", p.championName);
        v("team_position", p.teamPosition);
        v("champ_level", p.champLevel);
        v("kills", p.kills);
        v("deaths", p.deaths);
        v("assists", p.assists);
        v("total_cs", p.totalCs);
        v("gold_earned", p.goldEarned);
        v("vision_score", p.visionScore);
        v("damage_to_champions", p.damageToChampions);
        v("items", p.items);
        v("team_damage_pct", p.teamDamagePct);
        v("kill_participation", p.killParticipation);
        v("cs_per_min", p.csPerMin);
        v("rank_tier", p.rankTier);
        v("rank_division", p.rankDivision);
        v("rank_lp", p.rankLp);
    }
};

template <> struct RecordColumns<LocalRankSnapshot> {
    static constexpr const char* table = "rank_snapshots";
    template <class R, class Visit> static void visit(R& r, Visit&& v) {
        v("server_id", r.serverId);
        v("riot_account_id", r.riotAccountId);
        v("queue", r.queue);
        v("tier", r.tier);
        v("division", r.division);
        v("lp", r.lp);
        v("wins", r.wins);
        v("losses", r.losses);
        v("captured_at", r.capturedAt);
    }
};

template <> struct RecordColumns<LocalPerformanceScore> {
    static constexpr const char* table = "performance_scores";
    template <class S, class Visit> static void visit(S& s, Visit&& v) {
        v("server_id", s.serverId);
        v("riot_account_id", s.riotAccountId);
        v("match_server_id", s.matchServerId);
        v("champion_id", s.championId);
        v("team_position", s.teamPosition);
        v("score", s.score);
        v("components_json", s.componentsJson);
        v("baseline_kind", s.baselineKind);
    }
};

template <class Record>
concept HasMatchServerId = requires(Record r) {
    { r.matchServerId } -> std::convertible_to<qint64>;
};
