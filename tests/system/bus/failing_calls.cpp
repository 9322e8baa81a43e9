// The socket to the bus fails at each of its calls in turn, as that of a bus that has just died does.

#include "tests/support/SystemCalls.h"
#include "tests/support/descriptors.h"
#include "tests/system/bus/BusTest.h"

#include <cerrno>

namespace {

using seat::SessionBus;
using testing_support::SystemCall;

class BusFailure : public BusTest, public ::testing::WithParamInterface<SystemCall> {
protected:
    // Whether the name is ours in the end.
    bool ownsName() {
        bool isOwned = false;
        session().addName(name, [&](SessionBus::NameState state) { isOwned = state == SessionBus::NameState::Owned; });
        const bool came = runUntil([&] { return isOwned; });
        session().close();
        return came;
    }
};

TEST_P(BusFailure, TheNameIsOursAllTheSameAndNothingStaysOpen) {
    ASSERT_TRUE(ownsName());
    const auto before = testing_support::openDescriptors();
    testing_support::SystemCalls calls;
    for (int n = 1;; ++n) {
        calls.failAt(GetParam(), n, ECONNRESET);
        ASSERT_TRUE(ownsName()) << "after a failure of call " << n;
        EXPECT_EQ(before, testing_support::openDescriptors()) << "after a failure of call " << n;
        if (calls.count(GetParam()) < n) break; // there are no more of them
        ASSERT_LT(n, 100);
    }
}

INSTANTIATE_TEST_SUITE_P(EachCall, BusFailure, ::testing::Values(SystemCall::SendMessage, SystemCall::ReceiveMessage));

} // namespace
