// What the page makes of each report, of those that make no sense, and of a bus that comes and goes.

#include "tests/settings/pairing_test.h"
#include "tests/support/Heartbeat.h"

#include <atomic>
#include <cmath>
#include <dbus/dbus.h>
#include <functional>
#include <future>
#include <thread>

namespace {

using testing_support::BusPeer;

class PairingMessages : public Pairing {
protected:
    // Another program's call, with whatever it carries; gives the error's name, if any.
    std::string call(const BusPeer::Arguments& arguments) {
        std::atomic<bool> done = false;
        auto error = std::async(std::launch::async, [&] {
            auto name = BusPeer(bus.address()).call(server, "/", server, "JVNDiscoveryUpdate", arguments);
            done = true;
            return name;
        });
        EXPECT_TRUE(app.waitUntil([&] { return done.load(); }));
        app.settle();
        return error.get();
    }
    // {"JVNDiscoveryState": a variant of this signature, filled by `value`}.
    static BusPeer::Arguments state(const char* signature, const std::function<void(DBusMessageIter&)>& value) {
        return [=](DBusMessageIter& at) {
            DBusMessageIter entries, entry, variant;
            ::dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "{sv}", &entries);
            ::dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
            const char* const key = "JVNDiscoveryState";
            ::dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, static_cast<const void*>(&key));
            ::dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, signature, &variant);
            value(variant);
            ::dbus_message_iter_close_container(&entry, &variant);
            ::dbus_message_iter_close_container(&entries, &entry);
            ::dbus_message_iter_close_container(&at, &entries);
        };
    }
    template <class Value> static BusPeer::Arguments basic(const char* signature, Value value) {
        return state(signature, [=](DBusMessageIter& at) {
            ::dbus_message_iter_append_basic(&at, signature[0], static_cast<const void*>(&value));
        });
    }
    static void nest(DBusMessageIter& at, int depth) {
        DBusMessageIter inner;
        ::dbus_message_iter_open_container(&at, DBUS_TYPE_VARIANT, depth > 0 ? "v" : "i", &inner);
        const dbus_int32_t number = 3;
        if (depth > 0)
            nest(inner, depth - 1);
        else
            ::dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT32, &number);
        ::dbus_message_iter_close_container(&at, &inner);
    }
};

struct Expected {
    int state;
    std::string overlay;
    std::string alert; // empty: none
};

std::string success(const std::string& button) {
    return "Joyvane\nSuccess!\nController paired, you can go into a game now and press " + button +
           " when prompted to do so (turn it off now if it keeps blinking).";
}

// From "activating" and from "searching" alike.
TEST_F(PairingMessages, EveryStateDoesToEveryTypeWhatItShould) {
    const std::string starting = "Starting Search...\nPrepare your controller.";
    const std::string inactive =
        "Joyvane\nBTstack was not activated! Please try going to BTstack preferences and activate it.";
    const std::string holding = "Searching...\nHold the X and the HOME buttons until the SEARCH light blinks.";
    const std::pair<std::string, std::string> searchingAndButton[] = {
        {"", "(null)"},
        {"Searching...\nPress both the Share and PS buttons until your PS4 controller blinks.", "PS"},
        {"Searching..\nPress the red SYNC button on the back of your controller.", "SYNC"},
        {holding, "X + HOME"},
        {holding, "X + HOME"},
        {holding, "X + HOME"},
        {"", "(null)"},
        {"", "(null)"}};
    installTool();
    long type = 0;
    for (const auto& [searching, button] : searchingAndButton) {
        showWithServer(type);
        for (const std::string& before : {activating, starting}) {
            const Expected table[] = {{0, searching.empty() ? before : searching, ""},
                                      {1, before, ""},
                                      {2, "hidden", success(button)},
                                      {3, "hidden", inactive},
                                      {4, starting, ""},
                                      {5, before, ""},
                                      {-1, before, ""}};
            for (const auto& row : table) {
                page->pairPS4Controller();
                if (before == starting) report(4);
                report(row.state);
                EXPECT_EQ(overlay(), row.overlay) << "state " << row.state << ", type " << type;
                EXPECT_EQ(app.alert().value_or(""), row.alert) << "state " << row.state << ", type " << type;
                while (app.dismissAlert()) {
                }
            }
        }
        app.close();
        ++type;
    }
}

TEST_F(PairingMessages, HundredsOfReportsLeaveAFewAlertsTheLastOneOfTheLastReport) {
    startPairing(1);
    int delivered = 0;
    int lastTaken = 0; // the bus passes on only so many at once
    const auto send = [&](int state) {
        seat::sendMessage(server, "JVNDiscoveryUpdate",
                          testing_support::dictionary({{"JVNDiscoveryState", NSNumber::numberWithInt(state)}}),
                          [&, state](bool taken) {
                              ++delivered;
                              if (taken) lastTaken = state;
                          });
    };

    for (int i = 0; i < 300; ++i) send(2);
    ASSERT_TRUE(app.waitUntil([&] { return delivered == 300; }));
    EXPECT_TRUE(app.dismissAlert());
    EXPECT_EQ(app.alert(), std::nullopt) << "the same one, once";
    EXPECT_GT(log.count("showing the alert \"Joyvane\""), 0u);

    // A dozen after the many, so that the bus takes them.
    for (int i = 0; i < 300; ++i) send(i % 2 == 0 ? 2 : 3);
    ASSERT_TRUE(app.waitUntil([&] { return delivered == 600; }));
    for (int i = 0; i < 13; ++i) send(i % 2 == 0 ? 2 : 3);
    ASSERT_TRUE(app.waitUntil([&] { return delivered == 613; }));
    ASSERT_EQ(lastTaken, 2);
    app.settle();
    std::vector<std::string> alerts;
    while (const auto alert = app.alert()) {
        alerts.push_back(*alert);
        ASSERT_TRUE(app.dismissAlert());
        ASSERT_LT(alerts.size(), 20u);
    }
    EXPECT_GE(alerts.size(), 2u);
    EXPECT_EQ(alerts.back().find("Success!") != std::string::npos, lastTaken == 2) << "what is so now";
    EXPECT_EQ(overlay(), "hidden");
    EXPECT_LE(log.count("the same one stands or waits already"), 1u) << "a minute, however many there are";
    EXPECT_LE(log.count("too many wait"), 1u);
}

TEST_F(PairingMessages, AReportWithoutAStateOrWithoutADictionaryIsSearching) {
    const std::string searching = "Searching..\nPress the red SYNC button on the back of your controller.";
    startPairing(2);
    seat::sendMessage(server, "JVNDiscoveryUpdate", testing_support::dictionary({{"Other", "x"}}));
    EXPECT_TRUE(app.waitUntil([&] { return overlay() == searching; }));
    page->hud()->setText("");
    seat::sendMessage(server, "JVNDiscoveryUpdate", nullptr);
    EXPECT_TRUE(app.waitUntil([&] { return overlay() == searching; }));
}

TEST_F(PairingMessages, AStateThatIsNoWholeNumberReadsAsAbsent) {
    const std::string searching = "Searching..\nPress the red SYNC button on the back of your controller.";
    startPairing(2);
    const auto expectSearching = [&](const BusPeer::Arguments& arguments, const char* what) {
        page->hud()->setText("");
        EXPECT_EQ(call(arguments), "") << what;
        EXPECT_EQ(overlay(), searching) << what;
        EXPECT_EQ(app.alert(), std::nullopt) << what;
    };
    expectSearching(basic<const char*>("s", "abc"), "a text");
    expectSearching(basic<const char*>("s", "2"), "a text with a number");
    expectSearching(basic<double>("d", 2.9), "more than a whole number");
    expectSearching(basic<double>("d", HUGE_VAL), "infinity");
    expectSearching(basic<dbus_bool_t>("b", FALSE), "false");
    expectSearching(basic<double>("d", 0.9), "a fraction");
    expectSearching(basic<double>("d", std::nan("")), "no number");
    expectSearching(basic<unsigned char>("y", 0), "a byte");
    expectSearching(state("as",
                          [](DBusMessageIter& at) {
                              DBusMessageIter inner;
                              ::dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "s", &inner);
                              ::dbus_message_iter_close_container(&at, &inner);
                          }),
                    "a list");
    expectSearching(state("ay",
                          [](DBusMessageIter& at) {
                              DBusMessageIter inner;
                              ::dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "y", &inner);
                              ::dbus_message_iter_close_container(&at, &inner);
                          }),
                    "data");

    page->hud()->setText("before");
    EXPECT_EQ(call(basic<dbus_uint64_t>("t", ~0ull)), "");
    EXPECT_EQ(call(basic<dbus_int64_t>("x", 1ll << 32)), "") << "not cut to its low half, which would be 0";
    EXPECT_EQ(overlay(), "before");
    EXPECT_EQ(call(basic<double>("d", 4.0)), "");
    EXPECT_EQ(overlay(), "Starting Search...\nPrepare your controller.");
    EXPECT_EQ(call(state("v", [](DBusMessageIter& at) { nest(at, 3); })), "");
    EXPECT_TRUE(app.alert()) << "3, within four variants";
}

TEST_F(PairingMessages, WhatIsNoReportIsDroppedWithALineForAllOfThem) {
    startPairing(2);
    const BusPeer::Arguments nonsense[] = {
        [](DBusMessageIter& at) {
            const char* const text = "2";
            ::dbus_message_iter_append_basic(&at, DBUS_TYPE_STRING, static_cast<const void*>(&text));
        },
        [](DBusMessageIter& at) { // two of them
            testing_support::integerDictionary("JVNDiscoveryState", 2)(at);
            testing_support::integerDictionary("JVNDiscoveryState", 2)(at);
        },
        state("v", [](DBusMessageIter& at) { nest(at, 40); }),
        [](DBusMessageIter& at) { // keys that are no text
            DBusMessageIter entries, entry;
            ::dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "{ii}", &entries);
            ::dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
            const dbus_int32_t number = 2;
            ::dbus_message_iter_append_basic(&entry, DBUS_TYPE_INT32, &number);
            ::dbus_message_iter_append_basic(&entry, DBUS_TYPE_INT32, &number);
            ::dbus_message_iter_close_container(&entries, &entry);
            ::dbus_message_iter_close_container(&at, &entries);
        },
    };
    for (const auto& arguments : nonsense) {
        EXPECT_NE(call(arguments), "");
        EXPECT_EQ(log.count("dropped"), 1u) << "a minute";
        EXPECT_EQ(overlay(), activating);
    }
    report(4);
    EXPECT_EQ(overlay(), "Starting Search...\nPrepare your controller.") << "and it lives";
}

TEST_F(PairingMessages, WhileAnotherScreenIsShownNoneIsReceived) {
    startPairing(1);
    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);
    ASSERT_TRUE(app.waitUntil([&] { return !peer.nameHasOwner(server); }));

    EXPECT_NE(call(testing_support::integerDictionary("JVNDiscoveryState", 2)), "");

    EXPECT_EQ(app.alert(), std::nullopt);
    EXPECT_EQ(overlay(), activating);
}

TEST_F(PairingMessages, AFloodDoesNotHoldUpTheMainThread) {
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the thread sanitizer takes the time that this is about";
#endif
#endif
    startPairing(1);
    constexpr int count = 50'000;
    std::thread flood([this] {
        const BusPeer sender(bus.address());
        for (int i = 0; i < count; ++i)
            sender.send(server, "/", server, "JVNDiscoveryUpdate",
                        testing_support::integerDictionary("JVNDiscoveryState", i + 1 < count ? 0 : 2));
        sender.flush();
    });
    const testing_support::Heartbeat heartbeat;

    EXPECT_TRUE(app.waitUntil([&] { return overlay() == "hidden"; }, 100));

    flood.join();
    EXPECT_LT(heartbeat.longestMilliseconds(), 500); // a wait of its own takes longer, other processes less
    EXPECT_TRUE(app.dismissAlert());
}

TEST_F(PairingMessages, TheServersNameComesBackWithTheBus) {
    showWithServer(1);

    bus.kill();
    app.settle();
    bus.start();

    const testing_support::BusPeer again(bus.address());
    EXPECT_TRUE(app.waitUntil([&] { return again.nameHasOwner(server); }, 2));
}

TEST_F(PairingMessages, WithoutABusThePageStillWorks) {
    bus.kill();
    installTool();
    show(1);
    ASSERT_TRUE(app.tap("Pair Controller"));
    EXPECT_EQ(overlay(), activating);
    EXPECT_TRUE(app.waitUntil([&] { return count("started") == 1; }));
}

TEST_F(PairingMessages, ABusThatStopsAnsweringHoldsNothingUp) {
    startPairing(1);
    bus.stop();
    {
        const testing_support::Heartbeat heartbeat;
        app.tap("Pair Controller");
        page->viewWillDisappear(false);
        page->viewDidAppear(false);
        EXPECT_TRUE(app.waitUntil([&] { return heartbeat.beats() > 40; }));
        EXPECT_LT(heartbeat.longestMilliseconds(), 500);
    }
    bus.resume();

    report(4);
    EXPECT_EQ(overlay(), "Starting Search...\nPrepare your controller.");
}

TEST_F(PairingMessages, ABusThatNeverAnswersFromTheStartHoldsNothingUp) {
    bus.stop();
    installTool();
    show(1);
    const testing_support::Heartbeat heartbeat;
    ASSERT_TRUE(app.tap("Pair Controller"));
    EXPECT_EQ(overlay(), activating);
    EXPECT_TRUE(app.waitUntil([&] { return count("started") == 1 && heartbeat.beats() > 20; }));
    EXPECT_LT(heartbeat.longestMilliseconds(), 500);
    bus.resume();
}

TEST_F(PairingMessages, ANameThatAnotherProgramHasIsLoggedAndTakenWhenItIsFree) {
    ASSERT_TRUE(peer.ownName(server));
    installTool();
    show(1);
    ASSERT_TRUE(app.waitUntil([&] { return log.count("another program has it") == 1; }));
    ASSERT_TRUE(app.tap("Pair Controller"));
    EXPECT_TRUE(app.waitUntil([&] { return count("started") == 1; }));

    peer.giveUpName(server);

    ASSERT_TRUE(app.waitUntil([&] { return peer.nameHasOwner(server); }, 2));
    report(4);
    EXPECT_EQ(overlay(), "Starting Search...\nPrepare your controller.");
}

} // namespace
