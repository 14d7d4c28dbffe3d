#include "archive/archive_texts.h"

#include "archive/sqlite_database.h"
#include "archive/store_error.h"

#include <QString>
#include <algorithm>
#include <limits>

ArchiveTexts::ArchiveTexts(SqliteDatabase& database) : m_database(database) {}

ArchiveTexts::~ArchiveTexts() = default;

void ArchiveTexts::load() {
    m_texts.clear();
    m_ids.clear();
    m_slots.clear();
    // The largest number is the count in a table whose numbers this class gave, read without
    // walking the table; bounded, for one whose numbers it did not.
    const qint64 count =
        std::clamp<qint64>(m_database.queryInteger(QStringLiteral("SELECT max(id) FROM texts")), 0, qint64(1) << 24);
    m_texts.reserve(static_cast<std::size_t>(count));
    m_lowerCaseHashes.clear();
    m_lowerCaseHashes.reserve(static_cast<std::size_t>(count));
    SharedText::reserve(count);
    SqliteStatement select(m_database, QStringLiteral("SELECT id, text FROM texts ORDER BY id"));
    bool dense = true;
    std::vector<qint64> ids;
    while (select.step()) {
        qint64 id = 0;
        select.read(0, id);
        dense = dense && id == static_cast<qint64>(m_texts.size()) + 1;
        ids.push_back(id);
        SharedText text;
        select.read(1, text);
        m_texts.push_back(text ? text : SharedText::empty());
        // Read now, while the text just added is in the cache.
        m_lowerCaseHashes.push_back(m_texts.back().lowerCaseHash());
    }
    if (!dense)
        m_ids = std::move(ids);
    m_committed = m_texts.size();
}

SharedText ArchiveTexts::text(std::optional<qint64> number) const {
    if (!number)
        return {};
    const qint64 id = *number;
    if (m_ids.empty()) {
        if (id >= 1 && id <= static_cast<qint64>(m_texts.size()))
            return m_texts[static_cast<std::size_t>(id - 1)];
        return SharedText::empty();
    }
    const auto at = std::lower_bound(m_ids.begin(), m_ids.end(), id);
    if (at == m_ids.end() || *at != id)
        return SharedText::empty();
    return m_texts[static_cast<std::size_t>(at - m_ids.begin())];
}

PlayerName ArchiveTexts::name(std::optional<qint64> number) const {
    if (number && m_ids.empty() && *number >= 1 && *number <= static_cast<qint64>(m_lowerCaseHashes.size())) {
        const auto i = static_cast<std::size_t>(*number - 1);
        return PlayerName(m_texts[i], m_lowerCaseHashes[i]);
    }
    return PlayerName(text(number));
}

void ArchiveTexts::loaded() {
    m_lowerCaseHashes.clear();
    m_lowerCaseHashes.shrink_to_fit();
}

void ArchiveTexts::index() {
    unsigned bits = 10;
    while ((std::size_t(1) << bits) < 2 * (m_texts.size() + 1))
        ++bits;
    m_slots.assign(std::size_t(1) << bits, 0);
    m_slotShift = 64 - bits;
    m_recent.assign(std::size_t(1) << recentBits, Recent());
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = 0; i < m_texts.size(); ++i) {
        std::size_t slot = mix(m_texts[i].id()) >> m_slotShift;
        while (m_slots[slot] != 0)
            slot = (slot + 1) & mask;
        m_slots[slot] = static_cast<quint32>(i + 1);
    }
}

std::optional<qint64> ArchiveTexts::numberOf(SharedText text) {
    if (text.isNull())
        return std::nullopt;
    if (m_slots.empty())
        index();
    const quint64 mixed = mix(text.id());
    Recent& recent = m_recent[mixed >> (64 - recentBits)];
    if (recent.sharedId == text.id())
        return recent.number;
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = mixed >> m_slotShift;
    for (; m_slots[slot] != 0; slot = (slot + 1) & mask) {
        const std::size_t i = m_slots[slot] - 1;
        if (m_texts[i].id() == text.id()) {
            recent = {text.id(), m_ids.empty() ? qint64(i) + 1 : m_ids[i]};
            return recent.number;
        }
    }
    const qint64 last = m_ids.empty() ? static_cast<qint64>(m_texts.size()) : m_ids.back();
    if (last == std::numeric_limits<qint64>::max() || m_texts.size() >= std::numeric_limits<quint32>::max() - 1)
        throw StoreError(QStringLiteral("The archive's table of texts has no number left for a new text."));
    const qint64 id = last + 1;
    if (!m_insert)
        m_insert =
            std::make_unique<SqliteStatement>(m_database, QStringLiteral("INSERT INTO texts (id, text) VALUES (?, ?)"));
    m_insert->bind(1, id);
    m_insert->bind(2, text);
    m_insert->step();
    m_insert->reset();
    m_texts.push_back(text);
    if (!m_ids.empty())
        m_ids.push_back(id);
    m_slots[slot] = static_cast<quint32>(m_texts.size());
    recent = {text.id(), id};
    if (2 * m_texts.size() > m_slots.size())
        index();
    return id;
}

void ArchiveTexts::committed() {
    m_committed = m_texts.size();
}

void ArchiveTexts::rolledBack() {
    if (m_texts.size() == m_committed)
        return;
    m_texts.resize(m_committed);
    if (!m_ids.empty())
        m_ids.resize(m_committed);
    // Taking texts out of an open-addressed table would leave holes in its chains: it is made
    // again at the next write.
    m_slots.clear();
}
