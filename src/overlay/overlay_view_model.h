#pragma once

#include "overlay/overlay_manager.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

// What the overlay's settings screen shows beside the manager's own switch and status: the
// colour of the status dot and the "How it works" lines.
class OverlayViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(OverlayManager* overlay READ overlay WRITE setOverlay NOTIFY overlayChanged)
    Q_PROPERTY(bool statusIsLive READ statusIsLive NOTIFY statusIsLiveChanged)
    Q_PROPERTY(QStringList howItWorks READ howItWorks CONSTANT)

public:
    explicit OverlayViewModel(QObject* parent = nullptr);

    [[nodiscard]] OverlayManager* overlay() const { return m_overlay; }
    void setOverlay(OverlayManager* overlay);
    // True only while the status is the live text.
    [[nodiscard]] bool statusIsLive() const { return m_statusIsLive; }
    [[nodiscard]] QStringList howItWorks() const { return howItWorks(runsOnMacOs); }

    // The bullets as inline Markdown. Only on macOS does true fullscreen live in a Space of its
    // own; elsewhere the first line gives the reason the player meets there.
    [[nodiscard]] static QStringList howItWorks(bool onMacOs);
    [[nodiscard]] static bool isLiveStatus(const QString& status);

#ifdef Q_OS_MACOS
    static constexpr bool runsOnMacOs = true;
#else
    static constexpr bool runsOnMacOs = false;
#endif

Q_SIGNALS:
    void overlayChanged();
    void statusIsLiveChanged();

private:
    void refresh();

    QPointer<OverlayManager> m_overlay;
    QMetaObject::Connection m_statusConnection;
    bool m_statusIsLive = false;
};
