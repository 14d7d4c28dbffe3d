// Turns a simulated game into its timeline summary. Gold is split into what kills and assists
// brought at their moments and what arrived steadily, so the team gold difference moves with
// the fights, and every curve ends exactly at the game's own figures.

#include "demo/demo_timeline.h"

#include <algorithm>
#include <cmath>

namespace qf::demo {

namespace {

// Frame m is the state at minute m; the last one is the end of the game.
std::vector<int64_t> frameTimes(int64_t duration) {
    const int64_t minutes = (duration + 59) / 60;
    std::vector<int64_t> times;
    for (int64_t m = 0; m <= minutes; ++m)
        times.push_back(std::min(m * 60, duration));
    return times;
}

// How much of total has arrived at each frame when it comes in steadily from `from` seconds;
// with a positive lateness, faster as the game goes on.
std::vector<int64_t> steadily(int64_t total, const std::vector<int64_t>& times, int64_t from, double lateness,
                              Random& random) {
    std::vector<double> cumulative(times.size(), 0.0);
    const double end = static_cast<double>(times.back());
    double sum = 0;
    for (size_t m = 1; m < times.size(); ++m) {
        const double span =
            std::max(0.0, static_cast<double>(times[m]) - static_cast<double>(std::max(times[m - 1], from)));
        sum += span * (1.0 + lateness * static_cast<double>(times[m]) / end) * random.between(0.8, 1.2);
        cumulative[m] = sum;
    }
    std::vector<int64_t> values(times.size(), 0);
    for (size_t m = 0; m < times.size(); ++m)
        values[m] = sum > 0 ? std::llround(static_cast<double>(total) * cumulative[m] / sum) : 0;
    values.back() = total;
    return values;
}

// A participant's gold at each frame.
std::vector<int64_t> goldCurve(const Game& game, int index, const std::vector<int64_t>& times, double lateness,
                               Random& random) {
    const Participant& p = game.participants[static_cast<size_t>(index)];
    const int64_t fromFights = p.kills * kKillGold + p.assists * kAssistGold;
    std::vector<int64_t> gold =
        steadily(std::max<int64_t>(0, p.gold - game.startGold - fromFights), times, 65, lateness, random);
    for (size_t m = 0; m < times.size(); ++m) {
        gold[m] += game.startGold;
        for (const Kill& k : game.kills) {
            if (k.t > times[m])
                break;
            if (k.killer == index)
                gold[m] += kKillGold;
            if (std::find(k.assisters.begin(), k.assisters.end(), index) != k.assisters.end())
                gold[m] += kAssistGold;
        }
    }
    return gold;
}

struct Pair {
    int64_t mine = 0;
    int64_t enemy = 0;
};

void writePair(json::Writer& out, std::string_view key, Pair pair) {
    out.key(key).beginObject().field("mine", pair.mine).field("enemy", pair.enemy).endObject();
}

} // namespace

std::optional<std::string> timelineSummaryJson(const Game& game, std::string_view ownerChampion) {
    if (game.queue->map == Map::Arena)
        return std::nullopt;
    Random random(static_cast<uint64_t>(game.gameId) ^ 0x7131e11e5ull);
    const Participant& owner = game.participants[static_cast<size_t>(game.owner)];
    const int64_t ownerTeam = owner.teamId;
    const std::vector<int64_t> times = frameTimes(game.duration);

    std::vector<int64_t> ownerTeamGold(times.size(), 0);
    std::vector<int64_t> enemyTeamGold(times.size(), 0);
    std::vector<int64_t> ownerGold;
    // The winners' extra income comes late, as games snowball; now and then the losers were
    // ahead early and were caught.
    const bool comeback = random.chance(0.25);
    const double winnerLateness = random.between(0.5, 0.9);
    const double loserLateness = comeback ? random.between(-0.4, -0.2) : random.between(0.0, 0.3);
    for (size_t i = 0; i < game.participants.size(); ++i) {
        const double lateness = game.participants[i].win ? winnerLateness : loserLateness;
        const std::vector<int64_t> gold = goldCurve(game, static_cast<int>(i), times, lateness, random);
        std::vector<int64_t>& team = game.participants[i].teamId == ownerTeam ? ownerTeamGold : enemyTeamGold;
        for (size_t m = 0; m < times.size(); ++m)
            team[m] += gold[m];
        if (static_cast<int>(i) == game.owner)
            ownerGold = gold;
    }
    // The first wave reaches lane at about 1:25.
    const std::vector<int64_t> cs = steadily(owner.minions + owner.neutral, times, 85, 0.1, random);
    std::vector<int64_t> xp = steadily(owner.xp - game.startXp, times, 0, -0.2, random);
    for (int64_t& x : xp)
        x += game.startXp;

    json::Writer out;
    out.beginObject();
    out.field("ownerChampion", ownerChampion);
    out.field("ownerTeam", ownerTeam);

    out.key("frames").beginArray();
    int64_t maxLead = 0, maxLeadAt = 0, maxDeficit = 0, maxDeficitAt = 0;
    for (size_t m = 0; m < times.size(); ++m) {
        const int64_t diff = ownerTeamGold[m] - enemyTeamGold[m];
        if (diff > maxLead) {
            maxLead = diff;
            maxLeadAt = static_cast<int64_t>(m);
        }
        if (diff < maxDeficit) {
            maxDeficit = diff;
            maxDeficitAt = static_cast<int64_t>(m);
        }
        out.beginObject();
        out.field("t", static_cast<int64_t>(m));
        out.field("ownerTeamGold", ownerTeamGold[m]);
        out.field("enemyTeamGold", enemyTeamGold[m]);
        out.field("goldDiff", diff);
        out.field("ownerGold", ownerGold[m]);
        out.field("ownerCs", cs[m]);
        out.field("ownerXp", xp[m]);
        out.field("ownerLevel", levelOfXp(xp[m]));
        out.endObject();
    }
    out.endArray();

    Pair dragons, barons, heralds, towers;
    out.key("events").beginArray();
    auto kill = game.kills.begin();
    auto objective = game.objectives.begin();
    while (kill != game.kills.end() || objective != game.objectives.end()) {
        const bool killNext =
            objective == game.objectives.end() || (kill != game.kills.end() && kill->t <= objective->t);
        out.beginObject();
        if (killNext) {
            const Participant& killer = game.participants[static_cast<size_t>(kill->killer)];
            const Participant& victim = game.participants[static_cast<size_t>(kill->victim)];
            out.field("kind", "kill").field("t", kill->t).field("team", killer.teamId);
            out.field("mine", killer.teamId == ownerTeam);
            out.field("killer", killer.person.gameName).field("victim", victim.person.gameName);
            ++kill;
        } else {
            const Objective& o = *objective;
            const bool mine = o.team == ownerTeam;
            out.field("kind", o.kind == Objective::Kind::Monster ? "monster" : "building");
            out.field("t", o.t).field("team", o.team).field("mine", mine);
            Pair* count = nullptr;
            if (o.kind == Objective::Kind::Monster) {
                out.field("monster", o.type);
                if (!o.subtype.empty())
                    out.field("subtype", o.subtype);
                count = o.type == "DRAGON" ? &dragons : o.type == "BARON_NASHOR" ? &barons : &heralds;
            } else {
                out.field("building", o.type);
                out.field("lane", o.lane);
                if (o.type == "TOWER_BUILDING")
                    count = &towers;
            }
            if (count != nullptr)
                (mine ? count->mine : count->enemy) += 1;
            ++objective;
        }
        out.endObject();
    }
    out.endArray();

    out.key("stats").beginObject();
    for (const int64_t minute : {10, 14}) {
        if (game.duration < minute * 60)
            continue;
        const size_t m = static_cast<size_t>(minute);
        out.field(minute == 10 ? "ownerCsAt10" : "ownerCsAt14", cs[m]);
        out.field(minute == 10 ? "goldDiffAt10" : "goldDiffAt14", ownerTeamGold[m] - enemyTeamGold[m]);
    }
    out.field("maxGoldLead", maxLead).field("maxGoldLeadAt", maxLeadAt);
    out.field("maxGoldDeficit", maxDeficit).field("maxGoldDeficitAt", maxDeficitAt);
    if (!game.kills.empty()) {
        const Kill& first = game.kills.front();
        const Participant& killer = game.participants[static_cast<size_t>(first.killer)];
        out.key("firstBlood").beginObject();
        out.field("t", first.t).field("mine", killer.teamId == ownerTeam);
        out.field("killer", killer.person.gameName);
        out.field("victim", game.participants[static_cast<size_t>(first.victim)].person.gameName);
        out.endObject();
    }
    out.key("objectives").beginObject();
    writePair(out, "dragons", dragons);
    writePair(out, "barons", barons);
    writePair(out, "heralds", heralds);
    writePair(out, "towers", towers);
    out.endObject();
    out.endObject();

    out.endObject();
    return out.take();
}

} // namespace qf::demo
