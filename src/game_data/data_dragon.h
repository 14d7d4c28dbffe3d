#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QUrl>
#include <optional>

class QSettings;

// Addresses of the game publisher's static images and champion list. Every address is the CDN
// base + data version + a fixed path; the base can be moved (offline demos, tests) with the
// "quill.cdnBaseURL" preference.
class DataDragon {
public:
    static constexpr const char* defaultCdnBase = "https://ddragon.leagueoflegends.com/cdn/";
    static constexpr const char* cdnBaseKey = "quill.cdnBaseURL";

    explicit DataDragon(QString cdnBase = QString::fromLatin1(defaultCdnBase));
    [[nodiscard]] static DataDragon fromSettings(const QSettings& settings);

    [[nodiscard]] const QString& cdnBase() const { return m_base; }

    // An invalid QUrl when the pieces do not form a URL.
    [[nodiscard]] QUrl itemIcon(qint64 id, const QString& version) const;
    [[nodiscard]] QUrl profileIcon(qint64 id, const QString& version) const;
    [[nodiscard]] QUrl championIcon(const QString& championName, const QString& version) const;
    [[nodiscard]] QUrl championList(const QString& version) const;

    // Champion id → Data Dragon id from the champion list file; none when the file is not the
    // expected JSON object. Entries whose "key" is not a whole decimal number are skipped.
    [[nodiscard]] static std::optional<QHash<qint64, QString>> parseChampionList(const QByteArray& json);
    [[nodiscard]] static std::optional<qint64> parseChampionKey(const QString& key);

private:
    [[nodiscard]] QUrl make(const QString& tail) const;

    QString m_base;
};
