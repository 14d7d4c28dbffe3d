#pragma once

#include "archive/archive_store.h"
#include "session/app_state.h"

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QtQml/qqmlregistration.h>

// Base of every archive screen's view model: follows the application state and the store, and
// recomputes everything it shows whenever either changes. Subclasses implement recompute().
class ScreenModel : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY appStateChanged)

public:
    explicit ScreenModel(QObject* parent = nullptr) : QObject(parent) {}

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);
    [[nodiscard]] ArchiveStore* store() const { return m_store; }

    // The puuids of the user's linked accounts.
    [[nodiscard]] QSet<QString> owners() const;

Q_SIGNALS:
    void appStateChanged();

protected:
    virtual void recompute() = 0;

private:
    void attachStore();

    QPointer<AppState> m_state;
    QPointer<ArchiveStore> m_store;
};
