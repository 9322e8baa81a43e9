#pragma once

#include "host/bus/SessionBus.h"
#include "tests/support/bus_peer.h"
#include "tests/support/bus_session.h"
#include "tests/support/logged_lines.h"

#include <gtest/gtest.h>

class BusTest : public ::testing::Test, protected testing_support::BusSession {
protected:
    static host::SessionBus& session() { return host::SessionBus::shared(); }

    testing_support::LoggedLines m_log;
};
