// In which order the page changes its rows, as its table hears of it.

#include "platform/uikit/UITableViewController.h"
#include "tests/settings/PageTest.h"

#include <algorithm>
#include <functional>

namespace {

// Notes its rows each time that its table asks for all of them, and tells of each reload.
class AskedPage final : public JoyvaneListController {
    NS_CLASS(AskedPage)
    long numberOfSectionsInTableView(UITableView& table) override {
        asked.push_back(testing_support::rowsOf(*this));
        return JoyvaneListController::numberOfSectionsInTableView(table);
    }
    void reloadSpecifiers() override {
        if (reloading) reloading();
        JoyvaneListController::reloadSpecifiers();
    }
    std::vector<std::string> asked;
    std::function<void()> reloading;
};
NS_CLASS_IMPLEMENTATION(AskedPage, JoyvaneListController)

class RowOrder : public PageTest {
protected:
    void make() {
        app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(1)}}));
        page = own;
        page->init();
    }
    const std::shared_ptr<AskedPage> own = AskedPage::alloc();
};

TEST_F(RowOrder, TheGroupOfTheDualShock4GoesBeforeTheSwitchInIt) {
    make();
    app.open(page);
    const std::string head = "[Setup] | Controller | Connection | Pair Controller | ";
    const std::string tail = "Choose LED Color | [Help] | PS3 Pairing Instructions | Restart Daemons";
    own->asked.clear();

    page->setHasDS4Specifiers(false);
    app.settle();

    EXPECT_EQ(own->asked, (std::vector<std::string>{head + "Ambient LED Color | " + tail, head + tail}));
}

TEST_F(RowOrder, TheTableKnowsItsPageBeforeTheFirstReload) {
    make();
    std::vector<long> sections;
    own->reloading = [&] { sections.push_back(page->table()->numberOfSections()); };

    page->view();

    own->reloading = nullptr;
    EXPECT_EQ(sections, std::vector<long>{2});
}

// The push has laid the table out already.
TEST_F(RowOrder, TheKeymapEditorsRowsAreAskedForAnewOnceItIsPushed) {
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(6)}}));
    page = JoyvaneListController::alloc()->init();
    app.open(page);

    page->pairController();

    const auto editor = std::dynamic_pointer_cast<UITableViewController>(app.navigation()->topViewController());
    ASSERT_TRUE(editor);
    const auto cells = [&] {
        const auto& views = editor->tableView()->subviews();
        return std::count_if(views.begin(), views.end(),
                             [](const auto& view) { return dynamic_cast<UITableViewCell*>(view.get()); });
    };
    EXPECT_EQ(cells(), 0) << "those of the push are gone";
    app.settle();
    EXPECT_GT(cells(), 0);
}

} // namespace
