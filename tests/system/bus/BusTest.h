#pragma once

#include "system/bus/SessionBus.h"
#include "tests/support/BusPeer.h"
#include "tests/support/BusSession.h"
#include "tests/support/LoggedLines.h"

#include <gtest/gtest.h>

inline constexpr auto name = "com.quorrel.jvn.bootstrap"; // what the page is called on the bus

class BusTest : public ::testing::Test, protected testing_support::BusSession {
protected:
    static seat::SessionBus& session() { return seat::SessionBus::shared(); }

    testing_support::LoggedLines m_log;
};
