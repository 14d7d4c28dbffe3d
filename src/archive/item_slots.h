#pragma once

#include <QList>
#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>

// A player's inventory at the end of a game, held in the row itself: a game has seven item slots,
// and a list of its own for each of 200,000 rows cost more than the rows' figures. A list that
// does not fit (more than seven, or an id beyond 32 bits) is refused by assign(), and the row
// keeps its exact copy elsewhere.
class ItemSlots {
public:
    static constexpr std::size_t capacity = 7;
    using value_type = qint64;

    ItemSlots() = default;
    ItemSlots(std::initializer_list<qint64> items) { assign(QList<qint64>(items)); }

    // Takes items when they fit and says whether they did; otherwise keeps what fits of them.
    bool assign(const QList<qint64>& items) { return assign(std::span<const qint64>(items.data(), items.size())); }
    bool assign(std::span<const qint64> items) {
        m_count = 0;
        bool fits = items.size() <= capacity;
        for (const qint64 item : items) {
            if (m_count == capacity)
                break;
            if (item < std::numeric_limits<qint32>::min() || item > std::numeric_limits<qint32>::max()) {
                fits = false;
                continue;
            }
            m_items[m_count++] = static_cast<qint32>(item);
        }
        return fits;
    }

    [[nodiscard]] QList<qint64> toList() const { return QList<qint64>(begin(), end()); }

    class const_iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = qint64;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = qint64;

        const_iterator() = default;
        explicit const_iterator(const qint32* at) : m_at(at) {}
        qint64 operator*() const { return *m_at; }
        const_iterator& operator++() {
            ++m_at;
            return *this;
        }
        const_iterator operator++(int) {
            const_iterator before = *this;
            ++m_at;
            return before;
        }
        difference_type operator-(const const_iterator& other) const { return m_at - other.m_at; }
        const_iterator operator+(difference_type n) const { return const_iterator(m_at + n); }
        friend bool operator==(const const_iterator&, const const_iterator&) = default;

    private:
        const qint32* m_at = nullptr;
    };

    [[nodiscard]] const_iterator begin() const { return const_iterator(m_items.data()); }
    [[nodiscard]] const_iterator end() const { return const_iterator(m_items.data() + m_count); }
    [[nodiscard]] qsizetype size() const { return m_count; }
    [[nodiscard]] bool isEmpty() const { return m_count == 0; }
    [[nodiscard]] qint64 operator[](qsizetype i) const { return m_items[static_cast<std::size_t>(i)]; }
    [[nodiscard]] qint64 at(qsizetype i) const { return m_items[static_cast<std::size_t>(i)]; }

    friend bool operator==(const ItemSlots& a, const ItemSlots& b) {
        return a.m_count == b.m_count && std::equal(a.begin(), a.end(), b.begin());
    }

private:
    std::array<qint32, capacity> m_items{};
    quint8 m_count = 0;
};
