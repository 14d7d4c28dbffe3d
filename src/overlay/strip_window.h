#pragma once

#include "overlay/live_client_data.h"
#include "overlay/skill_order_view.h"

#include <QRasterWindow>

// The floating window the strip is drawn in: frameless, transparent, above every other window,
// click-through (clicks reach the game underneath), never focused and never activating the app.
// It is hidden, not closed, when there is nothing to show. A plain raster window painted by the
// strip's view: no OpenGL context and no QML engine live in the app for it, and an unchanged
// game paints nothing.
class StripWindow : public QRasterWindow {
    Q_OBJECT

public:
    StripWindow();

    // Shows what the snapshot says; the window is painted again only when that changed.
    void setSnapshot(const LiveClientData::Snapshot& snapshot);
    // Puts the window at origin, at the strip's own size, and shows it without activating the
    // application when it is hidden.
    void place(const QPoint& origin);
    // The size the strip is drawn at.
    [[nodiscard]] static QSize fittingSize() { return SkillOrderView::size(); }
    [[nodiscard]] const SkillOrderView& view() const { return m_view; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SkillOrderView m_view;
};
