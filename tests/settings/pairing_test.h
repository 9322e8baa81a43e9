#pragma once

#include "system/bus/SessionBus.h"
#include "system/messaging/message_sender.h"
#include "tests/settings/PageTest.h"
#include "tests/support/BusPeer.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/PrivateBus.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>

inline constexpr const char* server = "com.quorrel.jvn.bootstrap";
inline const std::string activating =
    "Activating Bluetooth...\nIf this takes too long, activate BTstack in its preferences.";

// The page on a bus of its own, with a tool that says what became of it.
class Pairing : public PageTest {
protected:
    // Tests before this one ran without a bus: the connection begins afresh with this one's.
    Pairing() { seat::SessionBus::shared().close(); }
    ~Pairing() override {
        app.close();
        page = nullptr;
        seat::SessionBus::shared().close();
    }

    // A discovery tool that notes its start and the interrupt, and lives until then.
    void installTool(const std::string& body = "trap 'echo interrupted >>\"$0.log\"; exit 0' INT\n"
                                               "echo \"started $# $$\" >>\"$0.log\"\n"
                                               "while :; do read -t 1 line <> \"$0.fifo\"; done\n") {
        const std::filesystem::path tool = app.root() + "/usr/bin/jvndiscovery";
        std::filesystem::create_directories(tool.parent_path());
        std::ofstream(tool) << "#!/bin/bash\n" << body;
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        ::mkfifo((tool.string() + ".fifo").c_str(), 0600);
    }
    std::string toolLog() const {
        std::ifstream file(app.root() + "/usr/bin/jvndiscovery.log");
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }
    std::size_t count(const std::string& what) const {
        const std::string lines = toolLog();
        std::size_t found = 0;
        for (auto at = lines.find(what); at != std::string::npos; at = lines.find(what, at + 1)) ++found;
        return found;
    }
    void showWithServer(long type) {
        show(type);
        ASSERT_TRUE(page->discoveryMessagingCenter());
        ASSERT_TRUE(app.waitUntil([&] { return peer.nameHasOwner(server); }));
    }
    void startPairing(long type) {
        installTool();
        showWithServer(type);
        ASSERT_TRUE(app.tap("Pair Controller"));
        ASSERT_TRUE(app.waitUntil([&] { return count("started") == 1; }));
    }
    // As the tool does; returns when the page has taken it and what it queued has run.
    void report(int state) {
        bool delivered = false;
        seat::sendMessage(server, "JVNDiscoveryUpdate",
                          testing_support::dictionary({{"JVNDiscoveryState", NSNumber::numberWithInt(state)}}),
                          [&](bool taken) { delivered = taken; });
        ASSERT_TRUE(app.waitUntil([&] { return delivered; }));
        app.settle();
    }
    std::string overlay() const { return page->hud()->isShown() ? page->hud()->text() : "hidden"; }

    testing_support::PrivateBus bus;
    testing_support::BusPeer peer{bus.address()};
    testing_support::LoggedLines log;
};
