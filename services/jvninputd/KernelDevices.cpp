#include "services/jvninputd/KernelDevices.h"

#include <libevdev/libevdev.h>
#include <utility>

namespace jvninputd {

KernelDevices::KernelDevices(services::EventLoop& loop, Callbacks callbacks)
    : m_loop(loop), m_callbacks(std::move(callbacks)) {}

void KernelDevices::add(KeyboardId id, const std::string& node) {
    auto& keyboard = m_keyboards[id];
    keyboard = std::make_unique<KeyboardDevice>(
        m_loop, node,
        KeyboardDevice::Callbacks{[this, id](std::span<const Event> events) { m_callbacks.frame(id, events); },
                                  [this, id] { m_callbacks.gone(id); }});
    if (m_pad) keyboard->makeStandIn();
}

void KernelDevices::remove(KeyboardId id) { m_keyboards.erase(id); }

KeyboardDevice* KernelDevices::find(KeyboardId id) {
    const auto found = m_keyboards.find(id);
    return found == m_keyboards.end() ? nullptr : found->second.get();
}

KeySet KernelDevices::open(KeyboardId id) {
    KeyboardDevice* keyboard = find(id);
    return keyboard ? keyboard->open() : KeySet{};
}

void KernelDevices::close(KeyboardId id) {
    if (KeyboardDevice* keyboard = find(id)) keyboard->close();
}

Devices::Taken KernelDevices::take(KeyboardId id, KeySet& keysDown) {
    KeyboardDevice* keyboard = find(id);
    return keyboard ? keyboard->take(keysDown) : Taken::no;
}

void KernelDevices::giveBack(KeyboardId id) {
    if (KeyboardDevice* keyboard = find(id)) keyboard->giveBack();
}

void KernelDevices::forward(KeyboardId id, std::span<const Event> events) {
    if (KeyboardDevice* keyboard = find(id)) keyboard->forward(events);
}

bool KernelDevices::makePad(input::Profile profile) {
    m_listeners.reset();
    m_pad.reset();
    if (profile != input::Profile::none) {
        m_listeners = std::make_unique<ListenerWatch>(m_loop, m_callbacks.listening);
        m_pad = VirtualDevice::create(*describePad(profile));
        if (m_pad)
            m_listeners->follow([this] { return m_pad->nodeNames(); });
        else
            m_listeners.reset();
    }
    for (auto& [id, keyboard] : m_keyboards) {
        if (m_pad)
            keyboard->makeStandIn();
        else
            keyboard->removeStandIn();
    }
    return profile == input::Profile::none || m_pad;
}

void KernelDevices::emit(std::span<const Event> events) {
    if (m_pad) m_pad->write(events);
}

} // namespace jvninputd
