#pragma once

#include "settings/JoyvaneListController.h"
#include "tests/support/ScriptedDaemon.h"
#include "tests/support/SettingsHost.h"

#include <gtest/gtest.h>

// The page as the Settings application shows it, over a fresh root.
class PageTest : public testing::Test {
protected:
    using Numbers = std::initializer_list<std::pair<const char*, id>>;

    // Shows the page over a preferences file with these values.
    void show(Numbers preferences = {}) {
        if (preferences.size() > 0) app.writePreferences(testing_support::dictionary(preferences));
        page = JoyvaneListController::alloc()->init();
        app.open(page);
    }
    void show(long controllerType, long connectionMode = 0, Numbers others = {}) {
        const auto values = testing_support::dictionary(others);
        values->setObject_forKey(NSNumber::numberWithInteger(controllerType), "controller_type");
        values->setObject_forKey(NSNumber::numberWithInteger(connectionMode), "connection_mode");
        app.writePreferences(values);
        page = JoyvaneListController::alloc()->init();
        app.open(page);
    }
    std::string rows() { return testing_support::rowsOf(*page); }

    testing_support::SettingsHost app;
    std::shared_ptr<JoyvaneListController> page;
};
