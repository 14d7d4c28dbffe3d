#include "screens/rank_model.h"

#include "game_data/rank_math.h"
#include "screens/chart_ticks.h"

#include <QLocale>
#include <QVariantMap>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The share first, then the scaling: at exact halves the two orders round differently in
// floating point (23 of 40 is 57.49999… this way), and every screen must agree.
double percentOf(qint64 part, qint64 whole) {
    return static_cast<double>(part) / static_cast<double>(whole) * 100.0;
}

} // namespace

void RankModel::setQueue(Queue queue) {
    if (queue == m_queue)
        return;
    m_queue = queue;
    recompute();
}

QVariantList RankModel::queueChoices() const {
    const auto choice = [this](const QString& label, Queue value) {
        return QVariantMap{{"label", label}, {"value", static_cast<int>(value)}, {"selected", value == m_queue}};
    };
    return {choice(QStringLiteral("Solo/Duo"), Queue::Solo), choice(QStringLiteral("Flex"), Queue::Flex)};
}

std::vector<const LocalRankSnapshot*> RankModel::snapshotsOf(const ArchiveStore& store, const QString& queue) {
    std::vector<const LocalRankSnapshot*> result;
    for (const LocalRankSnapshot* snapshot : store.rankSnapshots().all())
        if (snapshot->queue == queue)
            result.push_back(snapshot);
    const auto key = [](const LocalRankSnapshot* s) {
        return s->capturedAt ? s->capturedAt->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
    };
    std::stable_sort(result.begin(), result.end(),
                     [&](const LocalRankSnapshot* a, const LocalRankSnapshot* b) { return key(a) < key(b); });
    return result;
}

std::vector<LpPoint> RankModel::seriesOf(const std::vector<const LocalRankSnapshot*>& snapshots) {
    std::vector<LpPoint> series;
    series.reserve(snapshots.size());
    for (const LocalRankSnapshot* snapshot : snapshots) {
        if (!snapshot->capturedAt)
            continue;
        const std::optional<qint64> lp = RankMath::absoluteLp(snapshot->tier, snapshot->division, snapshot->lp);
        if (!lp)
            continue;
        series.push_back({*snapshot->capturedAt, *lp, RankMath::label(snapshot->tier, snapshot->division)});
    }
    return series;
}

void RankModel::recompute() {
    m_current.reset();
    m_series.clear();
    if (store()) {
        const std::vector<const LocalRankSnapshot*> filtered = snapshotsOf(*store(), queueType(m_queue));
        if (!filtered.empty()) {
            const LocalRankSnapshot& newest = *filtered.back();
            m_current = Current{newest.tier, newest.division, newest.lp, newest.wins, newest.losses};
        }
        m_series = seriesOf(filtered);
    }
    layoutChart();
    Q_EMIT changed();
}

QString RankModel::currentTier() const {
    return m_current ? m_current->tier.value_or(QString()) : QString();
}

QString RankModel::currentLabel() const {
    return m_current ? RankMath::label(m_current->tier, m_current->division) : QString();
}

QString RankModel::lpText() const {
    return m_current ? QString::asprintf("%lld LP", static_cast<long long>(m_current->lp)) : QString();
}

QString RankModel::recordText() const {
    if (!m_current)
        return {};
    return QString::asprintf("%lldW %lldL", static_cast<long long>(m_current->wins),
                             static_cast<long long>(m_current->losses));
}

bool RankModel::hasWinRate() const {
    return m_current && m_current->wins + m_current->losses >= 1;
}

QString RankModel::winRateText() const {
    if (!hasWinRate())
        return {};
    const double percent = percentOf(m_current->wins, m_current->wins + m_current->losses);
    return QString::asprintf("%lld%% WR", static_cast<long long>(std::llround(percent)));
}

double RankModel::winPercent() const {
    if (!hasWinRate())
        return 0;
    return percentOf(m_current->wins, m_current->wins + m_current->losses);
}

std::vector<QPointF> RankModel::smoothLine(const std::vector<QPointF>& points, int stepsPerSegment) {
    const std::size_t n = points.size();
    if (n < 3 || stepsPerSegment <= 1)
        return points;

    // Monotone cubic Hermite (Fritsch–Carlson): a rank line must not dip below a snapshot it
    // never reached, which a plain Catmull-Rom curve does around sharp turns.
    std::vector<double> slope(n - 1);
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const double dx = points[k + 1].x() - points[k].x();
        slope[k] = dx > 0 ? (points[k + 1].y() - points[k].y()) / dx : 0.0;
    }
    std::vector<double> tangent(n);
    tangent[0] = slope[0];
    tangent[n - 1] = slope[n - 2];
    for (std::size_t k = 1; k + 1 < n; ++k)
        tangent[k] = slope[k - 1] * slope[k] > 0 ? (slope[k - 1] + slope[k]) / 2 : 0.0;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        if (slope[k] == 0) {
            tangent[k] = tangent[k + 1] = 0;
            continue;
        }
        const double a = tangent[k] / slope[k];
        const double b = tangent[k + 1] / slope[k];
        const double s = a * a + b * b;
        if (s > 9) {
            const double t = 3 / std::sqrt(s);
            tangent[k] = t * a * slope[k];
            tangent[k + 1] = t * b * slope[k];
        }
    }

    std::vector<QPointF> line;
    line.reserve((n - 1) * static_cast<std::size_t>(stepsPerSegment) + 1);
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const QPointF& p0 = points[k];
        const QPointF& p1 = points[k + 1];
        const double h = p1.x() - p0.x();
        for (int j = 0; j < stepsPerSegment; ++j) {
            const double t = static_cast<double>(j) / stepsPerSegment;
            const double t2 = t * t;
            const double t3 = t2 * t;
            const double h00 = 2 * t3 - 3 * t2 + 1;
            const double h10 = t3 - 2 * t2 + t;
            const double h01 = -2 * t3 + 3 * t2;
            const double h11 = t3 - t2;
            const double y = h00 * p0.y() + h10 * h * tangent[k] + h01 * p1.y() + h11 * h * tangent[k + 1];
            line.emplace_back(p0.x() + t * h, y);
        }
    }
    line.push_back(points.back());
    return line;
}

std::vector<qint64> RankModel::lpTicks(qint64 low, qint64 high, int wanted) {
    return ChartTicks::covering(low, high, wanted);
}

QString RankModel::pointCaption(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= m_series.size())
        return {};
    const LpPoint& point = m_series[static_cast<std::size_t>(index)];
    return point.label + QStringLiteral(" · ") +
           QLocale().toString(point.date.toLocalTime().date(), QLocale::ShortFormat);
}

int RankModel::pointAt(double x, double y, double width, double height, double reach) const {
    return pointAt(m_points, QPointF(x, y), QSizeF(width, height), reach);
}

int RankModel::pointAt(const std::vector<QPointF>& points, QPointF at, QSizeF plot, double reach) {
    if (plot.width() <= 0 || plot.height() <= 0)
        return -1;
    // The points run left to right: only those within reach horizontally are looked at.
    const double left = (at.x() - reach) / plot.width();
    auto it = std::lower_bound(points.begin(), points.end(), left,
                               [](const QPointF& point, double x) { return point.x() < x; });
    int found = -1;
    for (; it != points.end() && it->x() * plot.width() <= at.x() + reach; ++it)
        if (std::abs(it->y() * plot.height() - at.y()) <= reach)
            found = static_cast<int>(it - points.begin());
    return found;
}

void RankModel::layoutChart() {
    m_chartPoints.clear();
    m_points.clear();
    m_chartLine.clear();
    m_yTicks.clear();
    m_xTicks.clear();
    if (!hasChart())
        return;

    const auto [lowest, highest] = std::minmax_element(m_series.begin(), m_series.end(),
                                                       [](const LpPoint& a, const LpPoint& b) { return a.lp < b.lp; });
    // A little headroom so the line does not run along the frame.
    const qint64 pad = std::max<qint64>(10, (highest->lp - lowest->lp) / 10);
    const qint64 low = lowest->lp >= 0 ? std::max<qint64>(0, lowest->lp - pad) : lowest->lp - pad;
    const std::vector<qint64> ticks = lpTicks(low, highest->lp + pad, 4);
    const double bottom = static_cast<double>(ticks.front());
    const double range = static_cast<double>(ticks.back() - ticks.front());
    const auto yOf = [&](qint64 lp) { return 1.0 - (static_cast<double>(lp) - bottom) / range; };
    for (qint64 tick : ticks)
        m_yTicks.append(
            QVariantMap{{"y", yOf(tick)}, {"text", QString::asprintf("%lld", static_cast<long long>(tick))}});

    const qint64 start = m_series.front().date.toMSecsSinceEpoch();
    const qint64 span = m_series.back().date.toMSecsSinceEpoch() - start;
    const std::size_t n = m_series.size();
    const auto xOf = [&](std::size_t i) {
        return span > 0 ? static_cast<double>(m_series[i].date.toMSecsSinceEpoch() - start) / static_cast<double>(span)
                        : static_cast<double>(i) / static_cast<double>(n - 1);
    };

    std::vector<QPointF> points;
    points.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        points.emplace_back(xOf(i), yOf(m_series[i].lp));
        m_chartPoints.append(points.back());
    }
    m_points = points;
    // Dense series are already smooth at screen resolution.
    const int samples = n > 200 ? 1 : n > 60 ? 3 : 10;
    for (const QPointF& p : smoothLine(points, samples))
        m_chartLine.append(p);

    if (span <= 0)
        return;
    // Date marks: the finest of these steps that leaves at most six marks.
    struct DateStep {
        int days;
        int months;
    };
    static constexpr DateStep dateSteps[] = {{1, 0}, {2, 0}, {7, 0}, {14, 0}, {0, 1}, {0, 2}, {0, 3}, {0, 6}, {0, 12}};
    const QDate first = m_series.front().date.toLocalTime().date();
    const QDate last = m_series.back().date.toLocalTime().date();
    std::vector<QDate> marks;
    DateStep chosen{0, 12};
    for (const DateStep& step : dateSteps) {
        marks.clear();
        QDate d = first;
        if (step.days == 7 || step.days == 14)
            d = d.addDays((8 - d.dayOfWeek()) % 7); // the next Monday
        if (step.months > 0) {
            d = QDate(first.year(), first.month(), 1);
            if (d < first)
                d = d.addMonths(1);
            while ((d.month() - 1) % step.months != 0)
                d = d.addMonths(1);
        }
        for (; d <= last && marks.size() <= 6; d = step.days > 0 ? d.addDays(step.days) : d.addMonths(step.months))
            marks.push_back(d);
        chosen = step;
        if (marks.size() <= 6)
            break;
    }
    const QLocale locale;
    const bool crossesYears = first.year() != last.year();
    const QString format = chosen.days > 0       ? QStringLiteral("MMM d")
                           : chosen.months == 12 ? QStringLiteral("yyyy")
                           : crossesYears        ? QStringLiteral("MMM yyyy")
                                                 : QStringLiteral("MMM");
    for (const QDate& mark : marks) {
        const double x = static_cast<double>(mark.startOfDay().toMSecsSinceEpoch() - start) / static_cast<double>(span);
        if (x < 0 || x > 1)
            continue;
        m_xTicks.append(QVariantMap{{"x", x}, {"text", locale.toString(mark, format)}});
    }
}
