// The mock Bluetooth service as a program, for tests that are no C++: mock_bluetooth ADDRESS...
//
// On the bus that DBUS_SYSTEM_BUS_ADDRESS names, with one adapter and a controller at each address. Says "ready", then
// a line for each call; a line "gone ADDRESS" on its standard input lets a controller go. Ends with its standard input.

#include "tests/support/MockBluetoothService.h"

#include <cstdio>
#include <sys/epoll.h>
#include <unistd.h>

namespace {

void obey(testing_support::MockBluetoothService& service, const std::string& line) {
    const std::string_view gone = "gone ";
    if (!line.starts_with(gone)) return;
    const auto address = line.substr(gone.size());
    service.device(address).isConnected = false;
    service.changed(address);
}

} // namespace

int main(int argc, char** argv) {
    ::setvbuf(stdout, nullptr, _IOLBF, 0);
    services::EventLoop loop;
    testing_support::MockBluetoothService service(loop);
    std::size_t said = 0;
    service.arrived = [&](const std::string&) {
        for (; said < service.calls.size(); ++said) std::puts(service.calls[said].c_str());
    };
    service.addAdapter();
    for (int i = 1; i < argc; ++i) service.addDevice({.address = argv[i]});

    std::string input;
    const auto watch = loop.watch(STDIN_FILENO, EPOLLIN, [&](std::uint32_t) {
        char bytes[256];
        const auto got = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (got <= 0) return loop.quit(0);
        input.append(bytes, static_cast<std::size_t>(got));
        for (auto end = input.find('\n'); end != std::string::npos; end = input.find('\n')) {
            obey(service, input.substr(0, end));
            input.erase(0, end + 1);
        }
    });
    std::puts("ready");
    return loop.run();
}
