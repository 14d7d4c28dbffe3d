#include "overlay/strip_window.h"

#include <QPainter>
#include <QSurfaceFormat>

StripWindow::StripWindow() {
    // Tool: no taskbar entry; WindowTransparentForInput: on X11 an empty input shape, so the
    // game receives every click; WindowDoesNotAcceptFocus: the window manager never focuses it.
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
             Qt::WindowDoesNotAcceptFocus);
    // Read by Qt's X11 platform: mapping the window does not activate it either.
    setProperty("_q_showWithoutActivating", true);
    // An alpha channel, so that around and through the rounded plate the game shows.
    QSurfaceFormat surface = format();
    surface.setAlphaBufferSize(8);
    setFormat(surface);
    setTitle(QStringLiteral("Quill Fern overlay"));
    resize(fittingSize());
    // Made with the window, at the first pass that finds a game, rather than at a level-up.
    m_view.prepare(devicePixelRatio());
}

void StripWindow::setSnapshot(const LiveClientData::Snapshot& snapshot) {
    if (m_view.setSnapshot(snapshot))
        update();
}

void StripWindow::place(const QPoint& origin) {
    const QRect frame(origin, fittingSize());
    if (geometry() != frame)
        setGeometry(frame);
    if (!isVisible())
        show();
}

void StripWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    // The backing store keeps the last picture; what lay outside the plate must become clear.
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(QRect(QPoint(0, 0), size()), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    m_view.paint(painter);
}
