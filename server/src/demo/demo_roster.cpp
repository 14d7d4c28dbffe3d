// The demo's people and their champions. Champion numbers are Data Dragon's; the pools are
// the champions usually seen in each position, so lobbies look like real ones.

#include "demo/demo_roster.h"

#include <cstdio>

namespace qf::demo {

namespace {

constexpr int64_t kTopPool[] = {266, 122, 86, 24, 58,  92,  14, 875, 897, 114, 150, 516, 54,
                                68,  17,  6,  83, 420, 240, 39, 164, 887, 23,  36,  777};
constexpr int64_t kJunglePool[] = {64, 234, 121, 107, 120, 113, 154, 141, 203, 876, 421, 59, 5,
                                   19, 32,  56,  200, 233, 11,  76,  60,  104, 427, 28,  9};
constexpr int64_t kMiddlePool[] = {103, 134, 61,  112, 517, 157, 777, 238, 91, 7,   84,  105, 4,  13,
                                   268, 142, 711, 131, 38,  45,  127, 69,  1,  950, 246, 55,  163};
constexpr int64_t kBottomPool[] = {222, 145, 81,  51, 236, 202, 21, 67,  498, 523, 360,
                                   221, 119, 110, 22, 15,  18,  29, 895, 96,  429};
constexpr int64_t kSupportPool[] = {412, 117, 267, 89,  111, 53, 555, 497, 235, 350, 40,  16,
                                    37,  201, 526, 888, 902, 25, 43,  99,  143, 147, 432, 12};

constexpr auto kAllPool = [] {
    constexpr size_t n = std::size(kTopPool) + std::size(kJunglePool) + std::size(kMiddlePool) +
                         std::size(kBottomPool) + std::size(kSupportPool);
    std::array<int64_t, n> all{};
    size_t at = 0;
    for (const int64_t id : kTopPool)
        all[at++] = id;
    for (const int64_t id : kJunglePool)
        all[at++] = id;
    for (const int64_t id : kMiddlePool)
        all[at++] = id;
    for (const int64_t id : kBottomPool)
        all[at++] = id;
    for (const int64_t id : kSupportPool)
        all[at++] = id;
    return all;
}();

// Made-up words for strangers' names; some in the alphabets EUW players use.
constexpr std::string_view kWords[] = {"Velvet", "Hollow",  "Cinder", "Aurora",  "Quartz", "Brisk", "Lumen", "Pine",
                                       "Marrow", "Vesper",  "Nimbus", "Thistle", "Copper", "Wren",  "Drift", "Lark",
                                       "Basalt", "Juniper", "Rook",   "Sorrel",  "Ivy",    "Frost", "Mango", "Tundra",
                                       "Pebble", "Orbit",   "Zephyr", "Cobalt",  "Sable",  "Gull",  "Björn", "Zoë",
                                       "Ñandú",  "Łuna",    "Möwe",   "Fjørd",   "Éclat",  "Jäger", "Śnieg", "Niño",
                                       "Лиса",   "Ворон",   "Άστρο",  "Çiçek",   "Ørn",    "Dziób", "Kaffé", "Grün"};
constexpr std::string_view kTags[] = {"EUW", "EUW", "EUW",  "EUW", "FR",  "DE",   "ES",   "PL",  "NORD",
                                      "MID", "GG",  "LOVE", "ZZZ", "1V9", "SOLO", "KEKW", "TR1", "GR"};
constexpr int64_t kIcons[] = {7,    12,   23,   29,   501,  588,  685,  744,  907,  1394, 3379,
                              4568, 4658, 4897, 5212, 5369, 5467, 6013, 4025, 3150, 1665, 4834};

struct Favourite {
    int64_t champion;
    double weightRecent;
    double weightEarlier; // in the oldest games: tastes change
};

constexpr Favourite kMainMiddle[] = {{103, 5, 2}, {134, 3, 4}, {61, 1, 4}, {112, 2, 1}, {517, 2, 2}, {163, 1, 0.5}};
constexpr Favourite kMainJungle[] = {{64, 3, 2}, {234, 2, 3}, {876, 2, 1}, {60, 0.5, 1}, {203, 1, 1}};
constexpr Favourite kMainTop[] = {{887, 2, 1}, {24, 1, 2}, {516, 1, 1}};
constexpr Favourite kMainSupport[] = {{117, 2, 2}, {267, 1, 1}, {412, 1, 1}};
constexpr Favourite kMainBottom[] = {{222, 2, 1}, {145, 1, 2}};
constexpr Favourite kAltSupport[] = {{267, 3, 3}, {16, 2, 1}, {40, 1, 2}, {902, 2, 2}, {99, 1, 1}};
constexpr Favourite kAltBottom[] = {{81, 2, 2}, {51, 2, 1}, {21, 1, 2}};
constexpr Favourite kAltMiddle[] = {{99, 2, 2}, {1, 1, 1}};

int64_t pickFavourite(std::span<const Favourite> favourites, bool earlier, Random& random) {
    std::vector<double> weights;
    for (const Favourite& f : favourites)
        weights.push_back(earlier ? f.weightEarlier : f.weightRecent);
    return favourites[random.weighted(weights)].champion;
}

Person person(std::string name, std::string tag, int64_t icon) {
    Person p;
    p.puuid = rawPuuid(name + "#" + tag);
    p.gameName = std::move(name);
    p.tagLine = std::move(tag);
    p.profileIcon = icon;
    return p;
}

Roster makeRoster() {
    Roster r;
    r.main = person("Quill Fern", "DEMO", 4568);
    r.alt = person("Fern Sprout", "DEMO", 5212);
    using P = Position;
    // Win biases differ so the friends screen has good and bad partnerships to show.
    r.friends.push_back(
        {person("Moss Lantern", "EUW", 5369), Owner::Main, {P::Jungle, P::Top}, {440, 400, 700, 450, 420}, 0.12, 3.0});
    r.friends.push_back({person("Tidewright", "4417", 4897),
                         Owner::Main,
                         {P::Support, P::Bottom},
                         {450, 450, 2400, 1700, 1700, 420},
                         -0.10,
                         2.5});
    r.friends.push_back(
        {person("Ember Quay", "EUW", 744), Owner::Main, {P::Bottom, P::Middle}, {420, 1700, 490, 440}, 0.04, 2.0});
    r.friends.push_back({person("Nøkken Vale", "NORD", 3379),
                         Owner::Main,
                         {P::Top, P::Support},
                         {440, 700, 1400, 1300, 400},
                         -0.03,
                         1.5});
    r.friends.push_back(
        {person("Kestrel Dune", "EUW", 588), Owner::Alt, {P::Top, P::Jungle}, {450, 400, 420, 490}, 0.05, 1.0});
    return r;
}

} // namespace

const char* clientLane(Position position) {
    switch (position) {
    case Position::Top:
        return "TOP";
    case Position::Jungle:
        return "JUNGLE";
    case Position::Middle:
        return "MIDDLE";
    case Position::Bottom:
    case Position::Support:
        return "BOTTOM";
    case Position::None:
        break;
    }
    return "NONE";
}

const char* clientRole(Position position) {
    switch (position) {
    case Position::Top:
    case Position::Middle:
        return "SOLO";
    case Position::Bottom:
        return "DUO_CARRY";
    case Position::Support:
        return "DUO_SUPPORT";
    case Position::Jungle:
    case Position::None:
        break;
    }
    return "NONE";
}

const Roster& roster() {
    static const Roster r = makeRoster();
    return r;
}

std::string rawPuuid(std::string_view seedText) {
    Random random(stableHash(seedText));
    const uint64_t high = random.next();
    // Version 4, variant 10xx: the shape of the client's own ids.
    const uint64_t low = (random.next() & 0x3fffffffffffffffull) | 0x8000000000000000ull;
    char text[37];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-%04x-%012llx", static_cast<unsigned>(high >> 32),
                  static_cast<unsigned>((high >> 16) & 0xffff), static_cast<unsigned>(high & 0xfff),
                  static_cast<unsigned>(low >> 48), static_cast<unsigned long long>(low & 0xffffffffffffull));
    return text;
}

Person stranger(Random& random) {
    const std::string_view first = random.pick(std::span<const std::string_view>(kWords));
    const std::string_view second = random.pick(std::span<const std::string_view>(kWords));
    std::string name;
    switch (random.between(0, 3)) {
    case 0:
        name = std::string(first) + " " + std::string(second);
        break;
    case 1:
        name = std::string(first) + std::string(second);
        break;
    case 2:
        name = std::string(first) + std::to_string(random.between(1, 999));
        break;
    default:
        name = "x" + std::string(first) + "x";
        break;
    }
    std::string tag = random.chance(0.35) ? std::to_string(random.between(10, 99999))
                                          : std::string(random.pick(std::span<const std::string_view>(kTags)));
    return person(std::move(name), std::move(tag), random.pick(std::span<const int64_t>(kIcons)));
}

std::span<const int64_t> championPool(Position position) {
    switch (position) {
    case Position::Top:
        return kTopPool;
    case Position::Jungle:
        return kJunglePool;
    case Position::Middle:
        return kMiddlePool;
    case Position::Bottom:
        return kBottomPool;
    case Position::Support:
        return kSupportPool;
    case Position::None:
        break;
    }
    return kAllPool;
}

Position ownPosition(Owner owner, Random& random) {
    using P = Position;
    static constexpr P kPositions[] = {P::Middle, P::Jungle, P::Top, P::Support, P::Bottom};
    static constexpr double kMain[] = {0.56, 0.25, 0.08, 0.07, 0.04};
    static constexpr double kAlt[] = {0.12, 0.0, 0.0, 0.58, 0.30};
    return kPositions[random.weighted(owner == Owner::Main ? std::span<const double>(kMain)
                                                           : std::span<const double>(kAlt))];
}

int64_t ownChampion(Owner owner, Position position, bool earlier, Random& random) {
    if (owner == Owner::Main) {
        switch (position) {
        case Position::Middle:
            return pickFavourite(kMainMiddle, earlier, random);
        case Position::Jungle:
            return pickFavourite(kMainJungle, earlier, random);
        case Position::Top:
            return pickFavourite(kMainTop, earlier, random);
        case Position::Support:
            return pickFavourite(kMainSupport, earlier, random);
        case Position::Bottom:
            return pickFavourite(kMainBottom, earlier, random);
        case Position::None:
            break;
        }
    } else {
        switch (position) {
        case Position::Support:
            return pickFavourite(kAltSupport, earlier, random);
        case Position::Bottom:
            return pickFavourite(kAltBottom, earlier, random);
        case Position::Middle:
            return pickFavourite(kAltMiddle, earlier, random);
        default:
            break;
        }
    }
    // Modes without positions: anything, like the random champions of ARAM.
    return random.pick(championPool(Position::None));
}

} // namespace qf::demo
