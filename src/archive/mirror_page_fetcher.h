#pragma once

#include "archive/mirror_page.h"

#include <QCoro/QCoroTask>
#include <QFuture>
#include <QThread>
#include <exception>
#include <memory>
#include <optional>

class BackendClient;

// Fetches the pages of the archive pull on a thread of its own, through a network manager of its
// own, and decodes them there. The sync asks for the next page as soon as it holds one and
// stores that one meanwhile: a first sync of a large archive then takes about the longer of the
// two per page rather than their sum, and the main thread, which draws the window, only stores.
class MirrorPageFetcher {
public:
    // Asks at client's address with its sign-in, as they are now.
    explicit MirrorPageFetcher(const BackendClient& client);
    // Aborts a page still on its way and ends the thread.
    ~MirrorPageFetcher();
    MirrorPageFetcher(const MirrorPageFetcher&) = delete;
    MirrorPageFetcher& operator=(const MirrorPageFetcher&) = delete;

    // Starts fetching the page after cursor. One page at a time: the one asked for before must
    // have been taken.
    void request(std::optional<QString> cursor);
    // The page asked for, once it has arrived and been decoded; throws what fetching or decoding
    // it threw (a BackendError).
    QCoro::Task<MirrorPage> take();

private:
    // What the fetch thread hands over: the page or its failure.
    struct Outcome {
        std::optional<MirrorPage> page;
        std::exception_ptr failure;
    };
    class Worker;

    QThread m_thread;
    Worker* m_worker = nullptr; // lives in m_thread, deleted there as it ends
    std::shared_ptr<Outcome> m_outcome;
    std::optional<QFuture<void>> m_pending;
};
