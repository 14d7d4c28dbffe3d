#pragma once

#include "demo/demo_roster.h"
#include "json/json_writer.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The demo's games: when they were played, who played them and how they went, simulated kill
// by kill so that every figure agrees with every other (a side's deaths are the other side's
// kills, the winner takes more towers, gold follows the game's length), and written in the
// League client's match-history shape, the shape the ingest reads.

namespace qf::demo {

enum class Map { SummonersRift, HowlingAbyss, NexusBlitz, Arena };

struct Queue {
    int64_t id = 0;
    const char* gameMode = "";
    int64_t mapId = 0;
    Map map = Map::SummonersRift;
    bool positions = false; // players pick lanes
    bool bans = false;
};

// The queues the demo plays; nullptr for any other.
[[nodiscard]] const Queue* findQueue(int64_t queueId);

// What a kill and an assist are worth; the rest of a player's gold (minions, passive income,
// buildings) arrives steadily. The timeline draws gold with the same figures.
inline constexpr int64_t kKillGold = 300;
inline constexpr int64_t kAssistGold = 150;

struct Kill {
    int64_t t = 0;  // seconds into the game
    int killer = 0; // participant indexes
    int victim = 0;
    std::vector<int> assisters;
};

struct Objective {
    enum class Kind { Monster, Building };
    Kind kind = Kind::Monster;
    int64_t t = 0;       // seconds
    int64_t team = 0;    // the side that took it
    std::string type;    // "DRAGON", "BARON_NASHOR", "RIFTHERALD", "TOWER_BUILDING", "INHIBITOR_BUILDING"
    std::string subtype; // dragons: "FIRE_DRAGON", …
    std::string lane;    // buildings: "TOP_LANE", "MID_LANE", "BOT_LANE"
};

struct Participant {
    Person person;
    int64_t teamId = 0;
    int64_t subteam = 0;   // Arena: the pair, 1 to 8
    int64_t placement = 0; // Arena: the pair's place, 1 to 8
    int64_t championId = 0;
    int64_t spell1 = 0;
    int64_t spell2 = 0;
    Position position = Position::None;
    bool win = false;
    int64_t kills = 0;
    int64_t deaths = 0;
    int64_t assists = 0;
    int64_t minions = 0;
    int64_t neutral = 0;
    int64_t gold = 0;
    int64_t xp = 0;
    int64_t level = 1;
    int64_t vision = 0;
    int64_t wardsPlaced = 0;
    int64_t wardsKilled = 0;
    int64_t damage = 0; // to champions
    int64_t damageTaken = 0;
    std::array<int64_t, 7> items{};
};

struct Game {
    int64_t gameId = 0;
    int64_t creation = 0; // ms
    int64_t duration = 0; // seconds
    const Queue* queue = nullptr;
    std::string version; // "16.22.412.7719"
    int64_t season = 0;
    Owner ownerAccount = Owner::Main; // the demo account that played it
    int owner = 0;                    // that account's participant index
    int64_t startGold = 500;
    int64_t startXp = 0;
    std::vector<Participant> participants; // participant id = index + 1
    std::vector<Kill> kills;               // in time order; empty for Arena
    std::vector<Objective> objectives;     // in time order
};

// Every demo game, oldest first, ending a few hours before now (ms). The same now gives the
// same games; another now moves them in time without changing what happens in them.
[[nodiscard]] std::vector<Game> generateGames(int64_t now);

// "EUW1_7123456789".
[[nodiscard]] std::string riotMatchId(const Game& game);

// The game as the League client's /lol-match-history/v1/games/{id} answers it.
void writeClientGame(json::Writer& out, const Game& game);

// XP needed for each level: kLevelXp[n] is the total at which level n + 1 is reached.
inline constexpr std::array<int64_t, 18> kLevelXp = {0,    280,  660,  1140, 1720,  2400,  3180,  4060,  5040,
                                                     6120, 7300, 8580, 9960, 11440, 13020, 14700, 16480, 18360};
[[nodiscard]] int64_t levelOfXp(int64_t xp);

} // namespace qf::demo
