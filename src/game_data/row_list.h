#pragma once

#include "archive/local_participant.h"

#include <algorithm>
#include <vector>

// A run of participant rows held in a list that many such runs share. The statistics list every
// game's roster and friends in one list, so that building 20,000 games allocates once rather
// than 40,000 times. A run does not own the list: whoever holds it (a game) holds the list too,
// once for its runs, as each hold is an atomic count taken and given back.
class RowList {
public:
    using Rows = std::vector<const LocalParticipant*>;
    using value_type = const LocalParticipant*;
    using const_iterator = Rows::const_iterator;

    RowList() = default;
    RowList(const Rows& rows, std::size_t first, std::size_t count) : m_rows(&rows), m_first(first), m_count(count) {}

    [[nodiscard]] const_iterator begin() const {
        return m_rows ? m_rows->begin() + static_cast<std::ptrdiff_t>(m_first) : Rows::const_iterator();
    }
    [[nodiscard]] const_iterator end() const {
        return m_rows ? begin() + static_cast<std::ptrdiff_t>(m_count) : Rows::const_iterator();
    }
    [[nodiscard]] std::size_t size() const { return m_count; }
    [[nodiscard]] bool empty() const { return m_count == 0; }
    [[nodiscard]] const LocalParticipant* operator[](std::size_t i) const { return (*m_rows)[m_first + i]; }

    friend bool operator==(const RowList& a, const RowList& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    const Rows* m_rows = nullptr;
    std::size_t m_first = 0;
    std::size_t m_count = 0;
};
