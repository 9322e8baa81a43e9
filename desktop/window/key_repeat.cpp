#include "desktop/window/key_repeat.h"

#include <QGuiApplication>

#include <dlfcn.h>

void seat::askForPlainKeyRepeat() {
#if QT_CONFIG(xcb)
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->display()) return;
    // The library is the toolkit's own dependency, loaded if it speaks with an X server.
    void* const library = dlopen("libX11.so.6", RTLD_NOLOAD | RTLD_LAZY | RTLD_LOCAL);
    if (!library) return;
    using Ask = int (*)(Display * display, int detectable, int* supported);
    if (const auto ask = reinterpret_cast<Ask>(dlsym(library, "XkbSetDetectableAutoRepeat")))
        ask(x11->display(), /*detectable=*/1, nullptr);
    dlclose(library);
#endif
}
