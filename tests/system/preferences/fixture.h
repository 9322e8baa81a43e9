#pragma once

#include "kit/runtime/log.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/root.h"
#include "system/preferences/preferences_store.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// A root of its own, and the log's lines.
class PreferencesTest : public ::testing::Test {
protected:
    PreferencesTest() {
        seat::setRoot(m_root.path());
        std::filesystem::create_directories(folder());
        seat::setLogSink([this](std::string_view line) {
            const std::lock_guard lock(m_mutex);
            m_log.emplace_back(line);
        });
    }
    ~PreferencesTest() override {
        seat::setLogSink({});
        seat::setRoot({});
    }

    std::string root() const { return m_root.path(); }
    std::string folder() const { return m_root.path() + "/var/mobile/Library/Preferences"; }
    // Each test has a domain of its own, and with it a lock.
    static std::string domain() {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        return std::string("com.quorrel.") + test->name();
    }
    std::string file() const { return folder() + "/" + domain() + ".plist"; }

    // True when it is in the file as this returns.
    static bool set(const std::string& key, const id& value) { return set(domain(), key, value); }
    static bool set(const std::string& domain, const std::string& key, const id& value) {
        return seat::setPreferenceValue(domain, key, value) == seat::PreferenceWrite::Stored;
    }
    static mode_t modeOf(const std::string& path) { return statusOf(path).st_mode & 07777; }
    static struct stat statusOf(const std::string& path) {
        struct stat status {};
        lstat(path.c_str(), &status);
        return status;
    }

    static std::string contents(const std::string& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static void write(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    std::shared_ptr<NSMutableDictionary> stored() const {
        return NSMutableDictionary::dictionaryWithContentsOfFile("/var/mobile/Library/Preferences/" + domain() +
                                                                 ".plist");
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder()))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }
    // Names that a reader of the file would take for a write under way.
    std::vector<std::string> namesLikeTheFile() const {
        auto found = names();
        std::erase_if(found, [&](const std::string& name) { return !name.starts_with(domain() + ".plist"); });
        return found;
    }
    std::vector<std::string> log() {
        const std::lock_guard lock(m_mutex);
        return m_log;
    }
    void clearLog() {
        const std::lock_guard lock(m_mutex);
        m_log.clear();
    }

private:
    testing_support::TemporaryFolder m_root;
    std::mutex m_mutex;
    std::vector<std::string> m_log;
};

// For the administrator nothing is unreadable: file permissions count again inside this scope.
class WithoutPrivileges {
public:
    explicit WithoutPrivileges(const std::string& root) {
        if (geteuid() != 0) return;
        m_dropped = chown(root.c_str(), nobody, nobody) == 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
            m_dropped = lchown(entry.path().c_str(), nobody, nobody) == 0 && m_dropped;
        m_dropped = seteuid(nobody) == 0 && m_dropped;
    }
    ~WithoutPrivileges() {
        if (m_dropped && seteuid(0) != 0) abort();
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    bool m_dropped = false;
};
