#include "app/nav_section.h"

QString NavSection::titleOf(Section section) {
    switch (section) {
    case Overview:
        return QStringLiteral("Overview");
    case History:
        return QStringLiteral("Match History");
    case Champions:
        return QStringLiteral("Champions");
    case Rank:
        return QStringLiteral("Rank");
    case Friends:
        return QStringLiteral("Friends");
    case Search:
        return QStringLiteral("Search");
    case Overlay:
        return QStringLiteral("Overlay");
    }
    return {};
}

QString NavSection::symbolOf(Section section) {
    switch (section) {
    case Overview:
        return QStringLiteral("square.grid.2x2.fill");
    case History:
        return QStringLiteral("list.bullet");
    case Champions:
        return QStringLiteral("checkmark.shield.fill");
    case Rank:
        return QStringLiteral("chart.line.uptrend.xyaxis");
    case Friends:
        return QStringLiteral("person.2.fill");
    case Search:
        return QStringLiteral("magnifyingglass");
    case Overlay:
        return QStringLiteral("rectangle.on.rectangle");
    }
    return {};
}

std::optional<NavSection::Section> NavSection::fromTitle(const QString& title) {
    for (int i = 0; i < count(); ++i)
        if (titleOf(static_cast<Section>(i)) == title)
            return static_cast<Section>(i);
    return std::nullopt;
}
