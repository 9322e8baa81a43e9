#include "tests/system/bus/BusTest.h"

#include <dbus/dbus.h>

namespace {

using seat::BusCall;
using seat::BusSignal;
using seat::SessionBus;
using testing_support::BusPeer;
using testing_support::integerDictionary;
using namespace std::chrono_literals;

constexpr auto interface = "com.quorrel.jvnprefs";
constexpr auto center = "com.quorrel.jvn.bootstrap";

class BusMessages : public BusTest {};

TEST_F(BusMessages, ASignalReachesOtherProgramsInTheOrderOfEmission) {
    const BusPeer peer(bus.address());
    peer.listen("type='signal'");

    session().emitSignal({"/com/quorrel/jvnprefs", interface, "changed"});
    session().emitSignal({"/com/quorrel", "com.quorrel", "jvninitbt"});

    EXPECT_EQ("/com/quorrel/jvnprefs com.quorrel.jvnprefs.changed", whileRunning([&] { return peer.nextSignal(); }));
    EXPECT_EQ("/com/quorrel com.quorrel.jvninitbt", whileRunning([&] { return peer.nextSignal(); }));
}

TEST_F(BusMessages, ASignalOfAnotherProgramIsHeardUntilTheListenerGoes) {
    const BusPeer peer(bus.address());
    std::vector<BusSignal> heard;
    const auto token = session().addSignal(interface, "changed", [&](const BusSignal& s) { heard.push_back(s); });
    int others = 0;
    session().addSignal(interface, "marker", [&](const BusSignal&) { ++others; });
    bool named = false;
    session().addName("com.quorrel.test", [&](auto) { named = true; }); // answered after the matches are set
    ASSERT_TRUE(runUntil([&] { return named; }));

    peer.emitSignal("/somewhere", interface, "changed");
    peer.emitSignal("/somewhere", interface, "other");
    peer.emitSignal("/somewhere", interface, "marker");
    ASSERT_TRUE(runUntil([&] { return others == 1; }));
    session().remove(token);
    peer.emitSignal("/somewhere", interface, "changed");
    peer.emitSignal("/somewhere", interface, "marker");
    ASSERT_TRUE(runUntil([&] { return others == 2; }));

    EXPECT_EQ((std::vector<BusSignal>{{"/somewhere", interface, "changed"}}), heard);
}

TEST_F(BusMessages, OurOwnSignalIsNotHeardBack) {
    const BusPeer peer(bus.address());
    int heard = 0;
    session().addSignal(interface, "changed", [&](const BusSignal&) { ++heard; });
    int marker = 0;
    session().addSignal(interface, "marker", [&](const BusSignal&) { ++marker; });
    bool named = false;
    session().addName("com.quorrel.test", [&](auto) { named = true; });
    ASSERT_TRUE(runUntil([&] { return named; }));
    peer.listen("type='signal'");

    session().emitSignal({"/x", interface, "changed"});
    ASSERT_EQ("/x com.quorrel.jvnprefs.changed", whileRunning([&] { return peer.nextSignal(); }));
    peer.emitSignal("/x", interface, "marker");

    EXPECT_TRUE(runUntil([&] { return marker == 1; }));
    EXPECT_EQ(0, heard);
}

class BusCalls : public BusTest {
protected:
    BusCalls() {
        session().addMethods("/", center, [this](const BusCall& call) {
            if (call.member != "JVNDiscoveryUpdate") return SessionBus::CallResult::UnknownMethod;
            m_calls.push_back(call);
            return SessionBus::CallResult::Done;
        });
        session().addName(center, [this](auto) { m_named = true; });
        EXPECT_TRUE(runUntil([this] { return m_named; }));
    }
    std::string call(const std::string& path, const std::string& called, const std::string& member,
                     const BusPeer::Arguments& arguments = nullptr) {
        return whileRunning([=, this] { return m_peer.call(center, path, called, member, arguments); });
    }

    BusPeer m_peer{bus.address()};
    std::vector<BusCall> m_calls;
    bool m_named = false;
};

TEST_F(BusCalls, ACallArrivesWithItsDictionaryAndItsSender) {
    EXPECT_EQ("", call("/", center, "JVNDiscoveryUpdate", integerDictionary("JVNDiscoveryState", 4)));

    ASSERT_EQ(1u, m_calls.size());
    EXPECT_EQ(m_peer.uniqueName(), m_calls[0].sender);
    ASSERT_TRUE(m_calls[0].dictionary);
    EXPECT_EQ(4, m_calls[0].dictionary->objectForKey("JVNDiscoveryState").integerValue());
}

TEST_F(BusCalls, ACallWithoutAnInterfaceArrivesByTheNameItAddresses) {
    EXPECT_EQ("", call("/", "", "JVNDiscoveryUpdate", integerDictionary("JVNDiscoveryState", 0)));

    EXPECT_EQ(1u, m_calls.size());
}

TEST_F(BusCalls, ACallThatCarriesNothingArrivesWithoutADictionary) {
    EXPECT_EQ("", call("/", center, "JVNDiscoveryUpdate"));

    ASSERT_EQ(1u, m_calls.size());
    EXPECT_FALSE(m_calls[0].dictionary);
}

TEST_F(BusCalls, UnknownMethodsPathsAndInterfacesAreAnswered) {
    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD, call("/", center, "Other"));
    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD, call("/elsewhere", center, "JVNDiscoveryUpdate"));
    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD, call("/", "com.quorrel.other", "JVNDiscoveryUpdate"));
    EXPECT_EQ(1u, m_log.count("message Other from"));
    EXPECT_TRUE(m_calls.empty());
}

TEST_F(BusCalls, WhatIsNoDictionaryIsRefusedWithALoggedReason) {
    const auto text = [](DBusMessageIter& at) {
        const char* const value = "4";
        ::dbus_message_iter_append_basic(&at, DBUS_TYPE_STRING, static_cast<const void*>(&value));
    };
    const auto two = [](DBusMessageIter& at) {
        integerDictionary("JVNDiscoveryState", 4)(at);
        integerDictionary("JVNDiscoveryState", 4)(at);
    };
    const auto structure = [](DBusMessageIter& at) {
        DBusMessageIter inner;
        const dbus_int32_t value = 4;
        ::dbus_message_iter_open_container(&at, DBUS_TYPE_STRUCT, nullptr, &inner);
        ::dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT32, &value);
        ::dbus_message_iter_close_container(&at, &inner);
    };

    EXPECT_EQ(DBUS_ERROR_INVALID_ARGS, call("/", center, "JVNDiscoveryUpdate", text));
    EXPECT_EQ(DBUS_ERROR_INVALID_ARGS, call("/", center, "JVNDiscoveryUpdate", two));
    EXPECT_EQ(DBUS_ERROR_INVALID_ARGS, call("/", center, "JVNDiscoveryUpdate", structure));

    EXPECT_EQ(1u, m_log.count("message JVNDiscoveryUpdate from")) << "the others are counted";
    EXPECT_TRUE(m_calls.empty());
}

TEST_F(BusCalls, ThousandsOfUnknownMessagesAreOneLine) {
    whileRunning([this] {
        for (int i = 0; i < 5000; ++i) m_peer.send(center, "/", center, "Unknown" + std::to_string(i));
        m_peer.flush();
        return m_peer.call(center, "/", center, "JVNDiscoveryUpdate");
    });

    EXPECT_EQ(1u, m_calls.size());
    EXPECT_EQ(1u, m_log.all().size()) << ::testing::PrintToString(m_log.all());
    EXPECT_EQ(1u, m_log.count("message Unknown0 from"));
}

TEST_F(BusCalls, ARemovedHandlerIsNotCalled) {
    session().close();
    m_named = false;
    session().addName(center, [this](auto) { m_named = true; });
    const auto token = session().addMethods("/", center, [this](const BusCall& call) {
        m_calls.push_back(call);
        return SessionBus::CallResult::Done;
    });
    ASSERT_TRUE(runUntil([this] { return m_named; }));
    session().remove(token);

    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD, call("/", center, "JVNDiscoveryUpdate"));
    EXPECT_TRUE(m_calls.empty());
}

TEST_F(BusMessages, AnAnswerComesBackWithItsValues) {
    std::optional<SessionBus::Reply> reply;
    session().call({DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "NameHasOwner"}, "s",
                   {id(DBUS_SERVICE_DBUS)}, 5s, [&](const SessionBus::Reply& r) { reply = r; });

    ASSERT_TRUE(runUntil([&] { return reply.has_value(); }));
    EXPECT_EQ("", reply->error);
    ASSERT_EQ(1u, reply->arguments.size());
    EXPECT_TRUE(reply->arguments[0].boolValue());
}

TEST_F(BusMessages, ACallToNobodyFails) {
    std::optional<SessionBus::Reply> reply;
    session().call({"com.quorrel.nobody", "/", "com.quorrel.nobody", "Call"}, "", {}, 5s,
                   [&](const SessionBus::Reply& r) { reply = r; });

    ASSERT_TRUE(runUntil([&] { return reply.has_value(); }));
    EXPECT_EQ(DBUS_ERROR_SERVICE_UNKNOWN, reply->error);
}

TEST_F(BusMessages, ACallThatIsNotAnsweredEndsWithItsTime) {
    const BusPeer silent(bus.address());
    std::optional<SessionBus::Reply> reply;
    session().call({silent.uniqueName(), "/", "com.quorrel.silent", "Call"}, "", {}, 50ms,
                   [&](const SessionBus::Reply& r) { reply = r; });

    ASSERT_TRUE(runUntil([&] { return reply.has_value(); }));
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, reply->error);
}

TEST_F(BusMessages, NamesAndArgumentsThatCannotBeSentFailAtOnce) {
    std::vector<std::string> errors;
    const auto keep = [&](const SessionBus::Reply& r) { errors.push_back(r.error); };
    session().call({"no name", "/", "a.b", "C"}, "", {}, 1s, keep);
    session().call({"a.b", "/", "a.b", "C"}, "u", {id("text")}, 1s, keep);
    session().emitSignal({"no path", "a.b", "C"});

    EXPECT_EQ((std::vector<std::string>(2, DBUS_ERROR_INVALID_ARGS)), errors);
    EXPECT_EQ(3u, m_log.all().size());
}

} // namespace
