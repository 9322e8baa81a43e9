#include "tests/colourpicker/ColorPicker.h"

#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(Client, NSObject, method<&Client::changed>("changed:"))

std::shared_ptr<Client> clientOf(ZKColorPickerView& picker) {
    auto client = Client::alloc();
    picker.addTarget_action_forControlEvents(client, "changed:", UIControlEventValueChanged);
    return client;
}
