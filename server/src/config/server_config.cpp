#include "config/server_config.h"

#include <charconv>
#include <thread>

namespace qf {

const char* const serverUsage = R"(Usage: quillfern-server [options]

The Quill Fern backend: accounts, linked Riot accounts and the cloud archive the app mirrors.

Options (each also read from the environment variable shown):
  --listen HOST:PORT     address to listen on (QUILLFERN_LISTEN; default 127.0.0.1:8000)
  --database ADDRESS     postgresql://user@host:port/db for PostgreSQL, or the path of an
                         SQLite file (QUILLFERN_DATABASE; default DATA_DIR/quillfern.sqlite)
  --data-dir DIR         folder for the SQLite file and cached static data
                         (QUILLFERN_DATA_DIR; default $XDG_DATA_HOME/QuillFern/server)
  --demo                 create the demo account and its archive once (QUILLFERN_DEMO=1)
  --allow-league-login   accept sign-in with League on a non-loopback address
                         (QUILLFERN_ALLOW_LEAGUE_LOGIN=1); it cannot be verified, so it is
                         on by default only when listening on a loopback address
  --static-version V     static-data version to announce (QUILLFERN_STATIC_VERSION; default 16.11.1)
  --riot-api-key KEY     a Riot API key (RIOT_API_KEY): links by Riot ID, ranks, look-ups;
                         sent only to the Riot API, never logged
  --riot-api-base URL    send every Riot API request to URL/ROUTING/PATH instead
                         (QUILLFERN_RIOT_API_BASE; for tests and caching proxies)
  --threads N            request threads (QUILLFERN_THREADS; default 8)
  --help                 show this text
)";

bool isLoopbackHost(const std::string& host) {
    return host == "localhost" || host == "::1" || host.rfind("127.", 0) == 0;
}

namespace {

bool truthy(const std::optional<std::string>& v) {
    return v && (*v == "1" || *v == "true" || *v == "yes" || *v == "on");
}

ConfigOutcome failure(std::string message) {
    return ConfigOutcome{std::nullopt, std::move(message) + "\nRun quillfern-server --help for the options.", 2};
}

// "127.0.0.1:8000", "[::1]:8000", "0.0.0.0:80"
bool parseListen(const std::string& text, std::string& host, uint16_t& port) {
    std::string portText;
    if (!text.empty() && text.front() == '[') {
        const size_t close = text.find(']');
        if (close == std::string::npos || close + 1 >= text.size() || text[close + 1] != ':')
            return false;
        host = text.substr(1, close - 1);
        portText = text.substr(close + 2);
    } else {
        const size_t colon = text.rfind(':');
        if (colon == std::string::npos || text.find(':') != colon)
            return false;
        host = text.substr(0, colon);
        portText = text.substr(colon + 1);
    }
    unsigned value = 0;
    const auto [end, error] = std::from_chars(portText.data(), portText.data() + portText.size(), value);
    if (host.empty() || error != std::errc() || end != portText.data() + portText.size() || value > 65535)
        return false;
    port = uint16_t(value);
    return true;
}

} // namespace

ConfigOutcome parseServerConfig(const std::vector<std::string>& args,
                                const std::function<std::optional<std::string>(const char*)>& env) {
    ServerConfig c;
    std::optional<std::string> listen = env("QUILLFERN_LISTEN");
    std::optional<std::string> database = env("QUILLFERN_DATABASE");
    std::optional<std::string> dataDir = env("QUILLFERN_DATA_DIR");
    std::optional<std::string> version = env("QUILLFERN_STATIC_VERSION");
    std::optional<std::string> threads = env("QUILLFERN_THREADS");
    std::optional<std::string> riotKey = env("RIOT_API_KEY");
    std::optional<std::string> riotBase = env("QUILLFERN_RIOT_API_BASE");
    bool demo = truthy(env("QUILLFERN_DEMO"));
    bool allowLeague = truthy(env("QUILLFERN_ALLOW_LEAGUE_LOGIN"));

    struct ValuedOption {
        const char* name;
        std::optional<std::string>* into;
        const char* what;
    };
    const ValuedOption valued[] = {
        {"--listen", &listen, "HOST:PORT"},          {"--database", &database, "an address"},
        {"--data-dir", &dataDir, "a folder"},        {"--static-version", &version, "a version"},
        {"--threads", &threads, "a number"},         {"--riot-api-key", &riotKey, "a key"},
        {"--riot-api-base", &riotBase, "an address"}};

    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto valueOf = [&](std::optional<std::string>& into) {
            const size_t eq = a.find('=');
            if (eq != std::string::npos) {
                into = a.substr(eq + 1);
                return true;
            }
            if (i + 1 >= args.size())
                return false;
            into = args[++i];
            return true;
        };
        auto is = [&](const char* name) { return a == name || a.rfind(std::string(name) + "=", 0) == 0; };
        if (a == "--help" || a == "-h")
            return ConfigOutcome{std::nullopt, serverUsage, 0};
        if (a == "--demo") {
            demo = true;
            continue;
        }
        if (a == "--allow-league-login") {
            allowLeague = true;
            continue;
        }
        const ValuedOption* option = nullptr;
        for (const ValuedOption& o : valued)
            if (is(o.name))
                option = &o;
        if (!option)
            return failure("Unknown option " + a + ".");
        if (!valueOf(*option->into))
            return failure(std::string(option->name) + " needs " + option->what + ".");
    }

    if (listen && !parseListen(*listen, c.host, c.port))
        return failure("Cannot read the listen address \"" + *listen + "\"; write it as HOST:PORT.");
    if (threads) {
        int n = 0;
        const auto [end, error] = std::from_chars(threads->data(), threads->data() + threads->size(), n);
        if (error != std::errc() || end != threads->data() + threads->size() || n < 1 || n > 256)
            return failure("--threads needs a number from 1 to 256.");
        c.threads = n;
    } else {
        c.threads = int(std::max(8u, 2 * std::thread::hardware_concurrency()));
    }
    if (version) {
        if (version->empty() || version->size() > 32)
            return failure("--static-version needs a version such as 16.11.1.");
        c.staticVersion = *version;
    }
    if (dataDir && !dataDir->empty()) {
        c.dataDir = *dataDir;
    } else if (auto xdg = env("XDG_DATA_HOME"); xdg && !xdg->empty()) {
        c.dataDir = *xdg + "/QuillFern/server";
    } else if (auto home = env("HOME"); home && !home->empty()) {
        c.dataDir = *home + "/.local/share/QuillFern/server";
    } else {
        c.dataDir = "./quillfern-data";
    }
    c.database = database && !database->empty() ? *database : c.dataDir + "/quillfern.sqlite";
    c.demo = demo;
    if (riotKey)
        c.riotApiKey = *riotKey;
    if (riotBase && !riotBase->empty()) {
        if (riotBase->rfind("http://", 0) != 0 && riotBase->rfind("https://", 0) != 0)
            return failure("--riot-api-base needs an http:// or https:// address.");
        c.riotApiBase = *riotBase;
        while (c.riotApiBase.ends_with('/'))
            c.riotApiBase.pop_back();
    }
    c.leagueLogin = allowLeague || isLoopbackHost(c.host);
    return ConfigOutcome{c, {}, 0};
}

} // namespace qf
