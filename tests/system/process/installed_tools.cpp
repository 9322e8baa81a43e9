#include "system/process/installed_tools.h"

#include "system/files/root.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

class InstalledTools : public ::testing::Test {
protected:
    InstalledTools() {
        seat::setRoot(m_folder.path());
        seat::setInstalledTool("/usr/bin/installed", "/opt/installed");
        std::filesystem::create_directories(m_folder.file("usr/bin"));
    }
    ~InstalledTools() override { seat::setRoot({}); }

    testing_support::TemporaryFolder m_folder;
};

TEST_F(InstalledTools, AnInstalledToolIsFoundWhereTheRootHasNone) {
    EXPECT_EQ(seat::toolPath("/usr/bin/installed"), "/opt/installed");
}

TEST_F(InstalledTools, TheRootsOwnToolComesFirst) {
    std::ofstream(m_folder.file("usr/bin/installed")) << "#!/bin/sh\n";
    EXPECT_EQ(seat::toolPath("/usr/bin/installed"), m_folder.file("usr/bin/installed"));
}

TEST_F(InstalledTools, ALinkOfTheUsersThatLeadsNowhereIsNotReplaced) {
    std::filesystem::create_symlink("/nowhere", m_folder.file("usr/bin/installed"));
    EXPECT_EQ(seat::toolPath("/usr/bin/installed"), m_folder.file("usr/bin/installed"));
}

TEST_F(InstalledTools, AToolThatIsNowhereIsMissedInTheRoot) {
    EXPECT_EQ(seat::toolPath("/usr/bin/other"), m_folder.file("usr/bin/other"));
}

} // namespace
