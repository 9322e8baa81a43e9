#pragma once

#include "kit/settings_framework/bundle.h"
#include "platform/settings_framework/PSListController.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/kit/uikit/SceneTest.h"
#include "tests/support/TestRoot.h"

// A page whose rows come from the resource "Page"; its actions leave their names in the log.
class TestPage : public PSListController {
    NS_CLASS(TestPage)
public:
    std::shared_ptr<TestPage> init() { return PSListController::init() ? self(this) : nullptr; }

    const PSSpecifierList& specifiers() override {
        if (!_specifiers) _specifiers = loadSpecifiersFromPlistName_target("Page", shared_from_this());
        return *_specifiers;
    }
    void setPreferenceValue_specifier(const id& value, const std::shared_ptr<PSSpecifier>& specifier) override {
        PSListController::setPreferenceValue_specifier(value, specifier);
        log += "set(" + specifier->identifier() + ") ";
    }
    void tapped(const std::shared_ptr<PSSpecifier>& specifier) { log += "tapped(" + specifier->identifier() + ") "; }
    void plain() { log += "plain "; }

    std::string log;
};

// A scene that shows a page under a navigation bar, with a root and a bundle folder of its own.
class PageTest : public SceneTest {
protected:
    PageTest() { seat::setResourceFolder(m_root.file("bundle")); }
    ~PageTest() override { seat::setResourceFolder({}); }

    // `items` is the inside of the resource's array.
    void writeResource(const std::string& items, const std::string& name = "Page") const {
        const std::string head =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>title</key>"
            "<string>Settings</string><key>items</key><array>";
        testing_support::TestRoot::write(m_root.file("bundle/" + name + ".plist"),
                                         head + items + "</array></dict></plist>");
    }
    void show() {
        page = TestPage::alloc()->init();
        navigation = UINavigationController::alloc()->initWithRootViewController(page);
        scene.window()->setRootViewController(navigation);
        touches.settle();
    }
    std::string file(const std::string& name) const { return m_root.file(name); }

    std::shared_ptr<PSTableCell> cell(const std::string& identifier) const {
        const auto row = page->specifierForID(identifier);
        return row ? row->propertyForKey("cellObject").object<PSTableCell>() : nullptr;
    }
    // The identifiers of the rows, groups in brackets, in the order of the list.
    std::string rows() const {
        std::string text;
        for (const auto& row : page->specifiers())
            text += (text.empty() ? "" : " ") +
                    (row->cellType() == PSCellType::Group ? "[" + row->identifier() + "]" : row->identifier());
        return text;
    }
    // What is on screen: the titles of the cells from top to bottom.
    std::string shownTitles() const {
        std::string text;
        for (const auto& shown : page->table()->visibleCells())
            text += (text.empty() ? "" : ", ") + shown->textLabel()->text();
        return text;
    }

    std::shared_ptr<TestPage> page;
    std::shared_ptr<UINavigationController> navigation;

private:
    testing_support::TestRoot m_root;
};

// Items of a resource.
std::string group(const std::string& identifier, const std::string& title, const std::string& footer = {});
std::string item(const std::string& kind, const std::string& identifier, const std::string& title,
                 const std::string& more = {});
// The properties that bind a row to a setting of "com.quorrel.test".
std::string bound(const std::string& key, const std::string& defaultValue);
std::string choices(const std::vector<std::string>& titles);
