#pragma once

#include "archive/record_columns.h"

#include <QtGlobal>
#include <algorithm>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

// The in-memory copy of one record type: every stored record, with the changes not yet written
// to disk. A record keeps its address until the save after its deletion.
//
// Records lie in blocks of many, not one allocation each (an allocation costs more than a
// compact row's figures), and their slots are reused once a save has let go of them. The look-ups
// by backend id and by game are built when first asked for: a start reads 200,000 player rows
// that are only ever looked up by game, and only once a sync or a game's detail needs them.
template <class Record> class RecordTable {
public:
    // Records lie in blocks of this many.
    static constexpr std::size_t blockSize = 1024;

    RecordTable() = default;
    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;

    // Room for count records, asked for before a start reads them all: the row list then takes
    // what it needs rather than twice that.
    void reserve(std::size_t count) { m_rows.reserve(count); }
    // Gives back room reserved for more rows than came (a reserve from a bound, not a count).
    void releaseSpare() {
        if (m_rows.capacity() > m_rows.size() + m_rows.size() / 4)
            m_rows.shrink_to_fit();
    }

    // Adds a record not yet in the store and gives it its identity.
    Record* insert(Record&& record) {
        record.localId = ++m_lastLocalId;
        Record* placed = place(std::move(record));
        addRow(placed, false);
        m_toWrite.push_back(placed);
        return placed;
    }
    Record* insert(std::unique_ptr<Record> record) { return insert(std::move(*record)); }

    // Takes a record read back from disk. Records arrive in the order of their identity.
    Record* adopt(Record&& record) {
        Q_ASSERT(record.localId > m_lastLocalId);
        m_lastLocalId = std::max(m_lastLocalId, record.localId);
        Record* placed = place(std::move(record));
        addRow(placed, true);
        m_savedRows = m_rows.size();
        return placed;
    }
    Record* adopt(std::unique_ptr<Record> record) { return adopt(std::move(*record)); }
    // Takes over every record of part, a table that only adopted records read back from disk
    // (on another thread, say) and whose identities follow this table's. The records keep
    // their addresses: part's blocks become this table's.
    void adoptAll(RecordTable&& part) {
        Q_ASSERT(part.m_toWrite.empty() && part.m_toDelete.empty() && part.m_deadRows == 0 && !part.m_wipe);
        if (part.m_rows.empty())
            return;
        Q_ASSERT(part.m_rows.front().record->localId > m_lastLocalId);
        Q_ASSERT(m_savedRows == m_rows.size() && m_deadRows == 0);
        // The rest of this table's last block is left to later inserts.
        if (!m_blocks.empty())
            for (std::size_t i = m_usedInLastBlock; i < blockSize; ++i)
                m_free.push_back(&m_blocks.back()[i]);
        m_blocks.insert(m_blocks.end(), std::make_move_iterator(part.m_blocks.begin()),
                        std::make_move_iterator(part.m_blocks.end()));
        m_usedInLastBlock = part.m_usedInLastBlock;
        m_free.insert(m_free.end(), part.m_free.begin(), part.m_free.end());
        m_rows.insert(m_rows.end(), part.m_rows.begin(), part.m_rows.end());
        m_liveCount += part.m_liveCount;
        m_lastLocalId = part.m_lastLocalId;
        m_savedRows = m_rows.size();
        m_byServerBuilt = false;
        m_byMatchBuilt = false;
        part.m_blocks.clear();
        part.m_usedInLastBlock = 0;
        part.m_free.clear();
        part.m_rows.clear();
        part.m_liveCount = 0;
    }

    // Call after changing a record's fields so that the next save writes it.
    void markChanged(Record* record) {
        const std::size_t row = rowOf(record);
        if (row == npos || !m_rows[row].alive)
            return;
        // The record may have moved to another game; the index is rebuilt when next asked for.
        if constexpr (HasMatchServerId<Record>)
            m_byMatchBuilt = false;
        m_toWrite.push_back(record);
    }

    void remove(Record* record) {
        const std::size_t row = rowOf(record);
        if (row == npos || !m_rows[row].alive)
            return;
        m_rows[row].alive = false;
        --m_liveCount;
        ++m_deadRows;
        if (m_rows[row].persisted && !m_wipe)
            m_toDelete.push_back(record->localId);
        unindex(record);
    }

    void removeAll() {
        for (Row& row : m_rows)
            row.alive = false;
        m_deadRows = m_rows.size();
        m_liveCount = 0;
        m_toWrite.clear();
        m_toDelete.clear();
        m_byServer.clear();
        m_byMatch.clear();
        m_wipe = true;
    }

    // Records whose backend id is one of ids, oldest first.
    [[nodiscard]] std::vector<Record*> withServerIds(const std::unordered_set<qint64>& ids) const {
        buildServerIndex();
        std::vector<Record*> result;
        for (qint64 id : ids) {
            auto [first, last] = m_byServer.equal_range(id);
            for (auto it = first; it != last; ++it)
                result.push_back(it->second);
        }
        std::sort(result.begin(), result.end(),
                  [](const Record* a, const Record* b) { return a->localId < b->localId; });
        return result;
    }

    [[nodiscard]] std::vector<Record*> withMatchServerId(qint64 matchServerId) const requires HasMatchServerId<Record> {
        buildMatchIndex();
        auto found = m_byMatch.find(matchServerId);
        return found == m_byMatch.end() ? std::vector<Record*>{} : found->second;
    }

    // Every live record, oldest first.
    [[nodiscard]] std::vector<const Record*> all() const {
        std::vector<const Record*> result;
        result.reserve(m_liveCount);
        for (const Row& row : m_rows)
            if (row.alive)
                result.push_back(row.record);
        return result;
    }

    [[nodiscard]] std::vector<Record*> where(const std::function<bool(const Record&)>& predicate) const {
        std::vector<Record*> result;
        for (const Row& row : m_rows)
            if (row.alive && predicate(*row.record))
                result.push_back(row.record);
        return result;
    }

    [[nodiscard]] qsizetype count() const { return static_cast<qsizetype>(m_liveCount); }

    // What the next save must do.
    [[nodiscard]] bool hasChanges() const {
        return m_wipe || !m_toDelete.empty() ||
               std::any_of(m_toWrite.begin(), m_toWrite.end(),
                           [this](const Record* record) { return isAlive(record); });
    }
    [[nodiscard]] bool wipes() const { return m_wipe; }
    [[nodiscard]] const std::vector<qint64>& toDelete() const { return m_toDelete; }
    // The live records to write, oldest first, each once.
    [[nodiscard]] std::vector<const Record*> toWrite() const {
        std::vector<const Record*> result(m_toWrite.begin(), m_toWrite.end());
        std::sort(result.begin(), result.end(),
                  [](const Record* a, const Record* b) { return a->localId < b->localId; });
        result.erase(std::unique(result.begin(), result.end()), result.end());
        if (m_deadRows > 0)
            std::erase_if(result, [this](const Record* record) { return !isAlive(record); });
        return result;
    }

    // The save succeeded: forget the pending changes and free deleted records. A sync saves
    // after every page, so this costs only what changed, not the whole table.
    void saved() {
        m_toWrite.clear();
        m_toDelete.clear();
        m_wipe = false;
        if (m_deadRows > 0) {
            for (Row& row : m_rows)
                if (!row.alive) {
                    *row.record = Record(); // lets go of what the record held
                    m_free.push_back(row.record);
                }
            std::erase_if(m_rows, [](const Row& row) { return !row.alive; });
            m_deadRows = 0;
            m_savedRows = 0;
        }
        for (std::size_t i = m_savedRows; i < m_rows.size(); ++i)
            m_rows[i].persisted = true;
        m_savedRows = m_rows.size();
    }

private:
    static constexpr std::size_t npos = std::size_t(-1);

    struct Row {
        Record* record;
        bool alive;
        bool persisted;
    };

    Record* place(Record&& record) {
        if (!m_free.empty()) {
            Record* slot = m_free.back();
            m_free.pop_back();
            *slot = std::move(record);
            return slot;
        }
        if (m_blocks.empty() || m_usedInLastBlock == blockSize) {
            m_blocks.push_back(std::make_unique<Record[]>(blockSize));
            m_usedInLastBlock = 0;
        }
        Record* slot = &m_blocks.back()[m_usedInLastBlock++];
        *slot = std::move(record);
        return slot;
    }

    void addRow(Record* record, bool persisted) {
        m_rows.push_back({record, true, persisted});
        ++m_liveCount;
        if (m_byServerBuilt)
            m_byServer.emplace(record->serverId, record);
        if constexpr (HasMatchServerId<Record>)
            if (m_byMatchBuilt)
                m_byMatch[record->matchServerId].push_back(record);
    }

    void buildServerIndex() const {
        if (m_byServerBuilt)
            return;
        m_byServer.clear();
        m_byServer.reserve(m_liveCount);
        for (const Row& row : m_rows)
            if (row.alive)
                m_byServer.emplace(row.record->serverId, row.record);
        m_byServerBuilt = true;
    }

    void buildMatchIndex() const {
        if (m_byMatchBuilt)
            return;
        m_byMatch.clear();
        for (const Row& row : m_rows)
            if (row.alive)
                m_byMatch[row.record->matchServerId].push_back(row.record);
        m_byMatchBuilt = true;
    }

    // Rows stay in the order of their identity (inserts take ever larger ones, the file is read
    // in that order, and saves only drop rows), so a record's row is found by bisection.
    [[nodiscard]] std::size_t rowOf(const Record* record) const {
        const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), record->localId,
                                            [](const Row& row, qint64 id) { return row.record->localId < id; });
        return found != m_rows.end() && found->record == record ? std::size_t(found - m_rows.begin()) : npos;
    }

    [[nodiscard]] bool isAlive(const Record* record) const {
        const std::size_t row = rowOf(record);
        return row != npos && m_rows[row].alive;
    }

    void unindex(Record* record) {
        if (m_byServerBuilt) {
            auto [first, last] = m_byServer.equal_range(record->serverId);
            for (auto it = first; it != last; ++it)
                if (it->second == record) {
                    m_byServer.erase(it);
                    break;
                }
        }
        if constexpr (HasMatchServerId<Record>) {
            if (!m_byMatchBuilt)
                return;
            // A record changed without markChanged is not under its game's key: start over.
            auto list = m_byMatch.find(record->matchServerId);
            if (list == m_byMatch.end() || std::erase(list->second, record) == 0) {
                m_byMatchBuilt = false;
                return;
            }
            if (list->second.empty())
                m_byMatch.erase(list);
        }
    }

    std::vector<std::unique_ptr<Record[]>> m_blocks;
    std::size_t m_usedInLastBlock = 0;
    std::vector<Record*> m_free; // slots of records deleted and saved, for reuse
    std::vector<Row> m_rows;
    std::size_t m_liveCount = 0;
    std::size_t m_deadRows = 0;  // rows removed since the last save
    std::size_t m_savedRows = 0; // rows before this index are on disk
    qint64 m_lastLocalId = 0;
    mutable std::unordered_multimap<qint64, Record*> m_byServer;
    mutable bool m_byServerBuilt = false;
    mutable std::unordered_map<qint64, std::vector<Record*>> m_byMatch;
    mutable bool m_byMatchBuilt = false;
    std::vector<Record*> m_toWrite; // in call order, may repeat
    std::vector<qint64> m_toDelete;
    bool m_wipe = false;
};
