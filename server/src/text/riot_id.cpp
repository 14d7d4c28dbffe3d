#include "text/riot_id.h"

#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace qf {

namespace {

bool validUtf8(std::string_view s) {
    int32_t i = 0;
    const auto length = static_cast<int32_t>(s.size());
    while (i < length) {
        UChar32 c;
        U8_NEXT(s.data(), i, length, c);
        if (c < 0 || c == 0)
            return false;
    }
    return true;
}

std::string_view trim(std::string_view s) {
    // ASCII spaces and the no-break space a paste can bring along.
    auto isSpace = [](std::string_view v, bool front) {
        if (v.empty())
            return size_t{0};
        if (front) {
            if (v[0] == ' ' || v[0] == '\t')
                return size_t{1};
            if (v.size() >= 2 && static_cast<unsigned char>(v[0]) == 0xC2 && static_cast<unsigned char>(v[1]) == 0xA0)
                return size_t{2};
        } else {
            if (v.back() == ' ' || v.back() == '\t')
                return size_t{1};
            if (v.size() >= 2 && static_cast<unsigned char>(v[v.size() - 2]) == 0xC2 &&
                static_cast<unsigned char>(v.back()) == 0xA0)
                return size_t{2};
        }
        return size_t{0};
    };
    while (size_t n = isSpace(s, true))
        s.remove_prefix(n);
    while (size_t n = isSpace(s, false))
        s.remove_suffix(n);
    return s;
}

} // namespace

std::optional<RiotId> parseRiotId(std::string_view text) {
    if (text.size() > 200 || !validUtf8(text))
        return std::nullopt;
    const size_t hash = text.rfind('#');
    if (hash == std::string_view::npos)
        return std::nullopt;
    const std::string_view name = trim(text.substr(0, hash));
    const std::string_view tag = trim(text.substr(hash + 1));
    if (name.empty() || tag.empty())
        return std::nullopt;
    return RiotId{std::string(name), std::string(tag)};
}

std::string foldRiotIdPart(std::string_view part) {
    if (!validUtf8(part))
        return {};
    icu::UnicodeString text = icu::UnicodeString::fromUTF8(icu::StringPiece(part.data(), int32_t(part.size())));
    text.foldCase();
    std::string out;
    text.toUTF8String(out);
    return out;
}

} // namespace qf
