#pragma once

#include "backend/json_reader.h"

#include <QList>
#include <QString>
#include <optional>

// Answers of the account and sign-in endpoints. Decode-only.

struct UserDto {
    qint64 id = 0;
    QString email;
    std::optional<QString> name;

    static UserDto decode(const JsonReader& in);
};

struct AuthResponse {
    QString token;
    UserDto user;

    static AuthResponse decode(const JsonReader& in);
};

// The present ones of a Riot ID's name and tag joined with "#": "Name#TAG", "Name", or "".
[[nodiscard]] QString joinRiotId(const std::optional<QString>& gameName, const std::optional<QString>& tagLine);

struct RiotAccountDto {
    qint64 id = 0;
    QString puuid;
    std::optional<QString> gameName;
    std::optional<QString> tagLine;
    QString platform;
    QString region;
    std::optional<bool> isOwner;
    std::optional<qint64> profileIconId;
    std::optional<qint64> summonerLevel;

    // The present parts of name and tag joined with "#"; empty when neither is known.
    [[nodiscard]] QString riotId() const;

    static RiotAccountDto decode(const JsonReader& in);
};

struct RiotAccountsResponse {
    QList<RiotAccountDto> riotAccounts;

    static RiotAccountsResponse decode(const JsonReader& in);
};

struct RiotAccountResponse {
    RiotAccountDto riotAccount;

    static RiotAccountResponse decode(const JsonReader& in);
};
