#include "screens/chart_dots.h"

#include <QPainter>

ChartDots::ChartDots(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void ChartDots::setPoints(const QVariantList& points) {
    m_pointList = points;
    m_points.clear();
    m_points.reserve(static_cast<std::size_t>(points.size()));
    for (const QVariant& point : points)
        m_points.push_back(point.toPointF());
    update();
    Q_EMIT pointsChanged();
}

void ChartDots::setColor(const QColor& color) {
    if (color == m_color)
        return;
    m_color = color;
    update();
    Q_EMIT colorChanged();
}

void ChartDots::setDiameter(double diameter) {
    m_diameter = diameter;
    update();
    Q_EMIT diameterChanged();
}

void ChartDots::setMargin(double margin) {
    m_margin = margin;
    update();
    Q_EMIT marginChanged();
}

void ChartDots::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_color);
    const double radius = m_diameter / 2;
    const double w = width() - 2 * m_margin;
    const double h = height() - 2 * m_margin;
    for (const QPointF& point : m_points)
        painter->drawEllipse(QPointF(m_margin + point.x() * w, m_margin + point.y() * h), radius, radius);
}
