#include "kit/dispatch/main_queue.h"
#include "platform/dispatch.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/NSObject.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

int alive = 0;
bool diedOnMainThread = false;

class Card : public NSObject {
    NS_CLASS(Card)
    static constexpr bool diesOnMainThread = true;
    Card() { ++alive; }
    ~Card() override {
        --alive;
        diedOnMainThread = dispatch_is_main_thread();
    }
};

class Plain : public NSObject {
    NS_CLASS(Plain)
    Plain() { ++alive; }
    ~Plain() override {
        --alive;
        diedOnMainThread = dispatch_is_main_thread();
    }
};

template <class T> void releaseOnAnotherThread() {
    auto object = T::alloc();
    std::thread([object = std::move(object)]() mutable { object.reset(); }).join();
}

} // namespace

NS_CLASS_IMPLEMENTATION(Card, NSObject)
NS_CLASS_IMPLEMENTATION(Plain, NSObject)

namespace {

TEST(Lifetime, InterfaceObjectReleasedOnAWorkerDiesOnTheMainThread) {
    releaseOnAnotherThread<Card>();
    EXPECT_EQ(alive, 1);

    seat::drainMainQueue();

    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(diedOnMainThread);
}

TEST(Lifetime, InterfaceObjectReleasedOnTheMainThreadDiesAtOnce) {
    auto card = Card::alloc();

    card.reset();

    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(seat::mainQueueIsEmpty());
}

TEST(Lifetime, InterfaceObjectMadeByNameDiesOnTheMainThreadToo) {
    auto card = class_createInstance(objc_getClass("Card"));
    std::thread([card = std::move(card)]() mutable { card.reset(); }).join();
    EXPECT_EQ(alive, 1);

    seat::drainMainQueue();

    EXPECT_EQ(alive, 0);
}

TEST(Lifetime, OtherObjectDiesWhereItIsReleased) {
    releaseOnAnotherThread<Plain>();

    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(diedOnMainThread);
    EXPECT_TRUE(seat::mainQueueIsEmpty());
}

TEST(Lifetime, WeakReferenceIsEmptyAfterTheLastRelease) {
    auto card = Card::alloc();
    const std::weak_ptr<Card> weak = card;
    EXPECT_EQ(weak.lock(), card);

    card.reset();

    EXPECT_EQ(weak.lock(), nullptr);
}

TEST(Lifetime, ObjectEqualsItselfOnly) {
    const auto one = NSObject::alloc()->init();
    const auto other = NSObject::alloc()->init();

    EXPECT_TRUE(one->isEqual(*one));
    EXPECT_FALSE(one->isEqual(*other));
}

} // namespace
