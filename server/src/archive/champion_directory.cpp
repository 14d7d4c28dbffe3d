// The configured version's champion list: cached, shipped, or fetched once from Data Dragon.

#include "archive/champion_directory.h"

#include <curl/curl.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <system_error>

namespace qf {

namespace {

// Data Dragon's lists are a few hundred kilobytes; anything far larger is not one.
constexpr size_t maxListBytes = 16 * 1024 * 1024;

// The version becomes part of a file name and of a URL path, so only the characters Data
// Dragon's versions use are accepted ("16.11.1", "lolpatch_7.17").
bool plainVersion(std::string_view version) {
    if (version.empty() || version.size() > 64 || version.find("..") != std::string_view::npos)
        return false;
    return std::all_of(version.begin(), version.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '_' ||
               c == '-';
    });
}

// A downloaded or cached list is taken only when it says it is the version asked for.
bool listOf(const ChampionCatalog& catalog, std::string_view version) {
    return catalog.size() > 0 && catalog.version() == version;
}

std::optional<std::string> readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    std::ostringstream text;
    text << in.rdbuf();
    if (!in.good() && !in.eof())
        return std::nullopt;
    return std::move(text).str();
}

// Written beside the target and renamed over it, so a reader never sees half a file.
void writeFileAtomically(const std::filesystem::path& path, std::string_view text) {
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error)
        return;
    std::filesystem::path partial = path;
    partial += ".partial";
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.close();
        if (!out) {
            std::filesystem::remove(partial, error);
            return;
        }
    }
    std::filesystem::rename(partial, path, error);
    if (error)
        std::filesystem::remove(partial, error);
}

struct Download {
    std::string body;
    const std::atomic<bool>* stop = nullptr;
};

size_t collect(char* data, size_t size, size_t count, void* user) {
    auto* download = static_cast<Download*>(user);
    const size_t bytes = size * count;
    if (download->body.size() + bytes > maxListBytes)
        return 0; // makes curl fail the transfer
    download->body.append(data, bytes);
    return bytes;
}

int progress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<Download*>(user)->stop->load() ? 1 : 0; // non-zero aborts
}

std::optional<std::string> httpGet(const std::string& url, const ChampionDirectoryOptions& options,
                                   const std::atomic<bool>& stop) {
    static std::once_flag curlReady;
    std::call_once(curlReady, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), curl_easy_cleanup);
    if (!curl)
        return std::nullopt;
    Download download{{}, &stop};
    CURL* c = curl.get();
    curl_easy_setopt(c, CURLOPT_URL, url.c_str());
    curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(c, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(c, CURLOPT_MAXREDIRS, 3L);
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L); // time-outs without signals: we are not the main thread
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS, options.connectTimeoutMs);
    curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, options.totalTimeoutMs);
    curl_easy_setopt(c, CURLOPT_ACCEPT_ENCODING, ""); // whatever curl can decode
    curl_easy_setopt(c, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, collect);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &download);
    curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, progress);
    curl_easy_setopt(c, CURLOPT_XFERINFODATA, &download);
    curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
    if (curl_easy_perform(c) != CURLE_OK)
        return std::nullopt;
    return std::move(download.body);
}

} // namespace

ChampionDirectory::ChampionDirectory(ChampionDirectoryOptions options) : m_options(std::move(options)) {
    const bool plain = plainVersion(m_options.version);
    if (plain && !m_options.cacheDir.empty()) {
        if (const auto text = readFile(cacheFile())) {
            auto cached = ChampionCatalog::fromJson(*text);
            if (cached && listOf(*cached, m_options.version))
                m_current = std::make_shared<const ChampionCatalog>(std::move(*cached));
        }
    }
    // Another version's list still names nearly every champion right; it serves until the
    // configured one arrives.
    if (!m_current)
        m_current = std::make_shared<const ChampionCatalog>(ChampionCatalog::shipped());
    if (plain && m_options.fetch && !upToDate())
        m_fetcher = std::thread([this] { fetch(); });
}

ChampionDirectory::~ChampionDirectory() {
    m_stop = true;
    if (m_fetcher.joinable())
        m_fetcher.join();
}

std::shared_ptr<const ChampionCatalog> ChampionDirectory::current() const {
    std::lock_guard lock(m_mutex);
    return m_current;
}

bool ChampionDirectory::upToDate() const {
    return current()->version() == m_options.version;
}

bool ChampionDirectory::waitForFetch() {
    if (m_fetcher.joinable())
        m_fetcher.join();
    return upToDate();
}

std::string ChampionDirectory::listUrl(std::string_view cdnBase, std::string_view version) {
    std::string url(cdnBase);
    while (!url.empty() && url.back() == '/')
        url.pop_back();
    url += '/';
    url += version;
    url += "/data/en_US/champion.json";
    return url;
}

void ChampionDirectory::fetch() {
    const std::optional<std::string> body = httpGet(listUrl(m_options.cdnBase, m_options.version), m_options, m_stop);
    if (!body)
        return;
    auto catalog = ChampionCatalog::fromJson(*body);
    if (!catalog || !listOf(*catalog, m_options.version))
        return;
    if (!m_options.cacheDir.empty())
        writeFileAtomically(cacheFile(), *body);
    use(std::make_shared<const ChampionCatalog>(std::move(*catalog)));
}

void ChampionDirectory::use(std::shared_ptr<const ChampionCatalog> catalog) {
    std::lock_guard lock(m_mutex);
    m_current = std::move(catalog);
}

std::filesystem::path ChampionDirectory::cacheFile() const {
    return m_options.cacheDir / ("champion-" + m_options.version + ".json");
}

} // namespace qf
