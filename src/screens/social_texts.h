#pragma once

#include <QColor>
#include <QDateTime>
#include <QString>
#include <QVariantList>
#include <optional>

// The texts and colours the friends and player search screens show.
namespace SocialTexts {

// Shown in place of a duo fetch failure that is a web page or too long to read.
inline const QString backendDownText =
    QStringLiteral("The backend isn't responding right now. Make sure it's running, then retry.");
inline constexpr qsizetype longestDuoError = 160;

// The first two characters, upper-cased, of the first non-empty piece of the name split at "#"
// (of the whole name when every piece is empty): "Ahri#EUW" → "AH", "x" → "X".
[[nodiscard]] QString initials(const QString& name);
// The two colours of an initials tile, picked by a stable hash of the player's text id.
[[nodiscard]] QVariantList avatarColors(const QString& textId);
// A failed duo fetch's text as shown: itself, unless it contains "<html" or "<body" or runs to
// more than 160 characters (as a reader counts them), in which case the generic message.
[[nodiscard]] QString duosError(const QString& description);
// "58% WR": the share rounded to the nearest whole percent.
[[nodiscard]] QString winRateText(double winrate);
// Blue from a share of 0.5 up, red below, whatever the rounded text says.
[[nodiscard]] QColor winRateColor(double winrate);
// "last 3 days ago", "last yesterday"; empty when the text is no backend date. The phrase in
// the given ICU locale, the system's when empty.
[[nodiscard]] QString lastPlayed(const std::optional<QString>& timestamp, const QDateTime& now,
                                 const char* locale = "");
// "Mar 12, 2025" (abbreviated month, day and year in the locale's order); empty when the text is
// no backend date.
[[nodiscard]] QString playedOn(const std::optional<QString>& timestamp, const char* locale = "");
// A ranked queue's name: "Solo/Duo", "Flex", otherwise the queue type capitalised.
[[nodiscard]] QString queueName(const QString& queueType);
// The rank chip's tier: the rank text up to its first white space ("GOLD II" → "GOLD").
[[nodiscard]] QString tierOf(const QString& rank);

} // namespace SocialTexts
