#include "overlay/overlay_manager.h"

#include "overlay/polling_task.h"
#include "overlay/x11_window_list.h"

OverlayManager::Sources OverlayManager::Sources::system() {
    return Sources{std::make_shared<X11WindowList>(), &WindowLocator::systemScreens, LiveClientData::gamePort};
}

OverlayManager::OverlayManager(Sources sources, QObject* parent)
    : QObject(parent), m_sources(std::move(sources)), m_locator(m_sources.windows, m_sources.screens),
      m_live(std::make_unique<LiveClientData>(m_sources.livePort)) {}

OverlayManager::~OverlayManager() {
    // The loop resumes and ends here, while everything it could reach still exists.
    endTask();
}

void OverlayManager::setSources(Sources sources) {
    if (m_enabled)
        return;
    m_sources = std::move(sources);
    m_locator = WindowLocator(m_sources.windows, m_sources.screens);
    m_live = std::make_unique<LiveClientData>(m_sources.livePort);
}

void OverlayManager::setEnabled(bool enabled) {
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    Q_EMIT enabledChanged();
    if (enabled)
        start();
    else
        stop();
}

bool OverlayManager::isPolling() const {
    return m_task && !m_task->cancelled();
}

void OverlayManager::start() {
    setStatus(waitingText);
    endTask();
    m_task = std::make_shared<PollingTask>();
    // Tasks start at once and run until their first wait; this one then lives on its own.
    loop(QPointer<OverlayManager>(this), m_task);
}

void OverlayManager::stop() {
    endTask();
    m_controller.hide();
    setStatus(offText);
}

void OverlayManager::endTask() {
    if (!m_task)
        return;
    // Both resume the loop before they return, and it then ends at its check; the task itself is
    // kept until the next start, so it never goes away under its own timer.
    m_task->cancel();
    m_live->abort();
}

QString OverlayManager::liveText(const LiveClientData::Snapshot& snapshot) {
    return QStringLiteral("In game · %1 (level %2)")
        .arg(snapshot.championName.isEmpty() ? QStringLiteral("live game") : snapshot.championName)
        .arg(snapshot.level);
}

void OverlayManager::setStatus(const QString& status, bool notifyAlways) {
    if (status == m_status && !notifyAlways)
        return;
    m_status = status;
    Q_EMIT statusChanged();
}

QCoro::Task<> OverlayManager::loop(QPointer<OverlayManager> self, std::shared_ptr<PollingTask> task) {
    while (!task->cancelled() && self) {
        std::chrono::milliseconds pause = self->m_cadence.withWindow;
        const std::optional<WindowLocator::Game> game = self->m_locator.locate();
        if (!game) {
            self->m_controller.hide();
            self->setStatus(waitingText);
            pause = self->m_cadence.withoutWindow;
        } else if (game->isFullscreen) {
            self->m_controller.hide();
            self->setStatus(fullscreenText);
        } else {
            const std::optional<LiveClientData::Snapshot> snapshot = co_await self->m_live->snapshot();
            // Switched off (or gone) meanwhile: what the answer says is no longer wanted.
            if (task->cancelled() || !self)
                co_return;
            if (snapshot) {
                self->m_controller.update(*snapshot, *game);
                self->setStatus(liveText(*snapshot), true);
            } else {
                self->m_controller.hide();
                self->setStatus(windowFoundText);
            }
        }
        co_await task->wait(pause);
    }
}
