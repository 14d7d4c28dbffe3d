#pragma once

#include <QColor>
#include <QPointF>
#include <QQuickPaintedItem>
#include <QVariantList>
#include <vector>

// The dots of a chart, drawn by one item however many there are. A point per item cost about
// 13 KB each (a rectangle, its hover area and their bindings): a rank history of a thousand
// snapshots held 13 MB for dots a few pixels wide.
class ChartDots : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    // Points in the unit square (x to the right, y downwards), scaled to the item's size.
    Q_PROPERTY(QVariantList points READ points WRITE setPoints NOTIFY pointsChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(double diameter READ diameter WRITE setDiameter NOTIFY diameterChanged)
    // Room left on every side for the dots on the square's edges: the unit square is drawn
    // inside it.
    Q_PROPERTY(double margin READ margin WRITE setMargin NOTIFY marginChanged)

public:
    explicit ChartDots(QQuickItem* parent = nullptr);

    [[nodiscard]] const QVariantList& points() const { return m_pointList; }
    void setPoints(const QVariantList& points);
    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor& color);
    [[nodiscard]] double diameter() const { return m_diameter; }
    void setDiameter(double diameter);
    [[nodiscard]] double margin() const { return m_margin; }
    void setMargin(double margin);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void pointsChanged();
    void colorChanged();
    void diameterChanged();
    void marginChanged();

private:
    QVariantList m_pointList;
    std::vector<QPointF> m_points;
    QColor m_color;
    double m_diameter = 6;
    double m_margin = 0;
};
