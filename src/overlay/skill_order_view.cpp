#include "overlay/skill_order_view.h"

#include "theme/theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace {

constexpr qreal plateRadius = 12;
constexpr qreal cellRadius = 8;
// The glow: a few widening halos, faintest outermost, instead of a blur.
constexpr std::array<int, 4> haloWidths{8, 6, 4, 2};

QColor withAlpha(QColor color, qreal alpha) {
    color.setAlphaF(float(alpha));
    return color;
}

// A rounded box filled inside its border, the border lying inside the box's edge; a translucent
// border is not laid over the fill, so each keeps its own colour.
void drawBox(QPainter& painter, const QRectF& box, qreal radius, const QColor& fill, qreal border,
             const QColor& borderColor) {
    const QRectF innerBox = box.adjusted(border, border, -border, -border);
    const qreal innerRadius = std::max<qreal>(0, radius - border);
    QPainterPath inner;
    inner.addRoundedRect(innerBox, innerRadius, innerRadius);
    painter.fillPath(inner, fill);
    if (border <= 0)
        return;
    QPainterPath ring;
    ring.setFillRule(Qt::OddEvenFill);
    ring.addRoundedRect(box, radius, radius);
    ring.addPath(inner);
    painter.fillPath(ring, borderColor);
}

QColor accentOf(const SkillStrip::Cell& cell) {
    return cell.isUltimate ? SkillOrderView::ultimateColor() : SkillOrderView::basicColor();
}

} // namespace

SkillOrderView::SkillOrderView() : m_cells(SkillStrip::cells(LiveClientData::Snapshot{})) {
    m_font.setFamily(Theme::fontFamily());
    m_font.setPixelSize(18);
    m_font.setWeight(QFont::ExtraBold);
}

bool SkillOrderView::setSnapshot(const LiveClientData::Snapshot& snapshot) {
    const std::array<SkillStrip::Cell, 4> cells = SkillStrip::cells(snapshot);
    if (cells == m_cells)
        return false;
    m_cells = cells;
    return true;
}

QSize SkillOrderView::size() {
    const int cellsWidth = cellCount * cellSide + (cellCount - 1) * cellSpacing;
    return QSize(cellsWidth + 2 * horizontalPadding, pipTop + pipHeight + 2 * verticalPadding);
}

QRectF SkillOrderView::cellRect(int cell) {
    return QRectF(horizontalPadding + cell * (cellSide + cellSpacing), verticalPadding, cellSide, cellSide);
}

QRectF SkillOrderView::pipRect(int cell, const SkillStrip::Cell& content, int pip) {
    const int width = content.isUltimate ? ultimatePipWidth : basicPipWidth;
    const int rowWidth = content.pips * width + (content.pips - 1) * pipSpacing;
    // The row is centred under the square on whole pixels, so the pips stay sharp; an odd
    // leftover pixel goes to the right, as Qt Quick's centring leaves it.
    const qreal left = cellRect(cell).left() + cellSide / 2 - qRound(rowWidth / 2.0);
    return QRectF(left + pip * (width + pipSpacing), verticalPadding + pipTop, width, pipHeight);
}

void SkillOrderView::paintSquare(QPainter& painter, int cell, bool lit) const {
    const SkillStrip::Cell& content = m_cells[std::size_t(cell)];
    const QColor accent = accentOf(content);
    const QRectF square(glowReach, glowReach, cellSide, cellSide);
    if (lit) {
        for (const int width : haloWidths) {
            const QRectF halo = square.adjusted(-width, -width, width, width);
            QPainterPath path;
            path.addRoundedRect(halo, cellRadius + width, cellRadius + width);
            painter.fillPath(path, withAlpha(accent, 0.8 * (1 - width / 9.0) * 0.35));
        }
        drawBox(painter, square, cellRadius, withAlpha(accent, 0.3), 2.5, accent);
    } else {
        drawBox(painter, square, cellRadius, QColor::fromRgbF(1, 1, 1, 0.06f), 1, QColor::fromRgbF(1, 1, 1, 0.18f));
    }
    // The key centred in its square on whole pixels, by its advance and its line's height in
    // whole pixels.
    const QFontMetricsF metrics(m_font);
    const qreal keyWidth = std::ceil(metrics.horizontalAdvance(content.key));
    const qreal keyHeight = std::ceil(metrics.height());
    const QPointF keyOrigin(square.left() + cellSide / 2 - qRound(keyWidth / 2),
                            square.top() + cellSide / 2 - qRound(keyHeight / 2) + metrics.ascent());
    painter.setFont(m_font);
    painter.setPen(lit ? QColor(Qt::white) : QColor::fromRgbF(1, 1, 1, 0.7f));
    painter.drawText(keyOrigin, content.key);
}

const QImage& SkillOrderView::sprite(int which, qreal devicePixelRatio) const {
    if (devicePixelRatio != m_spriteRatio) {
        m_sprites = {};
        m_spriteRatio = devicePixelRatio;
    }
    QImage& image = m_sprites[std::size_t(which)];
    if (!image.isNull())
        return image;
    const bool ultimatePip = which >= pipSprites + 2;
    const QSize logical = which == plateSprite ? size()
                          : which < pipSprites ? QSize(cellSide + 2 * glowReach, cellSide + 2 * glowReach)
                                               : QSize(ultimatePip ? ultimatePipWidth : basicPipWidth, pipHeight);
    image = QImage(logical * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (which == plateSprite) {
        drawBox(painter, QRectF(QPointF(0, 0), QSizeF(logical)), plateRadius, QColor::fromRgbF(0, 0, 0, 0.55f), 1,
                QColor::fromRgbF(1, 1, 1, 0.12f));
    } else if (which < pipSprites) {
        paintSquare(painter, (which - squareSprites) / 2, (which - squareSprites) % 2 == 1);
    } else {
        const bool filled = (which - pipSprites) % 2 == 1;
        QPainterPath path;
        path.addRoundedRect(QRectF(QPointF(0, 0), QSizeF(logical)), 1.5, 1.5);
        painter.fillPath(path, !filled       ? QColor::fromRgbF(1, 1, 1, 0.18f)
                               : ultimatePip ? ultimateColor()
                                             : basicColor());
    }
    return image;
}

void SkillOrderView::prepare(qreal devicePixelRatio) const {
    for (int which = 0; which < spriteCount; ++which)
        sprite(which, devicePixelRatio);
}

void SkillOrderView::paint(QPainter& painter) const {
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatio() : 1.0;
    painter.drawImage(QPointF(0, 0), sprite(plateSprite, ratio));
    for (int i = 0; i < cellCount; ++i) {
        const SkillStrip::Cell& cell = m_cells[std::size_t(i)];
        painter.drawImage(cellRect(i).topLeft() - QPointF(glowReach, glowReach),
                          sprite(squareSprites + 2 * i + (cell.isNext ? 1 : 0), ratio));
        for (int pip = 0; pip < cell.pips; ++pip) {
            const int kind = pipSprites + (cell.isUltimate ? 2 : 0) + (pip < cell.filledPips ? 1 : 0);
            painter.drawImage(pipRect(i, cell, pip).topLeft(), sprite(kind, ratio));
        }
    }
}

QImage SkillOrderView::image(qreal devicePixelRatio) const {
    QImage image(size() * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter);
    return image;
}
