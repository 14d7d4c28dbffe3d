#include "archive/shared_text.h"

#include <QByteArray>
#include <QHashFunctions>
#include <QMutex>
#include <QStringEncoder>
#include <array>
#include <atomic>
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

class Pool {
public:
    static Pool& instance() {
        static Pool pool;
        return pool;
    }

    // The empty text is always the first, so that records can start with it for free.
    static constexpr quint32 emptyId = 1;
    Pool() { intern(QByteArrayView(""), QStringView(u"")); }

    quint32 intern(QByteArrayView utf8, QStringView text) {
        const std::size_t hash = qHashBits(utf8.data(), static_cast<std::size_t>(utf8.size()));
        QMutexLocker lock(&m_lock);
        if ((m_count + 1) * 2 > m_slots.size())
            grow();
        std::size_t i = hash & (m_slots.size() - 1);
        for (; m_slots[i] != 0; i = (i + 1) & (m_slots.size() - 1))
            if (bytesOf(m_slots[i]) == utf8)
                return m_slots[i];
        const quint32 id = append(utf8, text);
        m_slots[i] = id;
        ++m_count;
        return id;
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

    // Entries never move and are complete before their id is handed out: no lock needed.
    [[nodiscard]] const Header* header(quint32 id) const {
        const char* const* block = m_blocks[id / blockSize].load(std::memory_order_acquire);
        return reinterpret_cast<const Header*>(block[id % blockSize]);
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
        return static_cast<qsizetype>(m_arenaBytes + m_slots.size() * sizeof(quint32) +
                                      (m_count / blockSize + 1) * blockSize * sizeof(char*));
    }

private:
    static constexpr std::size_t blockSize = 4096;
    static constexpr std::size_t maxBlocks = 1 << 16;
    static constexpr std::size_t chunkSize = 256 * 1024;

    quint32 append(QByteArrayView utf8, QStringView text) {
        const std::size_t need = (sizeof(Header) + static_cast<std::size_t>(utf8.size()) + 3) & ~std::size_t(3);
        if (need > m_chunkLeft) {
            const std::size_t size = std::max(need, chunkSize);
            m_chunks.push_back(std::make_unique<char[]>(size));
            m_next = m_chunks.back().get();
            m_chunkLeft = size;
            m_arenaBytes += size;
        }
        auto* entry = reinterpret_cast<Header*>(m_next);
        entry->size = static_cast<quint32>(utf8.size());
        entry->lowerCaseHash = text.isNull() && !utf8.isEmpty() ? SharedText::lowerCaseHashOf(QString::fromUtf8(utf8))
                                                                : SharedText::lowerCaseHashOf(text);
        if (!utf8.isEmpty())
            std::memcpy(entry + 1, utf8.data(), static_cast<std::size_t>(utf8.size()));
        m_next += need;
        m_chunkLeft -= need;

        const quint32 id = static_cast<quint32>(m_count + 1);
        const std::size_t blockIndex = id / blockSize;
        Q_ASSERT(blockIndex < maxBlocks);
        const char** block = m_ownBlocks.size() > blockIndex ? m_ownBlocks[blockIndex].get() : nullptr;
        if (!block) {
            m_ownBlocks.push_back(std::make_unique<const char*[]>(blockSize));
            block = m_ownBlocks.back().get();
            m_blocks[blockIndex].store(block, std::memory_order_release);
        }
        block[id % blockSize] = reinterpret_cast<const char*>(entry);
        return id;
    }

    void grow() {
        std::vector<quint32> slots(std::max<std::size_t>(1024, m_slots.size() * 2), 0);
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
    std::vector<std::unique_ptr<char[]>> m_chunks;
    char* m_next = nullptr;
    std::size_t m_chunkLeft = 0;
    std::size_t m_arenaBytes = 0;
    std::vector<std::unique_ptr<const char*[]>> m_ownBlocks;
    // Readers find an entry through this table without the lock; a block is published once, full
    // of the entries it will ever hold or to be filled only with ids not yet handed out.
    std::array<std::atomic<const char* const*>, maxBlocks> m_blocks{};
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
    quint64 hash = 14695981039346656037ULL;
    for (const QChar c : text) {
        const std::optional<char16_t> lower = lowerUnit(c.unicode());
        if (!lower) {
            hash = 14695981039346656037ULL;
            for (const QChar lowered : text.toString().toLower())
                hash = (hash ^ lowered.unicode()) * 1099511628211ULL;
            return static_cast<quint32>(hash ^ (hash >> 32));
        }
        hash = (hash ^ *lower) * 1099511628211ULL;
    }
    return static_cast<quint32>(hash ^ (hash >> 32));
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

qsizetype SharedText::distinctCount() {
    return Pool::instance().count();
}

qsizetype SharedText::heldBytes() {
    return Pool::instance().bytes();
}
