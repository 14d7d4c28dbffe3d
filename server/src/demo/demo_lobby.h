#pragma once

#include "demo/demo_games.h"
#include "demo/demo_schedule.h"

#include <array>
#include <set>
#include <span>
#include <string>
#include <vector>

// Who sits where in a demo game, on which champion, with which spells, and what they buy with
// the gold they end up with.

namespace qf::demo {

// One seat of a lobby before the game is played.
struct Seat {
    Person person;
    Position position = Position::None;
    int64_t champion = 0;
    double form = 1; // above 1: playing well
    const Friend* pal = nullptr;
    bool owner = false;
};

// Fills the seats of one game; no champion and no player is seated twice.
class Lobby {
public:
    Lobby(const Plan& plan, const Queue& queue, Random& random) : m_plan(plan), m_queue(queue), m_random(random) {}

    // Five seats for the owner's side, in lane order when the queue has lanes.
    std::vector<Seat> ownSide();
    // Five strangers.
    std::vector<Seat> otherSide();
    // Arena: the owner's pair first, then seven pairs of strangers.
    std::vector<Seat> arenaPairs();

private:
    int64_t anyChampion(Position p);
    int64_t unique(int64_t champion, Position p);
    Position freePosition(const std::vector<Seat>& seats, std::span<const Position> wanted) const;
    void fill(std::vector<Seat>& seats, size_t count);
    std::vector<Seat> ordered(std::vector<Seat> seats) const;

    const Plan& m_plan;
    const Queue& m_queue;
    Random& m_random;
    std::set<int64_t> m_champions;
    std::set<std::string> m_puuids;
};

// The position whose pool holds the champion: what items and damage it goes for.
[[nodiscard]] Position classOf(int64_t championId);
[[nodiscard]] std::array<int64_t, 7> buildItems(Position cls, Map map, int64_t gold, Random& random);
// The seat as a participant of the game, figures still empty.
[[nodiscard]] Participant participantOf(const Seat& seat, int64_t teamId, Map map, Random& random);

} // namespace qf::demo
