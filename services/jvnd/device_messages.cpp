#include "services/jvnd/device_messages.h"

#include <algorithm>

namespace jvnd {

input::Settings keyboardMessage(const Settings& settings) {
    auto message = input::makeMessage<input::Settings>();
    message.keyboardPlays = settings.controllerType == JVNControllerTypeKeyboard;
    message.mode =
        settings.connectionMode == JVNConnectionModeByHand ? input::PlayMode::byHand : input::PlayMode::whileListened;
    message.forceExtended = settings.forcesExtended;
    for (const auto& binding : settings.keymap)
        if (message.bindingCount < input::maximumBindings)
            message.bindings[message.bindingCount++] = {binding.usage, binding.input};
    return message;
}

input::Light lightMessage(const Settings& settings, std::optional<Color> picked) {
    auto message = input::makeMessage<input::Light>();
    if (settings.controllerType != JVNControllerTypeDualShock4 || settings.isAmbient) return message;
    const Color color = picked.value_or(settings.color);
    message.action = input::LightAction::set;
    if (settings.address) std::ranges::copy(settings.address->bytes, message.address);
    message.red = color.red;
    message.green = color.green;
    message.blue = color.blue;
    return message;
}

} // namespace jvnd
