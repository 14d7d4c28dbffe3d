#pragma once

#include "archive/ingest_service.h"
#include "auth/auth_service.h"
#include "auth/riot_account_service.h"
#include "http/router.h"
#include "social/social_service.h"
#include "sync/sync_service.h"

#include <functional>
#include <string>

// The endpoints the app calls, under "/api/": each reads its request, asks one service, and
// writes the answer.

namespace qf {

struct ApiSettings {
    std::string staticVersion = "16.11.1";
    // When set, the version of the moment (the newest the CDN announced), over staticVersion.
    std::function<std::string()> currentStaticVersion;
    std::string cdnBase = "https://ddragon.leagueoflegends.com/cdn";
};

struct ApiServices {
    AuthService& auth;
    RiotAccountService& riotAccounts;
    SyncService& sync;
    IngestService& ingest;
    SocialService& social;
};

// Adds every route to the router. now() gives the current time in Unix milliseconds.
void installApi(Router& router, ApiServices services, ApiSettings settings, std::function<int64_t()> now);

// The current time in Unix milliseconds.
int64_t unixNowMs();

} // namespace qf
