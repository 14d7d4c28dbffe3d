#pragma once

#include "backend/account_records.h"
#include "league_client/lcu_discovery.h"

#include <QCoro/QCoroTask>

class BackendClient;

namespace LeagueSignIn {

// Sent when the client's region cannot be read or is not one the backend knows.
inline constexpr const char* fallbackPlatform = "euw1";

// Reads the identity the running League client is signed in with and exchanges it at the
// backend for a session. Throws the client's LcuError before anything is sent to the backend,
// or the backend's own error.
QCoro::Task<AuthResponse> signIn(LcuDiscovery::Sources sources, BackendClient& backend);

} // namespace LeagueSignIn
