#include "backend/account_records.h"

#include <QStringList>

UserDto UserDto::decode(const JsonReader& in) {
    return {in.integer("id"), in.text("email"), in.optText("name")};
}

AuthResponse AuthResponse::decode(const JsonReader& in) {
    return {in.text("token"), in.record<UserDto>("user")};
}

QString joinRiotId(const std::optional<QString>& gameName, const std::optional<QString>& tagLine) {
    QStringList parts;
    if (gameName)
        parts << *gameName;
    if (tagLine)
        parts << *tagLine;
    return parts.join(QLatin1Char('#'));
}

QString RiotAccountDto::riotId() const {
    return joinRiotId(gameName, tagLine);
}

RiotAccountDto RiotAccountDto::decode(const JsonReader& in) {
    RiotAccountDto a;
    a.id = in.integer("id");
    a.puuid = in.text("puuid");
    a.gameName = in.optText("gameName");
    a.tagLine = in.optText("tagLine");
    a.platform = in.text("platform");
    a.region = in.text("region");
    a.isOwner = in.optFlag("isOwner");
    a.profileIconId = in.optInteger("profileIconId");
    a.summonerLevel = in.optInteger("summonerLevel");
    return a;
}

RiotAccountsResponse RiotAccountsResponse::decode(const JsonReader& in) {
    return {in.records<RiotAccountDto>("riotAccounts")};
}

RiotAccountResponse RiotAccountResponse::decode(const JsonReader& in) {
    return {in.record<RiotAccountDto>("riotAccount")};
}
