#include "archive/archive_opener.h"

#include "archive/archive_store.h"
#include "archive/store_error.h"

#include <QThread>

ArchiveOpener::ArchiveOpener(QString path, QObject* parent)
    : QObject(parent), m_path(std::move(path)), m_asker(QThread::currentThread()) {}

ArchiveOpener::~ArchiveOpener() {
    if (m_thread.joinable())
        m_thread.join();
}

void ArchiveOpener::start() {
    m_thread = std::thread([this] {
        std::unique_ptr<ArchiveStore> store;
        QString failure;
        try {
            store = std::make_unique<ArchiveStore>(m_path);
            // A QObject is moved by the thread it lives in; the asker then owns its events.
            store->moveToThread(m_asker);
        } catch (const StoreError& error) {
            failure = error.description();
        } catch (const std::exception& error) {
            failure = QString::fromLocal8Bit(error.what());
        }
        {
            const std::lock_guard<std::mutex> lock(m_lock);
            m_store = std::move(store);
            m_failure = failure;
        }
        QMetaObject::invokeMethod(this, &ArchiveOpener::finish, Qt::QueuedConnection);
    });
}

void ArchiveOpener::finish() {
    m_thread.join();
    QString failure;
    bool ok = false;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        ok = m_store != nullptr;
        failure = m_failure;
    }
    if (ok)
        Q_EMIT opened();
    else
        Q_EMIT failed(failure);
}

std::unique_ptr<ArchiveStore> ArchiveOpener::takeStore() {
    const std::lock_guard<std::mutex> lock(m_lock);
    return std::move(m_store);
}
