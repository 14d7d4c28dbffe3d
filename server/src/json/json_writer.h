#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

// Streams a JSON answer into one buffer: no document tree, no copy per value.

namespace qf::json {

class Writer {
public:
    Writer() : m_writer(m_buffer) {}
    // Room for an answer of about this many bytes, so a large one grows without copies.
    explicit Writer(size_t expectedSize) : m_writer(m_buffer) { m_buffer.Reserve(expectedSize); }

    Writer& beginObject() {
        m_writer.StartObject();
        return *this;
    }
    Writer& endObject() {
        m_writer.EndObject();
        return *this;
    }
    Writer& beginArray() {
        m_writer.StartArray();
        return *this;
    }
    Writer& endArray() {
        m_writer.EndArray();
        return *this;
    }
    // Keys and strings that are not valid UTF-8 (bytes from a foreign source) are written with
    // U+FFFD in place of the bad bytes, so the answer stays valid JSON.
    Writer& key(std::string_view k);

    Writer& value(std::string_view v);
    Writer& value(const char* v) { return value(std::string_view(v)); }
    Writer& value(const std::string& v) { return value(std::string_view(v)); }
    // Every integer type: int, int64_t, size_t, … (no overload set to be ambiguous between).
    template <std::integral T>
    requires(!std::same_as<T, bool>) Writer& value(T v) {
        if constexpr (std::is_signed_v<T>)
            m_writer.Int64(static_cast<int64_t>(v));
        else
            m_writer.Uint64(static_cast<uint64_t>(v));
        return *this;
    }
    // JSON has no NaN or infinity: those are written as null.
    Writer& value(double v);
    Writer& value(bool v) {
        m_writer.Bool(v);
        return *this;
    }
    Writer& null() {
        m_writer.Null();
        return *this;
    }
    template <class T> Writer& value(const std::optional<T>& v) { return v ? value(*v) : null(); }

    // key + value in one call.
    template <class T> Writer& field(std::string_view k, const T& v) {
        key(k);
        return value(v);
    }

    // Raw JSON text spliced in as one value (a stored timeline summary). The text is trusted to
    // be one JSON value; empty text is written as null.
    Writer& raw(std::string_view json);
    // Several values of an array at once, as raw JSON text joined by commas ("{…},{…}"): spliced
    // in after a comma when the array has values already. Empty text writes nothing.
    Writer& rawList(std::string_view values);

    [[nodiscard]] std::string take() { return std::string(m_buffer.GetString(), m_buffer.GetSize()); }

private:
    void splice(std::string_view json);

    rapidjson::StringBuffer m_buffer;
    rapidjson::Writer<rapidjson::StringBuffer> m_writer;
};

} // namespace qf::json
