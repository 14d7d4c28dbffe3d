// Simulates each planned game: the lobby, its kills one by one, the objectives, then every
// player's figures from those. The figures are derived, never drawn on their own, so they agree.

#include "demo/demo_games.h"

#include "demo/demo_lobby.h"
#include "demo/demo_schedule.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>

namespace qf::demo {

namespace {

constexpr Queue kQueues[] = {
    {420, "CLASSIC", 11, Map::SummonersRift, true, true},    {440, "CLASSIC", 11, Map::SummonersRift, true, true},
    {400, "CLASSIC", 11, Map::SummonersRift, true, true},    {430, "CLASSIC", 11, Map::SummonersRift, true, false},
    {490, "CLASSIC", 11, Map::SummonersRift, true, false},   {700, "CLASSIC", 11, Map::SummonersRift, true, true},
    {1400, "ULTBOOK", 11, Map::SummonersRift, true, false},  {900, "URF", 11, Map::SummonersRift, false, false},
    {450, "ARAM", 12, Map::HowlingAbyss, false, false},      {2400, "KIWI", 12, Map::HowlingAbyss, false, false},
    {1300, "NEXUSBLITZ", 21, Map::NexusBlitz, false, false}, {1700, "CHERRY", 30, Map::Arena, false, false},
};

// How fast things happen in a queue.
struct Pace {
    double killsPerMinute;
    double passiveGold; // per minute
    double xpScale;
    double damageScale;
    double minionsPerMinute; // for players without a lane
};

Pace paceOf(int64_t queueId) {
    switch (queueId) {
    case 420:
    case 440:
    case 700:
        return {0.95, 122, 1.0, 1.0, 0};
    case 1400:
        return {1.3, 122, 1.0, 1.2, 0};
    case 900:
        return {2.8, 200, 1.5, 2.0, 3.5};
    case 450:
        return {2.1, 210, 1.2, 1.7, 2.6};
    case 2400:
        return {2.7, 260, 1.5, 2.0, 2.4};
    case 1300:
        return {2.0, 180, 1.3, 1.4, 3.5};
    default:
        return {1.1, 122, 1.0, 1.05, 0};
    }
}

double positionWeight(Position p, std::array<double, 6> byPosition) {
    return byPosition[static_cast<size_t>(p)];
}

// --- Two sides ------------------------------------------------------------------------------

void simulateKills(Game& game, const std::vector<Seat>& seats, int64_t winner, Random& random) {
    const Pace pace = paceOf(game.queue->id);
    const double minutes = static_cast<double>(game.duration) / 60.0;
    const int count =
        std::max(3, static_cast<int>(std::lround(pace.killsPerMinute * minutes * around(random, 1.0, 0.3))));
    const double winnerShare = random.between(0.55, 0.72);
    const int64_t first = game.queue->map == Map::SummonersRift ? 100 : 35;
    std::vector<int64_t> times;
    for (int i = 0; i < count; ++i)
        times.push_back(first + static_cast<int64_t>(static_cast<double>(game.duration - first - 15) *
                                                     std::pow(random.real(), 0.85)));
    std::sort(times.begin(), times.end());

    static constexpr std::array<double, 6> kKiller = {0.85, 1.0, 1.2, 1.25, 0.3, 1.0};
    static constexpr std::array<double, 6> kVictim = {1.0, 0.9, 1.0, 1.15, 1.1, 1.0};
    static constexpr std::array<double, 6> kAssist = {0.3, 0.5, 0.35, 0.35, 0.6, 0.5};
    for (const int64_t t : times) {
        // The winners own the late game.
        const double share = t > game.duration * 8 / 10 ? 0.82 : winnerShare;
        const int64_t side = random.chance(share) ? winner : (winner == 100 ? 200 : 100);
        std::vector<double> killers(seats.size(), 0.0);
        std::vector<double> victims(seats.size(), 0.0);
        for (size_t i = 0; i < seats.size(); ++i) {
            if (game.participants[i].teamId == side)
                killers[i] = positionWeight(seats[i].position, kKiller) * seats[i].form;
            else
                victims[i] = positionWeight(seats[i].position, kVictim) / seats[i].form;
        }
        Kill kill;
        kill.t = t;
        kill.killer = static_cast<int>(random.weighted(killers));
        kill.victim = static_cast<int>(random.weighted(victims));
        for (size_t i = 0; i < seats.size(); ++i)
            if (static_cast<int>(i) != kill.killer && game.participants[i].teamId == side &&
                random.chance(positionWeight(seats[i].position, kAssist) * std::pow(seats[i].form, 0.3)))
                kill.assisters.push_back(static_cast<int>(i));
        game.participants[kill.killer].kills += 1;
        game.participants[kill.victim].deaths += 1;
        for (const int a : kill.assisters)
            game.participants[a].assists += 1;
        game.kills.push_back(std::move(kill));
    }
}

struct Structures {
    std::vector<const char*> lanes;
    int towersPerLane = 0;
    bool inhibitors = false;
    int nexusTowers = 0;
    int64_t firstTowerAt = 0; // seconds
};

Structures structuresOf(Map map) {
    switch (map) {
    case Map::SummonersRift:
        return {{"TOP_LANE", "MID_LANE", "BOT_LANE"}, 3, true, 2, 660};
    case Map::HowlingAbyss:
        return {{"MID_LANE"}, 2, true, 2, 200};
    case Map::NexusBlitz:
        return {{"TOP_LANE", "BOT_LANE"}, 2, false, 0, 240};
    case Map::Arena:
        break;
    }
    return {};
}

// How many towers each lane loses to one side.
std::vector<int> towersTaken(const Structures& s, bool winner, bool surrender, int cap, Random& random) {
    const int lanes = static_cast<int>(s.lanes.size());
    std::vector<int> taken(lanes, 0);
    if (winner && !surrender) {
        for (int& t : taken)
            t = random.between(0, s.towersPerLane);
        taken[random.between(0, lanes - 1)] = s.towersPerLane; // the lane pushed to the nexus
    } else if (winner) {
        for (int& t : taken)
            t = random.between(0, s.towersPerLane - 1);
        if (std::accumulate(taken.begin(), taken.end(), 0) == 0)
            taken[random.between(0, lanes - 1)] = 1;
    } else {
        for (int& t : taken)
            t = random.chance(0.55) ? random.between(1, s.towersPerLane - 1) : 0;
    }
    while (std::accumulate(taken.begin(), taken.end(), 0) > cap) {
        int& most = *std::max_element(taken.begin(), taken.end());
        most -= 1;
    }
    return taken;
}

// Buildings one side destroys, outer towers first, in time order.
void takeBuildings(Game& game, const Structures& s, int64_t team, const std::vector<int>& taken, bool toTheNexus,
                   Random& random) {
    struct Pending {
        double order;
        const char* type;
        const char* lane;
    };
    std::vector<Pending> pending;
    for (size_t lane = 0; lane < taken.size(); ++lane) {
        for (int tier = 0; tier < taken[lane]; ++tier)
            pending.push_back({tier * 10 + random.real() * 9, "TOWER_BUILDING", s.lanes[lane]});
        const bool pushed = toTheNexus && taken[lane] == s.towersPerLane;
        if (s.inhibitors && taken[lane] == s.towersPerLane && (pushed || random.chance(0.5)))
            pending.push_back({(s.towersPerLane - 1) * 10 + 9.5, "INHIBITOR_BUILDING", s.lanes[lane]});
    }
    std::sort(pending.begin(), pending.end(), [](const Pending& a, const Pending& b) { return a.order < b.order; });
    const int64_t from = std::min(s.firstTowerAt, game.duration / 2);
    const int64_t to = toTheNexus ? game.duration - 130 : game.duration - 30;
    std::vector<int64_t> times;
    for (size_t i = 0; i < pending.size(); ++i) {
        const double share =
            (static_cast<double>(i) + 0.5 + around(random, 0, 0.4)) / static_cast<double>(pending.size());
        times.push_back(
            std::clamp<int64_t>(from + static_cast<int64_t>(share * static_cast<double>(to - from)), from, to));
    }
    std::sort(times.begin(), times.end());
    for (size_t i = 0; i < pending.size(); ++i)
        game.objectives.push_back({Objective::Kind::Building, times[i], team, pending[i].type, "", pending[i].lane});
    if (toTheNexus)
        for (int i = 0; i < s.nexusTowers; ++i)
            game.objectives.push_back({Objective::Kind::Building,
                                       game.duration - (i == 0 ? random.between(50, 110) : random.between(10, 45)),
                                       team, "TOWER_BUILDING", "", "MID_LANE"});
}

void takeMonsters(Game& game, int64_t winner, Random& random) {
    const int64_t loser = winner == 100 ? 200 : 100;
    const int64_t end = game.duration;
    static constexpr const char* kElements[] = {"FIRE_DRAGON",  "WATER_DRAGON",   "AIR_DRAGON",
                                                "EARTH_DRAGON", "HEXTECH_DRAGON", "CHEMTECH_DRAGON"};
    // The first two drakes differ; the third reveals the rift, whose element the rest share.
    const int firstElement = random.between(0, 5);
    const int secondElement = (firstElement + random.between(1, 5)) % 6;
    int riftElement = random.between(0, 5);
    while (riftElement == firstElement || riftElement == secondElement)
        riftElement = (riftElement + 1) % 6;
    std::array<int, 2> dragons{};
    bool soulTaken = false;
    int taken = 0;
    for (int64_t spawn = 300; spawn < end - 40;) {
        const int64_t at = spawn + random.between(20, 200);
        if (at > end - 20)
            break;
        const int64_t team =
            random.chance(0.58 + 0.15 * static_cast<double>(at) / static_cast<double>(end)) ? winner : loser;
        const char* subtype = soulTaken    ? "ELDER_DRAGON"
                              : taken == 0 ? kElements[firstElement]
                              : taken == 1 ? kElements[secondElement]
                                           : kElements[riftElement];
        game.objectives.push_back({Objective::Kind::Monster, at, team, "DRAGON", subtype, ""});
        ++taken;
        int& mine = dragons[team == 100 ? 0 : 1];
        mine += 1;
        const bool soulNow = !soulTaken && mine == 4;
        spawn = at + (soulTaken || soulNow ? 360 : 300);
        soulTaken = soulTaken || soulNow;
    }
    if (end > 900 && random.chance(0.85)) {
        const int64_t at = 840 + random.between(20, 240);
        if (at < end - 30)
            game.objectives.push_back(
                {Objective::Kind::Monster, at, random.chance(0.6) ? winner : loser, "RIFTHERALD", "", ""});
    }
    const int64_t baronSpawn = game.season >= 15 ? 1500 : 1200;
    for (int64_t spawn = baronSpawn; spawn < end - 90 && random.chance(0.8);) {
        const int64_t at = spawn + random.between(30, std::max<int64_t>(31, std::min<int64_t>(420, end - 60 - spawn)));
        if (at > end - 60)
            break;
        game.objectives.push_back(
            {Objective::Kind::Monster, at, random.chance(0.8) ? winner : loser, "BARON_NASHOR", "", ""});
        spawn = at + 360;
    }
}

void fillFigures(Game& game, const std::vector<Seat>& seats, Random& random) {
    const Pace pace = paceOf(game.queue->id);
    const Map map = game.queue->map;
    const double minutes = static_cast<double>(game.duration) / 60.0;
    const double laneMinutes = std::max(0.0, minutes - 1.5);
    std::array<int64_t, 2> teamKills{};
    std::array<int64_t, 2> teamTowers{};
    for (const Participant& p : game.participants)
        teamKills[p.teamId == 100 ? 0 : 1] += p.kills;
    for (const Objective& o : game.objectives)
        if (o.type == "TOWER_BUILDING")
            teamTowers[o.team == 100 ? 0 : 1] += 1;

    static constexpr std::array<double, 6> kMinions = {6.6, 0.9, 7.0, 7.3, 1.1, 0};
    static constexpr std::array<double, 6> kXp = {560, 480, 560, 450, 360, 640};
    static constexpr std::array<double, 6> kVision = {0.75, 1.25, 0.8, 0.7, 2.4, 0.3};
    static constexpr std::array<double, 6> kDamage = {720, 560, 900, 880, 380, 800};
    static constexpr std::array<double, 6> kTaken = {1100, 1000, 650, 600, 700, 900};
    for (size_t i = 0; i < seats.size(); ++i) {
        Participant& p = game.participants[i];
        const Seat& seat = seats[i];
        const Position pos = seat.position;
        const Position cls = pos == Position::None ? classOf(p.championId) : pos;
        const size_t side = p.teamId == 100 ? 0 : 1;
        const double skill = 0.85 + 0.15 * seat.form;
        const double lead = p.win ? 1.04 : 0.96;

        const double minionRate = pos == Position::None ? pace.minionsPerMinute : positionWeight(pos, kMinions);
        p.minions = std::lround(minionRate * laneMinutes * skill * lead * around(random, 1.0, 0.12));
        if (pos == Position::Jungle)
            p.neutral = std::lround(5.2 * laneMinutes * skill * lead * around(random, 1.0, 0.12));
        else if (map == Map::SummonersRift)
            p.neutral = random.between(int64_t{0}, static_cast<int64_t>(minutes / 3));

        p.xp = game.startXp +
               std::lround(positionWeight(pos, kXp) * minutes * pace.xpScale * std::pow(seat.form, 0.3)) +
               p.kills * 140 + p.assists * 55;
        p.xp = std::min(p.xp, kLevelXp.back());
        p.level = levelOfXp(p.xp);

        // Everything that is not a kill or an assist: passive income, minions, monsters, buildings.
        const double steady = pace.passiveGold * std::max(0.0, minutes - 1.1) + 21.0 * static_cast<double>(p.minions) +
                              32.0 * static_cast<double>(p.neutral) + 110.0 * static_cast<double>(teamTowers[side]) +
                              (pos == Position::Support ? 45.0 * minutes : 0.0);
        p.gold = game.startGold + p.kills * kKillGold + p.assists * kAssistGold +
                 std::lround(steady * around(random, 1.0, 0.08));

        const double participation =
            teamKills[side] == 0 ? 0.0
                                 : static_cast<double>(p.kills + p.assists) / static_cast<double>(teamKills[side]);
        p.damage = std::lround(positionWeight(cls, kDamage) * minutes * pace.damageScale * std::pow(seat.form, 0.6) *
                               (0.55 + 0.9 * participation) * around(random, 1.0, 0.15));
        p.damageTaken = std::lround(positionWeight(cls, kTaken) * minutes *
                                    (0.8 + 0.06 * static_cast<double>(p.deaths)) * around(random, 1.0, 0.15));
        if (map == Map::SummonersRift) {
            p.vision = std::lround(positionWeight(pos, kVision) * minutes * around(random, 1.0, 0.3));
            p.wardsPlaced = std::lround(static_cast<double>(p.vision) * 0.42);
            p.wardsKilled = std::lround(static_cast<double>(p.vision) * 0.1);
        } else if (map == Map::NexusBlitz) {
            p.vision = random.between(int64_t{2}, int64_t{12});
            p.wardsPlaced = p.vision / 2;
        } else {
            p.vision = random.between(int64_t{0}, int64_t{4});
        }
        p.items = buildItems(cls, map, p.gold, random);
    }
}

void playTwoSides(Game& game, const Plan& plan, Random& random) {
    Lobby lobby(plan, *game.queue, random);
    const int64_t ownTeam = random.chance(0.5) ? 100 : 200;
    const int64_t winner = plan.win ? ownTeam : (ownTeam == 100 ? 200 : 100);
    std::vector<Seat> own = lobby.ownSide();
    std::vector<Seat> other = lobby.otherSide();
    std::vector<Seat> seats = ownTeam == 100 ? own : other;
    const std::vector<Seat>& second = ownTeam == 100 ? other : own;
    seats.insert(seats.end(), second.begin(), second.end());
    for (size_t i = 0; i < seats.size(); ++i) {
        const int64_t team = i < 5 ? 100 : 200;
        game.participants.push_back(participantOf(seats[i], team, game.queue->map, random));
        game.participants.back().win = team == winner;
        if (seats[i].owner)
            game.owner = static_cast<int>(i);
    }
    simulateKills(game, seats, winner, random);

    const Structures s = structuresOf(game.queue->map);
    const bool surrender = game.queue->map == Map::SummonersRift && game.duration < 1560 && random.chance(0.6);
    const std::vector<int> won = towersTaken(s, true, surrender, 99, random);
    const int wonCount = std::accumulate(won.begin(), won.end(), 0) + (surrender ? 0 : s.nexusTowers);
    const std::vector<int> lost = towersTaken(s, false, false, std::max(0, wonCount - 2), random);
    takeBuildings(game, s, winner, won, !surrender, random);
    takeBuildings(game, s, winner == 100 ? 200 : 100, lost, false, random);
    if (game.queue->map == Map::SummonersRift)
        takeMonsters(game, winner, random);
    std::stable_sort(game.objectives.begin(), game.objectives.end(),
                     [](const Objective& a, const Objective& b) { return a.t < b.t; });
    fillFigures(game, seats, random);
}

// --- Arena ------------------------------------------------------------------------------------

void playArena(Game& game, const Plan& plan, Random& random) {
    Lobby lobby(plan, *game.queue, random);
    const std::vector<Seat> seats = lobby.arenaPairs(); // pair k: seats 2k and 2k + 1; pair 0 is the owner's
    auto shuffle = [&](auto& items) {
        for (size_t i = items.size(); i > 1; --i)
            std::swap(items[i - 1], items[static_cast<size_t>(random.between(0, static_cast<int>(i) - 1))]);
    };
    // Places 1 to 4 count as a win.
    std::vector<int64_t> places = {1, 2, 3, 4, 5, 6, 7, 8};
    const int64_t ownPlace = plan.win ? random.between(1, 4) : random.between(5, 8);
    places.erase(std::find(places.begin(), places.end(), ownPlace));
    shuffle(places);
    places.insert(places.begin(), ownPlace);
    std::vector<int64_t> subteams = {1, 2, 3, 4, 5, 6, 7, 8};
    shuffle(subteams);

    // The client lists players by pair; it splits the pairs over its two team numbers.
    std::array<int, 16> indexOfSeat{};
    for (int64_t subteam = 1; subteam <= 8; ++subteam) {
        const size_t pair =
            static_cast<size_t>(std::find(subteams.begin(), subteams.end(), subteam) - subteams.begin());
        for (size_t member = 0; member < 2; ++member) {
            const size_t seat = 2 * pair + member;
            indexOfSeat[seat] = static_cast<int>(game.participants.size());
            Participant p = participantOf(seats[seat], subteam <= 4 ? 100 : 200, Map::Arena, random);
            p.subteam = subteam;
            p.placement = places[pair];
            p.win = places[pair] <= 4;
            if (seats[seat].owner)
                game.owner = indexOfSeat[seat];
            game.participants.push_back(std::move(p));
        }
    }
    auto member = [&](size_t pair, size_t k) -> Participant& { return game.participants[indexOfSeat[2 * pair + k]]; };

    // Rounds of pair against pair; a pair leaves in the round its place says, the winners never.
    const int64_t rounds = std::max<int64_t>(6, (game.duration - 95) / 84);
    auto lastRound = [&](int64_t place) {
        return place == 1
                   ? rounds
                   : std::lround(static_cast<double>(rounds) * (0.35 + 0.65 * static_cast<double>(8 - place) / 6.0));
    };
    std::vector<int64_t> survived(8, 0);
    for (int64_t round = 1; round <= rounds; ++round) {
        std::vector<size_t> alive;
        for (size_t pair = 0; pair < 8; ++pair)
            if (lastRound(places[pair]) >= round) {
                alive.push_back(pair);
                survived[pair] = round;
            }
        shuffle(alive);
        for (size_t i = 0; i + 1 < alive.size(); i += 2) {
            size_t better = alive[i];
            size_t worse = alive[i + 1];
            if (places[better] > places[worse])
                std::swap(better, worse);
            const bool upset = random.chance(0.32);
            const size_t won = upset ? worse : better;
            const size_t lost = upset ? better : worse;
            const size_t spared = random.chance(0.2) ? static_cast<size_t>(random.between(0, 1)) : 2;
            for (size_t k = 0; k < 2; ++k) {
                if (k == spared)
                    continue;
                const size_t killer = static_cast<size_t>(random.between(0, 1));
                member(lost, k).deaths += 1;
                member(won, killer).kills += 1;
                member(won, 1 - killer).assists += 1;
            }
        }
    }
    for (size_t pair = 0; pair < 8; ++pair)
        for (size_t k = 0; k < 2; ++k) {
            Participant& p = member(pair, k);
            const double form = seats[2 * pair + k].form;
            const double played = static_cast<double>(survived[pair]);
            p.level = std::min<int64_t>(18, 3 + survived[pair]);
            p.xp = kLevelXp[static_cast<size_t>(p.level - 1)];
            p.gold = 1500 + std::lround(720.0 * played * around(random, 1.0, 0.1));
            p.damage = std::lround(1900.0 * played * std::pow(form, 0.6) * around(random, 1.0, 0.2));
            p.damageTaken = std::lround(2100.0 * played * around(random, 1.0, 0.2));
            p.items = buildItems(classOf(p.championId), Map::Arena, p.gold, random);
        }
}

} // namespace

const Queue* findQueue(int64_t queueId) {
    for (const Queue& q : kQueues)
        if (q.id == queueId)
            return &q;
    return nullptr;
}

int64_t levelOfXp(int64_t xp) {
    int64_t level = 1;
    while (level < 18 && xp >= kLevelXp[static_cast<size_t>(level)])
        ++level;
    return level;
}

std::string riotMatchId(const Game& game) {
    return "EUW1_" + std::to_string(game.gameId);
}

std::vector<Game> generateGames(int64_t now) {
    const std::vector<Plan> plans = scheduleGames(now);
    std::vector<Game> games;
    games.reserve(plans.size());
    for (size_t i = 0; i < plans.size(); ++i) {
        const Plan& plan = plans[i];
        // Each game draws from its own stream, so one game's changes leave the others alone.
        Random random(stableHash("game") + 0x9e3779b97f4a7c15ull * (i + 1));
        Game game;
        game.queue = findQueue(plan.queueId);
        game.creation = plan.creation;
        game.duration = plan.duration;
        game.season = seasonOf(plan.creation);
        game.version = versionOf(plan.creation);
        game.ownerAccount = plan.owner;
        // EUW's game numbers grow by about 1.4 million a day.
        game.gameId = 7'000'000'000 + (plan.creation / 1000 - 1'735'689'600) * 16 + random.between(0, 15);
        const Map map = game.queue->map;
        game.startGold = map == Map::HowlingAbyss ? 1400 : 500;
        game.startXp = map == Map::HowlingAbyss ? kLevelXp[2] : 0;
        if (map == Map::Arena)
            playArena(game, plan, random);
        else
            playTwoSides(game, plan, random);
        games.push_back(std::move(game));
    }
    return games;
}

} // namespace qf::demo
