#pragma once

#include "archive/record_columns.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// The in-memory copy of one record type: every stored record, indexed by backend id (and by
// game for the types that belong to a game), with the changes not yet written to disk.
// A record keeps its address until the save after its deletion.
template <class Record> class RecordTable {
public:
    // Adds a record not yet in the store and gives it its identity.
    Record* insert(std::unique_ptr<Record> record) {
        record->localId = ++m_lastLocalId;
        Record* raw = record.get();
        addRow(std::move(record), false);
        m_toWrite.insert(raw);
        return raw;
    }

    // Takes a record read back from disk.
    void adopt(std::unique_ptr<Record> record) {
        m_lastLocalId = std::max(m_lastLocalId, record->localId);
        addRow(std::move(record), true);
    }

    // Call after changing a record's fields so that the next save writes it.
    void markChanged(Record* record) {
        if (!isAlive(record))
            return;
        if constexpr (HasMatchServerId<Record>) {
            unindexMatch(record);
            m_byMatch[record->matchServerId].push_back(record);
            m_matchKey[record] = record->matchServerId;
        }
        m_toWrite.insert(record);
    }

    void remove(Record* record) {
        auto found = m_rowOf.find(record->localId);
        if (found == m_rowOf.end() || !m_rows[found->second].alive)
            return;
        Row& row = m_rows[found->second];
        row.alive = false;
        --m_liveCount;
        m_toWrite.erase(record);
        if (row.persisted && !m_wipe)
            m_toDelete.push_back(record->localId);
        unindexServer(record);
        if constexpr (HasMatchServerId<Record>)
            unindexMatch(record);
    }

    void removeAll() {
        for (Row& row : m_rows)
            row.alive = false;
        m_liveCount = 0;
        m_toWrite.clear();
        m_toDelete.clear();
        m_byServer.clear();
        m_byMatch.clear();
        m_matchKey.clear();
        m_wipe = true;
    }

    // Records whose backend id is one of ids, oldest first.
    [[nodiscard]] std::vector<Record*> withServerIds(const std::unordered_set<qint64>& ids) const {
        std::vector<Record*> result;
        for (qint64 id : ids) {
            auto [first, last] = m_byServer.equal_range(id);
            for (auto it = first; it != last; ++it)
                result.push_back(it->second);
        }
        std::sort(result.begin(), result.end(), [](const Record* a, const Record* b) { return a->localId < b->localId; });
        return result;
    }

    [[nodiscard]] std::vector<Record*> withMatchServerId(qint64 matchServerId) const
        requires HasMatchServerId<Record>
    {
        auto found = m_byMatch.find(matchServerId);
        return found == m_byMatch.end() ? std::vector<Record*>{} : found->second;
    }

    // Every live record, oldest first.
    [[nodiscard]] std::vector<const Record*> all() const {
        std::vector<const Record*> result;
        result.reserve(m_liveCount);
        for (const Row& row : m_rows)
            if (row.alive)
                result.push_back(row.record.get());
        return result;
    }

    [[nodiscard]] std::vector<Record*> where(const std::function<bool(const Record&)>& predicate) const {
        std::vector<Record*> result;
        for (const Row& row : m_rows)
            if (row.alive && predicate(*row.record))
                result.push_back(row.record.get());
        return result;
    }

    [[nodiscard]] qsizetype count() const { return static_cast<qsizetype>(m_liveCount); }

    // What the next save must do.
    [[nodiscard]] bool hasChanges() const { return m_wipe || !m_toWrite.empty() || !m_toDelete.empty(); }
    [[nodiscard]] bool wipes() const { return m_wipe; }
    [[nodiscard]] const std::vector<qint64>& toDelete() const { return m_toDelete; }
    [[nodiscard]] std::vector<const Record*> toWrite() const {
        std::vector<const Record*> result(m_toWrite.begin(), m_toWrite.end());
        std::sort(result.begin(), result.end(), [](const Record* a, const Record* b) { return a->localId < b->localId; });
        return result;
    }

    // The save succeeded: forget the pending changes and free deleted records.
    void saved() {
        m_toWrite.clear();
        m_toDelete.clear();
        m_wipe = false;
        std::erase_if(m_rows, [](const Row& row) { return !row.alive; });
        m_rowOf.clear();
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            m_rows[i].persisted = true;
            m_rowOf.emplace(m_rows[i].record->localId, i);
        }
    }

private:
    struct Row {
        std::unique_ptr<Record> record;
        bool alive = true;
        bool persisted = false;
    };

    void addRow(std::unique_ptr<Record> record, bool persisted) {
        Record* raw = record.get();
        m_rowOf.emplace(raw->localId, m_rows.size());
        m_rows.push_back({std::move(record), true, persisted});
        ++m_liveCount;
        m_byServer.emplace(raw->serverId, raw);
        if constexpr (HasMatchServerId<Record>) {
            m_byMatch[raw->matchServerId].push_back(raw);
            m_matchKey[raw] = raw->matchServerId;
        }
    }

    [[nodiscard]] bool isAlive(const Record* record) const {
        auto found = m_rowOf.find(record->localId);
        return found != m_rowOf.end() && m_rows[found->second].alive;
    }

    void unindexServer(Record* record) {
        auto [first, last] = m_byServer.equal_range(record->serverId);
        for (auto it = first; it != last; ++it)
            if (it->second == record) {
                m_byServer.erase(it);
                return;
            }
    }

    void unindexMatch(Record* record) {
        auto key = m_matchKey.find(record);
        if (key == m_matchKey.end())
            return;
        auto list = m_byMatch.find(key->second);
        if (list != m_byMatch.end()) {
            std::erase(list->second, record);
            if (list->second.empty())
                m_byMatch.erase(list);
        }
        m_matchKey.erase(key);
    }

    std::vector<Row> m_rows;
    std::unordered_map<qint64, std::size_t> m_rowOf;
    std::size_t m_liveCount = 0;
    qint64 m_lastLocalId = 0;
    std::unordered_multimap<qint64, Record*> m_byServer;
    std::unordered_map<qint64, std::vector<Record*>> m_byMatch;
    std::unordered_map<const Record*, qint64> m_matchKey;
    std::unordered_set<Record*> m_toWrite;
    std::vector<qint64> m_toDelete;
    bool m_wipe = false;
};
