#include "tests/support/TestRoot.h"

#include "system/files/root.h"
#include "system/preferences/preferences_store.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace testing_support {

TestRoot::TestRoot() {
    std::string pattern = std::filesystem::temp_directory_path() / "joyvane-test-XXXXXX";
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder " + pattern);
    m_path = pattern;
    seat::setRoot(m_path);
}

TestRoot::~TestRoot() {
    seat::awaitPendingPreferences(std::chrono::seconds(10));
    seat::setRoot({});
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

void TestRoot::write(const std::string& realPath, const std::string& bytes) {
    std::filesystem::create_directories(std::filesystem::path(realPath).parent_path());
    std::ofstream(realPath, std::ios::binary) << bytes;
}

std::optional<std::string> TestRoot::read(const std::string& realPath) {
    std::ifstream file(realPath, std::ios::binary);
    if (!file) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void TestRoot::remove(const std::string& realPath) { std::filesystem::remove(realPath); }

bool TestRoot::exists(const std::string& realPath) { return std::filesystem::exists(realPath); }

std::string TestRoot::shipped(const std::string& folder) { return folder; }

} // namespace testing_support
