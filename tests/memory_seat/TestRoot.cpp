#include "tests/support/TestRoot.h"

#include "tests/memory_seat/Files.h"
#include "tests/memory_seat/Tasks.h"

namespace testing_support {

using memory_seat::Files;

// The path stays empty: real paths are those that platform/ knows.
TestRoot::TestRoot() { Files::clear(); }

TestRoot::~TestRoot() {
    Files::clear();
    memory_seat::clearTasks();
}

void TestRoot::write(const std::string& realPath, const std::string& bytes) {
    Files::write(realPath, memory_seat::Bytes(bytes.begin(), bytes.end()));
}

std::optional<std::string> TestRoot::read(const std::string& realPath) {
    const auto bytes = Files::read(realPath);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

void TestRoot::remove(const std::string& realPath) { Files::remove(realPath); }

bool TestRoot::exists(const std::string& realPath) { return Files::read(realPath) || Files::list(realPath); }

std::string TestRoot::shipped(const std::string& folder) {
    Files::load(folder, folder);
    return folder;
}

} // namespace testing_support
