#include "system/modules/SHA256.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace {

std::span<const std::uint8_t> bytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string digest(const std::string& text) {
    seat::SHA256 sha;
    sha.add(bytes(text));
    return sha.hexDigest();
}

TEST(SHA256, GivesThePublishedDigests) {
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", digest(""));
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", digest("abc"));
    EXPECT_EQ("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
              digest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"));
    EXPECT_EQ("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0", digest(std::string(1'000'000, 'a')));
}

TEST(SHA256, PiecesGiveTheDigestOfTheWhole) {
    std::mt19937 random(7);
    std::string text(5000, ' ');
    std::generate(text.begin(), text.end(), [&] { return static_cast<char>(random()); });
    const std::string whole = digest(text);

    for (int round = 0; round < 200; ++round) {
        seat::SHA256 sha;
        auto rest = bytes(text);
        while (!rest.empty()) {
            const auto piece = rest.first(std::min<std::size_t>(rest.size(), random() % 200));
            sha.add(piece);
            rest = rest.subspan(piece.size());
        }
        ASSERT_EQ(whole, sha.hexDigest());
    }
}

TEST(SHA256, EveryLengthAroundABlockAgreesWithTheSystemsTool) {
    const std::string path = testing::TempDir() + "sha256-test-" + std::to_string(getpid());
    for (int length = 0; length < 130; ++length) {
        const std::string text(static_cast<std::size_t>(length), 'x');
        std::ofstream(path, std::ios::binary) << text;
        FILE* const tool = popen(("sha256sum '" + path + "'").c_str(), "r");
        ASSERT_TRUE(tool);
        std::array<char, 65> answer{};
        ASSERT_EQ(64u, fread(answer.data(), 1, 64, tool));
        pclose(tool);
        ASSERT_EQ(answer.data(), digest(text)) << length;
    }
    std::remove(path.c_str());
}

} // namespace
