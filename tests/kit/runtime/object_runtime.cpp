#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/id.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/NSObject.h"
#include "platform/runtime/method.h"
#include "tests/support/CapturedLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

class Greeter : public NSObject {
    NS_CLASS(Greeter)

    std::shared_ptr<Greeter> init() {
        if (!NSObject::init()) return nullptr;
        m_ready = true;
        return self(this);
    }
    id greet(std::string name) { return m_ready ? id("hello " + name) : id(); }
    int add(int a, double b) const { return a + static_cast<int>(b); }
    void remember(const std::shared_ptr<NSArray>& objects) { m_objects = objects; }

    std::shared_ptr<NSArray> m_objects;

protected:
    Greeter() = default;

private:
    bool m_ready = false;
};

class LoudGreeter : public Greeter {
    NS_CLASS(LoudGreeter)

    id greet(std::string name) { return "HELLO " + name; }
};

} // namespace

NS_CLASS_IMPLEMENTATION(Greeter, NSObject, method<&Greeter::init>("init"), method<&Greeter::greet>("greet:"),
                        method<&Greeter::add>("add:to:"), method<&Greeter::remember>("remember:"))
NS_CLASS_IMPLEMENTATION(LoudGreeter, Greeter, method<&LoudGreeter::greet>("greet:"))

namespace {

using testing::ElementsAre;

TEST(ObjectRuntime, ClassIsFoundByNameWithItsSuperclass) {
    const Class loud = objc_getClass("LoudGreeter");

    ASSERT_NE(loud, nullptr);
    EXPECT_EQ(class_getName(loud), "LoudGreeter");
    EXPECT_EQ(class_getSuperclass(loud), Greeter::classObject());
    EXPECT_EQ(class_getSuperclass(class_getSuperclass(loud)), NSObject::classObject());
    EXPECT_EQ(class_getSuperclass(NSObject::classObject()), nullptr);
    EXPECT_EQ(class_getSuperclass(nullptr), nullptr);
    EXPECT_EQ(objc_getClass("NoSuchClass"), nullptr);
}

TEST(ObjectRuntime, ClassDescendsFromItselfAndItsAncestorsOnly) {
    const auto loud = LoudGreeter::alloc();

    EXPECT_TRUE(loud->isKindOfClass(LoudGreeter::classObject()));
    EXPECT_TRUE(loud->isKindOfClass(Greeter::classObject()));
    EXPECT_TRUE(loud->isKindOfClass(NSObject::classObject()));
    EXPECT_FALSE(loud->isKindOfClass(NSArray::classObject()));
    EXPECT_FALSE(class_isSubclassOf(Greeter::classObject(), LoudGreeter::classObject()));
    EXPECT_FALSE(class_isSubclassOf(nullptr, NSObject::classObject()));
}

TEST(ObjectRuntime, SelectorsOfTheSameNameAreIdentical) {
    const std::string name = "tableView:cellForRowAtIndexPath:";

    EXPECT_EQ(SEL(name), SEL("tableView:cellForRowAtIndexPath:"));
    EXPECT_NE(SEL(name), SEL("tableView:cellForRowAtIndexPath"));
    EXPECT_EQ(SEL(name).name(), name);
    EXPECT_FALSE(SEL());
    EXPECT_EQ(SEL().name(), "");
    EXPECT_EQ(SEL(static_cast<const char*>(nullptr)), SEL());
}

TEST(ObjectRuntime, InstanceMadeByNameIsInitialisedByMessage) {
    const auto object = class_createInstance(objc_getClass("Greeter"));
    ASSERT_NE(object, nullptr);

    const id ready = objc_msgSend(*object, "init", {});

    EXPECT_EQ(ready.object<Greeter>(), object);
    EXPECT_EQ(objc_msgSend(*object, "greet:", {"you"}), id("hello you"));
    EXPECT_EQ(class_createInstance(nullptr), nullptr);
}

TEST(ObjectRuntime, MessageFindsTheMostDerivedMethod) {
    const auto loud = LoudGreeter::alloc();

    EXPECT_EQ(objc_msgSend(*loud, "greet:", {"you"}), id("HELLO you"));
    EXPECT_EQ(objc_msgSend(*loud, "add:to:", {NSNumber::numberWithInt(2), NSNumber::numberWithDouble(3.5)}),
              id(NSNumber::numberWithInt(5)));
}

TEST(ObjectRuntime, MissingArgumentsReadAsNil) {
    const auto greeter = Greeter::alloc()->init();
    greeter->remember(NSArray::array());

    EXPECT_EQ(objc_msgSend(*greeter, "add:to:", {NSNumber::numberWithInt(2)}), id(NSNumber::numberWithInt(2)));
    EXPECT_FALSE(objc_msgSend(*greeter, "remember:", {}));

    EXPECT_EQ(greeter->m_objects, nullptr);
}

TEST(ObjectRuntime, UnknownSelectorGivesNilAndOneLine) {
    const testing_support::CapturedLog log;

    EXPECT_FALSE(objc_msgSend(*Greeter::alloc(), "fly:", {"away"}));

    EXPECT_THAT(log.lines(), ElementsAre("runtime: Greeter does not respond to \"fly:\""));
}

TEST(ObjectRuntime, RespondsToOwnAndInheritedSelectorsOnly) {
    const auto loud = LoudGreeter::alloc();

    EXPECT_TRUE(loud->respondsToSelector("greet:"));
    EXPECT_TRUE(loud->respondsToSelector("add:to:"));
    EXPECT_TRUE(loud->respondsToSelector("init"));
    EXPECT_FALSE(loud->respondsToSelector("fly:"));
    EXPECT_FALSE(loud->respondsToSelector(nullptr));
}

TEST(ObjectRuntime, SecondRegistrationOfANameLeavesTheFirst) {
    const testing_support::CapturedLog log;

    const Class again = runtime_detail::registerClass("Greeter", NSArray::classObject(), nullptr, {});

    EXPECT_EQ(again, Greeter::classObject());
    EXPECT_EQ(class_getSuperclass(again), NSObject::classObject());
    EXPECT_THAT(log.lines(), ElementsAre("runtime: class Greeter is registered twice; the first registration stays"));
}

TEST(ObjectRuntime, ManyThreadsMayRegisterLookUpAndSend) {
    std::vector<std::thread> threads;
    std::atomic<int> greeted = 0;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t, &greeted] {
            for (int i = 0; i < 200; ++i) {
                const std::string name = "Class" + std::to_string(t) + "_" + std::to_string(i);
                const Class made = runtime_detail::registerClass(name.c_str(), NSObject::classObject(), nullptr, {});
                class_addMethod(made, SEL(name + ":"), class_getMethodImplementation(Greeter::classObject(), "greet:"),
                                "@@:@");
                greeted += objc_getClass(name) == made && class_getInstanceMethod(made, SEL(name + ":")) &&
                           objc_msgSend(*LoudGreeter::alloc(), "greet:", {"you"}) == id("HELLO you");
            }
        });
    for (auto& thread : threads) thread.join();

    EXPECT_EQ(greeted, 800);
}

} // namespace
