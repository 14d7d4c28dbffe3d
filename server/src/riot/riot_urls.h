#pragma once

#include "riot/riot_api_config.h"
#include "text/riot_id.h"

#include <string>
#include <string_view>

// Where each request goes. Routing values are the hosts' first labels: platforms ("euw1") for
// summoner-v4, league-v4 and champion-mastery-v4, regions ("europe") for account-v1 and match-v5.

namespace qf {

// Percent-encodes every byte but RFC 3986's unreserved ones, so a Riot ID piece ("a b", "x/y",
// "#", non-ASCII) stays one path segment.
[[nodiscard]] std::string percentEncodeSegment(std::string_view text);

// "https://europe.api.riotgames.com/riot/…", or base + "/europe/riot/…" with an override.
// path starts with "/".
[[nodiscard]] std::string riotApiUrl(const RiotApiConfig& config, std::string_view routing, std::string_view path);

// The CDN's versions list, or base + "/ddragon/api/versions.json" with an override.
[[nodiscard]] std::string dataDragonVersionsUrl(const RiotApiConfig& config);

// The account-v1 path of a Riot ID (parseRiotId splits "Name#TAG" at the last '#'): each piece
// percent-encoded as one segment.
[[nodiscard]] std::string accountByRiotIdPath(const RiotId& riotId);

} // namespace qf
