#pragma once

#include "archive/item_slots.h"
#include "archive/optional_int.h"
#include "archive/optional_real.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QtGlobal>
#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

// A row's fields packed into bytes, one after another in the order they are put, for a table
// whose rows are read by the hundred thousand at start: SQLite decodes a column of each row in
// every step, and for the 26 columns of a player row that was most of a start's time.
//
// Every field is put the same way whatever width the reader holds it in: whole numbers as
// zigzag base-128 varints (any 64-bit figure), reals as their eight bytes, texts as their number
// in the archive's table of texts, optional fields behind a byte that says whether they are
// there. So a row read into the compact record and into the backend's exact record reads the
// same bytes, and a figure beyond the compact width is noticed (narrowed()) rather than lost.
class FieldPacker {
public:
    void clear() { m_bytes.clear(); }
    [[nodiscard]] QByteArrayView bytes() const { return QByteArrayView(m_bytes.data(), qsizetype(m_bytes.size())); }

    void put(qint64 value);
    void put(qint32 value) { put(static_cast<qint64>(value)); }
    void put(qint16 value) { put(static_cast<qint64>(value)); }
    void put(bool value) { put(static_cast<qint64>(value)); }
    template <class T> void put(OptionalInt<T> value) { put(value.toOptional()); }
    void put(const std::optional<qint64>& value);
    void put(OptionalReal value) { put(value ? std::optional<double>(*value) : std::nullopt); }
    void put(const std::optional<double>& value);
    void put(const ItemSlots& items);
    void put(const QList<qint64>& items);
    // An absent list is put as an empty one: the archive keeps no difference between them.
    void put(const std::optional<QList<qint64>>& items) { put(items.value_or(QList<qint64>())); }
    // A text's number in the archive's table of texts; none for an absent text.
    void putText(std::optional<qint64> number);

private:
    void putVarint(quint64 value);

    // A row is put byte by byte, a few dozen of them, for every row a sync writes: the bytes go
    // where an inline push_back puts them (QByteArray's append is a call and a detach check).
    std::vector<char> m_bytes;
};

// Reads what a FieldPacker put, field by field in the same order. Bytes that end early or make no
// sense (a damaged file) give each field after them its default and set damaged(); nothing is read
// beyond the bytes.
class FieldUnpacker {
public:
    explicit FieldUnpacker(QByteArrayView bytes)
        : m_at(reinterpret_cast<const uchar*>(bytes.data())), m_end(m_at + bytes.size()) {}

    void get(qint64& out) { out = number(); }
    void get(bool& out) { out = number() != 0; }
    void get(qint32& out) { narrow(number(), out); }
    void get(qint16& out) { narrow(number(), out); }
    template <class T> void get(OptionalInt<T>& out) {
        out.reset();
        if (!present())
            return;
        const qint64 value = number();
        if (m_damaged)
            return;
        if (OptionalInt<T>::fits(value))
            out = static_cast<T>(value);
        else
            m_narrowed = true;
    }
    void get(std::optional<qint64>& out);
    void get(OptionalReal& out);
    void get(std::optional<double>& out);
    void get(ItemSlots& out);
    void get(QList<qint64>& out);
    void get(std::optional<QList<qint64>>& out) {
        QList<qint64> items;
        get(items);
        out = std::move(items);
    }
    [[nodiscard]] std::optional<qint64> getText();

    // A figure did not fit the width it was read into: the field holds the nearest it can.
    [[nodiscard]] bool narrowed() const { return m_narrowed; }
    [[nodiscard]] bool damaged() const { return m_damaged; }
    // Every byte was read, and no more: a row put by another layout of fields ends elsewhere.
    [[nodiscard]] bool atEnd() const { return m_at == m_end && !m_damaged; }

private:
    // Nearly every figure of a row takes one byte: that case is read inline.
    [[nodiscard]] qint64 number() {
        if (!m_damaged && m_at != m_end && *m_at < 0x80) {
            const quint64 value = *m_at++;
            return static_cast<qint64>((value >> 1) ^ (~(value & 1) + 1));
        }
        return longNumber();
    }
    [[nodiscard]] qint64 longNumber();
    [[nodiscard]] bool present();
    [[nodiscard]] double real();
    template <class T> void narrow(qint64 value, T& out) {
        out = static_cast<T>(std::clamp<qint64>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
        if (out != value)
            m_narrowed = true;
    }

    const uchar* m_at;
    const uchar* m_end;
    bool m_narrowed = false;
    bool m_damaged = false;
};
