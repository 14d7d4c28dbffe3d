#include "screens/timeline_texts.h"

#include "screens/text_case.h"

namespace TimelineTexts {

namespace {

QString side(bool mine) {
    return mine ? QStringLiteral("your team") : QStringLiteral("enemy");
}

QString nameOrUnknown(const std::optional<QString>& name) {
    return name.value_or(QStringLiteral("?"));
}

// Seconds ÷ 60 rounded down, and what is left, so that a negative time still reads as a clock.
std::pair<qint64, qint64> minutesAndSeconds(qint64 seconds) {
    qint64 minutes = seconds / 60;
    qint64 rest = seconds % 60;
    if (rest < 0) {
        rest += 60;
        --minutes;
    }
    return {minutes, rest};
}

} // namespace

QString goldThousands(qint64 gold) {
    return QString::asprintf("%+.1fk", static_cast<double>(gold) / 1000.0);
}

QString clock(qint64 seconds) {
    const auto [minutes, rest] = minutesAndSeconds(seconds);
    return QString::asprintf("%lld:%02lld", static_cast<long long>(minutes), static_cast<long long>(rest));
}

QString laneName(const std::optional<QString>& lane) {
    if (lane == QLatin1String("TOP_LANE"))
        return QStringLiteral("Top");
    if (lane == QLatin1String("MID_LANE"))
        return QStringLiteral("Mid");
    if (lane == QLatin1String("BOT_LANE"))
        return QStringLiteral("Bot");
    return {};
}

QString dragonName(const QString& subtype) {
    QString name = subtype;
    name.remove(QStringLiteral("_DRAGON"));
    name.replace(QLatin1Char('_'), QLatin1Char(' '));
    return TextCase::capitalised(name);
}

QString eventSymbol(const TimelineSummaryDto::Event& event) {
    if (event.kind == QLatin1String("kill"))
        return QStringLiteral("scope");
    if (event.kind == QLatin1String("monster")) {
        if (event.monster == QLatin1String("DRAGON"))
            return QStringLiteral("flame.fill");
        if (event.monster == QLatin1String("BARON_NASHOR"))
            return QStringLiteral("ant.fill");
        if (event.monster == QLatin1String("RIFTHERALD"))
            return QStringLiteral("eye.fill");
        return QStringLiteral("shield.fill");
    }
    if (event.kind == QLatin1String("building"))
        return QStringLiteral("building.2.fill");
    return QStringLiteral("circle.fill");
}

QString eventLabel(const TimelineSummaryDto::Event& event) {
    const QString dash = QStringLiteral(" — ");
    if (event.kind == QLatin1String("kill"))
        return nameOrUnknown(event.killer) + QStringLiteral(" killed ") + nameOrUnknown(event.victim);
    if (event.kind == QLatin1String("monster")) {
        if (event.monster == QLatin1String("DRAGON"))
            return (event.subtype ? dragonName(*event.subtype) + QStringLiteral(" Dragon") : QStringLiteral("Dragon")) +
                   dash + side(event.mine);
        if (event.monster == QLatin1String("BARON_NASHOR"))
            return QStringLiteral("Baron Nashor") + dash + side(event.mine);
        if (event.monster == QLatin1String("RIFTHERALD"))
            return QStringLiteral("Rift Herald") + dash + side(event.mine);
        return QStringLiteral("Objective") + dash + side(event.mine);
    }
    if (event.kind == QLatin1String("building")) {
        QString label = event.building == QLatin1String("INHIBITOR_BUILDING") ? QStringLiteral("Inhibitor")
                                                                              : QStringLiteral("Tower");
        const QString lane = laneName(event.lane);
        if (!lane.isEmpty())
            label += QStringLiteral(" (") + lane + QLatin1Char(')');
        return label + dash + side(event.mine);
    }
    return {};
}

QString firstBlood(const TimelineSummaryDto::FirstBlood& firstBlood) {
    return QStringLiteral("First blood ") +
           (firstBlood.mine ? QStringLiteral("for your team") : QStringLiteral("against you")) +
           QStringLiteral(" at ") + clock(firstBlood.t) + QStringLiteral(" — ") + nameOrUnknown(firstBlood.killer) +
           QStringLiteral(" → ") + nameOrUnknown(firstBlood.victim);
}

} // namespace TimelineTexts
