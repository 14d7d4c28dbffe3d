// The parts of the JSON writer that guard its output against values JSON cannot carry.

#include "json/json_writer.h"

#include "json/utf8.h"

#include <cmath>
#include <cstring>

namespace qf::json {

Writer& Writer::key(std::string_view k) {
    if (isValidUtf8(k)) {
        m_writer.Key(k.data(), static_cast<rapidjson::SizeType>(k.size()));
    } else {
        const std::string repaired = repairUtf8(k);
        m_writer.Key(repaired.data(), static_cast<rapidjson::SizeType>(repaired.size()));
    }
    return *this;
}

Writer& Writer::value(std::string_view v) {
    if (isValidUtf8(v)) {
        m_writer.String(v.data(), static_cast<rapidjson::SizeType>(v.size()));
    } else {
        const std::string repaired = repairUtf8(v);
        m_writer.String(repaired.data(), static_cast<rapidjson::SizeType>(repaired.size()));
    }
    return *this;
}

Writer& Writer::value(double v) {
    if (std::isfinite(v))
        m_writer.Double(v);
    else
        m_writer.Null();
    return *this;
}

Writer& Writer::raw(std::string_view json) {
    if (json.empty())
        m_writer.Null();
    else
        splice(json);
    return *this;
}

Writer& Writer::rawList(std::string_view values) {
    if (!values.empty())
        splice(values);
    return *this;
}

void Writer::splice(std::string_view json) {
    // The writer places the comma for one value of no length; the bytes then go straight into
    // the buffer. rapidjson's RawValue would copy them one character at a time, which is most of
    // the cost of a sync page made of stored text.
    m_writer.RawValue("", 0, rapidjson::kObjectType);
    std::memcpy(m_buffer.Push(json.size()), json.data(), json.size());
}

} // namespace qf::json
