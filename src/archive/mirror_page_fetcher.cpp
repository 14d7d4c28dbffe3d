#include "archive/mirror_page_fetcher.h"

#include "backend/backend_client.h"

#include <QCoro/QCoroFuture>
#include <QNetworkAccessManager>
#include <QPromise>

// Everything here runs on the fetch thread.
class MirrorPageFetcher::Worker : public QObject {
public:
    Worker(QUrl baseUrl, std::optional<QString> authToken)
        : m_baseUrl(std::move(baseUrl)), m_authToken(std::move(authToken)) {}

    void fetch(std::optional<QString> cursor, std::shared_ptr<Outcome> outcome, std::shared_ptr<QPromise<void>> done) {
        if (!m_client) {
            m_network = std::make_unique<QNetworkAccessManager>();
            m_client = std::make_unique<BackendClient>(*m_network, m_baseUrl);
            m_client->setAuthToken(m_authToken);
        }
        m_requester = std::make_unique<QObject>();
        // Runs on by itself; it always ends by finishing done, which the fetcher waits for
        // before this worker can go.
        run(std::move(cursor), std::move(outcome), std::move(done));
    }

    // The request on its way ends at once, with a transport error nobody reads.
    void abort() { m_requester.reset(); }

private:
    QCoro::Task<> run(std::optional<QString> cursor, std::shared_ptr<Outcome> outcome,
                      std::shared_ptr<QPromise<void>> done) {
        done->start();
        try {
            outcome->page = co_await m_client->sync<MirrorPage>(std::move(cursor), m_requester.get());
        } catch (...) {
            outcome->failure = std::current_exception();
        }
        done->finish();
    }

    QUrl m_baseUrl;
    std::optional<QString> m_authToken;
    std::unique_ptr<QNetworkAccessManager> m_network;
    std::unique_ptr<BackendClient> m_client;
    std::unique_ptr<QObject> m_requester;
};

MirrorPageFetcher::MirrorPageFetcher(const BackendClient& client)
    : m_worker(new Worker(client.baseUrl(), client.authToken())) {
    m_thread.setObjectName(QStringLiteral("archive pull"));
    m_worker->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    m_thread.start();
}

MirrorPageFetcher::~MirrorPageFetcher() {
    if (m_pending && !m_pending->isFinished()) {
        QMetaObject::invokeMethod(m_worker, [worker = m_worker] { worker->abort(); });
        m_pending->waitForFinished();
    }
    m_thread.quit();
    m_thread.wait();
}

void MirrorPageFetcher::request(std::optional<QString> cursor) {
    Q_ASSERT(!m_pending);
    m_outcome = std::make_shared<Outcome>();
    auto done = std::make_shared<QPromise<void>>();
    m_pending = done->future();
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, cursor = std::move(cursor), outcome = m_outcome, done] {
        worker->fetch(cursor, outcome, done);
    });
}

QCoro::Task<MirrorPage> MirrorPageFetcher::take() {
    Q_ASSERT(m_pending);
    // GCC 12 destroys a temporary inside a co_await twice: the future is named.
    const QFuture<void> pending = *m_pending;
    co_await pending;
    m_pending.reset();
    const std::shared_ptr<Outcome> outcome = std::move(m_outcome);
    if (outcome->failure)
        std::rethrow_exception(outcome->failure);
    co_return std::move(*outcome->page);
}
