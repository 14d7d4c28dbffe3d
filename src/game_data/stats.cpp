#include "game_data/stats.h"

#include <algorithm>
#include <cstring>
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
        m_keys.resize(capacity);
        m_values.assign(capacity, none);
        m_mask = capacity - 1;
    }

    // The slot of id, or none.
    [[nodiscard]] quint32 find(qint64 id) const {
        for (std::size_t i = spread(id) & m_mask;; i = (i + 1) & m_mask) {
            if (m_values[i] == none)
                return none;
            if (m_keys[i] == id)
                return m_values[i];
        }
    }

    // The slot of id, given the value next when it has none yet.
    quint32 findOrAdd(qint64 id, quint32 next) {
        if ((m_size + 1) * 2 > m_values.size())
            grow();
        for (std::size_t i = spread(id) & m_mask;; i = (i + 1) & m_mask) {
            if (m_values[i] == none) {
                m_keys[i] = id;
                m_values[i] = next;
                ++m_size;
                return next;
            }
            if (m_keys[i] == id)
                return m_values[i];
        }
    }

private:
    void grow() {
        std::vector<qint64> keys(m_keys.size() * 2);
        std::vector<quint32> values(m_values.size() * 2, none);
        const std::size_t mask = values.size() - 1;
        for (std::size_t j = 0; j < m_values.size(); ++j) {
            if (m_values[j] == none)
                continue;
            std::size_t i = spread(m_keys[j]) & mask;
            while (values[i] != none)
                i = (i + 1) & mask;
            keys[i] = m_keys[j];
            values[i] = m_values[j];
        }
        m_keys.swap(keys);
        m_values.swap(values);
        m_mask = mask;
    }

    static std::size_t spread(qint64 id) {
        auto x = static_cast<quint64>(id);
        x ^= x >> 33;
        x *= 0xff51afd7ed558ccdULL;
        x ^= x >> 33;
        return static_cast<std::size_t>(x);
    }

    std::vector<qint64> m_keys;
    std::vector<quint32> m_values;
    std::size_t m_mask = 0;
    std::size_t m_size = 0;
};

// The user's puuids. A user links one account or a few: comparing against each beats hashing a
// 78-character id for every row.
class Owners {
public:
    explicit Owners(const QSet<QString>& owners) : m_set(owners) {
        if (owners.size() <= 8)
            m_few.assign(owners.begin(), owners.end());
    }

    [[nodiscard]] bool contains(QStringView puuid) const {
        if (m_few.empty() && !m_set.isEmpty())
            return m_set.contains(puuid.toString());
        for (const QString& owner : m_few) {
            if (owner.size() != puuid.size())
                continue;
            // Ids differ in their first characters nearly always: look at those before calling.
            const auto bytes = static_cast<std::size_t>(puuid.size()) * sizeof(QChar);
            if (bytes >= 8) {
                quint64 a = 0;
                quint64 b = 0;
                std::memcpy(&a, owner.constData(), 8);
                std::memcpy(&b, puuid.constData(), 8);
                if (a != b)
                    continue;
            }
            if (std::memcmp(owner.constData(), puuid.constData(), bytes) == 0)
                return true;
        }
        return false;
    }

private:
    const QSet<QString>& m_set;
    std::vector<QString> m_few;
};

// The friends' game names, already in lower case; a name is looked up after lower-casing it.
class FriendNames {
public:
    explicit FriendNames(const QSet<QString>& names) : m_names(names) {
        std::size_t capacity = 16;
        while (capacity < static_cast<std::size_t>(names.size()) * 4)
            capacity <<= 1;
        m_table.assign(capacity, nullptr);
        for (const QString& name : names) {
            m_longest = std::max(m_longest, name.size());
            std::size_t i = hash(name) & (capacity - 1);
            while (m_table[i])
                i = (i + 1) & (capacity - 1);
            m_table[i] = &name;
        }
    }

    // Lower-casing never shortens a text, so a name longer than every friend's is no friend.
    [[nodiscard]] qsizetype longest() const { return m_longest; }

    [[nodiscard]] bool isEmpty() const { return m_names.isEmpty(); }

    [[nodiscard]] bool containsLowered(QStringView name) const {
        // Lower-cased on the stack while hashing, then one look-up. Character by character is
        // the same as QString::toLower except for U+0130, whose lower case is two characters,
        // and for characters beyond the BMP: those names take the general way.
        constexpr qsizetype stackLimit = 64;
        if (name.size() <= stackLimit) {
            char16_t lowered[stackLimit];
            quint32 h = 2166136261u;
            bool simple = true;
            for (qsizetype i = 0; i < name.size(); ++i) {
                char16_t u = name[i].unicode();
                if (u < 0x80) {
                    if (u >= u'A' && u <= u'Z')
                        u = char16_t(u + 32);
                } else if (u == 0x0130 || QChar::isSurrogate(u)) {
                    simple = false;
                    break;
                } else {
                    u = char16_t(QChar::toLower(char32_t(u)));
                }
                lowered[i] = u;
                h = (h ^ u) * 16777619u;
            }
            if (simple) {
                const QStringView view(lowered, name.size());
                const std::size_t mask = m_table.size() - 1;
                for (std::size_t i = h & mask; m_table[i]; i = (i + 1) & mask)
                    if (m_table[i]->size() == view.size() && QStringView(*m_table[i]) == view)
                        return true;
                return false;
            }
        }
        return m_names.contains(name.toString().toLower());
    }

private:
    static quint32 hash(QStringView text) {
        quint32 h = 2166136261u;
        for (QChar c : text)
            h = (h ^ c.unicode()) * 16777619u;
        return h;
    }

    const QSet<QString>& m_names;
    std::vector<const QString*> m_table; // every name, open addressing by hash
    qsizetype m_longest = 0;
};

// The rows are read once per call and lie far apart: each pass asks for a row's memory some
// rows before it needs it, and for the texts it points to a little later, so that the waits
// overlap instead of following one another.
constexpr std::size_t prefetchAhead = 32;

inline void prefetch(const void* address) {
    __builtin_prefetch(address);
}

// The fields the statistics read lie together near the start of a row, from its game to its
// game name (LocalParticipant keeps them there for this).
inline void prefetchRow(const std::vector<const LocalParticipant*>& rows, std::size_t i) {
    if (i >= rows.size())
        return;
    const LocalParticipant* row = rows[i];
    prefetch(&row->matchServerId);
    prefetch(reinterpret_cast<const char*>(&row->riotIdGameName) + sizeof(row->riotIdGameName) - 1);
}

inline void prefetchId(const std::vector<const LocalParticipant*>& rows, std::size_t i) {
    if (i < rows.size())
        prefetch(rows[i]->puuid.constData());
}

} // namespace

namespace Stats {

double kdaRatio(const LocalParticipant& row) {
    return double(row.kills + row.assists) / double(std::max<qint64>(row.deaths, 1));
}

std::vector<Game> games(const std::vector<const LocalMatch*>& matches,
                        const std::vector<const LocalParticipant*>& participants, const QSet<QString>& owners,
                        const QSet<QString>& friendNames) {
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
    const qsizetype longest = friendly.longest();
    std::vector<Run> runs;
    runs.reserve(matches.size() + 16);
    std::vector<quint32> meOf(gameCount, noRow);
    std::vector<qint64> meTeam(gameCount, 0);
    std::vector<quint32> rowCount(gameCount, 0);
    std::vector<quint8> isFriend(participants.size(), 0);
    std::vector<std::size_t> deferred;

    // Team-mates whose names may be a friend's, kept while their rows are at hand; the names are
    // compared afterwards in a pass of their own that reads ahead.
    struct Candidate {
        quint32 row;
        qint32 size;
        const QChar* name;
    };
    std::vector<Candidate> candidates;
    auto collect = [&](const Run& run) {
        if (friendly.isEmpty())
            return;
        const quint32 me = meOf[run.slot];
        for (quint32 i = run.first; i < run.first + run.count; ++i) {
            const LocalParticipant& row = *participants[i];
            if (i != me && row.teamId == meTeam[run.slot] && row.riotIdGameName &&
                row.riotIdGameName->size() <= longest)
                candidates.push_back(
                    {i, static_cast<qint32>(row.riotIdGameName->size()), row.riotIdGameName->constData()});
        }
    };

    for (std::size_t i = 0; i < participants.size();) {
        const qint64 game = participants[i]->matchServerId;
        std::size_t end = i + 1;
        while (end < participants.size() && participants[end]->matchServerId == game)
            ++end;
        for (std::size_t k = i; k < end; ++k) {
            prefetchRow(participants, k + prefetchAhead);
            prefetchId(participants, k + prefetchAhead / 2);
        }
        const quint32 slot = slots.find(game);
        if (slot != IdSlots::none) {
            const Run run{static_cast<quint32>(i), static_cast<quint32>(end - i), slot};
            runs.push_back(run);
            rowCount[slot] += run.count;
            for (std::size_t k = i; meOf[slot] == noRow && k < end; ++k) {
                if (own.contains(participants[k]->puuid)) {
                    meOf[slot] = static_cast<quint32>(k);
                    meTeam[slot] = participants[k]->teamId;
                }
            }
            if (meOf[slot] != noRow)
                collect(run);
            else
                deferred.push_back(runs.size() - 1);
        }
        i = end;
    }
    for (std::size_t r : deferred)
        if (meOf[runs[r].slot] != noRow)
            collect(runs[r]);

    std::vector<quint32> named;
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        if (k + prefetchAhead < candidates.size())
            prefetch(candidates[k + prefetchAhead].name);
        if (friendly.containsLowered(QStringView(candidates[k].name, candidates[k].size)))
            named.push_back(candidates[k].row);
    }
    // A friend's name on one of the user's other accounts is still the user.
    for (std::size_t k = 0; k < named.size(); ++k) {
        if (k + prefetchAhead < named.size())
            prefetch(reinterpret_cast<const char*>(participants[named[k + prefetchAhead]]) + 32);
        if (k + prefetchAhead / 2 < named.size())
            prefetch(participants[named[k + prefetchAhead / 2]]->puuid.constData());
        if (!own.contains(participants[named[k]]->puuid))
            isFriend[named[k]] = 1;
    }

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

    std::vector<Game> result;
    result.reserve(matches.size());
    for (std::size_t m = 0; m < matches.size(); ++m) {
        const quint32 slot = slotOfMatch[m];
        if (meOf[slot] == noRow)
            continue;
        Game game{matches[m], participants[meOf[slot]], {}, {}};
        auto add = [&](const Run& run) {
            const auto first = participants.begin() + run.first;
            game.roster.insert(game.roster.end(), first, first + run.count);
            for (quint32 i = run.first; i < run.first + run.count; ++i)
                if (isFriend[i])
                    game.friends.push_back(participants[i]);
        };
        if (runOf[slot] != severalRuns) {
            add(runs[runOf[slot]]);
        } else {
            game.roster.reserve(rowCount[slot]);
            for (quint32 r = runsStart[slot]; r < runsStart[slot + 1]; ++r)
                add(runs[runsOfSlot[r]]);
        }
        result.push_back(std::move(game));
    }
    return result;
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
        prefetchId(participants, i + prefetchAhead / 2);
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
