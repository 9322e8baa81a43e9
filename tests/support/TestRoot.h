#pragma once

#include <optional>
#include <string>

namespace testing_support {

// A fresh file system for the seat under test, in place while it lives; one at a time. Paths are real ones, as the
// seat's own functions take them: what platform/ calls "/a" is `file("a")`.
class TestRoot {
public:
    TestRoot();
    ~TestRoot();
    TestRoot(const TestRoot&) = delete;
    TestRoot& operator=(const TestRoot&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

    // What other programs do with files. Folders on the way are made.
    static void write(const std::string& realPath, const std::string& bytes);
    // Nothing when there is no such file.
    static std::optional<std::string> read(const std::string& realPath);
    static void remove(const std::string& realPath);
    // A file or a folder.
    static bool exists(const std::string& realPath);
    // A folder that the tests are built with, as the seat sees it.
    static std::string shipped(const std::string& folder);

private:
    std::string m_path;
};

} // namespace testing_support
