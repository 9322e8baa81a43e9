#pragma once

#include "app/NoticeBoard.h"
#include "app/SettingsPage.h"
#include "kit/dispatch/ManualClock.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/Touches.h"
#include "kit/uikit/UIWindow.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UINavigationController.h"
#include "system/bus/SessionBus.h"
#include "system/files/root.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

// The bundle that was built.
std::string builtBundle();

// The real bundle's page in the application, with a root and a session bus of its own, a held clock and a finger.
class SettingsPageTest : public ::testing::Test {
protected:
    SettingsPageTest() {
        seat::SessionBus::shared().close(); // it begins afresh with this bus
        seat::setRoot(root.path());
        writePreferences();
        std::string problem;
        const app::Bundle bundle = app::readBundle(builtBundle(), problem);
        const Class principal =
            problem.empty()
                ? app::loadPrincipalClass(bundle, seat::checkModule(bundle.modulePath, bundle.seal), problem)
                : nullptr;
        if (!principal) throw std::runtime_error(problem);
        page = std::make_unique<app::SettingsPage>(bundle, principal, CGSize{375, 667}, 1);
        touches = std::make_unique<seat::Touches>(page->scene(), &clock);
        UIApplication::sharedApplication()->setKeyWindow(page->scene().window());
        settle();
    }
    ~SettingsPageTest() override {
        page->close();
        settle();
        touches.reset();
        page.reset();
        seat::setRoot({});
        seat::SessionBus::shared().close();
    }

    // A DualShock 4, so that the pairing row starts the discovery tool.
    void writePreferences() const {
        const std::filesystem::path file = root.path() + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file)
            << "<plist version=\"1.0\"><dict><key>controller_type</key><integer>1</integer></dict></plist>";
    }
    // A discovery tool that notes its start and the interrupt, and lives until then.
    void installTool() const {
        const std::filesystem::path tool = root.path() + "/usr/bin/jvndiscovery";
        std::filesystem::create_directories(tool.parent_path());
        std::ofstream(tool) << "#!/bin/bash\n"
                               "trap 'echo interrupted >>\"$0.log\"; exit 0' INT\n"
                               "echo started >>\"$0.log\"\n"
                               "while :; do read -t 1 line <> \"$0.fifo\"; done\n";
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        ::mkfifo((tool.string() + ".fifo").c_str(), 0600);
    }
    std::string toolLog() const {
        std::ifstream file(root.path() + "/usr/bin/jvndiscovery.log");
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void settle() {
        loop.runReady();
        touches->settle();
        loop.runReady();
    }
    bool waitUntil(const std::function<bool()>& done) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!done()) {
            if (std::chrono::steady_clock::now() > end) return false;
            loop.runUntil([] { return false; }, 0.002);
            touches->wait(1.0 / 60);
        }
        return true;
    }
    const seat::AccessibilityNode* find(UIAccessibilityRole role, const std::string& name = {}) {
        settle();
        auto& tree = page->scene().accessibility();
        tree.update();
        for (const auto& [identity, node] : tree.nodes())
            if (node.role == role && (name.empty() || node.name == name) && node.isOnScreen) return &node;
        return nullptr;
    }
    bool tap(UIAccessibilityRole role, const std::string& name) {
        const auto* const node = find(role, name);
        if (!node) return false;
        touches->tap(CGPoint{CGRectGetMidX(node->extent), CGRectGetMidY(node->extent)});
        settle();
        return true;
    }
    void startSearch() {
        installTool();
        ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Pair Controller"));
        ASSERT_TRUE(waitUntil([&] { return toolLog() == "started\n"; }));
        ASSERT_TRUE(find(UIAccessibilityRole::ProgressIndicator));
    }

    testing_support::PrivateBus bus;
    testing_support::CapturedLog log;
    testing_support::TemporaryFolder root;
    seat::ManualClock clock;
    seat::PollLoop loop;
    std::unique_ptr<app::SettingsPage> page;
    std::unique_ptr<seat::Touches> touches;
};
