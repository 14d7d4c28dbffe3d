#pragma once

#include <QDateTime>
#include <QString>

namespace RelativeTime {

// "2 hours ago", "yesterday", "last week", … in the given ICU locale ("" for the system's),
// counted in the largest whole unit between the two instants.
[[nodiscard]] QString phrase(const QDateTime& then, const QDateTime& now, const char* locale = "");

} // namespace RelativeTime
