#include "platform/foundation/NSNotificationCenter.h"

#include "platform/runtime/NSObject.h"
#include "platform/runtime/method.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

std::string events;

class Listener : public NSObject {
    NS_CLASS(Listener)

    void heard(std::string name, std::shared_ptr<NSObject> sender) {
        events += m_name + ":" + name + (sender ? "+" : "") + " ";
        if (m_onHearing) m_onHearing();
    }
    void count() { ++m_count; }

    std::string m_name = "listener";
    std::function<void()> m_onHearing;
    std::atomic<int> m_count = 0;
};

std::shared_ptr<Listener> listener(const std::string& name) {
    auto made = Listener::alloc();
    made->m_name = name;
    return made;
}

NSNotificationCenter& center() { return *NSNotificationCenter::defaultCenter(); }

void observe(const std::shared_ptr<NSObject>& observer, const char* name,
             const std::shared_ptr<NSObject>& sender = {}) {
    center().addObserver_selector_name_object(observer, "heard:from:", name, sender);
}

class NotificationCenter : public testing::Test {
protected:
    void SetUp() override { events.clear(); }
};

} // namespace

NS_CLASS_IMPLEMENTATION(Listener, NSObject, method<&Listener::heard>("heard:from:"), method<&Listener::count>("count"))

namespace {

TEST_F(NotificationCenter, ObserversOfTheNameHearInTheOrderOfTheirRegistration) {
    const auto first = listener("first"), second = listener("second"), other = listener("other");
    observe(first, "moved");
    observe(other, "stayed");
    observe(second, "moved");

    center().postNotificationName_object("moved", nullptr);

    EXPECT_EQ(events, "first:moved second:moved ");
}

TEST_F(NotificationCenter, OneSenderOrAnySender) {
    const auto any = listener("any"), one = listener("one");
    const auto sender = NSObject::alloc(), other = NSObject::alloc();
    observe(any, "moved");
    observe(one, "moved", sender);

    center().postNotificationName_object("moved", sender);
    center().postNotificationName_object("moved", other);
    center().postNotificationName_object("moved", nullptr);

    EXPECT_EQ(events, "any:moved+ one:moved+ any:moved+ any:moved ");
}

TEST_F(NotificationCenter, ObserverIsNotKeptAliveAndNotCalledOnceItIsDead) {
    auto dying = listener("dying");
    const std::weak_ptr<Listener> weak = dying;
    observe(dying, "moved");

    dying.reset();
    center().postNotificationName_object("moved", nullptr);

    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(events, "");
}

TEST_F(NotificationCenter, DeadSenderIsNobodysSender) {
    const auto one = listener("one");
    auto sender = NSObject::alloc();
    observe(one, "moved", sender);

    sender.reset();
    center().postNotificationName_object("moved", nullptr);

    EXPECT_EQ(events, "");
}

TEST_F(NotificationCenter, RemovedObserverHearsNothingOfAnyName) {
    const auto gone = listener("gone"), stays = listener("stays");
    observe(gone, "moved");
    observe(gone, "stopped");
    observe(stays, "moved");

    center().removeObserver(gone.get());
    center().postNotificationName_object("moved", nullptr);
    center().postNotificationName_object("stopped", nullptr);

    EXPECT_EQ(events, "stays:moved ");
}

TEST_F(NotificationCenter, ObserverRemovedDuringADeliveryIsNotCalledAnyMore) {
    const auto first = listener("first"), second = listener("second");
    observe(first, "moved");
    observe(second, "moved");
    first->m_onHearing = [&] { center().removeObserver(second.get()); };

    center().postNotificationName_object("moved", nullptr);

    EXPECT_EQ(events, "first:moved ");
}

TEST_F(NotificationCenter, ObserverMayRegisterAndPostFromItsCall) {
    const auto first = listener("first"), late = listener("late");
    observe(first, "moved");
    first->m_onHearing = [&] {
        first->m_onHearing = nullptr;
        observe(late, "moved");
        center().postNotificationName_object("moved", nullptr);
    };

    center().postNotificationName_object("moved", nullptr);

    EXPECT_EQ(events, "first:moved first:moved late:moved ");
}

TEST_F(NotificationCenter, NilObserverIsIgnored) {
    observe(nullptr, "moved");
    center().removeObserver(nullptr);

    center().postNotificationName_object("moved", nullptr);

    EXPECT_EQ(events, "");
}

TEST_F(NotificationCenter, ManyThreadsMayRegisterPostAndRemove) {
    const auto steady = listener("steady");
    center().addObserver_selector_name_object(steady, "count", "ticked", nullptr);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) {
                const auto brief = listener("brief");
                center().addObserver_selector_name_object(brief, "count", "ticked", nullptr);
                center().postNotificationName_object("ticked", nullptr);
                if (i % 2) center().removeObserver(brief.get());
            }
        });
    for (auto& thread : threads) thread.join();

    EXPECT_EQ(steady->m_count, 400);
    center().removeObserver(steady.get());
}

} // namespace
