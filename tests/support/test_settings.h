#pragma once

#include <QSettings>
#include <QTemporaryDir>
#include <memory>

// Preferences in a throw-away folder, never the player's own. Static data is asked of a
// loopback port where nothing listens, so no test reaches the internet; tests that serve it
// point the preference elsewhere.
struct TestSettings {
    QTemporaryDir dir;
    std::unique_ptr<QSettings> settings =
        std::make_unique<QSettings>(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);

    TestSettings() {
        settings->setValue(QStringLiteral("quill.cdnBaseURL"), QStringLiteral("http://127.0.0.1:9/cdn/"));
    }

    QSettings& operator*() { return *settings; }
    QSettings* operator->() { return settings.get(); }
    // A new QSettings over the same file, as after a restart.
    void reopen() {
        settings->sync();
        settings = std::make_unique<QSettings>(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    }
};
