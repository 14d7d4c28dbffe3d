#include "overlay/overlay_controller.h"

#include "overlay/strip_window.h"

#include <cmath>

OverlayController::OverlayController() = default;
OverlayController::~OverlayController() = default;

QPointF OverlayController::stripOrigin(const QRectF& gameFrame, const QSizeF& strip) {
    return QPointF(gameFrame.center().x() - 0.5 * strip.width(), gameFrame.top() + gapBelowTop);
}

void OverlayController::update(const LiveClientData::Snapshot& snapshot, const WindowLocator::Game& game) {
    if (!m_window)
        m_window = std::make_unique<StripWindow>();
    m_window->setSnapshot(snapshot);
    const QPointF origin = stripOrigin(game.frame, QSizeF(StripWindow::fittingSize()));
    m_window->place(QPoint(int(std::lround(origin.x())), int(std::lround(origin.y()))));
}

void OverlayController::hide() {
    if (m_window && m_window->isVisible())
        m_window->hide();
}

bool OverlayController::isShowing() const {
    return m_window && m_window->isVisible();
}

StripWindow* OverlayController::panel() const {
    return m_window.get();
}
