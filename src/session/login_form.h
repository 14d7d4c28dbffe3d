#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "session/app_state.h"

// What the sign-in view holds while it is shown: the typed e-mail and password, the mode, and
// the two busy flags, with the rules that enable its buttons.
class LoginForm : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY fieldsChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY fieldsChanged)
    Q_PROPERTY(bool isRegistering READ isRegistering NOTIFY modeChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
    Q_PROPERTY(bool leagueBusy READ leagueBusy NOTIFY busyChanged)
    Q_PROPERTY(bool canSubmit READ canSubmit NOTIFY stateChanged)
    Q_PROPERTY(bool canUseLeague READ canUseLeague NOTIFY stateChanged)
    Q_PROPERTY(QString submitLabel READ submitLabel NOTIFY modeChanged)
    Q_PROPERTY(QString toggleLabel READ toggleLabel NOTIFY modeChanged)

public:
    static constexpr int minimumPasswordLength = 8;

    explicit LoginForm(QObject* parent = nullptr);

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);
    [[nodiscard]] const QString& email() const { return m_email; }
    void setEmail(const QString& email);
    [[nodiscard]] const QString& password() const { return m_password; }
    void setPassword(const QString& password);
    [[nodiscard]] bool isRegistering() const { return m_isRegistering; }
    [[nodiscard]] bool busy() const { return m_busy; }
    [[nodiscard]] bool leagueBusy() const { return m_leagueBusy; }

    // The e-mail must be non-empty and the password at least eight characters, as typed.
    [[nodiscard]] bool canSubmit() const;
    [[nodiscard]] bool canUseLeague() const { return !m_busy && !m_leagueBusy; }
    [[nodiscard]] QString submitLabel() const;
    [[nodiscard]] QString toggleLabel() const;

    Q_INVOKABLE void submit();
    Q_INVOKABLE void toggleMode();
    Q_INVOKABLE void signInWithLeague();

Q_SIGNALS:
    void appStateChanged();
    void fieldsChanged();
    void modeChanged();
    void busyChanged();
    void stateChanged();

private:
    void setBusy(bool busy);
    void setLeagueBusy(bool busy);

    QPointer<AppState> m_state;
    QString m_email;
    QString m_password;
    bool m_isRegistering = false;
    bool m_busy = false;
    bool m_leagueBusy = false;
};
