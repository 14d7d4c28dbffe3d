#pragma once

#include <simdjson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Reading JSON that nobody promised us the shape of (request bodies, League client games):
// member by member, every read with a default, no read trusting a type.

namespace qf::json {

using Element = simdjson::dom::element;

// Parses text into a document that owns its memory. Throws HttpError 400 with
// "The request body is not valid JSON." when it does not parse (nesting deeper than 1024,
// invalid UTF-8, a real beyond the double range). Integer literals beyond 64 bits are read as
// reals, so one odd member does not make the whole text unreadable.
class Document {
public:
    explicit Document(std::string_view text);
    [[nodiscard]] Element root() const { return m_root; }

private:
    simdjson::dom::parser m_parser;
    Element m_root;
};

[[nodiscard]] bool isObject(Element e);
[[nodiscard]] bool isArray(Element e);

// The member, when e is an object that has it (a JSON null counts as absent).
[[nodiscard]] std::optional<Element> member(Element e, std::string_view key);

// Numbers: integers, unsigned integers and finite reals (truncated toward zero, when in range)
// all read as integers; anything else is the fallback.
[[nodiscard]] std::optional<int64_t> optInteger(Element e);
[[nodiscard]] std::optional<double> optReal(Element e);
[[nodiscard]] std::optional<std::string_view> optText(Element e);
[[nodiscard]] std::optional<bool> optBoolean(Element e);

[[nodiscard]] int64_t integer(Element object, std::string_view key, int64_t fallback = 0);
[[nodiscard]] double real(Element object, std::string_view key, double fallback = 0);
[[nodiscard]] std::string text(Element object, std::string_view key, std::string_view fallback = {});
[[nodiscard]] bool boolean(Element object, std::string_view key, bool fallback = false);
// Texts read by key lose any NUL characters.
[[nodiscard]] std::optional<std::string> optText(Element object, std::string_view key);
[[nodiscard]] std::optional<int64_t> optInteger(Element object, std::string_view key);

} // namespace qf::json
