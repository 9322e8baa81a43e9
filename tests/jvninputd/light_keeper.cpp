#include "services/jvninputd/LightKeeper.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace jvninputd;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr AddressBytes one{1, 0, 0, 0, 0, 1};
constexpr AddressBytes two{2, 0, 0, 0, 0, 2};

class LightKeeperTest : public ::testing::Test {
protected:
    static ControllerFound found(const std::optional<AddressBytes>& address, const std::string& folder,
                                 input::Bus bus = input::Bus::bluetooth) {
        return {address, bus, folder};
    }
    static input::Light light(const AddressBytes& address, std::uint8_t red) {
        auto message = input::makeMessage<input::Light>();
        std::ranges::copy(address, message.address);
        message.action = input::LightAction::set;
        message.red = red;
        return message;
    }

    std::vector<std::string> set;
    LightKeeper keeper{
        [this](const std::string& folder, Colour colour) { set.push_back(folder + " " + std::to_string(colour.red)); }};
};

TEST_F(LightKeeperTest, TheOneWithTheAddressIsLitNowAndWhenItComesBack) {
    keeper.added("event1", found(one, "/one"));
    keeper.added("event2", found(two, "/two"));
    keeper.want(light(two, 5));
    keeper.removed("event2");
    keeper.added("event2", found(two, "/two"));

    EXPECT_THAT(set, ElementsAre("/two 5", "/two 5"));
}

TEST_F(LightKeeperTest, TheSameDeviceToldOfAgainIsNotLitAgain) {
    keeper.want(light(one, 5));
    keeper.added("event1", found(one, ""));
    EXPECT_THAT(set, IsEmpty()) << "its light has not come yet";
    keeper.added("event1", found(one, "/one"));
    keeper.added("event1", found(one, "/one"));

    EXPECT_THAT(set, ElementsAre("/one 5"));
}

TEST_F(LightKeeperTest, TheSameColourAskedForAgainIsSetAgain) {
    keeper.added("event1", found(one, "/one"));
    keeper.want(light(one, 5));
    keeper.want(light(one, 5));

    EXPECT_THAT(set, ElementsAre("/one 5", "/one 5"));
}

TEST_F(LightKeeperTest, LeftAloneNothingIsSet) {
    keeper.want(light(one, 5));
    auto alone = light(one, 5);
    alone.action = input::LightAction::leaveAlone;
    keeper.want(alone);
    keeper.added("event1", found(one, "/one"));

    EXPECT_THAT(set, IsEmpty());
}

TEST_F(LightKeeperTest, TheOnlyOneOnACableStandsForAnAddressThatIsNotThere) {
    keeper.want(light(one, 5));
    keeper.added("event2", found(two, "/two", input::Bus::usb));
    EXPECT_THAT(set, ElementsAre("/two 5"));
}

TEST_F(LightKeeperTest, OfTwoOnCablesNoneIsMeant) {
    keeper.added("event2", found(two, "/two", input::Bus::usb));
    keeper.added("event3", found(std::nullopt, "/three", input::Bus::usb));
    keeper.want(light(one, 5));
    EXPECT_THAT(set, IsEmpty());
}

TEST_F(LightKeeperTest, OneOnACableIsNotMeantWhileTheAddressIsThere) {
    keeper.added("event1", found(one, ""));
    keeper.added("event2", found(two, "/two", input::Bus::usb));
    keeper.want(light(one, 5));
    EXPECT_THAT(set, IsEmpty());
}

TEST_F(LightKeeperTest, ControllersAreListedOnceABus) {
    keeper.added("event1", found(one, ""));
    keeper.added("event2", found(one, "/one"));
    keeper.added("event3", found(one, "/wired", input::Bus::usb));
    keeper.added("event4", found(std::nullopt, "/none"));

    const auto list = keeper.controllers();
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].bus, input::Bus::bluetooth);
    EXPECT_EQ(list[0].hasLight, 1);
    EXPECT_EQ(list[1].bus, input::Bus::usb);
    EXPECT_EQ(list[1].present, 1);
}

} // namespace
