#include "league_client/league_sign_in.h"

#include "backend/backend_client.h"
#include "league_client/lcu_client.h"

namespace LeagueSignIn {

QCoro::Task<AuthResponse> signIn(LcuDiscovery::Sources sources, BackendClient& backend) {
    LcuClient lcu(std::move(sources));
    const LcuClient::CurrentSummoner summoner = co_await lcu.currentSummoner();
    const std::optional<QString> platform = co_await lcu.currentPlatform();
    co_return co_await backend.leagueLogin(summoner.puuid, platform.value_or(QLatin1String(fallbackPlatform)),
                                           summoner.gameName, summoner.tagLine);
}

} // namespace LeagueSignIn
