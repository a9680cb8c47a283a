// close_window: asks every window of a display that listens to close, as a window manager would.
#include <X11/Xlib.h>

static void askToClose(Display *display, Window window)
{
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, window, False, NoEventMask, &event);
}

static void askTree(Display *display, Window window)
{
    Atom *protocols = nullptr;
    int protocolCount = 0;
    if (XGetWMProtocols(display, window, &protocols, &protocolCount))
        askToClose(display, window);
    XFree(protocols);
    Window root, parent, *children = nullptr;
    unsigned childCount = 0;
    XQueryTree(display, window, &root, &parent, &children, &childCount);
    for (unsigned i = 0; i < childCount; ++i)
        askTree(display, children[i]);
    XFree(children);
}

int main()
{
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return 1;
    askTree(display, DefaultRootWindow(display));
    XCloseDisplay(display);
    return 0;
}
