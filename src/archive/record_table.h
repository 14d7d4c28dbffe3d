#pragma once

#include "archive/record_columns.h"
#include "archive/text_pool.h"

#include <QtGlobal>
#include <algorithm>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
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
        m_toWrite.push_back(raw);
        return raw;
    }

    // Takes a record read back from disk. Records arrive in the order of their identity.
    // Their repeated texts are shared here, when the whole archive is read at a start, and not
    // when a sync adds records: the sharing costs a look-up per text, which a full first mirror
    // of a large archive would feel, while a start reads every text anew anyway.
    void adopt(std::unique_ptr<Record> record) {
        Q_ASSERT(record->localId > m_lastLocalId);
        shareTexts(*record);
        m_lastLocalId = std::max(m_lastLocalId, record->localId);
        addRow(std::move(record), true);
        m_savedRows = m_rows.size();
    }

    // Call after changing a record's fields so that the next save writes it.
    void markChanged(Record* record) {
        Row* row = rowOf(record);
        if (!row || !row->alive)
            return;
        if constexpr (HasMatchServerId<Record>) {
            unindexMatch(*row);
            m_byMatch[record->matchServerId].push_back(record);
            row->matchKey = record->matchServerId;
        }
        m_toWrite.push_back(record);
    }

    void remove(Record* record) {
        Row* row = rowOf(record);
        if (!row || !row->alive)
            return;
        row->alive = false;
        --m_liveCount;
        ++m_deadRows;
        if (row->persisted && !m_wipe)
            m_toDelete.push_back(record->localId);
        unindexServer(record);
        if constexpr (HasMatchServerId<Record>)
            unindexMatch(*row);
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
        m_texts.clear();
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
        std::sort(result.begin(), result.end(),
                  [](const Record* a, const Record* b) { return a->localId < b->localId; });
        return result;
    }

    [[nodiscard]] std::vector<Record*> withMatchServerId(qint64 matchServerId) const requires HasMatchServerId<Record> {
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
    // How many distinct texts the records share, for memory reports.
    [[nodiscard]] qsizetype sharedTextCount() const { return m_texts.size(); }

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
            std::erase_if(m_rows, [](const Row& row) { return !row.alive; });
            m_deadRows = 0;
            m_savedRows = 0;
            m_texts.prune();
        }
        for (std::size_t i = m_savedRows; i < m_rows.size(); ++i)
            m_rows[i].persisted = true;
        m_savedRows = m_rows.size();
    }

private:
    struct Row {
        std::unique_ptr<Record> record;
        bool alive = true;
        bool persisted = false;
        qint64 matchKey = 0; // the game the record is indexed under, for types that belong to one
    };

    void shareTexts(Record& record) {
        RecordColumns<Record>::visit(record, [this](const char*, auto& field) { m_texts.share(field); });
    }

    void addRow(std::unique_ptr<Record> record, bool persisted) {
        Record* raw = record.get();
        m_rows.push_back({std::move(record), true, persisted, 0});
        ++m_liveCount;
        m_byServer.emplace(raw->serverId, raw);
        if constexpr (HasMatchServerId<Record>) {
            m_byMatch[raw->matchServerId].push_back(raw);
            m_rows.back().matchKey = raw->matchServerId;
        }
    }

    // Rows stay in the order of their identity (inserts take ever larger ones, the file is read
    // in that order, and saves only drop rows), so a record's row is found by bisection.
    [[nodiscard]] const Row* rowOf(const Record* record) const {
        const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), record->localId,
                                            [](const Row& row, qint64 id) { return row.record->localId < id; });
        return found != m_rows.end() && found->record.get() == record ? &*found : nullptr;
    }
    [[nodiscard]] Row* rowOf(const Record* record) { return const_cast<Row*>(std::as_const(*this).rowOf(record)); }

    [[nodiscard]] bool isAlive(const Record* record) const {
        const Row* row = rowOf(record);
        return row && row->alive;
    }

    void unindexServer(Record* record) {
        auto [first, last] = m_byServer.equal_range(record->serverId);
        for (auto it = first; it != last; ++it)
            if (it->second == record) {
                m_byServer.erase(it);
                return;
            }
    }

    void unindexMatch(const Row& row) {
        auto list = m_byMatch.find(row.matchKey);
        if (list != m_byMatch.end()) {
            std::erase(list->second, row.record.get());
            if (list->second.empty())
                m_byMatch.erase(list);
        }
    }

    std::vector<Row> m_rows;
    std::size_t m_liveCount = 0;
    std::size_t m_deadRows = 0;  // rows removed since the last save
    std::size_t m_savedRows = 0; // rows before this index are on disk
    qint64 m_lastLocalId = 0;
    std::unordered_multimap<qint64, Record*> m_byServer;
    std::unordered_map<qint64, std::vector<Record*>> m_byMatch;
    std::vector<Record*> m_toWrite; // in call order, may repeat
    std::vector<qint64> m_toDelete;
    TextPool m_texts;
    bool m_wipe = false;
};
