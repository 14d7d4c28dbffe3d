#include "session/login_form.h"

#include "session/app_state.h"

#include <QTextBoundaryFinder>

LoginForm::LoginForm(QObject* parent) : QObject(parent) {
    connect(this, &LoginForm::fieldsChanged, this, &LoginForm::stateChanged);
    connect(this, &LoginForm::busyChanged, this, &LoginForm::stateChanged);
}

void LoginForm::setAppState(AppState* state) {
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT appStateChanged();
}

void LoginForm::setEmail(const QString& email) {
    if (m_email == email)
        return;
    m_email = email;
    Q_EMIT fieldsChanged();
}

void LoginForm::setPassword(const QString& password) {
    if (m_password == password)
        return;
    m_password = password;
    Q_EMIT fieldsChanged();
}

// Characters as the player sees them: an emoji or a letter with its accent counts once.
static int characterCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

bool LoginForm::canSubmit() const {
    return !m_busy && !m_email.isEmpty() && characterCount(m_password) >= minimumPasswordLength;
}

QString LoginForm::submitLabel() const {
    return m_isRegistering ? QStringLiteral("Create account") : QStringLiteral("Sign in");
}

QString LoginForm::toggleLabel() const {
    return m_isRegistering ? QStringLiteral("Have an account? Sign in") : QStringLiteral("New here? Create an account");
}

void LoginForm::submit() {
    if (!canSubmit() || !m_state)
        return;
    setBusy(true);
    QCoro::Task<> attempt = m_isRegistering ? m_state->registerAccount(m_email, m_password, std::nullopt)
                                            : m_state->login(m_email, m_password);
    // The form may be gone (signed in) by the time the attempt ends.
    QPointer<LoginForm> self(this);
    m_state->startTask([](QCoro::Task<> running, QPointer<LoginForm> form) -> QCoro::Task<> {
        co_await running;
        if (form)
            form->setBusy(false);
    }(std::move(attempt), self));
}

void LoginForm::toggleMode() {
    if (m_state)
        m_state->clearErrorMessage();
    m_isRegistering = !m_isRegistering;
    Q_EMIT modeChanged();
}

void LoginForm::signInWithLeague() {
    if (m_busy || m_leagueBusy || !m_state)
        return;
    setLeagueBusy(true);
    QPointer<LoginForm> self(this);
    m_state->startTask([](QCoro::Task<> running, QPointer<LoginForm> form) -> QCoro::Task<> {
        co_await running;
        if (form)
            form->setLeagueBusy(false);
    }(m_state->loginWithLeague(), self));
}

void LoginForm::setBusy(bool busy) {
    if (m_busy == busy)
        return;
    m_busy = busy;
    Q_EMIT busyChanged();
}

void LoginForm::setLeagueBusy(bool busy) {
    if (m_leagueBusy == busy)
        return;
    m_leagueBusy = busy;
    Q_EMIT busyChanged();
}
