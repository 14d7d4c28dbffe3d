#pragma once

#include "http/http_message.h"
#include "store/database.h"

#include <optional>
#include <string>

// Accounts and sessions: registration, e-mail sign-in, sign-in with the League client's
// identity, and turning a request's bearer token back into its user.

namespace qf {

struct SignedIn {
    std::string token;
    User user;
};

struct AuthOptions {
    // A server cannot check an identity read from a League client, so trusting it is only safe
    // where the server and the client share one player's machine.
    bool leagueLoginAllowed = true;
    int64_t sessionLifetimeMs = 60LL * 24 * 3600 * 1000;
};

class AuthService {
public:
    AuthService(Database& database, AuthOptions options);

    SignedIn registerUser(std::string_view email, std::string_view password, std::optional<std::string> name,
                          std::string_view address, int64_t now);
    SignedIn login(std::string_view email, std::string_view password, std::string_view address, int64_t now);
    // Finds or creates the user of the puuid and links that Riot account to it as its owner.
    SignedIn leagueLogin(std::string_view puuid, std::string_view platform, std::optional<std::string> gameName,
                         std::optional<std::string> tagLine, int64_t now);

    // The user of the request's "Authorization: Bearer …" token; HttpError 401 when the token is
    // missing, unknown or expired.
    int64_t userOf(const HttpRequest& request, int64_t now);

    // The lower-cased e-mail, or HttpError 400 when it is not an address.
    static std::string emailKey(std::string_view email);

private:
    SignedIn startSession(Repository& repository, const User& user, int64_t now);

    Database& m_database;
    AuthOptions m_options;
};

} // namespace qf
