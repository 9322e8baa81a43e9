#include "system/modules/module_file.h"

#include "system/modules/SHA256.h"
#include "tests/support/TemporaryFolder.h"

#include <elf.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

// This program itself is a file of the right kind.
const std::string& original() {
    static const std::string contents = [] {
        std::ifstream file("/proc/self/exe", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
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

    testing_support::TemporaryFolder temporary;
    const std::string folder = temporary.path();
    const std::string path = temporary.file("module");
};

TEST_F(ModuleFile, TheSealedFileHasNoProblem) {
    write(original());

    EXPECT_EQ("", seat::moduleProblem(path, sealOf(original())));
}

TEST_F(ModuleFile, ACutOrGrownFileIsNamedSo) {
    write(original().substr(0, 100));
    EXPECT_EQ("is cut: 100 bytes instead of " + std::to_string(original().size()),
              seat::moduleProblem(path, sealOf(original())));

    write("");
    EXPECT_TRUE(seat::moduleProblem(path, sealOf(original())).starts_with("is cut: 0 bytes"));

    write(original() + "x");
    EXPECT_TRUE(seat::moduleProblem(path, sealOf(original())).starts_with("has grown: "));
}

TEST_F(ModuleFile, OneFlippedBitAnywhereIsSeen) {
    const auto seal = sealOf(original());
    const std::size_t step = original().size() / 40 + 1;
    for (std::size_t at = 0; at < original().size(); at += step) {
        std::string changed = original();
        changed[at] = static_cast<char>(changed[at] ^ 4);
        write(changed);
        EXPECT_NE("", seat::moduleProblem(path, seal)) << at;
    }
}

TEST_F(ModuleFile, AFileForAnotherMachineIsNamedSoEvenWhenItIsWhatTheManifestSays) {
    for (const std::size_t at : {std::size_t{EI_CLASS}, std::size_t{EI_DATA}, offsetof(Elf64_Ehdr, e_machine)}) {
        std::string foreign = original();
        foreign[at] = static_cast<char>(foreign[at] ^ 3);
        write(foreign);

        EXPECT_EQ("is made for another machine", seat::moduleProblem(path, sealOf(foreign)));
    }
}

TEST_F(ModuleFile, WhatIsNoModuleIsNamedSo) {
    const std::string text = "#!/bin/sh\necho I am no module, and I am longer than a header of one would be, by far.\n";
    write(text);
    EXPECT_EQ("is no module", seat::moduleProblem(path, sealOf(text)));

    std::string object = original();
    object[offsetof(Elf64_Ehdr, e_type)] = ET_REL;
    write(object);
    EXPECT_EQ("is no module that can be loaded", seat::moduleProblem(path, sealOf(object)));
}

TEST_F(ModuleFile, MissingFilesFoldersAndPipesAreRefusedAtOnce) {
    EXPECT_EQ("is missing", seat::moduleProblem(path, sealOf(original())));
    EXPECT_EQ("is no regular file", seat::moduleProblem(folder, sealOf(original())));
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_EQ("is no regular file", seat::moduleProblem(path, sealOf(original())));
}

TEST_F(ModuleFile, TheLoadersReasonComesBack) {
    write("nothing to load");

    EXPECT_NE(std::string::npos, seat::loadModule(path).find(path));
}

} // namespace
