#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

// The load client of the sync benchmarks: one kept-alive connection per user, all at once, each
// pulling that user's whole archive page after page (the next page's cursor from the last page,
// until has_more is false). Asio coroutines on one thread, so the client stays small beside the
// server on a small machine. Only next_cursor and has_more are read from a page (simdjson).

namespace qf::bench {

struct MirrorJob {
    int user = 0;      // the user's number in the benchmark (names the page files)
    std::string token; // bearer token; empty sends none
};

enum class PageSource {
    Api,   // GET /api/sync[?cursor=…]
    Files, // GET /pages/u<user>/p<page>.json: the same pages as files, for nginx
};

struct LoadOptions {
    uint16_t port = 0; // on 127.0.0.1
    PageSource source = PageSource::Api;
    bool keepBodies = false;  // keep every page's body in its record
    std::string recordHeader; // a response header to keep per page ("X-Upstream"), or none
    int maxPagesPerUser = 100'000;
    std::chrono::seconds deadline{900}; // the whole run stops here, finished or not
};

struct PageRecord {
    int user = 0;
    int page = 0;       // 0 for the first page of the user
    double seconds = 0; // from sending the request to the last byte of the answer
    size_t bytes = 0;
    std::string body;   // when keepBodies
    std::string header; // the value of recordHeader
};

struct LoadResult {
    std::vector<PageRecord> pages; // by user, then page
    double seconds = 0;            // from the first request sent to the last answer read
    double clientCpuSeconds = 0;   // what this process used meanwhile (the client's own cost)
    int failedUsers = 0;
    std::string firstError;
    bool timedOut = false;
};

class SyncLoadClient {
public:
    static LoadResult run(const std::vector<MirrorJob>& jobs, const LoadOptions& options);
};

// Where page number page of user sits among the page files, relative to the files' root and
// to the URL path: "pages/u12/p3.json".
[[nodiscard]] std::string pageFilePath(int user, int page);

} // namespace qf::bench
