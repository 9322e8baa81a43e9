#include "desktop/appearance/portal_settings.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::shared_ptr<NSDictionary> spaces(const id& factor, const id& font) {
    const auto values = NSMutableDictionary::dictionary();
    if (factor) values->setObject_forKey(factor, "text-scaling-factor");
    if (font) values->setObject_forKey(font, "font-name");
    const auto all = NSMutableDictionary::dictionary();
    all->setObject_forKey(id(values), "org.gnome.desktop.interface");
    return all;
}

seat::DesktopLook lookOf(const id& factor, const id& font) {
    seat::DesktopLook look;
    look.textScale = 1.25; // as the toolkit has it
    seat::applyPortalSettings(*spaces(factor, font), look);
    return look;
}

id number(double value) { return NSNumber::numberWithDouble(value); }

TEST(PortalSettings, TextIsAsLargeAsTheFactorTimesTheFont) {
    EXPECT_EQ(lookOf(number(1.5), id(std::string("Cantarell 11"))).textScale, 1.5);
    EXPECT_EQ(lookOf(number(1), id(std::string("Cantarell 22"))).textScale, 2);
    EXPECT_EQ(lookOf(number(1), id(std::string("Cantarell 11"))).fontFamily, "Cantarell");
    EXPECT_EQ(lookOf(id(), id(std::string("Cantarell 9"))).textScale, 1);
}

TEST(PortalSettings, WhatIsNotSaidIsAsTheToolkitHasIt) {
    EXPECT_EQ(lookOf(id(), id()).textScale, 1.25);
    EXPECT_EQ(lookOf(id(std::string("large")), number(3)).textScale, 1.25) << "of another kind";
}

TEST(PortalSettings, FactorsThatAreNoneAreNone) {
    for (const double factor : {0.0, -1.0, std::nan(""), HUGE_VAL})
        EXPECT_EQ(lookOf(number(factor), id()).textScale, 1) << factor;
}

} // namespace
