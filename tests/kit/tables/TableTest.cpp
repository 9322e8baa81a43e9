#include "tests/kit/tables/TableTest.h"

NS_CLASS_IMPLEMENTATION(Rows, NSObject)

std::shared_ptr<UITableViewCell> Rows::tableView_cellForRowAtIndexPath(UITableView& table,
                                                                       const std::shared_ptr<NSIndexPath>& path) {
    ++asked;
    if (const auto once = std::exchange(onCell, nullptr)) once();
    auto cell = table.dequeueReusableCellWithIdentifier_forIndexPath("row", path);
    if (!cell) return nullptr;
    cell->textLabel()->setText(
        sections.at(static_cast<std::size_t>(path->section())).at(static_cast<std::size_t>(path->row())));
    return cell;
}

void Rows::tableView_didSelectRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>& path) {
    log += "selected(" + std::to_string(path->section()) + "," + std::to_string(path->row()) + ") ";
    if (onSelect) onSelect();
}

void TableTest::show(std::vector<std::vector<std::string>> sections, long style) {
    rows = Rows::alloc()->init();
    rows->sections = std::move(sections);
    table = UITableView::alloc()->initWithFrame_style({{0, 0}, {320, 480}}, style);
    table->registerClass_forCellReuseIdentifier(UITableViewCell::classObject(), "row");
    table->setDataSource(rows);
    table->setDelegate(rows);
    table->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    scene.window()->addSubview(table);
    scene.prepareFrame();
}

std::vector<std::string> TableTest::numbered(long count) {
    std::vector<std::string> texts;
    for (long i = 0; i < count; ++i) texts.push_back(std::to_string(i));
    return texts;
}

std::string TableTest::titles() const {
    std::string text;
    for (const auto& cell : table->visibleCells()) text += (text.empty() ? "" : " ") + cell->textLabel()->text();
    return text;
}

std::string TableTest::order() const {
    std::string text;
    for (const auto& view : table->subviews()) {
        const auto label = std::dynamic_pointer_cast<UILabel>(view);
        const auto cell = std::dynamic_pointer_cast<UITableViewCell>(view);
        if (label || cell) text += (text.empty() ? "" : " ") + (label ? label->text() : cell->textLabel()->text());
    }
    return text;
}
