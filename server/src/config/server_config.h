#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// What the server is told at start, from its flags or, for containers, the same settings in
// environment variables (a flag wins over its variable).

namespace qf {

struct ServerConfig {
    std::string host = "127.0.0.1";
    uint16_t port = 8000;
    std::string dataDir;  // where the SQLite file and cached static data live
    std::string database; // "postgresql://…", or an SQLite file (default: dataDir/quillfern.sqlite)
    bool demo = false;
    bool leagueLogin = true; // on by default only when listening on a loopback address
    std::string staticVersion = "16.11.1";
    int threads = 8;
    std::string riotApiKey;  // empty: no Riot API
    std::string riotApiBase; // empty: Riot's own hosts
};

struct ConfigOutcome {
    std::optional<ServerConfig> config; // absent: print message and exit with exitCode
    std::string message;
    int exitCode = 0;
};

// args without the program name; env(name) gives a variable or nullopt.
ConfigOutcome parseServerConfig(const std::vector<std::string>& args,
                                const std::function<std::optional<std::string>(const char*)>& env);

[[nodiscard]] bool isLoopbackHost(const std::string& host);

extern const char* const serverUsage;

} // namespace qf
