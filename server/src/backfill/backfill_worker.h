#pragma once

#include "archive/ingest_service.h"
#include "riot/riot_client.h"
#include "store/database.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

// Reads linked accounts' match histories from the Riot API into the archive, one page at a time
// and one game at a time, at background priority so a user's own requests pass it. A run's
// progress is stored after every game: a restarted server, or another process on the same
// PostgreSQL database, carries on where it stopped. Games already stored are not fetched again;
// a run ends at the newest game of the previous finished run, or at the end of the history Riot
// keeps (about two years; the archive keeps everything it ever stored).

namespace qf {

struct BackfillOptions {
    int pageSize = 100;              // Riot's largest page of match ids
    int64_t leaseMs = 5 * 60 * 1000; // a claimed run left this long is taken over
    int64_t retryMs = 60 * 1000;     // after Riot failed, the run waits this long
    std::chrono::milliseconds idlePoll{2000};
};

class BackfillWorker {
public:
    BackfillWorker(Database& database, IngestService& ingest, const RiotClient& riot, std::function<int64_t()> now,
                   BackfillOptions options = {});
    ~BackfillWorker();
    BackfillWorker(const BackfillWorker&) = delete;
    BackfillWorker& operator=(const BackfillWorker&) = delete;

    // A thread that works while there is work, and polls when there is none.
    void start();
    // Stops after the game in hand; the run stays claimed until its lease ends, then resumes.
    void stop();
    // One page of one run. False when no run was waiting.
    bool runOnce();

private:
    void loop();

    Database& m_database;
    IngestService& m_ingest;
    const RiotClient& m_riot;
    std::function<int64_t()> m_now;
    BackfillOptions m_options;
    std::atomic<bool> m_stopping{false};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::thread m_thread;
};

} // namespace qf
