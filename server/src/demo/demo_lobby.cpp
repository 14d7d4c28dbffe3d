// Lobbies of the demo's games: the owner and friends in their positions, strangers in the
// rest, each on a champion of their position's pool.

#include "demo/demo_lobby.h"

#include <algorithm>
#include <cmath>

namespace qf::demo {

namespace {

int64_t friendChampion(const Friend& pal, Position position, Random& random) {
    // Each friend sticks to a handful of champions per position.
    const auto pool = championPool(position);
    const uint64_t start = stableHash(pal.person.puuid) % pool.size();
    return pool[(start + static_cast<uint64_t>(random.between(0, 3))) % pool.size()];
}

std::array<int64_t, 2> spellsFor(Position position, Map map, Random& random) {
    std::array<int64_t, 2> spells{};
    switch (map) {
    case Map::Arena:
        return {2202, 2201};
    case Map::HowlingAbyss: {
        static constexpr int64_t kAram[] = {6, 7, 3, 14, 21, 1};
        spells = {4, random.chance(0.7) ? 32 : random.pick(std::span<const int64_t>(kAram))};
        break;
    }
    case Map::NexusBlitz:
    case Map::SummonersRift:
        switch (position) {
        case Position::Top:
            spells = {4, random.chance(0.6) ? 12 : 14};
            break;
        case Position::Jungle:
            spells = {11, 4};
            break;
        case Position::Middle:
            spells = {4, random.chance(0.65) ? 14 : 12};
            break;
        case Position::Bottom:
            spells = {4, random.chance(0.8) ? 7 : 21};
            break;
        case Position::Support:
            spells = {4, random.chance(0.6) ? 14 : 3};
            break;
        case Position::None:
            spells = {4, random.chance(0.5) ? 6 : 14};
            break;
        }
        break;
    }
    if (random.chance(0.2))
        std::swap(spells[0], spells[1]); // Flash on F
    return spells;
}

bool isKnown(const Person& p) {
    if (p.puuid == roster().main.puuid || p.puuid == roster().alt.puuid)
        return true;
    return std::any_of(roster().friends.begin(), roster().friends.end(),
                       [&](const Friend& f) { return f.person.puuid == p.puuid; });
}

} // namespace

std::vector<Seat> Lobby::ownSide() {
    std::vector<Seat> seats;
    Seat me;
    me.person = m_plan.owner == Owner::Main ? roster().main : roster().alt;
    me.owner = true;
    me.position = m_queue.positions ? ownPosition(m_plan.owner, m_random) : Position::None;
    // Better days and worse days; the result leans the same way.
    me.form = std::exp(around(m_random, m_plan.win ? 0.1 : -0.1, 0.5));
    me.champion = unique(ownChampion(m_plan.owner, me.position, m_plan.earlier, m_random), me.position);
    seats.push_back(me);
    for (const Friend* pal : m_plan.party) {
        Seat s;
        s.person = pal->person;
        s.pal = pal;
        s.position = m_queue.positions ? freePosition(seats, pal->positions) : Position::None;
        s.form = std::exp(around(m_random, pal->winBias, 0.3));
        s.champion = unique(
            friendChampion(*pal, s.position == Position::None ? pal->positions[0] : s.position, m_random), s.position);
        seats.push_back(s);
    }
    fill(seats, 5);
    return ordered(std::move(seats));
}

std::vector<Seat> Lobby::otherSide() {
    std::vector<Seat> seats;
    fill(seats, 5);
    return ordered(std::move(seats));
}

std::vector<Seat> Lobby::arenaPairs() {
    std::vector<Seat> seats;
    Seat me;
    me.person = m_plan.owner == Owner::Main ? roster().main : roster().alt;
    me.owner = true;
    me.form = std::exp(around(m_random, 0, 0.4));
    me.champion = unique(anyChampion(Position::None), Position::None);
    seats.push_back(me);
    if (!m_plan.party.empty()) {
        Seat s;
        s.person = m_plan.party.front()->person;
        s.pal = m_plan.party.front();
        s.form = std::exp(around(m_random, s.pal->winBias, 0.3));
        s.champion = unique(anyChampion(Position::None), Position::None);
        seats.push_back(s);
    }
    fill(seats, 16);
    return seats;
}

int64_t Lobby::anyChampion(Position p) {
    return m_random.pick(championPool(p));
}

int64_t Lobby::unique(int64_t champion, Position p) {
    for (int i = 0; i < 100 && !m_champions.insert(champion).second; ++i)
        champion = anyChampion(p);
    return champion;
}

// The first wanted position nobody has taken, else the first free one.
Position Lobby::freePosition(const std::vector<Seat>& seats, std::span<const Position> wanted) const {
    auto taken = [&](Position p) {
        return std::any_of(seats.begin(), seats.end(), [&](const Seat& s) { return s.position == p; });
    };
    for (const Position p : wanted)
        if (!taken(p))
            return p;
    for (const Position p : kLanePositions)
        if (!taken(p))
            return p;
    return Position::None;
}

void Lobby::fill(std::vector<Seat>& seats, size_t count) {
    while (seats.size() < count) {
        Seat s;
        s.person = stranger(m_random);
        if (!m_puuids.insert(s.person.puuid).second || isKnown(s.person))
            continue;
        s.form = std::exp(around(m_random, 0, 0.35));
        s.position = m_queue.positions ? freePosition(seats, {}) : Position::None;
        s.champion = unique(anyChampion(s.position), s.position);
        seats.push_back(s);
    }
}

std::vector<Seat> Lobby::ordered(std::vector<Seat> seats) const {
    if (m_queue.positions)
        std::stable_sort(seats.begin(), seats.end(),
                         [](const Seat& a, const Seat& b) { return a.position < b.position; });
    else // the owner anywhere in the list
        std::rotate(seats.begin(), seats.begin() + 1, seats.begin() + 1 + m_random.between(0, 4));
    return seats;
}

Position classOf(int64_t championId) {
    for (const Position p : kLanePositions)
        for (const int64_t id : championPool(p))
            if (id == championId)
                return p;
    return Position::Middle;
}

std::array<int64_t, 7> buildItems(Position cls, Map map, int64_t gold, Random& random) {
    static constexpr int64_t kTop[] = {3071, 3053, 6333, 3065, 3075, 3742, 6631, 3161, 3748};
    static constexpr int64_t kJungle[] = {6692, 3071, 3142, 6333, 3814, 6694, 3156, 3068};
    static constexpr int64_t kMiddle[] = {6655, 3089, 3135, 3157, 4645, 3165, 6653, 3102, 4629, 3003};
    static constexpr int64_t kBottom[] = {6672, 3031, 3094, 3036, 3072, 3046, 6675, 3085, 3508};
    static constexpr int64_t kSupport[] = {3190, 3107, 3504, 3222, 6616, 3109, 6617, 2065};
    static constexpr int64_t kSupportQuest[] = {3869, 3870, 3871, 3876, 3877};
    std::span<const int64_t> legendaries;
    int64_t boots = 0;
    switch (cls) {
    case Position::Top:
        legendaries = kTop;
        boots = random.chance(0.6) ? 3047 : 3111;
        break;
    case Position::Jungle:
        legendaries = kJungle;
        boots = random.chance(0.5) ? 3047 : 3158;
        break;
    case Position::Bottom:
        legendaries = kBottom;
        boots = 3006;
        break;
    case Position::Support:
        legendaries = kSupport;
        boots = random.chance(0.6) ? 3158 : 3117;
        break;
    default:
        legendaries = kMiddle;
        boots = random.chance(0.7) ? 3020 : 3158;
        break;
    }
    std::vector<int64_t> bought;
    if (cls == Position::Support && map == Map::SummonersRift)
        bought.push_back(random.pick(std::span<const int64_t>(kSupportQuest)));
    const int64_t slots = std::clamp<int64_t>((gold - 1000) / 2500, 0, 6);
    std::set<int64_t> owned;
    for (int64_t i = 0; static_cast<int64_t>(bought.size()) < slots && i < 40; ++i) {
        if (bought.size() == 1 && boots != 0) {
            bought.push_back(boots);
            continue;
        }
        const int64_t item = random.pick(legendaries);
        if (owned.insert(item).second)
            bought.push_back(item);
    }
    if (bought.size() < 6 && map == Map::SummonersRift && (cls == Position::Support || cls == Position::Jungle) &&
        random.chance(0.6))
        bought.push_back(2055); // a control ward
    std::array<int64_t, 7> items{};
    std::copy_n(bought.begin(), std::min<size_t>(bought.size(), 6), items.begin());
    switch (map) {
    case Map::SummonersRift:
        items[6] = (cls == Position::Support || cls == Position::Jungle) ? 3364
                   : (gold > 12000 && random.chance(0.3))                ? 3363
                                                                         : 3340;
        break;
    case Map::HowlingAbyss:
        items[6] = 2052;
        break;
    case Map::NexusBlitz:
        items[6] = 3340;
        break;
    case Map::Arena:
        break;
    }
    return items;
}

Participant participantOf(const Seat& seat, int64_t teamId, Map map, Random& random) {
    Participant p;
    p.person = seat.person;
    p.teamId = teamId;
    p.championId = seat.champion;
    p.position = seat.position;
    const auto spells = spellsFor(seat.position, map, random);
    p.spell1 = spells[0];
    p.spell2 = spells[1];
    return p;
}

} // namespace qf::demo
