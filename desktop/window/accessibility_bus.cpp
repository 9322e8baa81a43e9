#include "desktop/window/accessibility_bus.h"

#include "system/bus/BusRelay.h"

#include <QDBusConnection>
#include <QGuiApplication>

#include <dlfcn.h>
#include <memory>
#include <string>

#if QT_CONFIG(xcb)

namespace {

// The library is the toolkit's own dependency, loaded if it speaks with an X server.
class XLibrary {
public:
    XLibrary() : m_handle(::dlopen("libX11.so.6", RTLD_NOLOAD | RTLD_LAZY | RTLD_LOCAL)) {}
    ~XLibrary() {
        if (m_handle) ::dlclose(m_handle);
    }
    XLibrary(const XLibrary&) = delete;
    XLibrary& operator=(const XLibrary&) = delete;

    // nullptr when it is not there.
    template <class Function> Function* find(const char* name) const {
        return m_handle ? reinterpret_cast<Function*>(::dlsym(m_handle, name)) : nullptr;
    }

private:
    void* m_handle;
};

using Intern = unsigned long(Display*, const char* name, int onlyIfThere);
using Root = unsigned long(Display*);
using GetProperty = int(Display*, unsigned long window, unsigned long property, long offset, long length, int remove,
                        unsigned long type, unsigned long* actualType, int* format, unsigned long* items,
                        unsigned long* left, unsigned char** value);
using Free = int(unsigned char*); // of anything

std::string addressOnScreen(Display* display) {
    const XLibrary library;
    const auto intern = library.find<Intern>("XInternAtom");
    const auto root = library.find<Root>("XDefaultRootWindow");
    const auto getProperty = library.find<GetProperty>("XGetWindowProperty");
    const auto free = library.find<Free>("XFree");
    if (!intern || !root || !getProperty || !free) return {};
    const unsigned long property = intern(display, "AT_SPI_BUS", /*onlyIfThere=*/1);
    if (property == 0) return {};
    constexpr unsigned long typeOfText = 31; // as the protocol numbers it
    constexpr long longest = 256;            // in units of four bytes
    unsigned long type = 0;
    unsigned long items = 0;
    unsigned long left = 0;
    int format = 0;
    unsigned char* value = nullptr;
    getProperty(display, root(display), property, 0, longest, /*remove=*/0, typeOfText, &type, &format, &items, &left,
                &value);
    const std::unique_ptr<unsigned char, Free*> owner(value, free);
    return value && format == 8 ? std::string(reinterpret_cast<const char*>(value), items) : std::string();
}

} // namespace

void seat::relayAccessibilityBusOfScreen(BusRelay& relay) {
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->display()) return;
    const std::string address = addressOnScreen(x11->display());
    if (address.empty()) return;
    relay.setAccessible();
    QDBusConnection::connectToBus(QString::fromStdString(relay.doorToAccessibility(address)),
                                  QLatin1String(toolkitsAccessibilityConnection));
}

#else

void seat::relayAccessibilityBusOfScreen(BusRelay&) {}

#endif
