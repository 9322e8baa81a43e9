#include "system/modules/module_file.h"

#include "system/modules/SHA256.h"
#include "tests/support/TemporaryFolder.h"

#include <dlfcn.h>
#include <elf.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// This program itself is a file of the right kind.
const std::string& original() {
    static const std::string contents = contentsOf("/proc/self/exe");
    return contents;
}

seat::ModuleSeal sealOf(const std::string& contents) {
    seat::SHA256 sha;
    sha.add({reinterpret_cast<const std::uint8_t*>(contents.data()), contents.size()});
    return {contents.size(), sha.hexDigest()};
}

class ModuleFile : public testing::Test {
protected:
    void write(const std::string& contents) const { std::ofstream(path, std::ios::binary) << contents; }
    static std::string problem(const std::string& of, const std::string& sealed) {
        return seat::checkModule(of, sealOf(sealed)).problem;
    }

    testing_support::TemporaryFolder temporary;
    const std::string folder = temporary.path();
    const std::string path = temporary.file("module");
};

TEST_F(ModuleFile, TheSealedFileHasNoProblem) {
    write(original());

    EXPECT_EQ("", problem(path, original()));
}

TEST_F(ModuleFile, ACutOrGrownFileIsNamedSo) {
    write(original().substr(0, 100));
    EXPECT_EQ("is cut: 100 bytes instead of " + std::to_string(original().size()), problem(path, original()));

    write("");
    EXPECT_TRUE(problem(path, original()).starts_with("is cut: 0 bytes"));

    write(original() + "x");
    EXPECT_TRUE(problem(path, original()).starts_with("has grown: "));
}

TEST_F(ModuleFile, OneFlippedBitAnywhereIsSeen) {
    const auto seal = sealOf(original());
    const std::size_t step = original().size() / 40 + 1;
    for (std::size_t at = 0; at < original().size(); at += step) {
        std::string changed = original();
        changed[at] = static_cast<char>(changed[at] ^ 4);
        write(changed);
        EXPECT_NE("", seat::checkModule(path, seal).problem) << at;
    }
}

TEST_F(ModuleFile, AFileForAnotherMachineIsNamedSoEvenWhenItIsWhatTheManifestSays) {
    for (const std::size_t at : {std::size_t{EI_CLASS}, std::size_t{EI_DATA}, offsetof(Elf64_Ehdr, e_machine)}) {
        std::string foreign = original();
        foreign[at] = static_cast<char>(foreign[at] ^ 3);
        write(foreign);

        EXPECT_EQ("is made for another machine", problem(path, foreign));
    }
}

TEST_F(ModuleFile, WhatIsNoModuleIsNamedSo) {
    const std::string text = "#!/bin/sh\necho I am no module, and I am longer than a header of one would be, by far.\n";
    write(text);
    EXPECT_EQ("is no module", problem(path, text));

    std::string object = original();
    object[offsetof(Elf64_Ehdr, e_type)] = ET_REL;
    write(object);
    EXPECT_EQ("is no module that can be loaded", problem(path, object));
}

TEST_F(ModuleFile, OneThatWasCompiledWithOtherDeclarationsIsNamedSo) {
    const auto name = original().find(std::string("\x08\0\0\0\x04\0\0\0\x01\0\0\0Joyvane\0", 20));
    ASSERT_NE(std::string::npos, name);
    std::string other = original();
    other[name + 20] = static_cast<char>(other[name + 20] ^ 1);
    write(other);
    EXPECT_EQ("is made for another version of this program", problem(path, other));

    std::string silent = original();
    silent[name + 12] = 'j';
    write(silent);
    EXPECT_EQ("is no module of ours: it does not say what it was made for", problem(path, silent));
}

TEST_F(ModuleFile, ATableOfSegmentsThatLeadsAnywhereIsNoDanger) {
    for (const std::size_t at : {offsetof(Elf64_Ehdr, e_phoff), offsetof(Elf64_Ehdr, e_phentsize),
                                 offsetof(Elf64_Ehdr, e_phnum), sizeof(Elf64_Ehdr) + offsetof(Elf64_Phdr, p_offset)})
        for (const char byte : {'\0', '\1', '\x7f', '\xff'}) {
            std::string damaged = original();
            damaged[at] = damaged[at + 1] = byte;
            write(damaged);
            const auto found = problem(path, damaged);
            EXPECT_TRUE(found.empty() || found.starts_with("is no module of ours")) << at << ": " << found;
        }
}

TEST_F(ModuleFile, MissingFilesFoldersAndPipesAreRefusedAtOnce) {
    EXPECT_EQ("is missing", problem(path, original()));
    fs::create_directory(folder + "/below");
    EXPECT_EQ("is no regular file", problem(folder + "/below", original()));
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_EQ("is no regular file", problem(path, original()));
}

TEST_F(ModuleFile, WhatOthersCouldChangeIsRefused) {
    write(original());
    ASSERT_EQ(0, chmod(path.c_str(), 0646));
    EXPECT_EQ("may be changed by everybody", problem(path, original()));
    ASSERT_EQ(0, chmod(path.c_str(), 0644));

    ASSERT_EQ(0, chmod(folder.c_str(), 01777));
    EXPECT_EQ("stands in " + folder + ", which may be changed by everybody", problem(path, original()));

    // Further up it is enough that nobody can take away what leads to the file.
    fs::create_directory(folder + "/below");
    fs::rename(path, folder + "/below/module");
    EXPECT_EQ("", problem(folder + "/below/module", original()));
    ASSERT_EQ(0, chmod(folder.c_str(), 0777));
    EXPECT_EQ("stands in " + folder + ", which may be changed by everybody",
              problem(folder + "/below/module", original()));
}

TEST_F(ModuleFile, AGroupMayChangeItOnlyIfItsOwnerIsAloneInIt) {
    if (geteuid() != 0) GTEST_SKIP() << "only the administrator can give a file to any group";
    write(original());
    ASSERT_EQ(0, chmod(path.c_str(), 0664));
    EXPECT_EQ("", problem(path, original())) << "the administrator's own group";

    ASSERT_EQ(0, chown(path.c_str(), 0, 1));
    ASSERT_EQ(0, chmod(path.c_str(), 0664));
    EXPECT_EQ("may be changed by a group of users", problem(path, original()));
}

TEST_F(ModuleFile, WhatBelongsToAnotherUserIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only the administrator can give files away";
    write(original());
    ASSERT_EQ(0, chown(path.c_str(), 12345, 0));
    EXPECT_EQ("belongs to user 12345", problem(path, original()));

    ASSERT_EQ(0, chown(path.c_str(), 0, 0));
    ASSERT_EQ(0, chown(folder.c_str(), 12345, 0));
    EXPECT_EQ("stands in " + folder + ", which belongs to user 12345", problem(path, original()));
    ASSERT_EQ(0, chown(folder.c_str(), 0, 0));
}

TEST_F(ModuleFile, NoLinkIsFollowedToItOrToItsFolder) {
    write(original());
    fs::create_symlink(path, folder + "/link");
    EXPECT_EQ("is a link", problem(folder + "/link", original()));

    fs::create_symlink(folder, folder + "/again");
    EXPECT_EQ("stands in " + folder + "/again, which is a link", problem(folder + "/again/module", original()));
    EXPECT_EQ("stands in " + folder + "/again, which is a link", problem(folder + "/again//module", original()));
}

// Needs a module that can be loaded, which this program is not.
TEST_F(ModuleFile, WhatTakesItsNameAfterTheCheckIsNotLoaded) {
    fs::copy_file(LOADED_MODULE, path);
    const std::string good = contentsOf(path);
    auto checked = seat::checkModule(path, sealOf(good));
    ASSERT_EQ("", checked.problem);
    write("nothing to load");
    fs::rename(path, folder + "/aside");
    write("nothing to load");

    EXPECT_NE("", seat::loadModule(std::move(checked))) << "the same file, cut";

    fs::remove(folder + "/aside");
    fs::remove(path);
    fs::copy_file(LOADED_MODULE, path);
    checked = seat::checkModule(path, sealOf(good));
    ASSERT_EQ("", checked.problem);
    fs::rename(path, folder + "/aside");
    write("nothing to load");
    EXPECT_EQ("", seat::loadModule(std::move(checked))) << "another file of its name";
}

TEST_F(ModuleFile, OnceLoadedItStays) {
    fs::copy_file(LOADED_MODULE, path);
    ASSERT_EQ("", seat::loadModule(seat::checkModule(path, sealOf(contentsOf(path)))));

    for (int i = 0; i < 3; ++i) {
        void* const loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
        ASSERT_TRUE(loaded) << i;
        dlclose(loaded);
        dlclose(loaded);
    }
}

TEST_F(ModuleFile, TheLoadersReasonNamesTheFileByItsPath) {
    // A program is no library: the loader says so itself.
    write(original());

    const std::string reason = seat::loadModule(seat::checkModule(path, sealOf(original())));

    EXPECT_NE(std::string::npos, reason.find(path)) << reason;
    EXPECT_EQ(std::string::npos, reason.find("/proc/")) << reason;
}

} // namespace
