#include "game_data/stats.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

// A table from a game's server id to a small number, open addressing with linear probing: the
// statistics look one up for every stored row, and node-based maps cost more than the rest of
// the work together.
class IdSlots {
public:
    static constexpr quint32 none = 0xFFFFFFFFu;

    explicit IdSlots(std::size_t expected) {
        std::size_t capacity = 16;
        while (capacity < expected * 2)
            capacity <<= 1;
        m_entries.assign(capacity, Entry());
        m_mask = capacity - 1;
    }

    // The slot of id, or none.
    [[nodiscard]] quint32 find(qint64 id) const {
        for (std::size_t i = spread(id) & m_mask;; i = (i + 1) & m_mask) {
            const Entry& entry = m_entries[i];
            if (entry.value == none)
                return none;
            if (entry.key == id)
                return entry.value;
        }
    }

    // The games are looked up in no order the table knows: a look-up asked for ahead of time
    // does not wait for its cache line.
    void prefetch(qint64 id) const { __builtin_prefetch(&m_entries[spread(id) & m_mask]); }

    // The slot of id, given the value next when it has none yet.
    quint32 findOrAdd(qint64 id, quint32 next) {
        if ((m_size + 1) * 2 > m_entries.size())
            grow();
        for (std::size_t i = spread(id) & m_mask;; i = (i + 1) & m_mask) {
            Entry& entry = m_entries[i];
            if (entry.value == none) {
                entry = {id, next};
                ++m_size;
                return next;
            }
            if (entry.key == id)
                return entry.value;
        }
    }

private:
    // Key and value side by side: one cache line per look-up.
    struct Entry {
        qint64 key = 0;
        quint32 value = none;
    };

    void grow() {
        std::vector<Entry> entries(m_entries.size() * 2);
        const std::size_t mask = entries.size() - 1;
        for (const Entry& entry : m_entries) {
            if (entry.value == none)
                continue;
            std::size_t i = spread(entry.key) & mask;
            while (entries[i].value != none)
                i = (i + 1) & mask;
            entries[i] = entry;
        }
        m_entries.swap(entries);
        m_mask = mask;
    }

    static std::size_t spread(qint64 id) {
        auto x = static_cast<quint64>(id);
        x ^= x >> 33;
        x *= 0xff51afd7ed558ccdULL;
        x ^= x >> 33;
        return static_cast<std::size_t>(x);
    }

    std::vector<Entry> m_entries;
    std::size_t m_mask = 0;
    std::size_t m_size = 0;
};

// The user's puuids. Texts are shared, so a row is the user's when its id is the same shared
// text as an owner's: a number compared per row. An owner id no stored row has ever held
// matches nothing.
class Owners {
public:
    explicit Owners(const QSet<QString>& owners) {
        for (const QString& owner : owners)
            if (const SharedText id = SharedText::existing(owner); !id.isNull())
                m_owners.push_back(id);
    }

    [[nodiscard]] bool contains(SharedText puuid) const {
        // A user links one account or a few: a walk beats any look-up.
        return std::find(m_owners.begin(), m_owners.end(), puuid) != m_owners.end();
    }

private:
    std::vector<SharedText> m_owners;
};

// The friends' game names, already in lower case. A name is ruled out by the hash of its lower
// case, kept with the shared text; only a name whose hash is a friend's is lowered and compared.
class FriendNames {
public:
    explicit FriendNames(const QSet<QString>& names) {
        m_names.reserve(static_cast<std::size_t>(names.size()));
        for (const QString& name : names) {
            const quint32 hash = SharedText::lowerCaseHashOf(name);
            m_names.emplace_back(hash, &name);
            m_filter[(hash >> 6) % m_filter.size()] |= quint64(1) << (hash & 63);
        }
        std::sort(m_names.begin(), m_names.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    }

    [[nodiscard]] bool isEmpty() const { return m_names.empty(); }

    [[nodiscard]] bool contains(const PlayerName& name) const {
        const quint32 hash = name.lowerCaseHash();
        // Nearly every team-mate is no friend: one bit of a small filter says so for most.
        if (!((m_filter[(hash >> 6) % m_filter.size()] >> (hash & 63)) & 1))
            return false;
        auto at = std::lower_bound(m_names.begin(), m_names.end(), hash,
                                   [](const auto& entry, quint32 key) { return entry.first < key; });
        if (at == m_names.end() || at->first != hash)
            return false;
        // The names that get this far are nearly all the friends' own, met in game after game:
        // each is lowered and compared once per pass.
        for (const auto& [id, verdict] : m_verdicts)
            if (id == name.id())
                return verdict;
        const QString lowered = name.toString().toLower();
        bool found = false;
        for (; at != m_names.end() && at->first == hash; ++at)
            found = found || *at->second == lowered;
        m_verdicts.emplace_back(name.id(), found);
        return found;
    }

private:
    std::vector<std::pair<quint32, const QString*>> m_names;
    std::array<quint64, 64> m_filter{}; // a bit per hash of a friend's name, of 4,096
    mutable std::vector<std::pair<quint32, bool>> m_verdicts;
};

// The rows are read once per call through a list of pointers: each pass asks for a row's start
// (the game, the player's id and name, the team) some rows before it needs it.
constexpr std::size_t prefetchAhead = 24;
constexpr std::size_t gameAhead = 16;

inline void prefetchRow(const std::vector<const LocalParticipant*>& rows, std::size_t i) {
    if (i < rows.size()) {
        // The row's first 24 bytes may straddle two cache lines.
        const char* row = reinterpret_cast<const char*>(rows[i]);
        __builtin_prefetch(row);
        __builtin_prefetch(row + 23);
    }
}

} // namespace

namespace Stats {

double kdaRatio(const LocalParticipant& row) {
    return double(row.kills + row.assists) / double(std::max<qint64>(row.deaths, 1));
}

std::vector<Game> games(const std::vector<const LocalMatch*>& matches,
                        const std::vector<const LocalParticipant*>& participants, const QSet<QString>& owners,
                        const QSet<QString>& friendNames, std::vector<const LocalParticipant*>* ownRowsOut) {
    // Number the games in the order asked for.
    IdSlots slots(matches.size());
    std::vector<quint32> slotOfMatch(matches.size());
    quint32 gameCount = 0;
    for (std::size_t m = 0; m < matches.size(); ++m) {
        slotOfMatch[m] = slots.findOrAdd(matches[m]->serverId, gameCount);
        if (slotOfMatch[m] == gameCount)
            ++gameCount;
    }

    // One pass over the rows in their own order, which is the order they lie in memory. A game's
    // rows nearly always come together (they are stored together), so the rows are taken in runs
    // of one game: the game is looked up once per run, and the user's row and the friends among
    // the team-mates are found while the run's rows are at hand. A run of a game whose user's
    // row comes only later is looked at again at the end.
    constexpr quint32 noRow = 0xFFFFFFFFu;
    struct Run {
        quint32 first;
        quint32 count;
        quint32 slot;
    };
    const Owners own(owners);
    const FriendNames friendly(friendNames);
    std::vector<Run> runs;
    runs.reserve(matches.size() + 16);
    std::vector<quint32> meOf(gameCount, noRow);
    std::vector<qint64> meTeam(gameCount, 0);
    std::vector<quint32> rowCount(gameCount, 0);
    std::vector<quint8> isFriend(participants.size(), 0);
    std::vector<std::size_t> deferred;

    // A friend's name on one of the user's other accounts is still the user.
    auto markFriends = [&](const Run& run) {
        if (friendly.isEmpty())
            return;
        const quint32 me = meOf[run.slot];
        for (quint32 i = run.first; i < run.first + run.count; ++i) {
            const LocalParticipant& row = *participants[i];
            if (i != me && row.teamId == meTeam[run.slot] && !row.riotIdGameName.isNull() &&
                friendly.contains(row.riotIdGameName) && !own.contains(row.puuid))
                isFriend[i] = 1;
        }
    };

    for (std::size_t i = 0; i < participants.size();) {
        const qint64 game = participants[i]->matchServerId;
        std::size_t end = i + 1;
        while (end < participants.size() && participants[end]->matchServerId == game)
            ++end;
        for (std::size_t k = i; k < end; ++k)
            prefetchRow(participants, k + prefetchAhead);
        // The game of a run or two ahead, from a row whose start was asked for a run ago.
        if (i + gameAhead < participants.size())
            slots.prefetch(participants[i + gameAhead]->matchServerId);
        const quint32 slot = slots.find(game);
        if (ownRowsOut) {
            // Every row of the run is asked whose it is, listed game or not.
            for (std::size_t k = i; k < end; ++k) {
                if (!own.contains(participants[k]->puuid))
                    continue;
                ownRowsOut->push_back(participants[k]);
                if (slot != IdSlots::none && meOf[slot] == noRow) {
                    meOf[slot] = static_cast<quint32>(k);
                    meTeam[slot] = participants[k]->teamId;
                }
            }
        }
        if (slot != IdSlots::none) {
            const Run run{static_cast<quint32>(i), static_cast<quint32>(end - i), slot};
            runs.push_back(run);
            rowCount[slot] += run.count;
            for (std::size_t k = i; !ownRowsOut && meOf[slot] == noRow && k < end; ++k) {
                if (own.contains(participants[k]->puuid)) {
                    meOf[slot] = static_cast<quint32>(k);
                    meTeam[slot] = participants[k]->teamId;
                }
            }
            if (meOf[slot] != noRow)
                markFriends(run);
            else
                deferred.push_back(runs.size() - 1);
        }
        i = end;
    }
    for (std::size_t r : deferred)
        if (meOf[runs[r].slot] != noRow)
            markFriends(runs[r]);

    // Each game's rows in input order: nearly always its one run, copied whole. Games whose rows
    // came in several runs get their runs listed in order, game after game.
    constexpr quint32 severalRuns = 0xFFFFFFFEu;
    std::vector<quint32> runOf(gameCount, noRow);
    bool anySeveral = false;
    for (std::size_t r = 0; r < runs.size(); ++r) {
        quint32& of = runOf[runs[r].slot];
        anySeveral = anySeveral || of != noRow;
        of = of == noRow ? static_cast<quint32>(r) : severalRuns;
    }
    std::vector<quint32> runsStart, runsOfSlot;
    if (anySeveral) {
        runsStart.assign(gameCount + 1, 0);
        for (const Run& run : runs)
            ++runsStart[run.slot + 1];
        for (quint32 slot = 0; slot < gameCount; ++slot)
            runsStart[slot + 1] += runsStart[slot];
        runsOfSlot.resize(runs.size());
        std::vector<quint32> next(runsStart.begin(), runsStart.end() - 1);
        for (std::size_t r = 0; r < runs.size(); ++r)
            runsOfSlot[next[runs[r].slot]++] = static_cast<quint32>(r);
    }

    // Every game's roster followed by its friends, in one list the games share.
    std::size_t listed = 0;
    for (std::size_t m = 0; m < matches.size(); ++m)
        if (meOf[slotOfMatch[m]] != noRow)
            listed += rowCount[slotOfMatch[m]];
    listed += static_cast<std::size_t>(std::count(isFriend.begin(), isFriend.end(), quint8(1)));
    auto rows = std::make_shared<RowList::Rows>();
    rows->reserve(listed);

    std::vector<Game> result;
    result.reserve(matches.size());
    for (std::size_t m = 0; m < matches.size(); ++m) {
        const quint32 slot = slotOfMatch[m];
        if (meOf[slot] == noRow)
            continue;
        const std::size_t rosterStart = rows->size();
        auto addRoster = [&](const Run& run) {
            const auto first = participants.begin() + run.first;
            rows->insert(rows->end(), first, first + run.count);
        };
        auto addFriends = [&](const Run& run) {
            for (quint32 i = run.first; i < run.first + run.count; ++i)
                if (isFriend[i])
                    rows->push_back(participants[i]);
        };
        if (runOf[slot] != severalRuns) {
            addRoster(runs[runOf[slot]]);
        } else {
            for (quint32 r = runsStart[slot]; r < runsStart[slot + 1]; ++r)
                addRoster(runs[runsOfSlot[r]]);
        }
        const std::size_t friendsStart = rows->size();
        if (runOf[slot] != severalRuns) {
            addFriends(runs[runOf[slot]]);
        } else {
            for (quint32 r = runsStart[slot]; r < runsStart[slot + 1]; ++r)
                addFriends(runs[runsOfSlot[r]]);
        }
        result.push_back({matches[m], participants[meOf[slot]], RowList(*rows, rosterStart, friendsStart - rosterStart),
                          RowList(*rows, friendsStart, rows->size() - friendsStart), rows});
    }
    return result;
}

std::vector<const LocalParticipant*> ownRows(const std::vector<const LocalParticipant*>& participants,
                                             const QSet<QString>& owners) {
    const Owners own(owners);
    std::vector<const LocalParticipant*> mine;
    for (std::size_t i = 0; i < participants.size(); ++i) {
        prefetchRow(participants, i + prefetchAhead);
        if (own.contains(participants[i]->puuid))
            mine.push_back(participants[i]);
    }
    return mine;
}

std::vector<ChampAgg> champions(const std::vector<const LocalParticipant*>& participants) {
    struct Running {
        ChampAgg agg;
        double kdaSum = 0;
        double csSum = 0;
        int csCount = 0;
    };
    std::vector<Running> groups;
    IdSlots indexOf(200);
    for (const LocalParticipant* row : participants) {
        const auto next = static_cast<quint32>(groups.size());
        const quint32 index = indexOf.findOrAdd(row->championId, next);
        if (index == next) {
            groups.push_back({});
            groups.back().agg.championId = row->championId;
            groups.back().agg.name = row->championName;
        }
        Running& group = groups[index];
        ++group.agg.games;
        group.agg.wins += row->win ? 1 : 0;
        group.kdaSum += kdaRatio(*row);
        if (row->csPerMin) {
            group.csSum += *row->csPerMin;
            ++group.csCount;
        }
    }
    std::vector<ChampAgg> result;
    result.reserve(groups.size());
    for (Running& group : groups) {
        group.agg.kda = group.kdaSum / group.agg.games;
        group.agg.csPerMin = group.csCount > 0 ? group.csSum / group.csCount : 0.0;
        result.push_back(std::move(group.agg));
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const ChampAgg& a, const ChampAgg& b) { return a.games > b.games; });
    return result;
}

std::vector<TimelineEntry> timeline(const std::vector<const LocalMatch*>& matches,
                                    const std::vector<const LocalParticipant*>& participants,
                                    const QSet<QString>& owners) {
    const Owners own(owners);
    // The first own row of each game, found in one pass over the rows in memory order.
    IdSlots slotOf(matches.size());
    std::vector<const LocalParticipant*> firstOwnRow;
    firstOwnRow.reserve(matches.size());
    for (std::size_t i = 0; i < participants.size(); ++i) {
        prefetchRow(participants, i + prefetchAhead);
        const LocalParticipant* row = participants[i];
        if (!own.contains(row->puuid))
            continue;
        const auto next = static_cast<quint32>(firstOwnRow.size());
        if (slotOf.findOrAdd(row->matchServerId, next) == next)
            firstOwnRow.push_back(row);
    }
    std::vector<TimelineEntry> result;
    result.reserve(std::min(matches.size(), firstOwnRow.size()));
    for (const LocalMatch* match : matches) {
        const quint32 slot = slotOf.find(match->serverId);
        if (slot != IdSlots::none)
            result.push_back({match, firstOwnRow[slot]});
    }
    return result;
}

} // namespace Stats
