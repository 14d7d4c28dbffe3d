#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <mutex>
#include <thread>

class ArchiveStore;
class QThread;

// Opens the archive on a thread of its own and hands the store to the thread that asked, so that
// the window draws its first frame at once however large the archive is. From then on the store
// belongs to the asking thread alone, as if it had been opened there.
class ArchiveOpener : public QObject {
    Q_OBJECT

public:
    explicit ArchiveOpener(QString path, QObject* parent = nullptr);
    ~ArchiveOpener() override;

    void start();
    // After opened(): the store, once.
    [[nodiscard]] std::unique_ptr<ArchiveStore> takeStore();

Q_SIGNALS:
    void opened();
    // The store could not be opened; description says why, as StoreError words it.
    void failed(const QString& description);

private:
    void finish();

    QString m_path;
    QThread* m_asker;
    std::thread m_thread;
    std::mutex m_lock;
    std::unique_ptr<ArchiveStore> m_store;
    QString m_failure;
};
