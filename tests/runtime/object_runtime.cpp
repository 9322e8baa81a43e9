#include "host/dispatch/main_queue.h"
#include "host/foundation/log.h"
#include "platform/foundation.h"
#include "platform/runtime.h"

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

TEST(ObjectRuntime, ClassIsFoundByNameWithItsSuperclass) {
    const Class loud = objc_getClass("LoudGreeter");

    ASSERT_NE(loud, nullptr);
    EXPECT_EQ(class_getName(loud), "LoudGreeter");
    EXPECT_EQ(class_getSuperclass(loud), Greeter::classObject());
    EXPECT_EQ(class_getSuperclass(class_getSuperclass(loud)), NSObject::classObject());
    EXPECT_EQ(class_getSuperclass(NSObject::classObject()), nullptr);
    EXPECT_EQ(objc_getClass("NoSuchClass"), nullptr);
    EXPECT_TRUE(class_isSubclassOf(loud, loud));
    EXPECT_FALSE(class_isSubclassOf(Greeter::classObject(), loud));
}

} // namespace
