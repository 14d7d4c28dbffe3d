#include "overlay/x11_window_list.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class Reply> using ReplyPtr = std::unique_ptr<Reply, FreeReply>;

// A window on the dock's layer is not an application window; anything else is layer 0, as the
// X server knows no layers of its own.
constexpr qint64 dockLayer = 20;

std::uint32_t internAtom(xcb_connection_t* connection, const char* name) {
    const xcb_intern_atom_cookie_t cookie = xcb_intern_atom(connection, 0, std::uint16_t(qstrlen(name)), name);
    ReplyPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : std::uint32_t(XCB_ATOM_NONE);
}

QByteArray readProcFile(quint32 pid, const char* entry) {
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(entry)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(4096);
}

} // namespace

X11WindowList::X11WindowList() = default;

X11WindowList::~X11WindowList() {
    disconnect();
}

void X11WindowList::disconnect() {
    if (m_connection)
        xcb_disconnect(m_connection);
    m_connection = nullptr;
    m_owners.clear(); // another server's windows may reuse the ids
}

bool X11WindowList::connect() {
    if (m_connection && !xcb_connection_has_error(m_connection))
        return true;
    disconnect();
    // A connection of our own, so the queries neither depend on nor disturb the platform's.
    int screenNumber = 0;
    m_connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(m_connection)) {
        disconnect();
        return false;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i)
        xcb_screen_next(&screens);
    if (screens.rem == 0) {
        disconnect();
        return false;
    }
    m_root = screens.data->root;
    m_clientListStacking = internAtom(m_connection, "_NET_CLIENT_LIST_STACKING");
    m_wmPid = internAtom(m_connection, "_NET_WM_PID");
    m_windowType = internAtom(m_connection, "_NET_WM_WINDOW_TYPE");
    m_typeDesktop = internAtom(m_connection, "_NET_WM_WINDOW_TYPE_DESKTOP");
    m_typeDock = internAtom(m_connection, "_NET_WM_WINDOW_TYPE_DOCK");
    return true;
}

QString X11WindowList::processName(const QByteArray& commandLine, const QByteArray& comm) {
    // argv[0], not comm: the kernel cuts comm to 15 bytes ("League of Legen"). Nor the
    // executable's path: under Wine that is the loader, and a program started under another
    // name keeps its own. Wine sets argv[0] to the Windows path of the .exe, hence both slashes.
    const QByteArray first = commandLine.left(commandLine.indexOf('\0'));
    const qsizetype slash = std::max(first.lastIndexOf('/'), first.lastIndexOf('\\'));
    const QString name = QString::fromUtf8(first.mid(slash + 1));
    if (!name.isEmpty())
        return name;
    return QString::fromUtf8(comm).trimmed();
}

QString X11WindowList::ownerOf(quint32 pid) const {
    if (pid == 0)
        return {};
    return processName(readProcFile(pid, "cmdline"), readProcFile(pid, "comm"));
}

std::optional<QList<WindowListSource::Window>> X11WindowList::windows() {
    if (!connect())
        return std::nullopt;

    // Both lists are asked for at once: without a window manager the first is missing, and asking
    // for the second only then would cost another round trip to the server.
    std::vector<xcb_window_t> stack;
    const xcb_get_property_cookie_t listCookie =
        xcb_get_property(m_connection, 0, m_root, m_clientListStacking, XCB_ATOM_WINDOW, 0, 1 << 16);
    const xcb_query_tree_cookie_t treeCookie = xcb_query_tree(m_connection, m_root);
    ReplyPtr<xcb_get_property_reply_t> list(xcb_get_property_reply(m_connection, listCookie, nullptr));
    if (!list) {
        xcb_discard_reply(m_connection, treeCookie.sequence);
        disconnect();
        return std::nullopt;
    }
    if (list->type == XCB_ATOM_WINDOW && list->format == 32) {
        xcb_discard_reply(m_connection, treeCookie.sequence);
        const auto* ids = static_cast<const xcb_window_t*>(xcb_get_property_value(list.get()));
        stack.assign(ids, ids + xcb_get_property_value_length(list.get()) / 4);
    } else {
        // No window manager keeps a list: the top-level windows are the root's children.
        ReplyPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(m_connection, treeCookie, nullptr));
        if (!tree)
            return std::nullopt;
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        stack.assign(children, children + xcb_query_tree_children_length(tree.get()));
    }

    // Every question for every window goes out before the first answer is read: one round trip.
    struct Pending {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
        xcb_translate_coordinates_cookie_t origin;
        xcb_get_property_cookie_t pid;
        xcb_get_property_cookie_t type;
    };
    std::vector<Pending> pending;
    pending.reserve(stack.size());
    // Both lists run bottom to top; the window list runs front to back.
    for (auto it = stack.rbegin(); it != stack.rend(); ++it) {
        const xcb_window_t window = *it;
        pending.push_back({window, xcb_get_window_attributes(m_connection, window),
                           xcb_get_geometry(m_connection, window),
                           xcb_translate_coordinates(m_connection, window, m_root, 0, 0),
                           xcb_get_property(m_connection, 0, window, m_wmPid, XCB_ATOM_CARDINAL, 0, 1),
                           xcb_get_property(m_connection, 0, window, m_windowType, XCB_ATOM_ATOM, 0, 32)});
    }

    // Qt's coordinates are the display's pixels divided by its scale, which is 1 unless Qt was
    // told to scale.
    const double scale = qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    QHash<std::uint32_t, Owner> owners;
    QHash<quint32, QString> namesRead; // the processes read this time, for their other windows
    QList<Window> windows;
    for (const Pending& query : pending) {
        // A window that went away meanwhile answers with errors; it is simply left out.
        ReplyPtr<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(m_connection, query.attributes, nullptr));
        ReplyPtr<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(m_connection, query.geometry, nullptr));
        ReplyPtr<xcb_translate_coordinates_reply_t> origin(
            xcb_translate_coordinates_reply(m_connection, query.origin, nullptr));
        ReplyPtr<xcb_get_property_reply_t> pid(xcb_get_property_reply(m_connection, query.pid, nullptr));
        ReplyPtr<xcb_get_property_reply_t> type(xcb_get_property_reply(m_connection, query.type, nullptr));
        if (!attributes || !geometry || !origin || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;

        qint64 layer = 0;
        if (type && type->type == XCB_ATOM_ATOM && type->format == 32) {
            const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(type.get()));
            const int count = xcb_get_property_value_length(type.get()) / 4;
            if (count > 0 && atoms[0] == m_typeDesktop)
                continue; // desktop elements are not windows of anyone's
            if (count > 0 && atoms[0] == m_typeDock)
                layer = dockLayer;
        }

        Window window;
        if (pid && pid->type == XCB_ATOM_CARDINAL && pid->format == 32 &&
            xcb_get_property_value_length(pid.get()) >= 4) {
            const quint32 id = *static_cast<const quint32*>(xcb_get_property_value(pid.get()));
            const auto known = m_owners.constFind(query.window);
            Owner owner;
            if (known != m_owners.cend() && known->pid == id) {
                owner = *known;
            } else {
                auto read = namesRead.constFind(id);
                if (read == namesRead.cend())
                    read = namesRead.insert(id, ownerOf(id));
                owner = Owner{id, *read};
            }
            owners.insert(query.window, owner);
            window.ownerName = owner.name;
        }
        window.layer = layer;
        window.bounds =
            QRectF(origin->dst_x / scale, origin->dst_y / scale, geometry->width / scale, geometry->height / scale);
        windows.append(std::move(window));
    }
    m_owners = std::move(owners);
    return windows;
}
