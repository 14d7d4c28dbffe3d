#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "session/app_state.h"

// The Riot ID field of the "Link a Riot account" card.
class AccountLinkForm : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(QString riotId READ riotId WRITE setRiotId NOTIFY riotIdChanged)
    Q_PROPERTY(bool canAdd READ canAdd NOTIFY riotIdChanged)

public:
    explicit AccountLinkForm(QObject* parent = nullptr) : QObject(parent) {}

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);
    [[nodiscard]] const QString& riotId() const { return m_riotId; }
    void setRiotId(const QString& riotId);
    // Enabled by any text at all, even spaces only: add() then does nothing.
    [[nodiscard]] bool canAdd() const { return !m_riotId.isEmpty(); }

    // Spaces and tabs around the text go; line breaks stay.
    [[nodiscard]] static QString trimmed(const QString& text);

    Q_INVOKABLE void add();

Q_SIGNALS:
    void appStateChanged();
    void riotIdChanged();

private:
    QPointer<AppState> m_state;
    QString m_riotId;
};
