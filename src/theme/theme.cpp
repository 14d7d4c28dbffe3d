#include "theme/theme.h"

#include <QTextBoundaryFinder>
#include <cmath>

namespace {

QVariantList toList(const Theme::Pair& pair) {
    return {pair[0], pair[1]};
}

} // namespace

int Theme::pixelSize(TextRole role) {
    switch (role) {
    case Micro:
        return 9;
    case Small:
        return 10;
    case Caption:
        return 11;
    case Footnote:
        return 12;
    case Body:
        return 13;
    case Callout:
        return 14;
    case Emphasis:
        return 15;
    case Headline:
        return 16;
    case Subtitle:
        return 17;
    case Figure:
        return 18;
    case Title:
        return 20;
    case Display:
        return 24;
    case DisplayLarge:
        return 26;
    case Brand:
        return 28;
    }
    return 13; // a role from elsewhere reads as body text
}

Theme::Pair Theme::tierPair(const QString& tier) {
    const QString key = tier.toUpper();
    if (key == QLatin1String("IRON"))
        return {QColor(125, 125, 125), QColor(74, 74, 74)};
    if (key == QLatin1String("BRONZE"))
        return {QColor(176, 123, 79), QColor(107, 68, 38)};
    if (key == QLatin1String("SILVER"))
        return {QColor(159, 180, 199), QColor(93, 112, 128)};
    if (key == QLatin1String("GOLD"))
        return {QColor(231, 196, 90), QColor(169, 128, 44)};
    if (key == QLatin1String("PLATINUM"))
        return {QColor(79, 214, 192), QColor(29, 138, 124)};
    if (key == QLatin1String("EMERALD"))
        return {QColor(55, 214, 122), QColor(23, 138, 76)};
    if (key == QLatin1String("DIAMOND"))
        return {QColor(125, 184, 255), QColor(59, 111, 212)};
    if (key == QLatin1String("MASTER"))
        return {QColor(180, 107, 232), QColor(122, 47, 176)};
    if (key == QLatin1String("GRANDMASTER"))
        return {QColor(232, 100, 95), QColor(165, 47, 42)};
    if (key == QLatin1String("CHALLENGER"))
        return {QColor(111, 208, 255), QColor(47, 127, 196)};
    return {QColor(90, 90, 106), QColor(55, 55, 74)};
}

Theme::Pair Theme::champPair(qint64 seed) {
    static const Pair pairs[6] = {
        {QColor(124, 58, 237), QColor(59, 29, 110)}, {QColor(10, 200, 185), QColor(10, 110, 125)},
        {QColor(224, 82, 78), QColor(122, 42, 40)},  {QColor(231, 196, 90), QColor(169, 128, 44)},
        {QColor(83, 131, 232), QColor(42, 74, 158)}, {QColor(55, 214, 122), QColor(23, 138, 76)},
    };
    // Taking the remainder first keeps the smallest 64-bit value from overflowing on negation.
    const qint64 index = seed % 6;
    return pairs[index < 0 ? -index : index];
}

QColor Theme::kda(double value) {
    if (value >= 5.0)
        return orange();
    if (value >= 4.0)
        return teal();
    if (value >= 3.0)
        return win();
    if (value >= 2.0)
        return white(0.72);
    return white(0.55); // below 2, and NaN, which fails every comparison above
}

qint64 Theme::stableHash(const QString& text) {
    // FNV-1a over UTF-16 code units: cheap and identical on every run and machine.
    quint64 hash = 1469598103934665603ULL;
    for (QChar c : text) {
        hash ^= c.unicode();
        hash *= 1099511628211ULL;
    }
    return static_cast<qint64>(hash >> 1);
}

QVariantList Theme::tierGradient(const QString& tier) const {
    return toList(tierPair(tier));
}

QVariantList Theme::champGradient(qint64 seed) const {
    return toList(champPair(seed));
}

QVariantList Theme::nameGradient(const QString& name) const {
    return toList(champPair(stableHash(name)));
}

QString Theme::percentText(double pct) {
    return QString::asprintf("%lld%%", static_cast<long long>(std::llround(pct)));
}

QString Theme::kdaLine(qint64 kills, qint64 deaths, qint64 assists) {
    const QString slash = QStringLiteral(" <font color='%1'>/</font> ").arg(textFaint().name(QColor::HexArgb));
    return QString::number(kills) + slash + QStringLiteral("<font color='%1'>").arg(loss().name()) +
           QString::number(deaths) + QStringLiteral("</font>") + slash + QString::number(assists);
}

double Theme::winShare(qint64 wins, qint64 losses) {
    const qint64 total = wins + losses;
    return total > 0 ? static_cast<double>(wins) / static_cast<double>(total) : 0.0;
}

QString Theme::initials(const QString& name) {
    // By characters as the player sees them, so that a letter with its accent stays whole.
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
    qsizetype end = 0;
    for (int taken = 0; taken < 2; ++taken) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0)
            break;
        end = next;
    }
    return name.left(end).toUpper();
}
