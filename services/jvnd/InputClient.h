#pragma once

#include "services/common/EventLoop.h"
#include "services/jvnd/Devices.h"
#include "services/jvnd/FolderWatch.h"
#include "system/files/Descriptor.h"

#include <optional>
#include <string>
#include <vector>

namespace jvnd {

// The user's one connection to jvninputd that governs: made while it is wanted, made again when it has gone, and told
// afresh each time what is to hold.
class InputClient final : public Devices {
public:
    // The loop outlives this object.
    InputClient(services::EventLoop& loop, std::string socketPath);

    void setWanted(bool wanted) override;
    void setKeyboard(const input::Settings& settings) override;
    void setLight(const input::Light& light) override;
    std::optional<std::vector<bluetooth::Address>> controllers() const override;
    Keyboards keyboards() const override { return m_keyboards; }

private:
    void connect();
    int tryToConnect();
    void watch(bool hasMore);
    void sendPending();
    void receive();
    void received(const void* message, std::size_t size);
    void disconnect();
    void setKeyboards(const Keyboards& keyboards);
    void retry(bool isAbsent);

    services::EventLoop& m_loop;
    std::string m_socketPath;
    bool m_isWanted = false;
    bool m_isRefused = false; // the last connection was
    input::Settings m_settings = input::makeMessage<input::Settings>();
    input::Light m_light = input::makeMessage<input::Light>();

    seat::Descriptor m_descriptor;
    services::EventLoop::Source m_ready;
    services::EventLoop::Source m_timer; // until the next attempt, or until the next light may be sent
    std::optional<FolderWatch> m_appears;
    std::chrono::milliseconds m_delay{0};
    std::optional<services::Moment> m_lastLight;
    bool m_owesHello = false;
    bool m_owesSettings = false;
    bool m_owesLight = false;
    std::vector<bluetooth::Address> m_controllers;
    Keyboards m_keyboards;
};

} // namespace jvnd
