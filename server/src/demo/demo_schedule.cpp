// The demo's calendar. Sessions are laid out from the newest backwards, so the newest game
// always ends a few hours before now whatever now is; every draw is made in the same order
// for any now, so only the dates move.

#include "demo/demo_schedule.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace qf::demo {

namespace {

constexpr int64_t kSecond = 1000;
constexpr int64_t kHour = 3600 * kSecond;
constexpr int64_t kDay = 24 * kHour;

struct Session {
    int64_t queueId = 0;
    std::vector<const Friend*> party;
    int games = 0;
};

int64_t floorDiv(int64_t a, int64_t b) {
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

std::chrono::year_month_day dateOf(int64_t ms) {
    return std::chrono::year_month_day(std::chrono::sys_days(std::chrono::days(floorDiv(ms, kDay))));
}

int64_t soloQueue(Owner owner, Random& random) {
    static constexpr int64_t kQueues[] = {420, 440, 400, 430, 490, 450, 2400, 900, 1700, 1300, 1400};
    static constexpr double kMain[] = {0.40, 0.05, 0.06, 0.03, 0.08, 0.15, 0.08, 0.02, 0.07, 0.03, 0.03};
    static constexpr double kAlt[] = {0.45, 0.05, 0.0, 0.0, 0.10, 0.30, 0.05, 0.0, 0.05, 0.0, 0.0};
    return kQueues[random.weighted(owner == Owner::Main ? std::span<const double>(kMain)
                                                        : std::span<const double>(kAlt))];
}

// Up to count friends of the owner, by how often each is online, none twice.
std::vector<const Friend*> pickFriends(Owner owner, size_t count, Random& random) {
    std::vector<const Friend*> candidates;
    for (const Friend& f : roster().friends)
        if (f.queuesWith == owner)
            candidates.push_back(&f);
    std::vector<const Friend*> party;
    while (party.size() < count && !candidates.empty()) {
        std::vector<double> weights;
        for (const Friend* f : candidates)
            weights.push_back(f->weight);
        const size_t at = random.weighted(weights);
        party.push_back(candidates[at]);
        candidates.erase(candidates.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return party;
}

Session mainSession(Random& random) {
    Session s;
    if (!random.chance(0.4)) {
        s.queueId = soloQueue(Owner::Main, random);
        s.games = s.queueId == 420 ? random.between(3, 6) : random.between(2, 5);
        return s;
    }
    static constexpr double kPartySizes[] = {0.62, 0.25, 0.08, 0.05};
    const size_t friends = random.weighted(kPartySizes) + 1;
    if (friends == 4) {
        // A Clash weekend: the four regulars, a few bracket games.
        for (const Friend& f : roster().friends)
            if (f.queuesWith == Owner::Main && s.party.size() < 4 && f.weight >= 1)
                s.party.push_back(&f);
        s.queueId = 700;
        s.games = random.between(2, 4);
        return s;
    }
    s.party = pickFriends(Owner::Main, friends, random);
    // Solo/Duo and Arena take two players at most.
    std::vector<int64_t> queues;
    for (const int64_t q : s.party.front()->queues)
        if (s.party.size() == 1 || (q != 420 && q != 1700))
            queues.push_back(q);
    s.queueId = queues.empty() ? 440 : random.pick(std::span<const int64_t>(queues));
    s.games = random.between(2, 6);
    return s;
}

Session altSession(Random& random) {
    Session s;
    if (random.chance(0.4)) {
        s.party = pickFriends(Owner::Alt, 1, random);
        s.queueId = random.pick(std::span<const int64_t>(s.party.front()->queues));
    } else {
        s.queueId = soloQueue(Owner::Alt, random);
    }
    s.games = random.between(1, 4);
    return s;
}

int64_t drawDuration(int64_t queueId, Random& random) {
    switch (queueId) {
    case 450:
        return static_cast<int64_t>(around(random, 1080, 420));
    case 2400:
        return static_cast<int64_t>(around(random, 960, 300));
    case 900:
        return static_cast<int64_t>(around(random, 1200, 360));
    case 1300:
        return static_cast<int64_t>(around(random, 900, 200));
    case 1700:
        // Arena: rounds of about a minute and a half.
        return 95 + random.between(9, 16) * 84 + random.between(0, 40);
    default:
        // Summoner's Rift; some losing sides surrender at fifteen.
        if (random.chance(0.07))
            return random.between(int64_t{905}, int64_t{1100});
        return static_cast<int64_t>(around(random, 1800, 780));
    }
}

double winChance(Owner owner, const std::vector<const Friend*>& party) {
    double p = owner == Owner::Main ? 0.53 : 0.48;
    for (const Friend* f : party)
        p += f->winBias;
    return std::clamp(p, 0.2, 0.8);
}

} // namespace

double around(Random& random, double mean, double spread) {
    const double bell = (random.real() + random.real() + random.real()) / 1.5 - 1.0; // -1 to 1
    return mean + spread * bell;
}

int64_t yearOf(int64_t ms) {
    return static_cast<int>(dateOf(ms).year());
}

int64_t dayOfYear(int64_t ms) {
    using namespace std::chrono;
    const year_month_day date = dateOf(ms);
    return (sys_days(date) - sys_days(year_month_day(date.year(), January, day(1)))).count();
}

std::string isoTime(int64_t ms) {
    const std::chrono::year_month_day date = dateOf(ms);
    const int64_t inDay = ms - floorDiv(ms, kDay) * kDay;
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(inDay / kHour), static_cast<int>(inDay / 60000 % 60),
                  static_cast<int>(inDay / 1000 % 60), static_cast<int>(inDay % 1000));
    return text;
}

int64_t seasonOf(int64_t ms) {
    return yearOf(ms) - 2010;
}

std::string versionOf(int64_t ms) {
    const int64_t season = seasonOf(ms);
    const int64_t patch = std::clamp<int64_t>(1 + (dayOfYear(ms) - 7) / 14, 1, 24);
    const int64_t build = 180 + patch * 53 % 600;
    const int64_t revision = 1000 + (season * 7919 + patch * 104729) % 9000;
    return std::to_string(season) + "." + std::to_string(patch) + "." + std::to_string(build) + "." +
           std::to_string(revision);
}

std::vector<Plan> scheduleGames(int64_t now) {
    Random random(0x0d15ea5e0fa11ull);
    std::vector<Plan> newestFirst;
    int mainGames = 0;
    int altGames = 0;
    int64_t sessionEnd = now - random.between(2 * 3600, 5 * 3600) * kSecond;
    while (mainGames < kMainGames || altGames < kAltGames) {
        const bool alt = altGames < kAltGames && (mainGames >= kMainGames || random.chance(0.17));
        const Owner owner = alt ? Owner::Alt : Owner::Main;
        Session session = alt ? altSession(random) : mainSession(random);
        int& played = alt ? altGames : mainGames;
        const int games = std::min(session.games, (alt ? kAltGames : kMainGames) - played);
        int64_t end = sessionEnd;
        for (int i = 0; i < games; ++i) {
            // A solo player sometimes changes queue between games.
            if (i > 0 && session.party.empty() && session.queueId != 700 && random.chance(0.2))
                session.queueId = soloQueue(owner, random);
            Plan plan;
            plan.owner = owner;
            plan.queueId = session.queueId;
            plan.party = session.party;
            plan.win = random.chance(winChance(owner, plan.party));
            plan.duration = drawDuration(plan.queueId, random);
            plan.creation = end - plan.duration * kSecond - random.between(0, 999);
            // Queue and champion select before it.
            end = plan.creation - random.between(120, 600) * kSecond;
            newestFirst.push_back(std::move(plan));
        }
        played += games;
        // The session before: the same afternoon now and then, else an evening (CET) a few days earlier.
        if (random.chance(0.12)) {
            sessionEnd = end - random.between(3 * 3600, 6 * 3600) * kSecond;
        } else {
            const int64_t day = floorDiv(end, kDay) - random.between(1, 8);
            sessionEnd = day * kDay + random.between(18 * 60, 23 * 60) * 60 * kSecond;
        }
    }
    std::vector<Plan> plans(newestFirst.rbegin(), newestFirst.rend());
    std::array<int, 2> seen{};
    for (Plan& plan : plans) {
        int& n = seen[static_cast<size_t>(plan.owner)];
        plan.earlier = n++ < (plan.owner == Owner::Main ? kMainGames : kAltGames) / 4;
    }
    return plans;
}

} // namespace qf::demo
