#include "session/account_link_form.h"

#include "session/app_state.h"

void AccountLinkForm::setAppState(AppState* state) {
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT appStateChanged();
}

void AccountLinkForm::setRiotId(const QString& riotId) {
    if (m_riotId == riotId)
        return;
    m_riotId = riotId;
    Q_EMIT riotIdChanged();
}

QString AccountLinkForm::trimmed(const QString& text) {
    // Spaces of every kind (a pasted no-break space too) and tabs; line breaks stay.
    const auto isBlank = [](QChar c) { return c == QLatin1Char('\t') || c.category() == QChar::Separator_Space; };
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && isBlank(text[first]))
        ++first;
    while (last > first && isBlank(text[last - 1]))
        --last;
    return text.mid(first, last - first);
}

void AccountLinkForm::add() {
    const QString riotId = trimmed(m_riotId);
    if (riotId.isEmpty() || !m_state)
        return;
    setRiotId(QString());
    m_state->startTask(m_state->addRiotAccount(riotId));
}
