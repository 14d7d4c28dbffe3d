#include "overlay/overlay_view_model.h"

OverlayViewModel::OverlayViewModel(QObject* parent) : QObject(parent) {}

void OverlayViewModel::setOverlay(OverlayManager* overlay) {
    if (overlay == m_overlay)
        return;
    QObject::disconnect(m_statusConnection);
    m_overlay = overlay;
    if (overlay)
        m_statusConnection = connect(overlay, &OverlayManager::statusChanged, this, &OverlayViewModel::refresh);
    Q_EMIT overlayChanged();
    refresh();
}

bool OverlayViewModel::isLiveStatus(const QString& status) {
    return status.startsWith(QLatin1String("In game"));
}

void OverlayViewModel::refresh() {
    const bool live = m_overlay && isLiveStatus(m_overlay->status());
    if (live == m_statusIsLive)
        return;
    m_statusIsLive = live;
    Q_EMIT statusIsLiveChanged();
}

QStringList OverlayViewModel::howItWorks(bool onMacOs) {
    const QString fullscreenReason = onMacOs ? QStringLiteral("macOS gives it a separate Space.")
                                             : QStringLiteral("the game then owns the whole screen.");
    return {
        QStringLiteral("Run League in **Borderless** mode (Settings → Video). The overlay can't draw over true "
                       "fullscreen — ") +
            fullscreenReason,
        QStringLiteral("A transparent, click-through strip shows your Q/W/E/R ranks and highlights the next ability "
                       "to level."),
        QStringLiteral("It reads only the in-game Live Client Data API (info the game already shows you) — "
                       "Vanguard-safe."),
        QStringLiteral("Skill priority is currently a sensible default (ult on cooldown breakpoints, then max your "
                       "most-leveled basic); per-champion build priority comes with build importing."),
    };
}
