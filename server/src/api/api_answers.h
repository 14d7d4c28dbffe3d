#pragma once

#include "auth/auth_service.h"
#include "social/social_service.h"
#include "store/records.h"
#include "sync/sync_service.h"

#include <string>
#include <vector>

// The JSON of every answer, with the app's wire keys (snake_case; the timeline summary keeps
// its camelCase member names). Timestamps as text.

namespace qf::answers {

[[nodiscard]] std::string auth(const SignedIn& signedIn);
[[nodiscard]] std::string riotAccounts(const std::vector<RiotAccount>& accounts);
[[nodiscard]] std::string riotAccount(const RiotAccount& account);
[[nodiscard]] std::string syncPage(const SyncPage& page);
[[nodiscard]] std::string ingest(int64_t ingested, int64_t skipped, const std::vector<std::string>& matchIds);
[[nodiscard]] std::string staticVersion(const std::string& version, const std::string& cdnBase);
[[nodiscard]] std::string duos(const std::vector<Duo>& duos);
[[nodiscard]] std::string friendRecord(const FriendRecord& record);
[[nodiscard]] std::string profile(const PlayerProfile& profile);

} // namespace qf::answers
