#include "theme/symbols.h"

#include <QHash>

namespace {

// Symbol name → Material Icons code point.
const QHash<QString, char16_t>& table() {
    static const QHash<QString, char16_t> glyphs = {
        {QStringLiteral("ant.fill"), 0xe868},                      // bug_report
        {QStringLiteral("arrow.clockwise"), 0xe5d5},               // refresh
        {QStringLiteral("bolt.shield.fill"), 0xe32a},              // security
        {QStringLiteral("building.2.fill"), 0xea40},               // apartment
        {QStringLiteral("chart.line.uptrend.xyaxis"), 0xe8e5},     // trending_up
        {QStringLiteral("chart.xyaxis.line"), 0xe6e1},             // show_chart
        {QStringLiteral("checkmark.shield.fill"), 0xe8e8},         // verified_user
        {QStringLiteral("chevron.down"), 0xe5cf},                  // expand_more
        {QStringLiteral("chevron.left"), 0xe5cb},                  // chevron_left
        {QStringLiteral("chevron.right"), 0xe5cc},                 // chevron_right
        {QStringLiteral("circle.fill"), 0xef4a},                   // circle
        {QStringLiteral("clock.badge.xmark"), 0xe426},             // timer_off
        {QStringLiteral("envelope.fill"), 0xe158},                 // mail
        {QStringLiteral("exclamationmark.triangle.fill"), 0xe002}, // warning
        {QStringLiteral("eye.fill"), 0xe8f4},                      // visibility
        {QStringLiteral("flame.fill"), 0xef55},                    // local_fire_department
        {QStringLiteral("gamecontroller.fill"), 0xea28},           // sports_esports
        {QStringLiteral("info.circle"), 0xe88f},                   // info_outline
        {QStringLiteral("list.bullet"), 0xe241},                   // format_list_bulleted
        {QStringLiteral("list.bullet.rectangle"), 0xe8ef},         // view_list
        {QStringLiteral("lock.fill"), 0xe897},                     // lock
        {QStringLiteral("magnifyingglass"), 0xe8b6},               // search
        {QStringLiteral("person.2"), 0xe7fc},                      // people_outline
        {QStringLiteral("person.2.fill"), 0xe7fb},                 // people
        {QStringLiteral("person.2.slash"), 0xe747},                // group_off
        {QStringLiteral("person.3"), 0xf233},                      // groups
        {QStringLiteral("person.crop.circle.fill"), 0xe853},       // account_circle
        {QStringLiteral("rectangle.on.rectangle"), 0xe3e0},        // filter_none
        {QStringLiteral("scope"), 0xe1b3},                         // gps_fixed
        {QStringLiteral("shield.fill"), 0xe9e0},                   // shield
        {QStringLiteral("square.grid.2x2"), 0xe9b0},               // grid_view
        {QStringLiteral("square.grid.2x2.fill"), 0xe871},          // dashboard
        {QStringLiteral("wifi.exclamationmark"), 0xe648},          // wifi_off
        {QStringLiteral("xmark.circle.fill"), 0xe5c9},             // cancel
    };
    return glyphs;
}

} // namespace

QString Symbols::glyphFor(const QString& name) {
    const auto found = table().constFind(name);
    return found == table().constEnd() ? QString() : QString(QChar(*found));
}

QStringList Symbols::names() {
    return table().keys();
}
