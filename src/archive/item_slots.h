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
// and a list of its own for each of 200,000 rows cost more than the rows' figures. Each id takes
// three bytes (item ids run to six digits), 22 bytes in all. A list that does not fit (more than
// seven, or an id beyond 24 bits) is refused by assign(), and the row keeps its exact copy
// elsewhere.
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
            if (item < lowest || item > highest) {
                fits = false;
                continue;
            }
            put(m_count++, item);
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
        explicit const_iterator(const quint8* at) : m_at(at) {}
        qint64 operator*() const { return ItemSlots::get(m_at); }
        const_iterator& operator++() {
            m_at += width;
            return *this;
        }
        const_iterator operator++(int) {
            const_iterator before = *this;
            m_at += width;
            return before;
        }
        difference_type operator-(const const_iterator& other) const { return (m_at - other.m_at) / width; }
        const_iterator operator+(difference_type n) const { return const_iterator(m_at + n * width); }
        friend bool operator==(const const_iterator&, const const_iterator&) = default;

    private:
        const quint8* m_at = nullptr;
    };

    [[nodiscard]] const_iterator begin() const { return const_iterator(m_bytes.data()); }
    [[nodiscard]] const_iterator end() const { return const_iterator(m_bytes.data() + m_count * width); }
    [[nodiscard]] qsizetype size() const { return m_count; }
    [[nodiscard]] bool isEmpty() const { return m_count == 0; }
    [[nodiscard]] qint64 operator[](qsizetype i) const { return at(i); }
    [[nodiscard]] qint64 at(qsizetype i) const { return get(m_bytes.data() + static_cast<std::size_t>(i) * width); }

    friend bool operator==(const ItemSlots& a, const ItemSlots& b) {
        return a.m_count == b.m_count && std::equal(a.begin(), a.end(), b.begin());
    }

private:
    static constexpr std::size_t width = 3;
    static constexpr qint64 lowest = -(qint64(1) << 23);
    static constexpr qint64 highest = (qint64(1) << 23) - 1;

    static qint64 get(const quint8* at) {
        const qint32 raw = qint32(at[0]) | (qint32(at[1]) << 8) | (qint32(at[2]) << 16);
        return (raw ^ 0x800000) - 0x800000; // the 24th bit is the sign
    }
    void put(std::size_t slot, qint64 item) {
        const auto raw = static_cast<quint32>(item);
        for (std::size_t i = 0; i < width; ++i)
            m_bytes[slot * width + i] = static_cast<quint8>(raw >> (8 * i));
    }

    std::array<quint8, capacity * width> m_bytes{};
    quint8 m_count = 0;
};
