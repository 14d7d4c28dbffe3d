#pragma once

#include "overlay/live_client_data.h"
#include "overlay/overlay_controller.h"
#include "overlay/window_locator.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <chrono>
#include <functional>
#include <memory>

class PollingTask;
class WindowListSource;

// Runs the in-game overlay. While it is switched on, one loop on the main thread looks for the
// game's window, reads the live game when the window is there and keeps the strip over it; its
// status line says what it sees. It is off at every start, and while off nothing polls: no
// timer, no request, no window query.
class OverlayManager : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application state owns the overlay.")

    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)

public:
    static inline const QString offText = QStringLiteral("Overlay is off.");
    static inline const QString waitingText = QStringLiteral("Waiting for a game…");
    static inline const QString fullscreenText =
        QStringLiteral("Set League to Borderless — the overlay can't draw over true fullscreen.");
    static inline const QString windowFoundText = QStringLiteral("Game window found — waiting for live data…");

    // Where the overlay looks: the system's window list and screens and the game's port, unless a
    // test or a benchmark aims it elsewhere.
    struct Sources {
        std::shared_ptr<WindowListSource> windows;
        std::function<WindowLocator::Screens()> screens;
        quint16 livePort = LiveClientData::gamePort;

        static Sources system();
    };

    // The pause after a pass, by what the pass found.
    struct Cadence {
        std::chrono::milliseconds withoutWindow{2000};
        std::chrono::milliseconds withWindow{1500};
    };

    explicit OverlayManager(Sources sources = Sources::system(), QObject* parent = nullptr);
    ~OverlayManager() override;

    // Only while off.
    void setSources(Sources sources);
    void setCadence(Cadence cadence) { m_cadence = cadence; }

    [[nodiscard]] bool enabled() const { return m_enabled; }
    void setEnabled(bool enabled);
    [[nodiscard]] const QString& status() const { return m_status; }

    // Starts the loop afresh (ending one that runs) and says it is waiting.
    void start();
    // Ends the loop, hides the strip at once and says the overlay is off. A request in flight
    // is abandoned; the loop ends without touching anything.
    void stop();

    [[nodiscard]] bool isPolling() const;
    [[nodiscard]] OverlayController& controller() { return m_controller; }

    // "In game · Ahri (level 7)"; "live game" when the champion is unknown.
    [[nodiscard]] static QString liveText(const LiveClientData::Snapshot& snapshot);

Q_SIGNALS:
    void enabledChanged();
    void statusChanged();

private:
    static QCoro::Task<> loop(QPointer<OverlayManager> self, std::shared_ptr<PollingTask> task);
    void endTask();
    // Fixed texts notify only when they change; the live text notifies on every pass.
    void setStatus(const QString& status, bool notifyAlways = false);

    Sources m_sources;
    WindowLocator m_locator;
    std::unique_ptr<LiveClientData> m_live;
    OverlayController m_controller;
    Cadence m_cadence;
    std::shared_ptr<PollingTask> m_task;
    bool m_enabled = false;
    QString m_status = offText;
};
