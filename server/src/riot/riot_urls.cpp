#include "riot/riot_urls.h"

namespace qf {

namespace {

bool isUnreserved(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           c == '_' || c == '~';
}

std::string_view withoutTrailingSlashes(std::string_view base) {
    while (!base.empty() && base.back() == '/')
        base.remove_suffix(1);
    return base;
}

} // namespace

std::string percentEncodeSegment(std::string_view text) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size() * 3);
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (isUnreserved(c)) {
            out += ch;
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 0x0F];
        }
    }
    return out;
}

std::string riotApiUrl(const RiotApiConfig& config, std::string_view routing, std::string_view path) {
    std::string url;
    if (config.baseOverride.empty()) {
        url = "https://";
        url += routing;
        url += ".api.riotgames.com";
    } else {
        url = withoutTrailingSlashes(config.baseOverride);
        url += '/';
        url += routing;
    }
    url += path;
    return url;
}

std::string dataDragonVersionsUrl(const RiotApiConfig& config) {
    if (config.baseOverride.empty())
        return "https://ddragon.leagueoflegends.com/api/versions.json";
    return std::string(withoutTrailingSlashes(config.baseOverride)) + "/ddragon/api/versions.json";
}

std::string accountByRiotIdPath(const RiotId& riotId) {
    return "/riot/account/v1/accounts/by-riot-id/" + percentEncodeSegment(riotId.gameName) + "/" +
           percentEncodeSegment(riotId.tagLine);
}

} // namespace qf
