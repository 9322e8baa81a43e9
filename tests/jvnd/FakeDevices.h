#pragma once

#include "services/jvnd/Devices.h"

namespace testing_support {

// Devices that are as the test says.
class FakeDevices final : public jvnd::Devices {
public:
    void setControllers(std::optional<std::vector<bluetooth::Address>> controllers) {
        m_controllers = std::move(controllers);
        tellChanged();
    }

    void setWanted(bool wanted) override { isWanted = wanted; }
    void setKeyboard(const input::Settings& settings) override { keyboard = settings; }
    void setLight(const input::Light& settings) override { light = settings; }
    std::optional<std::vector<bluetooth::Address>> controllers() const override { return m_controllers; }

    bool isWanted = false;
    input::Settings keyboard{};
    input::Light light{};

private:
    std::optional<std::vector<bluetooth::Address>> m_controllers{std::in_place};
};

} // namespace testing_support
