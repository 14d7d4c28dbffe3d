#include "auth/auth_service.h"

#include "archive/ingest_service.h"
#include "auth/login_throttle.h"
#include "auth/password_hasher.h"
#include "auth/session_tokens.h"
#include "text/platforms.h"

#include <algorithm>

namespace qf {

namespace {

// Characters, not bytes: a password of seven emoji is seven long.
size_t codePoints(std::string_view text) {
    return size_t(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

void checkPassword(std::string_view password) {
    if (codePoints(password) < 8)
        throw HttpError(400, "The password must be at least 8 characters long.");
    // argon2 hashes whatever it is given; a megabyte password would only be a way to burn time.
    if (password.size() > 1024)
        throw HttpError(400, "The password is too long.");
}

bool validPuuid(std::string_view puuid) {
    return !puuid.empty() && puuid.size() <= 100 && std::all_of(puuid.begin(), puuid.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    });
}

std::optional<std::string> nonEmpty(std::optional<std::string> text) {
    if (!text)
        return std::nullopt;
    std::string_view t = trimmed(*text);
    if (t.empty() || t.size() > 100)
        return std::nullopt;
    return std::string(t);
}

} // namespace

AuthService::AuthService(Database& database, AuthOptions options) : m_database(database), m_options(options) {}

std::string AuthService::emailKey(std::string_view email) {
    email = trimmed(email);
    const size_t at = email.find('@');
    const bool plausible = email.size() <= 254 && at != std::string_view::npos && at > 0 &&
                           email.find('@', at + 1) == std::string_view::npos &&
                           email.find('.', at + 2) != std::string_view::npos && email.back() != '.' &&
                           std::none_of(email.begin(), email.end(), [](char c) {
                               return static_cast<unsigned char>(c) <= ' ' || c == '<' || c == '>' || c == ',';
                           });
    if (!plausible)
        throw HttpError(400, "Enter a valid e-mail address.");
    std::string key(email);
    for (char& c : key)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return key;
}

SignedIn AuthService::startSession(Repository& repository, const User& user, int64_t now) {
    SignedIn out{newSessionToken(), user};
    repository.insertToken(sessionTokenHash(out.token), user.id, now + m_options.sessionLifetimeMs);
    return out;
}

SignedIn AuthService::registerUser(std::string_view email, std::string_view password, std::optional<std::string> name,
                                   std::string_view /*address*/, int64_t now) {
    User user;
    user.emailKey = emailKey(email);
    user.email = std::string(trimmed(email));
    checkPassword(password);
    user.name = nonEmpty(std::move(name));
    user.createdAt = now;
    // Hashing takes tens of milliseconds and a lot of memory: never inside a transaction.
    user.passwordHash = hashPassword(password);
    try {
        return m_database.write([&](Repository& repository) {
            repository.insertUser(user);
            return startSession(repository, user, now);
        });
    } catch (const UniqueViolation&) {
        throw HttpError(409, "An account with this e-mail already exists.");
    }
}

SignedIn AuthService::login(std::string_view email, std::string_view password, std::string_view address, int64_t now) {
    const std::string key = emailKey(email);
    const std::optional<User> user = m_database.read([&](Repository& repository) {
        LoginThrottle::check(repository, key, address, now);
        return repository.userByEmailKey(key);
    });
    // An unknown e-mail costs a hash too, so timing does not tell which addresses have accounts.
    static const std::string decoy = hashPassword("not a password of anyone");
    const bool ok = verifyPassword(user && !user->passwordHash.empty() ? user->passwordHash : decoy, password) &&
                    user && !user->passwordHash.empty();
    if (!ok) {
        m_database.write([&](Repository& repository) { LoginThrottle::recordFailure(repository, key, address, now); });
        // Never 401: the app shows 401 as an expired session.
        throw HttpError(403, "Wrong e-mail or password.");
    }
    return m_database.write([&](Repository& repository) {
        LoginThrottle::recordSuccess(repository, key);
        repository.deleteExpiredTokens(now);
        return startSession(repository, *user, now);
    });
}

SignedIn AuthService::leagueLogin(std::string_view puuid, std::string_view platform,
                                  std::optional<std::string> gameName, std::optional<std::string> tagLine,
                                  int64_t now) {
    if (!m_options.leagueLoginAllowed)
        throw HttpError(403, "Sign-in with League is turned off on this server: it cannot verify a League "
                             "client's identity. Sign in with your e-mail instead.");
    if (!validPuuid(puuid))
        throw HttpError(400, "The League client's player id is not valid.");
    const std::optional<std::string> platformId = normalPlatform(platform);
    if (!platformId)
        throw HttpError(400, "Unknown platform \"" + std::string(platform.substr(0, 20)) + "\".");
    gameName = nonEmpty(std::move(gameName));
    tagLine = nonEmpty(std::move(tagLine));

    return m_database.write([&](Repository& repository) {
        std::optional<RiotAccount> account = repository.accountByPuuid(puuid);
        std::optional<User> user;
        if (account) {
            user = repository.userById(account->userId);
            bool changed = false;
            if (gameName && account->gameName != gameName) {
                account->gameName = gameName;
                changed = true;
            }
            if (tagLine && account->tagLine != tagLine) {
                account->tagLine = tagLine;
                changed = true;
            }
            if (!account->isOwner) {
                account->isOwner = true;
                changed = true;
            }
            if (changed)
                repository.updateAccount(*account);
        }
        if (!user) {
            User created;
            created.emailKey = "league:" + std::string(puuid); // never an address: no "@"
            created.name = gameName;
            created.createdAt = now;
            repository.insertUser(created);
            user = created;

            RiotAccount link;
            link.userId = created.id;
            link.puuid = std::string(puuid);
            link.gameName = gameName;
            link.tagLine = tagLine;
            link.platform = *platformId;
            link.region = regionOf(*platformId).value_or("europe");
            link.isOwner = true;
            link.linkedAt = now;
            repository.insertAccount(link);
            // Games the server already holds for this player become part of the new archive.
            repository.touchMatchesOf(link.puuid);
            IngestService::scoreAccount(repository, link);
        }
        return startSession(repository, *user, now);
    });
}

int64_t AuthService::userOf(const HttpRequest& request, int64_t now) {
    constexpr std::string_view prefix = "Bearer ";
    const std::string& header = request.authorization;
    if (header.size() <= prefix.size() || header.compare(0, prefix.size(), prefix) != 0 || header.size() > 200)
        throw HttpError(401, "Sign in to continue.");
    const std::string hash = sessionTokenHash(std::string_view(header).substr(prefix.size()));
    const std::optional<int64_t> user =
        m_database.read([&](Repository& repository) { return repository.userOfToken(hash, now); });
    if (!user)
        throw HttpError(401, "Your session has ended. Sign in again.");
    return *user;
}

} // namespace qf
