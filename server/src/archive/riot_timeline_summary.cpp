// A match-v5 timeline read frame by frame into the summary. The timeline names players only by
// participant number; the match answer says who each number is and on which side they played.

#include "archive/riot_timeline_summary.h"

#include "archive/game_rows.h"
#include "archive/riot_match_reader.h"
#include "json/json_writer.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <vector>

namespace qf {

namespace {

using game_rows::arrayOf;
using json::Element;

constexpr int64_t millisPerMinute = 60'000;

struct Person {
    int64_t team = 0;
    std::optional<std::string> name;
};

// Who played, from the owner's side.
struct Roster {
    std::map<int64_t, Person> byId; // participant number → person
    int64_t ownerId = 0;
    int64_t ownerTeam = 0;
    int64_t enemyTeam = 0;
    std::string ownerChampion;

    [[nodiscard]] const Person* find(int64_t id) const {
        const auto it = byId.find(id);
        return it == byId.end() ? nullptr : &it->second;
    }
    [[nodiscard]] bool isSide(int64_t team) const { return team == ownerTeam || team == enemyTeam; }
    // The side that gains when `team` loses something.
    [[nodiscard]] std::optional<int64_t> opponentOf(int64_t team) const {
        if (team == ownerTeam)
            return enemyTeam;
        if (team == enemyTeam)
            return ownerTeam;
        return std::nullopt;
    }
};

std::optional<Roster> rosterOf(Element info, std::string_view ownerPuuid, const ChampionCatalog& champions) {
    if (!game_rows::realPuuid(ownerPuuid))
        return std::nullopt;
    if (game_rows::upperAscii(json::text(info, "gameMode")) == "CHERRY")
        return std::nullopt;
    Roster roster;
    std::set<int64_t> sides;
    bool ownerFound = false;
    int64_t position = 0;
    for (const Element participant : arrayOf(info, "participants")) {
        ++position;
        if (!json::isObject(participant))
            continue;
        // Arena's pairs play as sub-teams; eight sides do not fit a summary of two.
        if (json::integer(participant, "playerSubteamId", 0) > 0)
            return std::nullopt;
        const int64_t id = json::integer(participant, "participantId", position);
        const int64_t team = json::integer(participant, "teamId", 0);
        if (!roster.byId.emplace(id, Person{team, riotParticipantName(participant)}).second)
            continue;
        sides.insert(team);
        if (!ownerFound && json::text(participant, "puuid") == ownerPuuid) {
            ownerFound = true;
            roster.ownerId = id;
            roster.ownerTeam = team;
            roster.ownerChampion = champions.nameOf(json::integer(participant, "championId", 0));
            if (roster.ownerChampion.empty())
                roster.ownerChampion = json::text(participant, "championName");
        }
    }
    if (!ownerFound || sides.size() > 2)
        return std::nullopt;
    sides.erase(roster.ownerTeam);
    roster.enemyTeam = !sides.empty() ? *sides.begin() : roster.ownerTeam == 100 ? 200 : 100;
    return roster;
}

// Whether the match and the timeline name different games; either may leave its ids out.
bool differentGames(Element match, Element matchInfo, Element timeline, Element timelineInfo) {
    const auto matchGame = json::optInteger(matchInfo, "gameId");
    const auto timelineGame = json::optInteger(timelineInfo, "gameId");
    if (matchGame && timelineGame && *matchGame != *timelineGame)
        return true;
    std::optional<std::string> matchId, timelineId;
    if (const auto metadata = json::member(match, "metadata"))
        matchId = json::optText(*metadata, "matchId");
    if (const auto metadata = json::member(timeline, "metadata"))
        timelineId = json::optText(*metadata, "matchId");
    return matchId && timelineId && game_rows::upperAscii(*matchId) != game_rows::upperAscii(*timelineId);
}

struct Frame {
    int64_t minute = 0;
    int64_t at = 0; // ms
    int64_t ownerTeamGold = 0;
    int64_t enemyTeamGold = 0;
    int64_t ownerGold = 0;
    int64_t ownerCs = 0;
    int64_t ownerXp = 0;
    int64_t ownerLevel = 0;

    [[nodiscard]] int64_t goldDiff() const { return ownerTeamGold - enemyTeamGold; }
};

// A participant frame's number: its own participantId, else the key it is filed under ("7").
std::optional<int64_t> frameParticipant(std::string_view key, Element value) {
    if (const auto id = json::optInteger(value, "participantId"))
        return id;
    int64_t id = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), id);
    if (error != std::errc() || end != key.data() + key.size())
        return std::nullopt;
    return id;
}

Frame readFrame(Element element, int64_t minute, const Roster& roster) {
    Frame frame;
    frame.minute = minute;
    frame.at =
        std::clamp<int64_t>(json::integer(element, "timestamp", minute * millisPerMinute), 0, game_rows::maxCount);
    simdjson::dom::object players;
    const std::optional<Element> given = json::member(element, "participantFrames");
    if (!given || given->get(players) != simdjson::SUCCESS)
        return frame;
    std::set<int64_t> counted; // a participant filed twice counts once
    for (const auto [key, value] : players) {
        const std::optional<int64_t> id = frameParticipant(key, value);
        const Person* person = id ? roster.find(*id) : nullptr;
        if (!person || !counted.insert(*id).second)
            continue;
        const int64_t gold = game_rows::count(value, "totalGold");
        if (person->team == roster.ownerTeam)
            frame.ownerTeamGold += gold;
        else if (person->team == roster.enemyTeam)
            frame.enemyTeamGold += gold;
        if (*id == roster.ownerId) {
            frame.ownerGold = gold;
            frame.ownerCs = game_rows::count(value, "minionsKilled") + game_rows::count(value, "jungleMinionsKilled");
            frame.ownerXp = game_rows::count(value, "xp");
            frame.ownerLevel = game_rows::count(value, "level");
        }
    }
    return frame;
}

enum class Kind { Kill, Monster, Building };

struct Event {
    Kind kind = Kind::Kill;
    int64_t at = 0; // ms
    int64_t team = 0;
    std::optional<std::string> killer; // kills
    std::optional<std::string> victim;
    bool byChampion = false;
    std::string type; // the monster or the building
    std::optional<std::string> subtype;
    std::optional<std::string> lane;
};

std::optional<int64_t> teamOf(const Roster& roster, std::optional<int64_t> participant) {
    const Person* person = participant ? roster.find(*participant) : nullptr;
    return person ? std::optional<int64_t>(person->team) : std::nullopt;
}

// A kill, an epic monster or a building with the side that earned it; nullopt for every other
// kind of event, and when neither side earned it (a herald that died to no one has
// killerTeamId 300) or the side cannot be told.
std::optional<Event> readEvent(Element element, const Roster& roster) {
    const std::string type = json::text(element, "type");
    Event event;
    event.at = std::clamp<int64_t>(json::integer(element, "timestamp", 0), 0, game_rows::maxCount);
    const std::optional<int64_t> killerId = json::optInteger(element, "killerId");
    const Person* killer = killerId ? roster.find(*killerId) : nullptr;
    if (type == "CHAMPION_KILL") {
        // Killer 0 is a tower or minions: the kill is the victim's opponents', with no name.
        const Person* victim = roster.find(json::integer(element, "victimId", 0));
        std::optional<int64_t> team = killer ? std::optional<int64_t>(killer->team) : std::nullopt;
        if (!team && victim)
            team = roster.opponentOf(victim->team);
        if (!team)
            return std::nullopt;
        event.kind = Kind::Kill;
        event.team = *team;
        event.byChampion = killer != nullptr;
        if (killer)
            event.killer = killer->name;
        if (victim)
            event.victim = victim->name;
        return event;
    }
    if (type == "ELITE_MONSTER_KILL") {
        std::optional<int64_t> team = json::optInteger(element, "killerTeamId");
        if (!team || !roster.isSide(*team))
            team = teamOf(roster, killerId);
        event.type = json::text(element, "monsterType");
        if (!team || event.type.empty())
            return std::nullopt;
        event.kind = Kind::Monster;
        event.team = *team;
        event.subtype = game_rows::nonEmpty(json::optText(element, "monsterSubType"));
        return event;
    }
    if (type == "BUILDING_KILL") {
        // teamId is the side that lost the building; minions (killer 0) often take it.
        std::optional<int64_t> team;
        if (const auto loser = json::optInteger(element, "teamId"))
            team = roster.opponentOf(*loser);
        if (!team)
            team = teamOf(roster, killerId);
        event.type = json::text(element, "buildingType");
        if (!team || event.type.empty())
            return std::nullopt;
        event.kind = Kind::Building;
        event.team = *team;
        event.lane = game_rows::nonEmpty(json::optText(element, "laneType"));
        return event;
    }
    return std::nullopt;
}

struct Pair {
    int64_t mine = 0;
    int64_t enemy = 0;
};

struct Objectives {
    Pair dragons, barons, heralds, towers;

    void count(const Event& event, const Roster& roster) {
        Pair* pair = nullptr;
        if (event.kind == Kind::Monster)
            pair = event.type == "DRAGON"         ? &dragons
                   : event.type == "BARON_NASHOR" ? &barons
                   : event.type == "RIFTHERALD"   ? &heralds
                                                  : nullptr;
        else if (event.kind == Kind::Building && event.type == "TOWER_BUILDING")
            pair = &towers;
        if (pair != nullptr)
            ++(event.team == roster.ownerTeam ? pair->mine : pair->enemy);
    }
};

void writePair(json::Writer& out, std::string_view key, Pair pair) {
    out.key(key).beginObject().field("mine", pair.mine).field("enemy", pair.enemy).endObject();
}

void writeEvent(json::Writer& out, const Event& event, const Roster& roster) {
    out.beginObject();
    out.field("kind", event.kind == Kind::Kill ? "kill" : event.kind == Kind::Monster ? "monster" : "building");
    out.field("t", event.at / 1000).field("team", event.team).field("mine", event.team == roster.ownerTeam);
    switch (event.kind) {
    case Kind::Kill:
        if (event.killer)
            out.field("killer", *event.killer);
        if (event.victim)
            out.field("victim", *event.victim);
        break;
    case Kind::Monster:
        out.field("monster", event.type);
        if (event.subtype)
            out.field("subtype", *event.subtype);
        break;
    case Kind::Building:
        out.field("building", event.type);
        if (event.lane)
            out.field("lane", *event.lane);
        break;
    }
    out.endObject();
}

} // namespace

std::optional<std::string> riotTimelineSummaryJson(json::Element match, json::Element timeline,
                                                   std::string_view ownerPuuid, const ChampionCatalog& champions) {
    const std::optional<Element> matchInfo = json::member(match, "info");
    const std::optional<Element> timelineInfo = json::member(timeline, "info");
    if (!matchInfo || !timelineInfo)
        return std::nullopt;
    const std::optional<Element> frameList = json::member(*timelineInfo, "frames");
    if (!frameList || !json::isArray(*frameList) || differentGames(match, *matchInfo, timeline, *timelineInfo))
        return std::nullopt;
    const std::optional<Roster> found = rosterOf(*matchInfo, ownerPuuid, champions);
    if (!found)
        return std::nullopt;
    const Roster& roster = *found;

    // Frame m is the state at minute m, the last one the end of the game; a frame that is not
    // an object still takes its minute, so the ones after it keep theirs.
    std::vector<Frame> frames;
    std::vector<Event> events;
    int64_t minute = 0;
    for (const Element element : arrayOf(*timelineInfo, "frames")) {
        const int64_t m = minute++;
        if (!json::isObject(element))
            continue;
        frames.push_back(readFrame(element, m, roster));
        for (const Element event : arrayOf(element, "events"))
            if (auto kept = readEvent(event, roster))
                events.push_back(std::move(*kept));
    }
    std::stable_sort(events.begin(), events.end(), [](const Event& a, const Event& b) { return a.at < b.at; });

    json::Writer out;
    out.beginObject();
    out.field("ownerChampion", roster.ownerChampion);
    out.field("ownerTeam", roster.ownerTeam);

    out.key("frames").beginArray();
    for (const Frame& frame : frames) {
        out.beginObject();
        out.field("t", frame.minute);
        out.field("ownerTeamGold", frame.ownerTeamGold);
        out.field("enemyTeamGold", frame.enemyTeamGold);
        out.field("goldDiff", frame.goldDiff());
        out.field("ownerGold", frame.ownerGold);
        out.field("ownerCs", frame.ownerCs);
        out.field("ownerXp", frame.ownerXp);
        out.field("ownerLevel", frame.ownerLevel);
        out.endObject();
    }
    out.endArray();

    Objectives objectives;
    out.key("events").beginArray();
    for (const Event& event : events) {
        writeEvent(out, event, roster);
        objectives.count(event, roster);
    }
    out.endArray();

    out.key("stats").beginObject();
    for (const int64_t at : {10, 14}) {
        // The frame filed under minute 10 of a game that ended at 9:30 is its last: not minute 10.
        const auto frame = std::find_if(frames.begin(), frames.end(), [&](const Frame& f) { return f.minute == at; });
        if (frame == frames.end() || frame->at < at * millisPerMinute)
            continue;
        out.field(at == 10 ? "ownerCsAt10" : "ownerCsAt14", frame->ownerCs);
        out.field(at == 10 ? "goldDiffAt10" : "goldDiffAt14", frame->goldDiff());
    }
    if (!frames.empty()) {
        int64_t lead = 0, leadAt = 0, deficit = 0, deficitAt = 0;
        for (const Frame& frame : frames) {
            if (frame.goldDiff() > lead) {
                lead = frame.goldDiff();
                leadAt = frame.minute;
            }
            if (frame.goldDiff() < deficit) {
                deficit = frame.goldDiff();
                deficitAt = frame.minute;
            }
        }
        out.field("maxGoldLead", lead).field("maxGoldLeadAt", leadAt);
        out.field("maxGoldDeficit", deficit).field("maxGoldDeficitAt", deficitAt);
    }
    // First blood is a champion's: a death to a tower before it does not count.
    const auto first =
        std::find_if(events.begin(), events.end(), [](const Event& e) { return e.kind == Kind::Kill && e.byChampion; });
    if (first != events.end()) {
        out.key("firstBlood").beginObject();
        out.field("t", first->at / 1000).field("mine", first->team == roster.ownerTeam);
        if (first->killer)
            out.field("killer", *first->killer);
        if (first->victim)
            out.field("victim", *first->victim);
        out.endObject();
    }
    out.key("objectives").beginObject();
    writePair(out, "dragons", objectives.dragons);
    writePair(out, "barons", objectives.barons);
    writePair(out, "heralds", objectives.heralds);
    writePair(out, "towers", objectives.towers);
    out.endObject();
    out.endObject();

    out.endObject();
    return out.take();
}

} // namespace qf
