#include "backend/json_reader.h"

#include "backend/json_keys.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <simdjson.h>
#include <string_view>
#include <unordered_map>

// The parsed form of one answer. simdjson checks the grammar and the UTF-8, reads the numbers
// and resolves the escapes; this index over its document adds what records need on top: keys
// after the snake_case conversion, one member per converted name, and any member or element
// reachable without a walk. Values sit in one flat list of nodes; an object's members and a
// list's elements are contiguous runs in their own lists.
struct JsonTree {
    enum class Kind : quint8 { Null, Bool, Integer, Real, String, List, Object };

    struct Node {
        Kind kind = Kind::Null;
        bool flag = false; // Bool: the value
        quint32 size = 0;  // String: bytes; List and Object: entries
        union {
            qint64 integer = 0;
            double real;
            quint32 first;    // List and Object: first entry
            const char* text; // String: in the document's own text buffer
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
    };

    simdjson::dom::document document;
    std::size_t sourceSize = 0;
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
        const char* text = node.text;
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

[[noreturn]] void notJson(simdjson::error_code error) {
    throw DecodingFailure(
        QStringLiteral("The given data was not valid JSON (%1).").arg(QLatin1String(simdjson::error_message(error))));
}

bool isHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The \uXXXX escape at text[at] (its backslash), or -1 when there is none.
int escapedUnit(std::string_view text, std::size_t at) {
    if (at + 6 > text.size() || text[at] != '\\' || text[at + 1] != 'u')
        return -1;
    int unit = 0;
    for (std::size_t i = at + 2; i < at + 6; ++i) {
        if (!isHex(text[i]))
            return -1;
        unit = unit * 16 + (text[i] <= '9' ? text[i] - '0' : (text[i] | 0x20) - 'a' + 10);
    }
    return unit;
}

bool fitsInteger(std::string_view token) {
    if (token.starts_with('-')) {
        qint64 value = 0;
        return std::from_chars(token.data(), token.data() + token.size(), value).ec != std::errc::result_out_of_range;
    }
    quint64 value = 0;
    return std::from_chars(token.data(), token.data() + token.size(), value).ec != std::errc::result_out_of_range;
}

// simdjson refuses two things that a backend answer may carry and that decoding has a use for:
// an escaped surrogate without its partner (it stands for U+FFFD, as a decoder of UTF-16 would
// read it), and an integer beyond 64 bits (a number, only not an integer: a record asking for
// one names it). Both are rewritten into what simdjson reads with the same meaning; nothing
// comes back when there was nothing to rewrite.
std::optional<std::string> withLenientForms(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 16);
    bool changed = false;
    bool inString = false;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (inString) {
            if (c == '"') {
                inString = false;
            } else if (c == '\\') {
                const int unit = escapedUnit(text, i);
                if (unit < 0xD800 || unit > 0xDFFF) {
                    const std::size_t length = unit < 0 ? std::min<std::size_t>(2, text.size() - i) : 6;
                    out.append(text.substr(i, length));
                    i += length;
                    continue;
                }
                const int low = unit <= 0xDBFF ? escapedUnit(text, i + 6) : -1;
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    out.append(text.substr(i, 12));
                    i += 12;
                } else {
                    out.append("\\ufffd");
                    changed = true;
                    i += 6;
                }
                continue;
            }
            out += c;
            ++i;
            continue;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '-' || (c >= '0' && c <= '9')) {
            std::size_t end = i + 1;
            bool integral = true;
            while (end < text.size() &&
                   ((text[end] >= '0' && text[end] <= '9') || text[end] == '.' || text[end] == 'e' ||
                    text[end] == 'E' || text[end] == '+' || text[end] == '-')) {
                integral = integral && text[end] >= '0' && text[end] <= '9';
                ++end;
            }
            const std::string_view token = text.substr(i, end - i);
            out.append(token);
            if (integral && !fitsInteger(token)) {
                out.append("e0");
                changed = true;
            }
            i = end;
            continue;
        }
        out += c;
        ++i;
    }
    if (!changed)
        return std::nullopt;
    return out;
}

// Builds the index over a parsed document. Backend answers are never deeply nested, and
// simdjson has already refused documents nested deeper than its limit.
class Indexer {
public:
    explicit Indexer(JsonTree& tree) : m_tree(tree) {}

    void run(simdjson::dom::element root) {
        // Every member, element and value of a sync page is a node: reserve roughly.
        m_tree.nodes.reserve(m_tree.sourceSize / 12 + 4);
        m_tree.members.reserve(m_tree.sourceSize / 16 + 4);
        m_tree.root = value(root, 0);
    }

private:
    quint32 newNode(Kind kind) {
        m_tree.nodes.push_back({});
        m_tree.nodes.back().kind = kind;
        return static_cast<quint32>(m_tree.nodes.size() - 1);
    }

    quint32 value(simdjson::dom::element element, int depth) {
        using Type = simdjson::dom::element_type;
        switch (element.type()) {
        case Type::OBJECT:
            return object(simdjson::dom::object(element), depth + 1);
        case Type::ARRAY:
            return list(simdjson::dom::array(element), depth + 1);
        case Type::STRING: {
            const std::string_view text(element);
            const quint32 index = newNode(Kind::String);
            m_tree.nodes[index].text = text.data();
            m_tree.nodes[index].size = static_cast<quint32>(text.size());
            return index;
        }
        case Type::INT64: {
            const quint32 index = newNode(Kind::Integer);
            m_tree.nodes[index].integer = int64_t(element);
            return index;
        }
        case Type::UINT64: {
            // simdjson keeps only integers beyond qint64 as unsigned: a number, not an integer.
            const quint32 index = newNode(Kind::Real);
            m_tree.nodes[index].real = static_cast<double>(uint64_t(element));
            return index;
        }
        case Type::DOUBLE: {
            const quint32 index = newNode(Kind::Real);
            m_tree.nodes[index].real = double(element);
            return index;
        }
        case Type::BOOL: {
            const quint32 index = newNode(Kind::Bool);
            m_tree.nodes[index].flag = bool(element);
            return index;
        }
        case Type::NULL_VALUE:
            break;
        }
        return newNode(Kind::Null);
    }

    // Finds the entry of a key. Objects in a list repeat the same keys in the same order, so the
    // key seen at this place last time is tried before the index.
    quint32 key(std::string_view text, int depth, quint32 position) {
        quint32* guess = nullptr;
        if (depth < static_cast<int>(m_guesses.size()) && position < m_guesses[0].size()) {
            guess = &m_guesses[depth][position];
            if (*guess) {
                const QByteArray& known = m_tree.keys[*guess - 1].raw;
                if (static_cast<std::size_t>(known.size()) == text.size() &&
                    std::memcmp(known.constData(), text.data(), text.size()) == 0)
                    return *guess - 1;
            }
        }
        quint32 id = 0;
        const auto found = m_keyIndex.find(text);
        if (found != m_keyIndex.end()) {
            id = found->second;
        } else {
            JsonTree::Key entry;
            entry.raw = QByteArray(text.data(), static_cast<qsizetype>(text.size()));
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

    quint32 object(simdjson::dom::object object, int depth) {
        const quint32 index = newNode(Kind::Object);
        const std::size_t base = m_memberStack.size();
        quint32 position = 0;
        for (const simdjson::dom::key_value_pair field : object) {
            const quint32 id = key(field.key, depth, position++);
            const quint32 member = value(field.value, depth);
            m_memberStack.push_back({id, member});
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

    quint32 list(simdjson::dom::array array, int depth) {
        const quint32 index = newNode(Kind::List);
        const std::size_t base = m_elementStack.size();
        for (const simdjson::dom::element element : array)
            m_elementStack.push_back(value(element, depth));
        JsonTree::Node& node = m_tree.nodes[index];
        node.first = static_cast<quint32>(m_tree.elements.size());
        node.size = static_cast<quint32>(m_elementStack.size() - base);
        m_tree.elements.insert(m_tree.elements.end(), m_elementStack.begin() + static_cast<std::ptrdiff_t>(base),
                               m_elementStack.end());
        m_elementStack.resize(base);
        return index;
    }

    JsonTree& m_tree;
    std::vector<JsonTree::Member> m_memberStack;
    std::vector<quint32> m_elementStack;
    std::unordered_map<std::string_view, quint32> m_keyIndex;
    std::unordered_map<std::string, quint32> m_nameIndex;
    std::vector<quint32> m_seen;
    quint32 m_stamp = 0;
    std::array<std::array<quint32, 48>, 6> m_guesses{}; // key id + 1 by depth and position
};

// What the last tree this thread dropped leaves behind: a sync parses one large page after
// another, and reusing the parser, its document and the node lists spares the system a few
// thousand fresh pages per page.
struct Spares {
    simdjson::dom::parser parser;
    simdjson::dom::document document;
    std::vector<JsonTree::Node> nodes;
    std::vector<JsonTree::Member> members;
    std::vector<quint32> elements;
};
thread_local Spares spare;

// Larger buffers than these go back to the system with their tree.
constexpr std::size_t keepAtMost = 8u << 20;
// simdjson sizes its buffers by the largest text parsed so far: those of an answer larger than
// any sync page are not kept.
constexpr std::size_t keepSourcesUpTo = 16u << 20;

// The app stays open for hours and answers come in bursts (a sync's pages one after another):
// once the main thread has parsed nothing for this long, what a sync page left behind (about
// 10 MB) goes back to the system.
constexpr int idleBeforeRelease = 5'000;

void releaseSparesWhenIdle() {
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || QThread::currentThread() != application->thread())
        return;
    static QPointer<QTimer> idle; // a child of the application, which ends it
    if (!idle) {
        idle = new QTimer(application);
        idle->setSingleShot(true);
        idle->setInterval(idleBeforeRelease);
        QObject::connect(idle, &QTimer::timeout, [] { spare = Spares(); });
    }
    idle->start();
}

} // namespace

JsonTree::JsonTree() {
    document = std::move(spare.document);
    nodes.swap(spare.nodes);
    members.swap(spare.members);
    elements.swap(spare.elements);
    nodes.clear();
    members.clear();
    elements.clear();
}

JsonTree::~JsonTree() {
    if (sourceSize <= keepSourcesUpTo)
        spare.document = std::move(document);
    if (nodes.capacity() > spare.nodes.capacity() && nodes.capacity() * sizeof(Node) <= keepAtMost)
        spare.nodes.swap(nodes);
    if (members.capacity() > spare.members.capacity() && members.capacity() * sizeof(Member) <= keepAtMost)
        spare.members.swap(members);
    if (elements.capacity() > spare.elements.capacity() && elements.capacity() * sizeof(quint32) <= keepAtMost)
        spare.elements.swap(elements);
}

namespace {

std::shared_ptr<const JsonTree> parseTree(const QByteArray& bytes) {
    auto tree = std::make_shared<JsonTree>();
    tree->sourceSize = static_cast<std::size_t>(bytes.size());
    simdjson::dom::element root;
    auto error = spare.parser.parse_into_document(tree->document, bytes.constData(), tree->sourceSize).get(root);
    if (error == simdjson::STRING_ERROR || error == simdjson::NUMBER_ERROR) {
        if (const auto lenient = withLenientForms(std::string_view(bytes.constData(), tree->sourceSize))) {
            tree->sourceSize = lenient->size();
            error = spare.parser.parse_into_document(tree->document, lenient->data(), lenient->size()).get(root);
        }
    }
    if (tree->sourceSize > keepSourcesUpTo)
        spare.parser = simdjson::dom::parser();
    if (error)
        notJson(error);
    Indexer(*tree).run(root);
    releaseSparesWhenIdle();
    return tree;
}

} // namespace

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
    if (std::all_of(body.begin(), body.end(), [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }))
        throw DecodingFailure(QStringLiteral("The answer has no body; expected a JSON object."));
    auto tree = parseTree(body);
    const Kind top = tree->nodes[tree->root].kind;
    if (top != Kind::Object)
        throw DecodingFailure(QStringLiteral("Expected an object at the top level but found %1.")
                                  .arg(top == Kind::List ? QStringLiteral("a list") : QStringLiteral("a value")));
    const quint32 root = tree->root;
    return JsonReader(std::move(tree), root);
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

qsizetype JsonReader::readIntegers(quint32 node, const char* key, std::span<qint64> out) const {
    const JsonTree::Node& list = m_tree->nodes[node];
    if (list.kind != Kind::List)
        mismatch(childPath(key), "a list", node);
    for (quint32 i = 0; i < list.size; ++i) {
        const quint32 element = m_tree->elements[list.first + i];
        const JsonTree::Node& value = m_tree->nodes[element];
        const qint64 integer =
            value.kind == Kind::Integer
                ? value.integer
                : toInteger(element, childPath(key) + QLatin1Char('[') + QString::number(i) + QLatin1Char(']'));
        if (i < out.size())
            out[i] = integer;
    }
    return list.size;
}

QList<qint64> JsonReader::integerList(quint32 node, const char* key) const {
    QList<qint64> result(m_tree->nodes[node].kind == Kind::List ? m_tree->nodes[node].size : 0);
    readIntegers(node, key, result);
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

QByteArrayView JsonReader::stringBytes(quint32 node, const char* key) const {
    const JsonTree::Node& value = m_tree->nodes[node];
    if (value.kind != Kind::String)
        mismatch(childPath(key), "text", node);
    return {value.text, static_cast<qsizetype>(value.size)};
}

QByteArrayView JsonReader::utf8(const char* key) const {
    return stringBytes(required(key, "text"), key);
}

std::optional<QByteArrayView> JsonReader::optUtf8(const char* key) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    return stringBytes(*value, key);
}

std::optional<qsizetype> JsonReader::optIntegers(const char* key, std::span<qint64> out) const {
    const quint32* value = find(key);
    if (!value || m_tree->nodes[*value].kind == Kind::Null)
        return std::nullopt;
    return readIntegers(*value, key, out);
}
