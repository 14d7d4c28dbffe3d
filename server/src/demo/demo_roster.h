#pragma once

#include "demo/demo_random.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Who plays in the demo's games: its two accounts, the friends who queue with them, and the
// strangers who fill the rest of each lobby, with the champions each of them picks. Every name
// is made up.

namespace qf::demo {

enum class Position { Top, Jungle, Middle, Bottom, Support, None };

inline constexpr std::array<Position, 5> kLanePositions = {Position::Top, Position::Jungle, Position::Middle,
                                                           Position::Bottom, Position::Support};

// The lane and role the League client writes for a position ("BOTTOM"/"DUO_SUPPORT").
[[nodiscard]] const char* clientLane(Position position);
[[nodiscard]] const char* clientRole(Position position);

struct Person {
    std::string puuid;
    std::string gameName;
    std::string tagLine;
    int64_t profileIcon = 0;
};

enum class Owner { Main = 0, Alt = 1 };

// Someone who queues with one of the demo's accounts again and again.
struct Friend {
    Person person;
    Owner queuesWith = Owner::Main;
    std::array<Position, 2> positions{}; // preferred first
    std::vector<int64_t> queues;         // the queues they come along for
    double winBias = 0;                  // added to the chance of winning a game together
    double weight = 1;                   // how often they are online, relative to the others
};

struct Roster {
    Person main;
    Person alt;
    std::vector<Friend> friends;
};

[[nodiscard]] const Roster& roster();

// A League client style puuid: a raw 36-character UUID, the same for the same text.
[[nodiscard]] std::string rawPuuid(std::string_view seedText);

// A player nobody in the demo knows, with a Riot ID of the kinds seen on EUW.
[[nodiscard]] Person stranger(Random& random);

// Data Dragon champion numbers that are played in the position (every pool together for None).
[[nodiscard]] std::span<const int64_t> championPool(Position position);

// The position one of the demo's accounts plays in a game with positions, and its champion
// there: a main role with some variety, favourites that were others in its earlier games.
[[nodiscard]] Position ownPosition(Owner owner, Random& random);
[[nodiscard]] int64_t ownChampion(Owner owner, Position position, bool earlier, Random& random);

} // namespace qf::demo
