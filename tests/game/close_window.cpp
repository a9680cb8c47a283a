// close_window WINDOW: asks a window to close, as a window manager does.
#include <X11/Xlib.h>
#include <cstdlib>

int main(int, char **arguments)
{
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return 1;
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = strtoul(arguments[1], nullptr, 10);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
    return 0;
}
