#pragma once

#include <QQuickView>

class SkillStripModel;

// The floating window the strip is drawn in: frameless, transparent, above every other window,
// click-through (clicks reach the game underneath), never focused and never activating the app.
// It is hidden, not closed, when there is nothing to show.
class StripWindow : public QQuickView {
    Q_OBJECT

public:
    static constexpr int initialWidth = 240;
    static constexpr int initialHeight = 80;

    explicit StripWindow(SkillStripModel* model);

    // Puts the window at origin, at the strip's own size, and shows it without activating the
    // application when it is hidden.
    void place(const QPoint& origin);
    // The size the strip lays itself out at.
    [[nodiscard]] QSize fittingSize() const;
};
