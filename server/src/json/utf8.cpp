// UTF-8 validation is simdjson's (vectorised, strict: no overlongs, surrogates or code points
// beyond U+10FFFF); the repair path is rare and written for clarity.

#include "json/utf8.h"

#include <simdjson.h>

namespace qf {

namespace {

// Length of the well-formed sequence that starts at text[i], or 0 when there is none.
size_t sequenceLength(std::string_view text, size_t i) {
    const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(i);
    if (lead < 0x80)
        return 1;
    size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0; // overlong
        if (lead == 0xED)
            high = 0x9F; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90; // overlong
        if (lead == 0xF4)
            high = 0x8F; // beyond U+10FFFF
    } else {
        return 0;
    }
    if (i + length > text.size())
        return 0;
    if (byte(i + 1) < low || byte(i + 1) > high)
        return 0;
    for (size_t k = 2; k < length; ++k) {
        if (byte(i + k) < 0x80 || byte(i + k) > 0xBF)
            return 0;
    }
    return length;
}

} // namespace

bool isValidUtf8(std::string_view text) {
    // Most of what the server writes is short ASCII (every key, ids, names): a plain loop
    // settles it before the vectorised validator's dispatch costs more than the text.
    if (text.size() <= 64) {
        unsigned char any = 0;
        for (const char c : text)
            any |= static_cast<unsigned char>(c);
        if (any < 0x80)
            return true;
    }
    return simdjson::validate_utf8(text.data(), text.size());
}

std::string repairUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 8);
    for (size_t i = 0; i < text.size();) {
        const size_t length = sequenceLength(text, i);
        if (length == 0) {
            out += "\xEF\xBF\xBD";
            ++i;
        } else {
            out.append(text.substr(i, length));
            i += length;
        }
    }
    return out;
}

} // namespace qf
