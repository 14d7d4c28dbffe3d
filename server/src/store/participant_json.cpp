#include "store/participant_json.h"

namespace qf {

void writeParticipantJson(json::Writer& w, const Participant& p) {
    w.beginObject()
        .field("id", p.id)
        .field("match_id", p.matchId)
        .field("puuid", p.puuid)
        .field("riot_id_game_name", p.riotIdGameName)
        .field("riot_id_tag_line", p.riotIdTagLine)
        .field("team_id", p.teamId)
        .field("win", p.win)
        .field("champion_id", p.championId)
        .field("champion_name", p.championName)
        .field("team_position", p.teamPosition)
        .field("champ_level", p.champLevel)
        .field("kills", p.kills)
        .field("deaths", p.deaths)
        .field("assists", p.assists)
        .field("total_cs", p.totalCs)
        .field("gold_earned", p.goldEarned)
        .field("vision_score", p.visionScore)
        .field("damage_to_champions", p.damageToChampions);
    w.key("items").beginArray();
    for (int64_t item : p.items)
        w.value(item);
    w.endArray()
        .field("team_damage_pct", p.teamDamagePct)
        .field("kill_participation", p.killParticipation)
        .field("cs_per_min", p.csPerMin)
        .field("rank_tier", p.rankTier)
        .field("rank_division", p.rankDivision)
        .field("rank_lp", p.rankLp)
        .endObject();
}

std::string participantListJson(const std::vector<Participant>& participants) {
    // Written as one array, then unwrapped: the writer places the commas.
    json::Writer w;
    w.beginArray();
    for (const Participant& p : participants)
        writeParticipantJson(w, p);
    w.endArray();
    std::string list = w.take();
    return list.substr(1, list.size() - 2);
}

} // namespace qf
