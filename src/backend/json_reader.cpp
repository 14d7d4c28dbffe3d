#include "backend/json_reader.h"

#include "backend/json_keys.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>

// The parsed form of one answer. Values sit in one flat list of nodes; an object's members and
// a list's elements are contiguous runs in their own lists. Texts stay where they are in the
// answer's bytes unless they had escapes, and become QStrings only when a record reads them.
struct JsonTree {
    enum class Kind : quint8 { Null, Bool, Integer, Real, String, List, Object };

    struct Node {
        Kind kind = Kind::Null;
        bool flag = false; // Bool: the value; String: the text lives in `unescaped`
        quint32 size = 0;  // String: bytes; List and Object: entries
        union {
            qint64 integer = 0;
            double real;
            quint32 first; // String: byte offset; List and Object: first entry
        };
    };

    struct Member {
        quint32 key;
        quint32 value;
    };

    struct Key {
        QByteArray raw;    // as the answer spells it, escapes resolved
        QByteArray name;   // after the snake_case conversion, UTF-8
        QString text;      // the same name, for map keys and error texts
        quint32 canonical; // the first key with the same converted name
        bool plain;        // written without escapes
    };

    QByteArray source;
    QByteArray unescaped;
    std::vector<Node> nodes;
    std::vector<Member> members;
    std::vector<quint32> elements;
    std::vector<Key> keys;
    quint32 root = 0;

    JsonTree();
    ~JsonTree();
    JsonTree(const JsonTree&) = delete;
    JsonTree& operator=(const JsonTree&) = delete;

    [[nodiscard]] QString string(const Node& node) const {
        const char* text = (node.flag ? unescaped.constData() : source.constData()) + node.first;
        if (node.size == 0 || node.size > 24)
            return QString::fromUtf8(text, node.size);
        // A page repeats its short texts (positions, tiers, champions, tags) hundreds of times:
        // a small cache lets the records share one copy of each instead of a copy apiece.
        const auto hash =
            (node.size * 31u + static_cast<unsigned char>(text[0]) * 7u +
             static_cast<unsigned char>(text[node.size - 1]) * 131u + static_cast<unsigned char>(text[node.size / 2])) %
            std::size(recent);
        CachedText& slot = recent[hash];
        if (slot.text.size() != node.size || std::memcmp(slot.text.data(), text, node.size) != 0) {
            slot.text = std::string_view(text, node.size);
            slot.value = QString::fromUtf8(text, node.size);
        }
        return slot.value;
    }

    struct CachedText {
        std::string_view text;
        QString value;
    };
    mutable std::array<CachedText, 509> recent;
};

namespace {

using Kind = JsonTree::Kind;

QString where(const QString& path) {
    return path.isEmpty() ? QStringLiteral("the top level") : QStringLiteral("\"%1\"").arg(path);
}

QString kindText(Kind kind) {
    switch (kind) {
    case Kind::Null:
        return QStringLiteral("null");
    case Kind::Bool:
        return QStringLiteral("a flag");
    case Kind::Integer:
    case Kind::Real:
        return QStringLiteral("a number");
    case Kind::String:
        return QStringLiteral("text");
    case Kind::List:
        return QStringLiteral("a list");
    case Kind::Object:
        return QStringLiteral("an object");
    }
    return QStringLiteral("an unknown value");
}

// A strict RFC 8259 parser into a JsonTree. Backend answers are never deeply nested; a hostile
// one is cut off long before the stack is at risk.
class Parser {
public:
    static constexpr int maxDepth = 512;

    explicit Parser(JsonTree& tree)
        : m_tree(tree), m_begin(tree.source.constData()), m_at(m_begin), m_end(m_begin + tree.source.size()) {}

    void run() {
        // Every member, element and value of a sync page is a node: reserve roughly.
        m_tree.nodes.reserve(static_cast<std::size_t>(m_end - m_begin) / 12 + 4);
        m_tree.members.reserve(static_cast<std::size_t>(m_end - m_begin) / 16 + 4);
        skipSpace();
        m_tree.root = value(0);
        skipSpace();
        if (m_at != m_end)
            fail("garbage at the end of the document");
    }

private:
    [[noreturn]] void fail(const char* what) const {
        throw DecodingFailure(QStringLiteral("The given data was not valid JSON (%1 at offset %2).")
                                  .arg(QLatin1String(what))
                                  .arg(m_at - m_begin));
    }

    void skipSpace() {
        while (m_at < m_end && (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t'))
            ++m_at;
    }

    quint32 newNode(Kind kind) {
        m_tree.nodes.push_back({});
        m_tree.nodes.back().kind = kind;
        return static_cast<quint32>(m_tree.nodes.size() - 1);
    }

    quint32 value(int depth) {
        if (m_at == m_end)
            fail("unexpected end of data");
        switch (*m_at) {
        case '{':
            return object(depth + 1);
        case '[':
            return list(depth + 1);
        case '"': {
            const Span span = string();
            const quint32 index = newNode(Kind::String);
            JsonTree::Node& node = m_tree.nodes[index];
            node.first = span.offset;
            node.size = span.size;
            node.flag = span.escaped;
            return index;
        }
        case 't':
            return word("true", Kind::Bool, true);
        case 'f':
            return word("false", Kind::Bool, false);
        case 'n':
            return word("null", Kind::Null, false);
        default:
            if (*m_at == '-' || (*m_at >= '0' && *m_at <= '9'))
                return number();
            fail("unexpected character");
        }
    }

    quint32 word(std::string_view text, Kind kind, bool flag) {
        if (static_cast<std::size_t>(m_end - m_at) < text.size() || std::string_view(m_at, text.size()) != text)
            fail("unexpected character");
        m_at += text.size();
        const quint32 index = newNode(kind);
        m_tree.nodes[index].flag = flag;
        return index;
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    quint32 number() {
        const char* start = m_at;
        if (*m_at == '-')
            ++m_at;
        if (m_at == m_end || !isDigit(*m_at))
            fail("invalid number");
        // Integers are read while scanning; anything else goes to from_chars below.
        quint64 magnitude = 0;
        bool fits = true;
        if (*m_at == '0') {
            ++m_at;
        } else {
            while (m_at < m_end && isDigit(*m_at)) {
                const auto digit = static_cast<quint64>(*m_at - '0');
                if (magnitude > (std::numeric_limits<quint64>::max() - digit) / 10)
                    fits = false;
                else
                    magnitude = magnitude * 10 + digit;
                ++m_at;
            }
        }
        bool whole = true;
        bool negativeExponent = false;
        if (m_at < m_end && *m_at == '.') {
            whole = false;
            ++m_at;
            if (m_at == m_end || !isDigit(*m_at))
                fail("invalid number");
            while (m_at < m_end && isDigit(*m_at))
                ++m_at;
        }
        if (m_at < m_end && (*m_at == 'e' || *m_at == 'E')) {
            whole = false;
            ++m_at;
            if (m_at < m_end && (*m_at == '+' || *m_at == '-'))
                negativeExponent = *m_at++ == '-';
            if (m_at == m_end || !isDigit(*m_at))
                fail("invalid number");
            while (m_at < m_end && isDigit(*m_at))
                ++m_at;
        }
        if (whole && fits) {
            // Integers keep every digit; those beyond 64 bits fall back to a double.
            const bool negative = *start == '-';
            const quint64 limit = negative ? quint64(1) << 63 : (quint64(1) << 63) - 1;
            if (magnitude <= limit) {
                const quint32 index = newNode(Kind::Integer);
                m_tree.nodes[index].integer =
                    negative ? static_cast<qint64>(0 - magnitude) : static_cast<qint64>(magnitude);
                return index;
            }
        }
        double real = 0;
        const auto [end, error] = std::from_chars(start, m_at, real);
        if (error == std::errc::result_out_of_range && negativeExponent)
            real = *start == '-' ? -0.0 : 0.0; // too small to hold: it is zero
        else if (error != std::errc() || end != m_at)
            fail("number out of range");
        const quint32 index = newNode(Kind::Real);
        m_tree.nodes[index].real = real;
        return index;
    }

    struct Span {
        quint32 offset;
        quint32 size;
        bool escaped;
    };

    // Checks that [from, to) is well-formed UTF-8: no overlong forms, surrogates or values
    // beyond U+10FFFF.
    void validateUtf8(const char* from, const char* to) {
        const auto* s = reinterpret_cast<const unsigned char*>(from);
        const auto* end = reinterpret_cast<const unsigned char*>(to);
        while (s < end) {
            const unsigned char c = *s;
            if (c < 0x80) {
                ++s;
                continue;
            }
            int length = 0;
            char32_t code = 0;
            char32_t least = 0;
            if ((c & 0xE0) == 0xC0) {
                length = 2, code = c & 0x1F, least = 0x80;
            } else if ((c & 0xF0) == 0xE0) {
                length = 3, code = c & 0x0F, least = 0x800;
            } else if ((c & 0xF8) == 0xF0) {
                length = 4, code = c & 0x07, least = 0x10000;
            } else {
                m_at = reinterpret_cast<const char*>(s);
                fail("invalid UTF-8 in a string");
            }
            if (end - s < length) {
                m_at = reinterpret_cast<const char*>(s);
                fail("invalid UTF-8 in a string");
            }
            for (int i = 1; i < length; ++i) {
                if ((s[i] & 0xC0) != 0x80) {
                    m_at = reinterpret_cast<const char*>(s);
                    fail("invalid UTF-8 in a string");
                }
                code = (code << 6) | (s[i] & 0x3F);
            }
            if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
                m_at = reinterpret_cast<const char*>(s);
                fail("invalid UTF-8 in a string");
            }
            s += length;
        }
    }

    // Reads a string starting at its opening quote.
    Span string() {
        ++m_at;
        const char* start = m_at;
        bool high = false;
        // Eight bytes at a time while none is a quote, a backslash, a control character or
        // beyond ASCII.
        constexpr quint64 ones = 0x0101010101010101ULL;
        constexpr quint64 highs = 0x8080808080808080ULL;
        while (m_end - m_at >= 8) {
            quint64 word;
            std::memcpy(&word, m_at, 8);
            const quint64 quote = word ^ (ones * '"');
            const quint64 slash = word ^ (ones * '\\');
            const quint64 special =
                ((quote - ones) & ~quote) | ((slash - ones) & ~slash) | ((word - ones * 0x20) & ~word) | word;
            if (special & highs)
                break;
            m_at += 8;
        }
        while (m_at < m_end) {
            const auto c = static_cast<unsigned char>(*m_at);
            if (c == '"') {
                if (high)
                    validateUtf8(start, m_at);
                const Span span{static_cast<quint32>(start - m_begin), static_cast<quint32>(m_at - start), false};
                ++m_at;
                return span;
            }
            if (c == '\\')
                return escapedString(start);
            if (c < 0x20)
                fail("control character in a string");
            high |= c >= 0x80;
            ++m_at;
        }
        fail("unterminated string");
    }

    void appendUtf8(QByteArray& out, char32_t code) {
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else if (code < 0x800) {
            out += static_cast<char>(0xC0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }

    char32_t hex4() {
        if (m_end - m_at < 4)
            fail("invalid escape");
        char32_t code = 0;
        for (int i = 0; i < 4; ++i) {
            const char c = *m_at++;
            code <<= 4;
            if (c >= '0' && c <= '9')
                code |= static_cast<char32_t>(c - '0');
            else if (c >= 'a' && c <= 'f')
                code |= static_cast<char32_t>(c - 'a' + 10);
            else if (c >= 'A' && c <= 'F')
                code |= static_cast<char32_t>(c - 'A' + 10);
            else
                fail("invalid escape");
        }
        return code;
    }

    // The rare string with escapes: resolved into the tree's own buffer.
    Span escapedString(const char* start) {
        QByteArray& out = m_tree.unescaped;
        const auto offset = static_cast<quint32>(out.size());
        const char* plain = start;
        bool high = false;
        auto flushPlain = [&] {
            if (high)
                validateUtf8(plain, m_at);
            out.append(plain, m_at - plain);
            high = false;
        };
        while (m_at < m_end) {
            const auto c = static_cast<unsigned char>(*m_at);
            if (c == '"') {
                flushPlain();
                ++m_at;
                return {offset, static_cast<quint32>(out.size()) - offset, true};
            }
            if (c < 0x20)
                fail("control character in a string");
            if (c != '\\') {
                high |= c >= 0x80;
                ++m_at;
                continue;
            }
            flushPlain();
            ++m_at;
            if (m_at == m_end)
                fail("unterminated string");
            switch (*m_at++) {
            case '"':
                out += '"';
                break;
            case '\\':
                out += '\\';
                break;
            case '/':
                out += '/';
                break;
            case 'b':
                out += '\b';
                break;
            case 'f':
                out += '\f';
                break;
            case 'n':
                out += '\n';
                break;
            case 'r':
                out += '\r';
                break;
            case 't':
                out += '\t';
                break;
            case 'u': {
                char32_t code = hex4();
                if (code >= 0xD800 && code <= 0xDBFF && m_end - m_at >= 6 && m_at[0] == '\\' && m_at[1] == 'u') {
                    const char* back = m_at;
                    m_at += 2;
                    const char32_t low = hex4();
                    if (low >= 0xDC00 && low <= 0xDFFF)
                        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                    else
                        m_at = back;
                }
                if (code >= 0xD800 && code <= 0xDFFF)
                    code = 0xFFFD; // a lone surrogate has no UTF-8 form
                appendUtf8(out, code);
                break;
            }
            default:
                --m_at;
                fail("invalid escape");
            }
            plain = m_at;
        }
        fail("unterminated string");
    }

    [[nodiscard]] std::string_view spanText(const Span& span) const {
        const char* base = span.escaped ? m_tree.unescaped.constData() : m_begin;
        return {base + span.offset, span.size};
    }

    // Reads a key and finds its entry. Objects in a list repeat the same keys in the same order,
    // so the key seen at this place last time is tried before the index.
    quint32 key(int depth, quint32 position) {
        quint32* guess = nullptr;
        if (depth < static_cast<int>(m_guesses.size()) && position < m_guesses[0].size()) {
            guess = &m_guesses[depth][position];
            if (*guess) {
                // The same bytes followed by the closing quote are the same key; a key that
                // needed escapes is never taken this way.
                const JsonTree::Key& known = m_tree.keys[*guess - 1];
                const auto length = known.raw.size();
                if (known.plain && m_end - m_at > length + 1 && m_at[length + 1] == '"' &&
                    std::memcmp(m_at + 1, known.raw.constData(), static_cast<std::size_t>(length)) == 0) {
                    m_at += length + 2;
                    return *guess - 1;
                }
            }
        }
        const Span span = string();
        const std::string_view text = spanText(span);
        quint32 id = 0;
        const auto found = m_keyIndex.find(text);
        if (found != m_keyIndex.end()) {
            id = found->second;
        } else {
            JsonTree::Key entry;
            entry.raw = QByteArray(text.data(), static_cast<qsizetype>(text.size()));
            entry.plain = std::none_of(text.begin(), text.end(), [](char c) {
                return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
            });
            entry.text = JsonKeys::fromSnakeCase(QString::fromUtf8(entry.raw));
            entry.name = entry.text.toUtf8();
            id = static_cast<quint32>(m_tree.keys.size());
            const auto [canonical, added] = m_nameIndex.try_emplace(entry.name.toStdString(), id);
            entry.canonical = canonical->second;
            m_tree.keys.push_back(std::move(entry));
            const QByteArray& raw = m_tree.keys.back().raw;
            m_keyIndex.emplace(std::string_view(raw.constData(), static_cast<std::size_t>(raw.size())), id);
            m_seen.push_back(0);
        }
        if (guess)
            *guess = id + 1;
        return id;
    }

    quint32 object(int depth) {
        if (depth > maxDepth)
            fail("too deeply nested");
        const quint32 index = newNode(Kind::Object);
        ++m_at;
        skipSpace();
        const std::size_t base = m_memberStack.size();
        if (m_at < m_end && *m_at == '}') {
            ++m_at;
        } else {
            for (quint32 position = 0;; ++position) {
                if (m_at == m_end || *m_at != '"')
                    fail("expected a key");
                const quint32 id = key(depth, position);
                skipSpace();
                if (m_at == m_end || *m_at != ':')
                    fail("expected a colon");
                ++m_at;
                skipSpace();
                const quint32 member = value(depth);
                m_memberStack.push_back({id, member});
                skipSpace();
                if (m_at < m_end && *m_at == ',') {
                    ++m_at;
                    skipSpace();
                    continue;
                }
                if (m_at < m_end && *m_at == '}') {
                    ++m_at;
                    break;
                }
                fail("expected a comma or the end of an object");
            }
        }
        removeDuplicates(base);
        JsonTree::Node& node = m_tree.nodes[index];
        node.first = static_cast<quint32>(m_tree.members.size());
        node.size = static_cast<quint32>(m_memberStack.size() - base);
        m_tree.members.insert(m_tree.members.end(), m_memberStack.begin() + static_cast<std::ptrdiff_t>(base),
                              m_memberStack.end());
        m_memberStack.resize(base);
        return index;
    }

    // Two keys that convert to the same name (next_cursor and nextCursor) are one field: the
    // later value replaces the earlier one in its place.
    void removeDuplicates(std::size_t base) {
        ++m_stamp;
        bool any = false;
        for (std::size_t i = base; i < m_memberStack.size(); ++i) {
            quint32& seen = m_seen[m_tree.keys[m_memberStack[i].key].canonical];
            if (seen == m_stamp)
                any = true;
            seen = m_stamp;
        }
        if (!any)
            return;
        std::vector<JsonTree::Member> kept;
        for (std::size_t i = base; i < m_memberStack.size(); ++i) {
            const quint32 canonical = m_tree.keys[m_memberStack[i].key].canonical;
            auto earlier = std::find_if(kept.begin(), kept.end(), [&](const JsonTree::Member& m) {
                return m_tree.keys[m.key].canonical == canonical;
            });
            if (earlier != kept.end())
                earlier->value = m_memberStack[i].value;
            else
                kept.push_back(m_memberStack[i]);
        }
        m_memberStack.resize(base);
        m_memberStack.insert(m_memberStack.end(), kept.begin(), kept.end());
    }

    quint32 list(int depth) {
        if (depth > maxDepth)
            fail("too deeply nested");
        const quint32 index = newNode(Kind::List);
        ++m_at;
        skipSpace();
        const std::size_t base = m_elementStack.size();
        if (m_at < m_end && *m_at == ']') {
            ++m_at;
        } else {
            for (;;) {
                m_elementStack.push_back(value(depth));
                skipSpace();
                if (m_at < m_end && *m_at == ',') {
                    ++m_at;
                    skipSpace();
                    continue;
                }
                if (m_at < m_end && *m_at == ']') {
                    ++m_at;
                    break;
                }
                fail("expected a comma or the end of a list");
            }
        }
        JsonTree::Node& node = m_tree.nodes[index];
        node.first = static_cast<quint32>(m_tree.elements.size());
        node.size = static_cast<quint32>(m_elementStack.size() - base);
        m_tree.elements.insert(m_tree.elements.end(), m_elementStack.begin() + static_cast<std::ptrdiff_t>(base),
                               m_elementStack.end());
        m_elementStack.resize(base);
        return index;
    }

    JsonTree& m_tree;
    const char* m_begin;
    const char* m_at;
    const char* m_end;
    std::vector<JsonTree::Member> m_memberStack;
    std::vector<quint32> m_elementStack;
    std::unordered_map<std::string_view, quint32> m_keyIndex;
    std::unordered_map<std::string, quint32> m_nameIndex;
    std::vector<quint32> m_seen;
    quint32 m_stamp = 0;
    std::array<std::array<quint32, 48>, 6> m_guesses{}; // key id + 1 by depth and position
};

// The node lists of the last tree this thread dropped: a sync parses one large page after
// another, and reusing their memory spares the system a few thousand fresh pages per page.
struct SpareLists {
    std::vector<JsonTree::Node> nodes;
    std::vector<JsonTree::Member> members;
    std::vector<quint32> elements;
};
thread_local SpareLists spare;

} // namespace

JsonTree::JsonTree() {
    nodes.swap(spare.nodes);
    members.swap(spare.members);
    elements.swap(spare.elements);
    nodes.clear();
    members.clear();
    elements.clear();
}

JsonTree::~JsonTree() {
    // Keep the larger lists, within reason.
    constexpr std::size_t keepAtMost = 8u << 20;
    if (nodes.capacity() > spare.nodes.capacity() && nodes.capacity() * sizeof(Node) <= keepAtMost)
        spare.nodes.swap(nodes);
    if (members.capacity() > spare.members.capacity() && members.capacity() * sizeof(Member) <= keepAtMost)
        spare.members.swap(members);
    if (elements.capacity() > spare.elements.capacity() && elements.capacity() * sizeof(quint32) <= keepAtMost)
        spare.elements.swap(elements);
}

namespace {

std::shared_ptr<const JsonTree> parseTree(QByteArray bytes) {
    auto tree = std::make_shared<JsonTree>();
    tree->source = std::move(bytes);
    Parser(*tree).run();
    return tree;
}

} // namespace

namespace JsonRead {

QString kindName(const QJsonValue& value) {
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("a flag");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("text");
    case QJsonValue::Array:
        return QStringLiteral("a list");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        return QStringLiteral("nothing");
    }
    return QStringLiteral("an unknown value");
}

void mismatch(const QString& path, const char* expected, const QJsonValue& found) {
    throw DecodingFailure(
        QStringLiteral("Expected %1 at %2 but found %3.").arg(QLatin1String(expected), where(path), kindName(found)));
}

} // namespace JsonRead

JsonReader::JsonReader(const QJsonObject& object, QString path)
    : JsonReader(parseTree(QJsonDocument(object).toJson(QJsonDocument::Compact)), 0) {
    m_path = std::move(path);
}

JsonReader::JsonReader(std::shared_ptr<const JsonTree> owner, quint32 node)
    : m_owner(std::move(owner)), m_tree(m_owner.get()), m_node(node) {}

JsonReader::JsonReader(const JsonTree* tree, quint32 node, const JsonReader* parent, const char* key, qsizetype index)
    : m_tree(tree), m_node(node), m_parent(parent), m_key(key), m_index(index) {}

JsonReader::~JsonReader() = default;
JsonReader::JsonReader(JsonReader&&) noexcept = default;

JsonReader JsonReader::fromAnswer(const QByteArray& body) {
    if (body.trimmed().isEmpty())
        throw DecodingFailure(QStringLiteral("The answer has no body; expected a JSON object."));
    auto tree = parseTree(body);
    const Kind top = tree->nodes[tree->root].kind;
    if (top != Kind::Object)
        throw DecodingFailure(QStringLiteral("Expected an object at the top level but found %1.")
                                  .arg(top == Kind::List ? QStringLiteral("a list") : QStringLiteral("a value")));
    const quint32 root = tree->root;
    return JsonReader(std::move(tree), root);
}

QJsonObject JsonReader::parseDocument(const QByteArray& body) {
    if (body.trimmed().isEmpty())
        throw DecodingFailure(QStringLiteral("The answer has no body; expected a JSON object."));
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        throw DecodingFailure(QStringLiteral("The given data was not valid JSON (%1 at offset %2).")
                                  .arg(error.errorString())
                                  .arg(error.offset));
    if (!document.isObject())
        throw DecodingFailure(QStringLiteral("Expected an object at the top level but found %1.")
                                  .arg(document.isArray() ? QStringLiteral("a list") : QStringLiteral("a value")));
    return document.object();
}

QString JsonReader::path() const {
    if (!m_parent)
        return m_path;
    QString base = m_parent->childPath(m_key);
    if (m_index >= 0)
        base += QLatin1Char('[') + QString::number(m_index) + QLatin1Char(']');
    return base;
}

QString JsonReader::childPath(const char* key) const {
    const QString own = path();
    return own.isEmpty() ? QString::fromLatin1(key) : own + QLatin1Char('.') + QLatin1String(key);
}

void JsonReader::mismatch(const QString& path, const char* expected, quint32 node) const {
    throw DecodingFailure(QStringLiteral("Expected %1 at %2 but found %3.")
                              .arg(QLatin1String(expected), where(path), kindText(m_tree->nodes[node].kind)));
}

const quint32* JsonReader::find(const char* key) const {
    const JsonTree::Node& object = m_tree->nodes[m_node];
    const quint32 count = object.size;
    if (count == 0)
        return nullptr;
    const std::size_t length = std::strlen(key);
    const JsonTree::Member* members = m_tree->members.data() + object.first;
    quint32 i = m_hint < count ? m_hint : 0;
    for (quint32 tried = 0; tried < count; ++tried) {
        const QByteArray& name = m_tree->keys[members[i].key].name;
        if (static_cast<std::size_t>(name.size()) == length && std::memcmp(name.constData(), key, length) == 0) {
            m_hint = i + 1;
            return &members[i].value;
        }
        if (++i == count)
            i = 0;
    }
    return nullptr;
}

quint32 JsonReader::required(const char* key, const char* expected) const {
    const quint32* value = find(key);
    if (!value)
        throw DecodingFailure(QStringLiteral("Missing key \"%1\" at %2.").arg(QLatin1String(key), where(path())));
    if (m_tree->nodes[*value].kind == Kind::Null)
        mismatch(childPath(key), expected, *value);
    return *value;
}

quint32 JsonReader::requiredList(const char* key) const {
    const quint32 value = required(key, "a list");
    if (m_tree->nodes[value].kind != Kind::List)
        mismatch(childPath(key), "a list", value);
    return value;
}

qsizetype JsonReader::listSize(quint32 list) const {
    return m_tree->nodes[list].size;
}

bool JsonReader::present(const char* key) const {
    const quint32* value = find(key);
    return value && m_tree->nodes[*value].kind != Kind::Null;
}

JsonReader JsonReader::child(const char* key) const {
    const quint32 value = required(key, "an object");
    if (m_tree->nodes[value].kind != Kind::Object)
        mismatch(childPath(key), "an object", value);
    return JsonReader(m_tree, value, this, key, -1);
}

JsonReader JsonReader::element(const char* key, quint32 list, qsizetype index) const {
    const quint32 value = m_tree->elements[m_tree->nodes[list].first + static_cast<quint32>(index)];
    if (m_tree->nodes[value].kind != Kind::Object)
        mismatch(childPath(key) + QLatin1Char('[') + QString::number(index) + QLatin1Char(']'), "an object", value);
    return JsonReader(m_tree, value, this, key, index);
}

qint64 JsonReader::toInteger(quint32 node, const QString& path) const {
    const JsonTree::Node& value = m_tree->nodes[node];
    if (value.kind == Kind::Integer)
        return value.integer;
    // Whole numbers only: 3.0 is an integer, 3.5 or 1e300 is not.
    if (value.kind == Kind::Real && value.real >= -9223372036854775808.0 && value.real < 9223372036854775808.0) {
        const auto whole = static_cast<qint64>(value.real);
        if (static_cast<double>(whole) == value.real)
            return whole;
    }
    mismatch(path, "an integer", node);
}

QString JsonReader::text(const char* key) const {
    const quint32 value = required(key, "text");
    const JsonTree::Node& node = m_tree->nodes[value];
    if (node.kind != Kind::String)
        mismatch(childPath(key), "text", value);
    return m_tree->string(node);
}

qint64 JsonReader::integer(const char* key) const {
    const quint32 value = required(key, "an integer");
    const JsonTree::Node& node = m_tree->nodes[value];
    if (node.kind == Kind::Integer)
        return node.integer;
    return toInteger(value, childPath(key));
}

double JsonReader::real(const char* key) const {
    const quint32 value = required(key, "a number");
    const JsonTree::Node& node = m_tree->nodes[value];
    if (node.kind == Kind::Real)
        return node.real;
    if (node.kind == Kind::Integer)
        return static_cast<double>(node.integer);
    mismatch(childPath(key), "a number", value);
}

bool JsonReader::flag(const char* key) const {
    const quint32 value = required(key, "a flag");
    const JsonTree::Node& node = m_tree->nodes[value];
    if (node.kind != Kind::Bool)
        mismatch(childPath(key), "a flag", value);
    return node.flag;
}

QList<qint64> JsonReader::integerList(quint32 node, const char* key) const {
    const JsonTree::Node& list = m_tree->nodes[node];
    if (list.kind != Kind::List)
        mismatch(childPath(key), "a list", node);
    QList<qint64> result;
    result.reserve(list.size);
    for (quint32 i = 0; i < list.size; ++i) {
        const quint32 element = m_tree->elements[list.first + i];
        const JsonTree::Node& value = m_tree->nodes[element];
        if (value.kind == Kind::Integer)
            result.append(value.integer);
        else
            result.append(
                toInteger(element, childPath(key) + QLatin1Char('[') + QString::number(i) + QLatin1Char(']')));
    }
    return result;
}

QList<qint64> JsonReader::integers(const char* key) const {
    return integerList(required(key, "a list"), key);
}

QStringList JsonReader::texts(const char* key) const {
    const quint32 node = requiredList(key);
    const JsonTree::Node& list = m_tree->nodes[node];
    QStringList result;
    result.reserve(list.size);
    for (quint32 i = 0; i < list.size; ++i) {
        const quint32 element = m_tree->elements[list.first + i];
        if (m_tree->nodes[element].kind != Kind::String)
            mismatch(childPath(key) + QLatin1Char('[') + QString::number(i) + QLatin1Char(']'), "text", element);
        result.append(m_tree->string(m_tree->nodes[element]));
    }
    return result;
}

QMap<QString, double> JsonReader::realMap(const char* key) const {
    const quint32 node = required(key, "an object");
    const JsonTree::Node& object = m_tree->nodes[node];
    if (object.kind != Kind::Object)
        mismatch(childPath(key), "an object", node);
    QMap<QString, double> result;
    for (quint32 i = 0; i < object.size; ++i) {
        const JsonTree::Member& member = m_tree->members[object.first + i];
        const QString& name = m_tree->keys[member.key].text;
        const JsonTree::Node& value = m_tree->nodes[member.value];
        if (value.kind == Kind::Real)
            result.insert(name, value.real);
        else if (value.kind == Kind::Integer)
            result.insert(name, static_cast<double>(value.integer));
        else
            mismatch(childPath(key) + QLatin1Char('.') + name, "a number", member.value);
    }
    return result;
}

std::optional<QString> JsonReader::optText(const char* key) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    const JsonTree::Node& node = m_tree->nodes[*value];
    if (node.kind != Kind::String)
        mismatch(childPath(key), "text", *value);
    return m_tree->string(node);
}

std::optional<qint64> JsonReader::optInteger(const char* key) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    const JsonTree::Node& node = m_tree->nodes[*value];
    if (node.kind == Kind::Integer)
        return node.integer;
    return toInteger(*value, childPath(key));
}

std::optional<double> JsonReader::optReal(const char* key) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    const JsonTree::Node& node = m_tree->nodes[*value];
    if (node.kind == Kind::Real)
        return node.real;
    if (node.kind == Kind::Integer)
        return static_cast<double>(node.integer);
    mismatch(childPath(key), "a number", *value);
}

std::optional<bool> JsonReader::optFlag(const char* key) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    const JsonTree::Node& node = m_tree->nodes[*value];
    if (node.kind != Kind::Bool)
        mismatch(childPath(key), "a flag", *value);
    return node.flag;
}

std::optional<QList<qint64>> JsonReader::optIntegers(const char* key) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    return integerList(*value, key);
}
