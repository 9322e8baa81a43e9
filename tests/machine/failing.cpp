#include <csignal>
#include <cstdio>

#include <gtest/gtest.h>

// What the machine's own test makes sure of being told: each of these fails, in its own way.
TEST(Failing, AnExpectation) { EXPECT_EQ(1 + 1, 3); }
TEST(Failing, ASignal) { (void)std::raise(SIGSEGV); }
TEST(Failing, NoEnd) {
    std::puts("this does not end");
    (void)std::fflush(stdout);
    for (;;) (void)std::getchar();
}
