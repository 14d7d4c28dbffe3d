#include "archive/shared_text.h"

#include <QByteArray>
#include <QHashFunctions>
#include <QMutex>
#include <QStringEncoder>
#include <array>
#include <atomic>
#include <bit>
#include <cstring>
#include <memory>
#include <vector>

namespace {

// What precedes each text's bytes in the arena.
struct Header {
    quint32 size;
    quint32 lowerCaseHash;
};

// The lower case of one UTF-16 unit as QString::toLower gives it; none for the units whose lower
// case depends on more than the unit: U+0130, whose lower case is two units, and the halves of
// characters beyond the BMP. Texts with those are lowered whole.
std::optional<char16_t> lowerUnit(char16_t unit) {
    if (unit < 0x80)
        return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 32) : unit;
    if (unit == 0x0130 || QChar::isSurrogate(unit))
        return std::nullopt;
    return char16_t(QChar::toLower(char32_t(unit)));
}

// The case-insensitive hash of a text: its lower case's UTF-16 units, four to a 64-bit word,
// mixed alternately into two running values so that one word's multiplication does not wait
// for the one before. A start hashes some 200,000 texts, most of them 78-character player ids:
// a unit at a time, the hashing was half of what adding a text cost.
class LowerCaseHash {
public:
    void addWord(quint64 fourUnits) {
        quint64& running = (m_words++ & 1) ? m_odd : m_even;
        running = std::rotl((running ^ fourUnits) * mixPrime, 29);
    }
    void addUnit(char16_t lower) {
        m_word |= quint64(lower) << (16 * (m_units++ & 3));
        if ((m_units & 3) == 0) {
            addWord(m_word);
            m_word = 0;
        }
    }
    // Eight lower-case ASCII characters at once; only while no unit is left over.
    void addAscii(quint64 eightBytes) {
        addWord(widen(static_cast<quint32>(eightBytes)));
        addWord(widen(static_cast<quint32>(eightBytes >> 32)));
        m_units += 8;
    }
    [[nodiscard]] quint32 finish() {
        if (m_units & 3)
            addWord(m_word);
        quint64 hash = m_even ^ std::rotl(m_odd, 32) ^ (m_units * mixPrime);
        hash = (hash ^ (hash >> 31)) * mixPrime;
        return static_cast<quint32>(hash ^ (hash >> 32));
    }

private:
    static constexpr quint64 mixPrime = 0x9E3779B97F4A7C15ULL;

    // Four bytes into the low bytes of four 16-bit units.
    static quint64 widen(quint32 four) {
        quint64 word = four;
        word = (word | (word << 16)) & 0x0000FFFF0000FFFFULL;
        return (word | (word << 8)) & 0x00FF00FF00FF00FFULL;
    }

    quint64 m_even = 14695981039346656037ULL;
    quint64 m_odd = 1099511628211ULL;
    quint64 m_word = 0;
    quint64 m_words = 0;
    quint64 m_units = 0;
};

// Eight ASCII bytes with A-Z lowered: a byte's high bit says whether it is at least 'A' and
// whether it is above 'Z' (no byte carries into the next, all being below 0x80).
quint64 lowerAscii(quint64 bytes) {
    constexpr quint64 ones = 0x0101010101010101ULL;
    const quint64 atLeastA = bytes + ones * (0x80 - 'A');
    const quint64 aboveZ = bytes + ones * (0x7f - 'Z');
    return bytes | ((atLeastA & ~aboveZ & (ones * 0x80)) >> 2);
}

// The lower-case hash of a text read as UTF-8, without making a QString of the ASCII ones
// (nearly all: ids, champions, positions, most names).
quint32 lowerCaseHashOfUtf8(QByteArrayView utf8) {
    constexpr quint64 highBits = 0x8080808080808080ULL;
    LowerCaseHash hash;
    const char* at = utf8.data();
    const char* const end = at + utf8.size();
    for (; end - at >= 8; at += 8) {
        quint64 bytes;
        std::memcpy(&bytes, at, 8);
        if (bytes & highBits)
            return SharedText::lowerCaseHashOf(QString::fromUtf8(utf8));
        hash.addAscii(lowerAscii(bytes));
    }
    for (; at != end; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte >= 0x80)
            return SharedText::lowerCaseHashOf(QString::fromUtf8(utf8));
        hash.addUnit(byte >= 'A' && byte <= 'Z' ? char16_t(byte + 32) : char16_t(byte));
    }
    return hash.finish();
}

// Most texts a sync page or a start adds were added moments before: champions, positions,
// tiers, the same players game after game. A small table per thread, of the text last seen at
// each hash, answers those without the lock and without the shared table's two cache misses
// (its slot, then the entry the slot names). Texts never leave the pool, so an id it holds
// stays right.
struct RecentText {
    std::size_t hash = 0;
    quint32 id = 0;
};

RecentText& recentTexts(std::size_t hash) {
    static constexpr std::size_t size = 4096;
    thread_local std::unique_ptr<RecentText[]> table;
    if (!table)
        table = std::make_unique<RecentText[]>(size);
    return table[hash & (size - 1)];
}

// Texts are appended to chunks of 256 KiB that never move, and a text's id says where it lies:
// the chunk's number in the high 16 bits and the offset in 4-byte units in the low 16. Reading a
// text is one look-up in a small table of chunks (always in cache) and one read of the entry;
// a table of one pointer per text would cost 8 bytes each and a second cache miss.
class Pool {
public:
    static Pool& instance() {
        static Pool pool;
        return pool;
    }

    // Chunk 0 is never used, so no entry's id is 0 (absent). The empty text comes first, so that
    // records can start with it for free.
    static constexpr quint32 emptyId = 1u << 16;
    Pool() { intern(QByteArrayView(""), QStringView(u"")); }

    quint32 intern(QByteArrayView utf8, QStringView text) {
        const std::size_t hash = qHashBits(utf8.data(), static_cast<std::size_t>(utf8.size()));
        RecentText& recent = recentTexts(hash);
        if (recent.hash == hash && recent.id != 0 && bytesOf(recent.id) == utf8)
            return recent.id;
        const quint32 id = internShared(utf8, text, hash);
        recent = {hash, id};
        return id;
    }

    quint32 internShared(QByteArrayView utf8, QStringView text, std::size_t hash) {
        QMutexLocker lock(&m_lock);
        if ((m_count + 1) * 2 > m_slots.size())
            grow(m_count + 1);
        std::size_t i = hash & (m_slots.size() - 1);
        for (; m_slots[i] != 0; i = (i + 1) & (m_slots.size() - 1))
            if (bytesOf(m_slots[i]) == utf8)
                return m_slots[i];
        const quint32 id = append(utf8, text);
        m_slots[i] = id;
        ++m_count;
        return id;
    }

    void reserve(std::size_t more) {
        QMutexLocker lock(&m_lock);
        if ((m_count + more) * 2 > m_slots.size())
            grow(m_count + more);
    }

    quint32 find(QByteArrayView utf8) {
        const std::size_t hash = qHashBits(utf8.data(), static_cast<std::size_t>(utf8.size()));
        QMutexLocker lock(&m_lock);
        if (m_slots.empty())
            return 0;
        for (std::size_t i = hash & (m_slots.size() - 1); m_slots[i] != 0; i = (i + 1) & (m_slots.size() - 1))
            if (bytesOf(m_slots[i]) == utf8)
                return m_slots[i];
        return 0;
    }

    // Chunks never move and an entry is complete before its id is handed out: no lock needed.
    [[nodiscard]] const Header* header(quint32 id) const {
        const char* chunk = m_chunkStarts[id >> offsetBits].load(std::memory_order_acquire);
        return reinterpret_cast<const Header*>(chunk + std::size_t(id & offsetMask) * unit);
    }

    [[nodiscard]] QByteArrayView bytesOf(quint32 id) const {
        const Header* entry = header(id);
        return {reinterpret_cast<const char*>(entry + 1), static_cast<qsizetype>(entry->size)};
    }

    qsizetype count() {
        QMutexLocker lock(&m_lock);
        return static_cast<qsizetype>(m_count);
    }

    qsizetype bytes() {
        QMutexLocker lock(&m_lock);
        return static_cast<qsizetype>(m_arenaBytes + m_slots.size() * sizeof(quint32));
    }

private:
    static constexpr unsigned offsetBits = 16;
    static constexpr quint32 offsetMask = (1u << offsetBits) - 1;
    static constexpr std::size_t unit = 4;
    static constexpr std::size_t chunkSize = (std::size_t(1) << offsetBits) * unit;
    static constexpr std::size_t maxChunks = std::size_t(1) << (32 - offsetBits);

    quint32 append(QByteArrayView utf8, QStringView text) {
        const std::size_t need = (sizeof(Header) + static_cast<std::size_t>(utf8.size()) + unit - 1) & ~(unit - 1);
        if (need > m_chunkLeft) {
            // A text longer than a chunk gets one of its own size: it starts at offset 0.
            const std::size_t size = std::max(need, chunkSize);
            Q_ASSERT(m_chunks.size() + 1 < maxChunks);
            m_chunks.push_back(std::make_unique<char[]>(size));
            m_chunkStarts[m_chunks.size()].store(m_chunks.back().get(), std::memory_order_release);
            m_used = 0;
            m_chunkLeft = size;
            m_arenaBytes += size;
        }
        char* at = m_chunks.back().get() + m_used;
        auto* entry = reinterpret_cast<Header*>(at);
        entry->size = static_cast<quint32>(utf8.size());
        entry->lowerCaseHash =
            text.isNull() && !utf8.isEmpty() ? lowerCaseHashOfUtf8(utf8) : SharedText::lowerCaseHashOf(text);
        if (!utf8.isEmpty())
            std::memcpy(entry + 1, utf8.data(), static_cast<std::size_t>(utf8.size()));
        const auto id = static_cast<quint32>((m_chunks.size() << offsetBits) | (m_used / unit));
        m_used += need;
        m_chunkLeft -= need;
        return id;
    }

    // Makes room for count texts at most half the slots full.
    void grow(std::size_t count) {
        std::size_t size = std::max<std::size_t>(1024, m_slots.size());
        while (count * 2 > size)
            size *= 2;
        std::vector<quint32> slots(size, 0);
        const std::size_t mask = slots.size() - 1;
        for (const quint32 id : m_slots) {
            if (id == 0)
                continue;
            const QByteArrayView bytes = bytesOf(id);
            std::size_t i = qHashBits(bytes.data(), static_cast<std::size_t>(bytes.size())) & mask;
            while (slots[i] != 0)
                i = (i + 1) & mask;
            slots[i] = id;
        }
        m_slots.swap(slots);
    }

    QMutex m_lock;
    std::vector<quint32> m_slots; // ids by hash of their bytes, open addressing; 0 is a free slot
    std::size_t m_count = 0;
    std::vector<std::unique_ptr<char[]>> m_chunks; // chunk n + 1 is m_chunks[n]
    std::size_t m_used = 0;                        // bytes taken in the last chunk
    std::size_t m_chunkLeft = 0;
    std::size_t m_arenaBytes = 0;
    // Readers find a chunk through this table without the lock; an entry is published once.
    std::array<std::atomic<const char*>, maxChunks> m_chunkStarts{};
};

// UTF-8 of a text, in a buffer each thread reuses: interning a sync page's texts would
// otherwise allocate once per text.
QByteArrayView utf8Of(QStringView text) {
    thread_local QByteArray buffer;
    thread_local QStringEncoder encoder(QStringEncoder::Utf8);
    buffer.resize(encoder.requiredSpace(text.size()));
    const char* end = encoder.appendToBuffer(buffer.data(), text);
    return {buffer.constData(), end - buffer.constData()};
}

} // namespace

SharedText::SharedText(QStringView text) : m_id(Pool::instance().intern(utf8Of(text), text)) {}

SharedText SharedText::empty() {
    Pool::instance();
    return SharedText(Pool::emptyId);
}

SharedText SharedText::fromUtf8(QByteArrayView utf8) {
    return SharedText(Pool::instance().intern(utf8, QStringView()));
}

SharedText SharedText::existing(QStringView text) {
    return SharedText(Pool::instance().find(utf8Of(text)));
}

QByteArrayView SharedText::utf8() const {
    return m_id ? Pool::instance().bytesOf(m_id) : QByteArrayView();
}

QString SharedText::toString() const {
    if (!m_id)
        return {};
    const QByteArrayView bytes = utf8();
    // An empty present text must not read as absent where QString::isNull is asked.
    return bytes.isEmpty() ? QString(QLatin1String("")) : QString::fromUtf8(bytes);
}

quint32 SharedText::lowerCaseHash() const {
    return m_id ? Pool::instance().header(m_id)->lowerCaseHash : lowerCaseHashOf(QStringView());
}

quint32 SharedText::lowerCaseHashOf(QStringView text) {
    LowerCaseHash hash;
    for (const QChar c : text) {
        const std::optional<char16_t> lower = lowerUnit(c.unicode());
        if (!lower) {
            LowerCaseHash whole;
            for (const QChar lowered : text.toString().toLower())
                whole.addUnit(lowered.unicode());
            return whole.finish();
        }
        hash.addUnit(*lower);
    }
    return hash.finish();
}

bool SharedText::equals(QStringView text) const {
    const QByteArrayView bytes = utf8();
    // Every UTF-16 unit is one to three UTF-8 bytes: most unequal texts end here.
    if (bytes.size() < text.size() || bytes.size() > text.size() * 3)
        return false;
    return QString::fromUtf8(bytes) == text;
}

bool SharedText::equals(QLatin1String text) const {
    const QByteArrayView bytes = utf8();
    bool ascii = true;
    for (const char c : text)
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    if (ascii)
        return bytes == QByteArrayView(text.data(), text.size());
    return QString::fromUtf8(bytes) == text;
}

void SharedText::reserve(qsizetype more) {
    Pool::instance().reserve(static_cast<std::size_t>(std::max<qsizetype>(0, more)));
}

qsizetype SharedText::distinctCount() {
    return Pool::instance().count();
}

qsizetype SharedText::heldBytes() {
    return Pool::instance().bytes();
}
