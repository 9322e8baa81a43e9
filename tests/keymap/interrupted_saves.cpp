// Saves that cannot be completed: the disk is full, the folder may not be written, the process is killed.

#include "platform/foundation/NSArray.h"
#include "settings/preferences_file.h"
#include "tests/keymap/editor_test.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sched.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class InterruptedSave : public KeymapEditor {
protected:
    std::string contents() const {
        std::ifstream file(app.preferencesFile(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    fs::path folder() const { return fs::path(app.preferencesFile()).parent_path(); }
    // But for the lock that all writers share.
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(
            std::count_if(fs::directory_iterator(folder()), fs::directory_iterator(),
                          [](const auto& entry) { return !entry.path().filename().string().starts_with(".lock."); }));
    }
    // Changes something, so that old and new can be told apart, and leaves the editor.
    void changeAndLeave() {
        arm(0);
        app.touches().key(keyA);
        app.goBack();
    }
};

// No file of this process can grow beyond so many bytes meanwhile.
class QuotaReached {
public:
    explicit QuotaReached(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~QuotaReached() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

// Everything that was read fits, and the keymap's own values no more.
TEST_F(InterruptedSave, ASettingsFileWithoutRoomForTheKeymapIsLeftAsItIsAndTheLogNamesIt) {
    std::vector<id> many(99'990, NSNumber::numberWithBool(true));
    openOver({{"other", NSArray::arrayWithObjects(std::move(many))}});
    const std::string before = contents();

    changeAndLeave();

    EXPECT_EQ(contents(), before);
    EXPECT_EQ(log.count("saving the keymap in /var/mobile/Library/Preferences/com.quorrel.joyvane.plist: property list "
                        "to write holds more than 100000 values"),
              1u);
}

TEST_F(InterruptedSave, WithTheQuotaReachedLeavesTheOldFileAndNothingBeside) {
    openOver({{"other", integer(1)}});
    const std::string before = contents();
    for (const rlim_t bytes : {0, 1, 50}) {
        const QuotaReached quota(bytes);
        editor->viewDidDisappear(false);
    }
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(filesInFolder(), 1u);
    EXPECT_EQ(log.count("File too large"), 3u);

    editor->viewDidDisappear(false);
    EXPECT_EQ(saved(), defaults) << "and once there is room it is saved";
}

// A file system of its own for the preferences, seen by this thread alone.
class OwnFileSystem {
public:
    OwnFileSystem(const fs::path& folder, const char* options) : m_folder(folder) {
        fs::create_directories(folder);
        m_mounted = ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    ::mount("tmpfs", folder.c_str(), "tmpfs", 0, options) == 0;
    }
    ~OwnFileSystem() {
        if (m_mounted) ::umount2(m_folder.c_str(), MNT_DETACH);
    }
    OwnFileSystem(const OwnFileSystem&) = delete;
    OwnFileSystem& operator=(const OwnFileSystem&) = delete;

    bool isMounted() const { return m_mounted; }
    bool makeReadOnly() const {
        return ::mount("none", m_folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    fs::path m_folder;
    bool m_mounted = false;
};

TEST_F(InterruptedSave, OnAFullDiskLeavesTheOldFileAndNothingBeside) {
    const OwnFileSystem disk(folder(), "size=32k");
    if (!disk.isMounted()) GTEST_SKIP() << "only the administrator may mount";
    openOver({{"other", integer(1)}});
    const std::string before = contents();
    {
        std::ofstream filler(folder() / "filler");
        for (int i = 0; i < 64 && filler.flush(); ++i) filler << std::string(1024, 'x');
    }

    changeAndLeave();
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(filesInFolder(), 2u);
    EXPECT_EQ(log.count("No space left on device"), 1u);

    fs::remove(folder() / "filler");
    editor->viewDidDisappear(false);
    EXPECT_NE(contents(), before);
}

TEST_F(InterruptedSave, OnADiskWithoutRoomForAnotherFileLeavesTheOldOne) {
    const OwnFileSystem disk(folder(), "nr_inodes=2"); // the folder and one file
    if (!disk.isMounted()) GTEST_SKIP() << "only the administrator may mount";
    openOver({{"other", integer(1)}});
    const std::string before = contents();

    changeAndLeave();

    EXPECT_EQ(contents(), before);
    EXPECT_EQ(log.count("No space left on device"), 1u);
}

TEST_F(InterruptedSave, InAReadOnlyFolderLeavesTheOldFile) {
    const OwnFileSystem disk(folder(), "size=1m");
    if (!disk.isMounted() && ::geteuid() == 0) GTEST_SKIP() << "to the administrator nothing is read-only";
    openOver({{"other", integer(1)}});
    const std::string before = contents();
    if (disk.isMounted())
        ASSERT_TRUE(disk.makeReadOnly());
    else
        fs::permissions(folder(), fs::perms::owner_read | fs::perms::owner_exec);

    changeAndLeave();
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(log.count("writing the preferences com.quorrel.joyvane: "), 1u);
    EXPECT_EQ(filesInFolder(), 1u);
    if (!disk.isMounted()) fs::permissions(folder(), fs::perms::owner_all);
}

// A copy of this process that saves, stopped at each of its system calls and killed at one of them.
class Victim {
public:
    // What the child does between the two stops is what is interrupted.
    explicit Victim(const std::function<void()>& work) : m_process(::fork()) {
        if (m_process != 0) return;
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        work();
        ::raise(SIGSTOP);
        ::_exit(0);
    }
    ~Victim() {
        ::kill(m_process, SIGKILL);
        while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    Victim(const Victim&) = delete;
    Victim& operator=(const Victim&) = delete;

    // Lets it run to its `count`-th entry to or return from a system call; false when it has done its work before.
    bool runTo(int count) const {
        int status = 0;
        if (::waitpid(m_process, &status, 0) != m_process || !WIFSTOPPED(status)) return false;
        for (int i = 0; i < count; ++i) {
            if (::ptrace(PTRACE_SYSCALL, m_process, nullptr, nullptr) != 0 ||
                ::waitpid(m_process, &status, 0) != m_process || !WIFSTOPPED(status) || WSTOPSIG(status) == SIGSTOP)
                return false;
        }
        return true;
    }

private:
    ::pid_t m_process;
};

TEST_F(InterruptedSave, KilledAtAnySystemCallLeavesTheOldFileOrTheNewOneWhole) {
    openOver({{"other", integer(1)}});
    const std::string before = contents();
    editor->viewDidDisappear(false);
    const std::string after = contents();
    ASSERT_NE(before, after);

    int stops = 1;
    int old = 0;
    int leftovers = 0;
    for (bool isRunning = true; isRunning; ++stops) {
        for (const auto& entry : fs::directory_iterator(folder())) fs::remove(entry.path());
        std::ofstream(app.preferencesFile(), std::ios::binary) << before;
        {
            const Victim victim([this] { editor->viewDidDisappear(false); });
            isRunning = victim.runTo(stops);
        }
        const std::string now = contents();
        EXPECT_TRUE(now == before || now == after) << "killed at stop " << stops;
        old += now == before;
        EXPECT_LE(filesInFolder(), 2u);
        if (filesInFolder() < 2) continue;
        ++leftovers;
        EXPECT_TRUE(JVNPreferencesFileStillInAtomicWrite());

        // The page's next look at the preferences, in whatever process, takes it away.
        editor->viewDidDisappear(false);
        EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite()) << "killed at stop " << stops;
        EXPECT_EQ(contents(), after);
    }
    if (stops <= 2) GTEST_SKIP() << "this process may not be traced";
    EXPECT_GT(stops, 15) << "each call is entered and left";
    EXPECT_GT(old, 5);
    EXPECT_LT(old, stops - 2) << "some kills come after the renaming";
    EXPECT_GT(leftovers, 3);
}

} // namespace
