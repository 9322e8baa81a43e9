#pragma once

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/Descriptor.h"
#include "system/preferences/FileLock.h"
#include "system/preferences/PreferencesFile.h"
#include "tests/jvndiscovery/PageServer.h"
#include "tests/jvndiscovery/ToolProcess.h"
#include "tests/support/MockBluetoothService.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace testing_support {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool isSanitized = true;
#elif defined(__has_feature)
inline constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool isSanitized = false;
#endif

// The real tool between two buses of its own, with a mock Bluetooth service and a page that notes what it hears.
class DiscoveryProgramTest : public ::testing::Test {
protected:
    DiscoveryProgramTest() {
        ::setenv("JOYVANE_ROOT", folder.path().c_str(), 1);
        std::filesystem::create_directories(preferences);
        choose(1);
    }
    ~DiscoveryProgramTest() override { ::unsetenv("JOYVANE_ROOT"); }

    void choose(int type) const {
        write("<plist version=\"1.0\"><dict><key>controller_type</key><integer>" + std::to_string(type) +
              "</integer><key>JVNLEDColorKey</key><string>00ff00</string></dict></plist>");
    }
    void write(const std::string& text) const { std::ofstream(file) << text; }
    std::string content() const {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    // What is stored under a key.
    id stored(const char* key) const {
        const seat::Descriptor directory(::open(preferences.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        const auto read = seat::PreferencesFile::read(directory.get(), "com.quorrel.joyvane.plist");
        return read.values ? read.values->objectForKey(key) : id();
    }
    std::string storedAddress() const {
        const auto data = stored("PS4BluetoothAddress").object<NSData>();
        std::string text;
        for (std::size_t i = 0; data && i < data->length(); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%02X ", data->bytes()[i]);
            text += digits;
        }
        return text;
    }
    static const char* toolPath();
    ToolProcess& start(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), toolPath());
        tool.reset();
        tool.emplace(loop, std::move(arguments), folder.file("errors"));
        return *tool;
    }
    bool until(const std::function<bool()>& done) { return loop.runUntil(done); }
    // Of what the loop does not hear of.
    bool untilSeen(const std::function<bool()>& done) {
        for (int i = 0; i < 2000 && !done(); ++i) loop.runUntil(done, std::chrono::milliseconds(5));
        return done();
    }
    long count(const std::string& call) const { return std::count(service.calls.begin(), service.calls.end(), call); }
    void expectNothingLeft() {
        EXPECT_TRUE(until([&] { return !service.isSearching() && !service.hasAgent() && !service.isPairing(); }));
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(preferences))
            names.push_back(entry.path().filename());
        std::erase(names, ".lock.com.quorrel.joyvane");
        EXPECT_EQ(names, std::vector<std::string>{"com.quorrel.joyvane.plist"});
    }

    const std::string pad = "00:AA:01:01:00:01";
    TemporaryFolder folder;
    const std::string preferences = folder.file("var/mobile/Library/Preferences");
    const std::string file = preferences + "/com.quorrel.joyvane.plist";
    PrivateBus systemBus{PrivateBus::Start::Now, "DBUS_SYSTEM_BUS_ADDRESS"};
    PrivateBus sessionBus;
    services::EventLoop loop;
    MockBluetoothService service{loop};
    PageServer page{loop};
    std::optional<ToolProcess> tool;
};

} // namespace testing_support
