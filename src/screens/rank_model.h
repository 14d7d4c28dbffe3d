#pragma once

#include "session/screen_model.h"

#include <QDateTime>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QVariantList>
#include <vector>

// One point of the LP chart: a snapshot's standing on the continuous scale.
struct LpPoint {
    QDateTime date;
    qint64 lp = 0;
    QString label;

    [[nodiscard]] const QDateTime& id() const { return date; }
};

// The rank screen: the newest snapshot of the chosen queue as a card, and every snapshot of
// that queue as a line over time. The chart's geometry is worked out here in a unit square
// (x to the right, y downwards), so the view only scales it to its own size.
class RankModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(Queue queue READ queue WRITE setQueue NOTIFY changed)
    Q_PROPERTY(QVariantList queueChoices READ queueChoices NOTIFY changed)

    Q_PROPERTY(bool hasCurrent READ hasCurrent NOTIFY changed)
    Q_PROPERTY(QString currentTier READ currentTier NOTIFY changed)
    Q_PROPERTY(QString currentLabel READ currentLabel NOTIFY changed)
    Q_PROPERTY(QString lpText READ lpText NOTIFY changed)
    Q_PROPERTY(QString recordText READ recordText NOTIFY changed)
    Q_PROPERTY(bool hasWinRate READ hasWinRate NOTIFY changed)
    Q_PROPERTY(QString winRateText READ winRateText NOTIFY changed)
    Q_PROPERTY(double winPercent READ winPercent NOTIFY changed)

    Q_PROPERTY(bool hasChart READ hasChart NOTIFY changed)
    Q_PROPERTY(QVariantList chartPoints READ chartPoints NOTIFY changed)
    Q_PROPERTY(QVariantList chartLine READ chartLine NOTIFY changed)
    Q_PROPERTY(QVariantList yTicks READ yTicks NOTIFY changed)
    Q_PROPERTY(QVariantList xTicks READ xTicks NOTIFY changed)

public:
    enum class Queue { Solo, Flex };
    Q_ENUM(Queue)

    static inline const QString soloQueue = QStringLiteral("RANKED_SOLO_5x5");
    static inline const QString flexQueue = QStringLiteral("RANKED_FLEX_SR");

    explicit RankModel(QObject* parent = nullptr) : ScreenModel(parent) {}

    // The queue's name in the snapshots.
    [[nodiscard]] static const QString& queueType(Queue queue) { return queue == Queue::Flex ? flexQueue : soloQueue; }

    [[nodiscard]] Queue queue() const { return m_queue; }
    void setQueue(Queue queue);
    [[nodiscard]] QVariantList queueChoices() const;

    [[nodiscard]] bool hasCurrent() const { return m_current.has_value(); }
    [[nodiscard]] QString currentTier() const;
    [[nodiscard]] QString currentLabel() const;
    [[nodiscard]] QString lpText() const;
    [[nodiscard]] QString recordText() const;
    [[nodiscard]] bool hasWinRate() const;
    [[nodiscard]] QString winRateText() const;
    [[nodiscard]] double winPercent() const;

    // A line needs two points.
    [[nodiscard]] bool hasChart() const { return m_series.size() > 1; }
    [[nodiscard]] const std::vector<LpPoint>& series() const { return m_series; }
    // One point per entry of the series, in the unit square.
    [[nodiscard]] const QVariantList& chartPoints() const { return m_chartPoints; }
    // "Gold II · 3/2/25": what a hovered point tells.
    Q_INVOKABLE QString pointCaption(int index) const;
    // The point under (x, y) of a plot of the given size, or -1: the one drawn last among those
    // within reach (half the hover square's side) of it.
    Q_INVOKABLE int pointAt(double x, double y, double width, double height, double reach) const;
    // The same over points in the unit square, sorted by x.
    [[nodiscard]] static int pointAt(const std::vector<QPointF>& points, QPointF at, QSizeF plot, double reach);
    [[nodiscard]] const QVariantList& chartLine() const { return m_chartLine; }
    [[nodiscard]] const QVariantList& yTicks() const { return m_yTicks; }
    [[nodiscard]] const QVariantList& xTicks() const { return m_xTicks; }

    // The snapshots of one queue, oldest first; snapshots without a date count as oldest.
    [[nodiscard]] static std::vector<const LocalRankSnapshot*> snapshotsOf(const ArchiveStore& store,
                                                                           const QString& queue);
    // One point per dated snapshot whose tier is one of the ten, in the given order.
    [[nodiscard]] static std::vector<LpPoint> seriesOf(const std::vector<const LocalRankSnapshot*>& snapshots);
    // A smooth curve through the points (x increasing) that never overshoots between them.
    [[nodiscard]] static std::vector<QPointF> smoothLine(const std::vector<QPointF>& points, int stepsPerSegment);
    // Round tick values covering [low, high], about `wanted` of them, lowest first.
    [[nodiscard]] static std::vector<qint64> lpTicks(qint64 low, qint64 high, int wanted);

Q_SIGNALS:
    void changed();

protected:
    void recompute() override;

private:
    void layoutChart();

    struct Current {
        std::optional<QString> tier;
        std::optional<QString> division;
        qint64 lp = 0;
        qint64 wins = 0;
        qint64 losses = 0;
    };

    Queue m_queue = Queue::Solo;
    std::optional<Current> m_current;
    std::vector<LpPoint> m_series;
    QVariantList m_chartPoints;
    std::vector<QPointF> m_points; // the same, for hovering
    QVariantList m_chartLine;
    QVariantList m_yTicks;
    QVariantList m_xTicks;
};
