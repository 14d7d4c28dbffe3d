#pragma once

#include "overlay/live_client_data.h"
#include "overlay/skill_strip.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRectF>
#include <QSize>
#include <array>

class QPainter;

// The strip's look: Q, W, E, R side by side on a translucent rounded plate, each a square with
// its key over a row of pips (5, or 3 for the ultimate) filled up to its rank, the next ability
// to level lit in its colour with a glow around it. Painted with QPainter, so the strip's window
// needs neither a scene graph nor a QML engine for a few shapes that change once per level.
// Each part (the plate, a square lit or unlit with its key, a pip) is drawn once and afterwards
// only copied: drawing the rounded shapes and laying out the keys at every level-up cost as much
// as the whole rest of the overlay's pass.
class SkillOrderView {
public:
    static constexpr int cellSide = 40;
    static constexpr int cellSpacing = 8;
    static constexpr int pipTop = cellSide + 4; // below the square, within the cell
    static constexpr int pipHeight = 3;
    static constexpr int pipSpacing = 2;
    static constexpr int basicPipWidth = 5;
    static constexpr int ultimatePipWidth = 9;
    static constexpr int horizontalPadding = 12;
    static constexpr int verticalPadding = 8;
    static constexpr int cellCount = 4;
    static constexpr int glowReach = 8; // how far the lit square's glow reaches around it

    static QColor basicColor() { return QColor(10, 200, 185); }
    static QColor ultimateColor() { return QColor(200, 170, 110); }

    SkillOrderView();

    // Takes what the snapshot shows; true when that differs from what was shown, and only then
    // does the strip need painting again.
    bool setSnapshot(const LiveClientData::Snapshot& snapshot);
    [[nodiscard]] const std::array<SkillStrip::Cell, 4>& cells() const { return m_cells; }

    // The strip's size, the same for every snapshot (208 × 63).
    [[nodiscard]] static QSize size();
    // The square of the cell at that index (0 to 3), and the pip at that index within it.
    [[nodiscard]] static QRectF cellRect(int cell);
    [[nodiscard]] static QRectF pipRect(int cell, const SkillStrip::Cell& content, int pip);

    // Draws every part at that pixel ratio now, so that no later paint has to: drawing a lit
    // square for the first time in the middle of a game costs as much as a whole pass.
    void prepare(qreal devicePixelRatio) const;
    // Paints the strip with its top-left corner at the painter's origin, over whatever is there;
    // around the rounded plate nothing is painted.
    void paint(QPainter& painter) const;
    // The strip on a transparent image of its size, at that device pixel ratio.
    [[nodiscard]] QImage image(qreal devicePixelRatio = 1) const;

private:
    // The parts, by index: the plate, each square unlit then lit, then the pips of a basic
    // ability empty then filled and those of the ultimate.
    static constexpr int plateSprite = 0;
    static constexpr int squareSprites = 1;
    static constexpr int pipSprites = squareSprites + 2 * cellCount;
    static constexpr int spriteCount = pipSprites + 4;

    // One square with its glow when lit, and its key, the square at (glowReach, glowReach).
    void paintSquare(QPainter& painter, int cell, bool lit) const;
    // The part, drawn on first use at that pixel ratio.
    const QImage& sprite(int which, qreal devicePixelRatio) const;

    std::array<SkillStrip::Cell, 4> m_cells;
    QFont m_font;
    // A cache, filled while painting.
    mutable std::array<QImage, spriteCount> m_sprites;
    mutable qreal m_spriteRatio = 0;
};
