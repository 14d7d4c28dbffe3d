#include "backfill/backfill_worker.h"

#include "json/json_input.h"

#include <algorithm>
#include <iostream>

namespace qf {

BackfillWorker::BackfillWorker(Database& database, IngestService& ingest, const RiotClient& riot,
                               std::function<int64_t()> now, BackfillOptions options)
    : m_database(database), m_ingest(ingest), m_riot(riot), m_now(std::move(now)), m_options(options) {}

BackfillWorker::~BackfillWorker() {
    stop();
}

void BackfillWorker::start() {
    if (!m_thread.joinable())
        m_thread = std::thread([this] { loop(); });
}

void BackfillWorker::stop() {
    m_stopping = true;
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void BackfillWorker::loop() {
    while (!m_stopping) {
        bool worked = false;
        try {
            worked = runOnce();
        } catch (const std::exception& e) {
            // The database may be restarting: the run is taken up again when its lease ends.
            std::cerr << "Backfill: " << e.what() << std::endl;
        }
        if (!worked) {
            std::unique_lock lock(m_mutex);
            m_wake.wait_for(lock, m_options.idlePoll, [this] { return m_stopping.load(); });
        }
    }
}

bool BackfillWorker::runOnce() {
    std::optional<Backfill> run =
        m_database.write([&](Repository& r) { return r.claimBackfill(m_now(), m_options.leaseMs); });
    if (!run)
        return false;
    auto save = [&] {
        run->updatedAt = m_now();
        m_database.write([&](Repository& r) { r.saveBackfill(*run); });
    };
    auto retryLater = [&](const std::string& why) {
        std::cerr << "Backfill of account " << run->riotAccountId << " waits: " << why << std::endl;
        run->claimedUntil = m_now() + m_options.retryMs;
        save();
    };

    const RiotResult<std::vector<std::string>> ids = m_riot.matchIdsByPuuid(
        run->riotPuuid, run->platform, int(run->nextStart), m_options.pageSize, RiotPriority::Background);
    if (!ids.ok()) {
        retryLater(ids.text);
        return true;
    }
    if (run->nextStart == 0 && !ids.value.empty())
        run->runNewest = ids.value.front();
    bool finished = int(ids.value.size()) < m_options.pageSize;
    const int64_t pageStart = run->nextStart;
    // The page's games up to the previous run's newest, which this run need not read again.
    size_t pageGames = ids.value.size();
    for (size_t i = 0; i < ids.value.size(); ++i) {
        if (run->stopAt && ids.value[i] == *run->stopAt) {
            pageGames = i;
            finished = true;
            break;
        }
    }
    run->found = std::max(run->found, pageStart + int64_t(pageGames));
    for (size_t i = 0; i < pageGames; ++i) {
        const std::string& id = ids.value[i];
        if (m_stopping)
            return true; // the lease runs out and the run resumes at this game
        const bool stored = m_database.read([&](Repository& r) { return r.hasMatch(id); });
        if (!stored) {
            const RiotResult<std::string> match = m_riot.matchJson(id, RiotPriority::Background);
            if (match.outcome == RiotOutcome::Unavailable || match.outcome == RiotOutcome::Refused) {
                retryLater(match.text);
                return true;
            }
            if (match.ok()) {
                try {
                    const json::Document document(match.value);
                    (void)m_ingest.ingestRiotMatch(document.root(), m_now());
                } catch (const std::exception& e) {
                    // One unreadable game must not stop the history behind it.
                    std::cerr << "Backfill: game " << id << " skipped: " << e.what() << std::endl;
                }
            }
        }
        run->nextStart = pageStart + int64_t(i) + 1;
        run->fetched = run->nextStart;
        run->claimedUntil = m_now() + m_options.leaseMs;
        save();
    }
    if (finished) {
        run->done = true;
        if (run->runNewest)
            run->stopAt = run->runNewest;
        run->runNewest.reset();
        run->nextStart = 0;
        std::cout << "Backfill of account " << run->riotAccountId << " finished: " << run->fetched << " of "
                  << run->found << " games." << std::endl;
    } else {
        std::cout << "Backfill of account " << run->riotAccountId << ": " << run->fetched << " of " << run->found
                  << " games so far." << std::endl;
    }
    run->claimedUntil = 0;
    save();
    return true;
}

} // namespace qf
