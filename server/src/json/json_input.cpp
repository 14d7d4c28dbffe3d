// Lenient reading of untrusted JSON: a wrong type or an out-of-range number is the caller's
// fallback, never an exception; only text that is not JSON at all is refused.

#include "json/json_input.h"

#include <algorithm>

#include "http/http_message.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qf::json {

namespace {

const char* const kNotJson = "The request body is not valid JSON.";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Whether an integer literal is one simdjson reads: an int64 when negative, a uint64 otherwise.
bool fitsInteger(std::string_view token) {
    const char* first = token.data();
    const char* last = token.data() + token.size();
    if (token.starts_with('-')) {
        int64_t value = 0;
        return std::from_chars(first, last, value).ec != std::errc::result_out_of_range;
    }
    uint64_t value = 0;
    return std::from_chars(first, last, value).ec != std::errc::result_out_of_range;
}

// simdjson refuses integer literals beyond 64 bits, which would make a whole body unreadable
// for one odd member. Giving such literals an exponent turns them into reals, which the
// getters then treat as out of range. Returns nothing when there was nothing to rewrite.
std::optional<std::string> widenHugeIntegers(std::string_view text) {
    std::string out;
    bool changed = false;
    bool inString = false;
    out.reserve(text.size() + 16);
    for (size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (inString) {
            out += c;
            if (c == '\\' && i + 1 < text.size()) {
                out += text[i + 1];
                i += 2;
                continue;
            }
            if (c == '"')
                inString = false;
            ++i;
            continue;
        }
        if (c == '"') {
            inString = true;
            out += c;
            ++i;
            continue;
        }
        if (c == '-' || isDigit(c)) {
            size_t end = i + 1;
            bool integral = true;
            while (end < text.size()) {
                const char d = text[end];
                if (isDigit(d)) {
                    ++end;
                } else if (d == '.' || d == 'e' || d == 'E' || d == '+' || d == '-') {
                    integral = false;
                    ++end;
                } else {
                    break;
                }
            }
            const std::string_view token = text.substr(i, end - i);
            out += token;
            if (integral && !fitsInteger(token)) {
                out += "e0";
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

} // namespace

Document::Document(std::string_view text) {
    auto error = m_parser.parse(text.data(), text.size()).get(m_root);
    if (error == simdjson::NUMBER_ERROR) {
        if (auto widened = widenHugeIntegers(text))
            error = m_parser.parse(widened->data(), widened->size()).get(m_root);
    }
    if (error)
        throw HttpError(400, kNotJson);
}

bool isObject(Element e) {
    return e.is_object();
}

bool isArray(Element e) {
    return e.is_array();
}

std::optional<Element> member(Element e, std::string_view key) {
    simdjson::dom::object object;
    if (e.get_object().get(object))
        return std::nullopt;
    Element value;
    if (object.at_key(key).get(value) || value.is_null())
        return std::nullopt;
    return value;
}

std::optional<int64_t> optInteger(Element e) {
    switch (e.type()) {
    case simdjson::dom::element_type::INT64:
        return e.get_int64().value_unsafe();
    case simdjson::dom::element_type::UINT64: {
        const uint64_t value = e.get_uint64().value_unsafe();
        if (value > static_cast<uint64_t>(std::numeric_limits<int64_t>::max()))
            return std::nullopt;
        return static_cast<int64_t>(value);
    }
    case simdjson::dom::element_type::DOUBLE: {
        const double value = std::trunc(e.get_double().value_unsafe());
        // 2^63 is exact in a double; every double below it and at or above -2^63 converts.
        constexpr double kLimit = 9223372036854775808.0;
        if (!std::isfinite(value) || value >= kLimit || value < -kLimit)
            return std::nullopt;
        return static_cast<int64_t>(value);
    }
    default:
        return std::nullopt;
    }
}

std::optional<double> optReal(Element e) {
    switch (e.type()) {
    case simdjson::dom::element_type::INT64:
        return static_cast<double>(e.get_int64().value_unsafe());
    case simdjson::dom::element_type::UINT64:
        return static_cast<double>(e.get_uint64().value_unsafe());
    case simdjson::dom::element_type::DOUBLE: {
        const double value = e.get_double().value_unsafe();
        if (!std::isfinite(value))
            return std::nullopt;
        return value;
    }
    default:
        return std::nullopt;
    }
}

std::optional<std::string_view> optText(Element e) {
    std::string_view value;
    if (e.get_string().get(value))
        return std::nullopt;
    return value;
}

std::optional<bool> optBoolean(Element e) {
    bool value = false;
    if (e.get_bool().get(value))
        return std::nullopt;
    return value;
}

int64_t integer(Element object, std::string_view key, int64_t fallback) {
    return optInteger(object, key).value_or(fallback);
}

double real(Element object, std::string_view key, double fallback) {
    const auto value = member(object, key);
    if (!value)
        return fallback;
    return optReal(*value).value_or(fallback);
}

std::string text(Element object, std::string_view key, std::string_view fallback) {
    auto value = optText(object, key);
    return value ? std::move(*value) : std::string(fallback);
}

bool boolean(Element object, std::string_view key, bool fallback) {
    const auto value = member(object, key);
    if (!value)
        return fallback;
    return optBoolean(*value).value_or(fallback);
}

std::optional<std::string> optText(Element object, std::string_view key) {
    const auto value = member(object, key);
    if (!value)
        return std::nullopt;
    const auto view = optText(*value);
    if (!view)
        return std::nullopt;
    // JSON may carry "\u0000"; no text we keep means anything by it, and PostgreSQL cannot store
    // it, so it goes here rather than failing a whole upload later.
    std::string out(*view);
    out.erase(std::remove(out.begin(), out.end(), '\0'), out.end());
    return out;
}

std::optional<int64_t> optInteger(Element object, std::string_view key) {
    const auto value = member(object, key);
    if (!value)
        return std::nullopt;
    return optInteger(*value);
}

} // namespace qf::json
