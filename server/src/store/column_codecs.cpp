// Text forms of the item list and of a score's components.

#include "store/column_codecs.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qf {

std::string encodeItems(const std::vector<int64_t>& items) {
    std::string out;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i)
            out += ',';
        out += std::to_string(items[i]);
    }
    return out;
}

std::vector<int64_t> decodeItems(std::string_view text) {
    std::vector<int64_t> items;
    size_t start = 0;
    while (start <= text.size() && !text.empty()) {
        size_t end = text.find(',', start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view part = text.substr(start, end - start);
        int64_t v = 0;
        auto [ptr, ec] = std::from_chars(part.data(), part.data() + part.size(), v);
        if (ec == std::errc() && ptr == part.data() + part.size())
            items.push_back(v);
        start = end + 1;
    }
    return items;
}

namespace {

void appendJsonString(std::string& out, std::string_view s) {
    static constexpr char kHex[] = "0123456789abcdef";
    out += '"';
    for (unsigned char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            out += "\\u00";
            out += kHex[c >> 4];
            out += kHex[c & 15];
        } else {
            out += static_cast<char>(c);
        }
    }
    out += '"';
}

void appendUtf8(std::string& out, uint32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// Just enough JSON to read back what encodeComponents writes: one object of numbers.
class ComponentReader {
public:
    explicit ComponentReader(std::string_view text) : m_text(text) {}

    std::vector<std::pair<std::string, double>> read() {
        std::vector<std::pair<std::string, double>> out;
        skipSpace();
        if (!take('{'))
            return out;
        skipSpace();
        if (take('}'))
            return out;
        for (;;) {
            std::string key;
            double value = 0;
            skipSpace();
            if (!readString(key))
                return out;
            skipSpace();
            if (!take(':'))
                return out;
            skipSpace();
            if (!readNumber(value))
                return out;
            out.emplace_back(std::move(key), value);
            skipSpace();
            if (take(','))
                continue;
            return out; // '}' or anything else ends it
        }
    }

private:
    bool take(char c) {
        if (m_pos < m_text.size() && m_text[m_pos] == c) {
            ++m_pos;
            return true;
        }
        return false;
    }

    void skipSpace() {
        while (m_pos < m_text.size() &&
               (m_text[m_pos] == ' ' || m_text[m_pos] == '\n' || m_text[m_pos] == '\t' || m_text[m_pos] == '\r'))
            ++m_pos;
    }

    bool readHex4(uint32_t& v) {
        if (m_pos + 4 > m_text.size())
            return false;
        auto [ptr, ec] = std::from_chars(m_text.data() + m_pos, m_text.data() + m_pos + 4, v, 16);
        if (ec != std::errc() || ptr != m_text.data() + m_pos + 4)
            return false;
        m_pos += 4;
        return true;
    }

    bool readString(std::string& out) {
        if (!take('"'))
            return false;
        while (m_pos < m_text.size()) {
            char c = m_text[m_pos++];
            if (c == '"')
                return true;
            if (c != '\\') {
                out += c;
                continue;
            }
            if (m_pos >= m_text.size())
                return false;
            char e = m_text[m_pos++];
            switch (e) {
            case 'n':
                out += '\n';
                break;
            case 't':
                out += '\t';
                break;
            case 'r':
                out += '\r';
                break;
            case 'b':
                out += '\b';
                break;
            case 'f':
                out += '\f';
                break;
            case 'u': {
                uint32_t cp = 0;
                if (!readHex4(cp))
                    return false;
                if (cp >= 0xD800 && cp < 0xDC00) {
                    uint32_t low = 0;
                    if (!take('\\') || !take('u') || !readHex4(low) || low < 0xDC00 || low >= 0xE000)
                        return false;
                    cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
                } else if (cp >= 0xDC00 && cp < 0xE000) {
                    return false;
                }
                appendUtf8(out, cp);
                break;
            }
            default:
                out += e;
                break; // \" \\ \/
            }
        }
        return false;
    }

    bool readNumber(double& v) {
        if (m_text.substr(m_pos, 4) == "null") {
            m_pos += 4;
            v = std::numeric_limits<double>::quiet_NaN();
            return true;
        }
        auto [ptr, ec] = std::from_chars(m_text.data() + m_pos, m_text.data() + m_text.size(), v);
        if (ec != std::errc())
            return false;
        m_pos = static_cast<size_t>(ptr - m_text.data());
        return true;
    }

    std::string_view m_text;
    size_t m_pos = 0;
};

} // namespace

std::string encodeComponents(const std::vector<std::pair<std::string, double>>& components) {
    std::string out = "{";
    for (size_t i = 0; i < components.size(); ++i) {
        if (i)
            out += ',';
        appendJsonString(out, components[i].first);
        out += ':';
        double v = components[i].second;
        if (!std::isfinite(v)) {
            out += "null";
            continue;
        }
        char buffer[32];
        auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
        out.append(buffer, end);
    }
    out += '}';
    return out;
}

std::vector<std::pair<std::string, double>> decodeComponents(std::string_view json) {
    return ComponentReader(json).read();
}

} // namespace qf
