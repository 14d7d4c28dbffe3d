#pragma once

#include <QSettings>
#include <QTemporaryDir>
#include <memory>

// Preferences in a throw-away folder, never the player's own.
struct TestSettings {
    QTemporaryDir dir;
    std::unique_ptr<QSettings> settings =
        std::make_unique<QSettings>(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);

    QSettings& operator*() { return *settings; }
    QSettings* operator->() { return settings.get(); }
    // A new QSettings over the same file, as after a restart.
    void reopen() {
        settings->sync();
        settings = std::make_unique<QSettings>(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    }
};
