#pragma once

#include "system/bus/SessionBus.h"
#include "tests/support/BusPeer.h"
#include "tests/support/BusSession.h"
#include "tests/support/LoggedLines.h"

#include <gtest/gtest.h>

class BusTest : public ::testing::Test, protected testing_support::BusSession {
protected:
    static seat::SessionBus& session() { return seat::SessionBus::shared(); }

    testing_support::LoggedLines m_log;
};
