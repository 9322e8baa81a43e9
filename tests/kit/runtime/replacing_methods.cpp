#include "platform/foundation/NSArray.h"
#include "platform/foundation/id.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/NSObject.h"
#include "platform/runtime/method.h"

#include <gtest/gtest.h>

namespace {

class Handler : public NSObject {
    NS_CLASS(Handler)
    std::string handle(std::string key) { return "handled " + key; }
};
class InheritingHandler : public Handler {
    NS_CLASS(InheritingHandler)
};
class OwnHandler : public Handler {
    NS_CLASS(OwnHandler)
    std::string handle(std::string key) { return "own " + key; }
};
class Numbers : public NSObject {
    NS_CLASS(Numbers)
    void tell(id, bool, int, double, std::string, std::shared_ptr<NSArray>) {}
    long count() const { return 3; }
    bool isEmpty() const { return false; }
    double half() const { return 0.5; }
};

} // namespace

NS_CLASS_IMPLEMENTATION(Handler, NSObject, method<&Handler::handle>("handleKey:"))
NS_CLASS_IMPLEMENTATION(InheritingHandler, Handler)
NS_CLASS_IMPLEMENTATION(OwnHandler, Handler, method<&OwnHandler::handle>("handleKey:"))
NS_CLASS_IMPLEMENTATION(Numbers, NSObject, method<&Numbers::tell>("tell:"), method<&Numbers::count>("count"),
                        method<&Numbers::isEmpty>("isEmpty"), method<&Numbers::half>("half"))

namespace {

IMP previous = nullptr;

id hook(NSObject& self, SEL command, std::span<const id> arguments) {
    return "hooked " + *previous(self, command, arguments).string();
}

id forward(NSObject& self, SEL command, std::span<const id> arguments) {
    return class_getMethodImplementation(Handler::classObject(), command)(self, command, arguments);
}

TEST(ReplacingMethods, MethodAddedToAnInheritingClassHidesTheInheritedOne) {
    const SEL selector("handleKey:");
    const Method inherited = class_getInstanceMethod(InheritingHandler::classObject(), selector);
    previous = &forward;

    const bool added =
        class_addMethod(InheritingHandler::classObject(), selector, &hook, method_getTypeEncoding(inherited));

    EXPECT_TRUE(added);
    EXPECT_EQ(objc_msgSend(*InheritingHandler::alloc(), selector, {"4"}), id("hooked handled 4"));
    EXPECT_EQ(objc_msgSend(*Handler::alloc(), selector, {"4"}), id("handled 4"));
    EXPECT_STREQ(method_getTypeEncoding(class_getInstanceMethod(InheritingHandler::classObject(), selector)), "@@:@");
}

TEST(ReplacingMethods, MethodOfTheClassItselfIsNotAddedButReplaced) {
    const SEL selector("handleKey:");
    const Class cls = OwnHandler::classObject();
    const IMP own = class_getMethodImplementation(cls, selector);

    EXPECT_FALSE(class_addMethod(cls, selector, &hook, "@@:@"));
    EXPECT_EQ(objc_msgSend(*OwnHandler::alloc(), selector, {"4"}), id("own 4"));

    previous = method_setImplementation(class_getInstanceMethod(cls, selector), &hook);
    EXPECT_EQ(previous, own);
    EXPECT_EQ(class_getMethodImplementation(cls, selector), &hook);
    EXPECT_EQ(objc_msgSend(*OwnHandler::alloc(), selector, {"4"}), id("hooked own 4"));
    EXPECT_EQ(method_setImplementation(class_getInstanceMethod(cls, selector), own), &hook);
}

TEST(ReplacingMethods, MissingMethodHasNoImplementation) {
    EXPECT_EQ(class_getInstanceMethod(Handler::classObject(), "noSuchKey:"), nullptr);
    EXPECT_EQ(class_getMethodImplementation(Handler::classObject(), "noSuchKey:"), nullptr);
    EXPECT_EQ(class_getMethodImplementation(nullptr, "handleKey:"), nullptr);
    EXPECT_EQ(method_getImplementation(nullptr), nullptr);
    EXPECT_FALSE(class_addMethod(nullptr, "handleKey:", &hook, "@@:@"));
}

TEST(ReplacingMethods, TypeEncodingTellsResultAndArguments) {
    const auto types = [](const char* selector) {
        return std::string(method_getTypeEncoding(class_getInstanceMethod(Numbers::classObject(), selector)));
    };

    EXPECT_EQ(types("tell:"), "v@:@Bqd@@");
    EXPECT_EQ(types("count"), "q@:");
    EXPECT_EQ(types("isEmpty"), "B@:");
    EXPECT_EQ(types("half"), "d@:");
}

} // namespace
