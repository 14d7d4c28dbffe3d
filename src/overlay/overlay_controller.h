#pragma once

#include "overlay/live_client_data.h"
#include "overlay/window_locator.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <memory>

class StripWindow;

// Owns the strip's window: made on the first update and kept until the application ends,
// hidden whenever no live game is shown.
class OverlayController {
public:
    // Between the game window's top edge and the strip's.
    static constexpr double gapBelowTop = 12;

    OverlayController();
    ~OverlayController();
    OverlayController(const OverlayController&) = delete;
    OverlayController& operator=(const OverlayController&) = delete;

    // Shows the strip for the snapshot, centred over the game window near its top.
    void update(const LiveClientData::Snapshot& snapshot, const WindowLocator::Game& game);
    void hide();

    [[nodiscard]] bool isShowing() const;
    // The window, once made; for tests and the screenshot tour.
    [[nodiscard]] StripWindow* panel() const;

    // Where the strip of that size goes: centred across the game window, its top edge 12 points
    // below the window's. In top-left coordinates that is the frame's top plus the gap.
    [[nodiscard]] static QPointF stripOrigin(const QRectF& gameFrame, const QSizeF& strip);

private:
    std::unique_ptr<StripWindow> m_window;
};
