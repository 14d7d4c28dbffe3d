// A stand-in for the game's window on an X display: stand_in_game X Y WIDTH HEIGHT
// Start it under the game's name (bash: exec -a "League of Legends" stand_in_game …). It maps a
// plain window at that place, says "mapped" once it is on screen, and "click X Y" (root
// coordinates) for every mouse button pressed on it.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    xcb_intern_atom_reply_t* reply =
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, std::strlen(name), name), nullptr);
    const xcb_atom_t value = reply ? reply->atom : XCB_ATOM_NONE;
    std::free(reply);
    return value;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 5) {
        std::fprintf(stderr, "usage: stand_in_game X Y WIDTH HEIGHT\n");
        return 2;
    }
    const int x = std::atoi(argv[1]);
    const int y = std::atoi(argv[2]);
    const int width = std::atoi(argv[3]);
    const int height = std::atoi(argv[4]);

    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::fprintf(stderr, "stand_in_game: no X display\n");
        return 1;
    }
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    // A dark blue the strip is easy to tell from.
    const uint32_t values[] = {0x203050,
                               XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, int16_t(x), int16_t(y), uint16_t(width),
                      uint16_t(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    const uint32_t pid = uint32_t(getpid());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(connection, "_NET_WM_PID"), XCB_ATOM_CARDINAL,
                        32, 1, &pid);
    const char title[] = "stand-in game";
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        sizeof title - 1, title);
    xcb_map_window(connection, window);
    xcb_flush(connection);

    bool announced = false;
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        switch (event->response_type & 0x7f) {
        case XCB_EXPOSE:
            if (!announced) {
                std::printf("mapped\n");
                std::fflush(stdout);
                announced = true;
            }
            break;
        case XCB_BUTTON_PRESS: {
            const auto* press = reinterpret_cast<xcb_button_press_event_t*>(event);
            std::printf("click %d %d\n", press->root_x, press->root_y);
            std::fflush(stdout);
            break;
        }
        default:
            break;
        }
        std::free(event);
    }
    xcb_disconnect(connection);
    return 0;
}
