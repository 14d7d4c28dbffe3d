#include "archive/field_packing.h"

#include <QtEndian>
#include <array>
#include <cstring>

void FieldPacker::putVarint(quint64 value) {
    while (value >= 0x80) {
        m_bytes.push_back(static_cast<char>(value | 0x80));
        value >>= 7;
    }
    m_bytes.push_back(static_cast<char>(value));
}

void FieldPacker::put(qint64 value) {
    // Zigzag: small negative figures take as few bytes as small positive ones.
    putVarint((static_cast<quint64>(value) << 1) ^ static_cast<quint64>(value >> 63));
}

void FieldPacker::put(const std::optional<qint64>& value) {
    m_bytes.push_back(static_cast<char>(value.has_value()));
    if (value)
        put(*value);
}

void FieldPacker::put(const std::optional<double>& value) {
    m_bytes.push_back(static_cast<char>(value.has_value()));
    if (!value)
        return;
    std::array<char, 8> bytes{};
    qToLittleEndian(*value, bytes.data());
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
}

void FieldPacker::put(const ItemSlots& items) {
    put(static_cast<qint64>(items.size()));
    for (const qint64 item : items)
        put(item);
}

void FieldPacker::put(const QList<qint64>& items) {
    put(static_cast<qint64>(items.size()));
    for (const qint64 item : items)
        put(item);
}

void FieldPacker::putText(std::optional<qint64> number) {
    put(number);
}

qint64 FieldUnpacker::longNumber() {
    quint64 value = 0;
    for (unsigned shift = 0; !m_damaged; shift += 7) {
        // A tenth byte holds the 64th bit alone; more than that is no varint of ours.
        if (m_at == m_end || shift > 63 || (shift == 63 && *m_at > 1)) {
            m_damaged = true;
            break;
        }
        const uchar byte = *m_at++;
        value |= quint64(byte & 0x7f) << shift;
        if (!(byte & 0x80))
            return static_cast<qint64>((value >> 1) ^ (~(value & 1) + 1));
    }
    return 0;
}

bool FieldUnpacker::present() {
    if (m_damaged)
        return false;
    if (m_at == m_end || *m_at > 1) {
        m_damaged = true;
        return false;
    }
    return *m_at++ == 1;
}

double FieldUnpacker::real() {
    if (m_damaged || m_end - m_at < 8) {
        m_damaged = true;
        return 0;
    }
    const double value = qFromLittleEndian<double>(m_at);
    m_at += 8;
    return value;
}

// An optional field cut off after its presence byte is as absent as one after the damage.
void FieldUnpacker::get(std::optional<qint64>& out) {
    out.reset();
    if (!present())
        return;
    const qint64 value = number();
    if (!m_damaged)
        out = value;
}

void FieldUnpacker::get(OptionalReal& out) {
    out = OptionalReal();
    if (!present())
        return;
    const double value = real();
    if (!m_damaged)
        out = value;
}

void FieldUnpacker::get(std::optional<double>& out) {
    out.reset();
    if (!present())
        return;
    const double value = real();
    if (!m_damaged)
        out = value;
}

void FieldUnpacker::get(QList<qint64>& out) {
    out.clear();
    const qint64 count = number();
    // Each item takes at least a byte: a count beyond the bytes left is damage, not a list.
    if (count < 0 || count > m_end - m_at) {
        m_damaged = true;
        return;
    }
    out.reserve(count);
    for (qint64 i = 0; i < count && !m_damaged; ++i)
        out.append(number());
}

void FieldUnpacker::get(ItemSlots& out) {
    const qint64 count = number();
    if (count < 0 || count > m_end - m_at) {
        m_damaged = true;
        out = ItemSlots();
        return;
    }
    std::array<qint64, ItemSlots::capacity + 1> items{};
    for (qint64 i = 0; i < count && !m_damaged; ++i) {
        const qint64 item = number();
        if (i < qint64(items.size()))
            items[std::size_t(i)] = item;
    }
    const auto kept = std::size_t(std::min<qint64>(count, qint64(items.size())));
    if (!out.assign(std::span<const qint64>(items.data(), kept)))
        m_narrowed = true;
}

std::optional<qint64> FieldUnpacker::getText() {
    std::optional<qint64> number;
    get(number);
    return number;
}
