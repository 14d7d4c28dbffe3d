#pragma once

#include "overlay/window_list_source.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <cstdint>

struct xcb_connection_t;

// The window list of an X11 display: the window manager's stacking list, or, where no window
// manager keeps one (a bare X server), the root window's children; only mapped windows, front
// to back. A window's owner is the process named by its _NET_WM_PID. The connection is made on
// the first query and kept; nothing is asked of the display before that.
class X11WindowList : public WindowListSource {
public:
    X11WindowList();
    ~X11WindowList() override;
    X11WindowList(const X11WindowList&) = delete;
    X11WindowList& operator=(const X11WindowList&) = delete;

    std::optional<QList<Window>> windows() override;

    // The name a process goes by, from its /proc/PID/cmdline and /proc/PID/comm contents.
    [[nodiscard]] static QString processName(const QByteArray& commandLine, const QByteArray& comm);

private:
    bool connect();
    void disconnect();
    [[nodiscard]] QString ownerOf(quint32 pid) const;

    xcb_connection_t* m_connection = nullptr;
    std::uint32_t m_root = 0;
    std::uint32_t m_clientListStacking = 0;
    std::uint32_t m_wmPid = 0;
    std::uint32_t m_windowType = 0;
    std::uint32_t m_typeDesktop = 0;
    std::uint32_t m_typeDock = 0;
    // The owner of each window listed last time, by window. A window keeps the process that made
    // it, so its owner is read from /proc once rather than every pass; a window that now names
    // another process is read again.
    struct Owner {
        quint32 pid = 0;
        QString name;
    };
    QHash<std::uint32_t, Owner> m_owners;
};
