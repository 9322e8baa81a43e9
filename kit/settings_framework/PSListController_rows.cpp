// The list of rows, and how it changes.

#include "kit/settings_framework/cell_factory.h"
#include "kit/settings_framework/list_state.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

bool contains(const PSSpecifierList& list, const std::shared_ptr<PSSpecifier>& specifier) {
    return std::find(list.begin(), list.end(), specifier) != list.end();
}

std::vector<PSSpecifier*> groupsOf(const std::vector<seat::ListSection>& sections) {
    std::vector<PSSpecifier*> groups;
    for (const auto& section : sections) groups.push_back(section.group.get());
    return groups;
}

// Where the rows stand that are in one list only.
NSIndexPathList pathsMissingFrom(const PSSpecifierList& other, const std::vector<seat::ListSection>& sections) {
    const std::unordered_set<std::shared_ptr<PSSpecifier>> known(other.begin(), other.end());
    NSIndexPathList paths;
    for (std::size_t section = 0; section < sections.size(); ++section)
        for (std::size_t row = 0; row < sections[section].rows.size(); ++row)
            if (!known.contains(sections[section].rows[row]))
                paths.push_back(
                    NSIndexPath::indexPathForRow_inSection(static_cast<long>(row), static_cast<long>(section)));
    return paths;
}

} // namespace

std::vector<seat::ListSection> seat::sectionsOf(const PSSpecifierList& specifiers) {
    std::vector<ListSection> sections;
    for (const auto& specifier : specifiers) {
        if (!specifier) continue;
        if (specifier->cellType() == PSCellType::Group) {
            sections.push_back({specifier, {}});
            continue;
        }
        if (sections.empty()) sections.emplace_back();
        sections.back().rows.push_back(specifier);
    }
    return sections;
}

std::shared_ptr<PSSpecifier> PSListController::State::row(const NSIndexPath& path) const {
    if (path.section() < 0 || path.section() >= std::ssize(sections)) return nullptr;
    const auto& rows = sections[static_cast<std::size_t>(path.section())].rows;
    return path.row() >= 0 && path.row() < std::ssize(rows) ? rows[static_cast<std::size_t>(path.row())] : nullptr;
}

std::shared_ptr<NSIndexPath> PSListController::State::pathOf(const PSSpecifier* specifier) const {
    for (std::size_t section = 0; section < sections.size(); ++section)
        for (std::size_t row = 0; row < sections[section].rows.size(); ++row)
            if (sections[section].rows[row].get() == specifier)
                return NSIndexPath::indexPathForRow_inSection(static_cast<long>(row), static_cast<long>(section));
    return nullptr;
}

namespace {

// By which a row of the list before is known again.
std::string nameOf(const PSSpecifier& row) {
    const std::string identifier = row.identifier();
    return identifier.empty() ? "title " + row.name() : "id " + identifier;
}

} // namespace

void PSListController::State::rememberRows(const PSSpecifierList& list) {
    outdated.clear();
    std::map<std::string, std::shared_ptr<PSSpecifier>> rows;
    for (const auto& row : list) {
        if (!row || !seat::keptCell(*row)) continue;
        const auto [found, isNew] = rows.try_emplace(nameOf(*row), row);
        if (!isNew) found->second = nullptr;
    }
    // Of two reloads before a layout the first one's rows may still be wanted: those that the second list had not yet.
    rows.merge(formerRows);
    formerRows = std::move(rows);
}

void PSListController::State::takeFormerCell(const std::shared_ptr<PSSpecifier>& row) {
    if (!row) return;
    // A row that comes back, after another had taken over its cell.
    if (const auto kept = seat::keptCell(*row)) return kept->setSpecifier(row);
    const auto found = formerRows.find(nameOf(*row));
    const auto former = found == formerRows.end() ? nullptr : found->second;
    const auto cell = former && former->cellType() == row->cellType() &&
                              former->propertyForKey("cellClass") == row->propertyForKey("cellClass")
                          ? seat::keptCell(*former)
                          : nullptr;
    if (!cell) return;
    row->setProperty_forKey(id(cell), "cellObject");
    cell->setSpecifier(row);
    outdated.insert(row.get());
}

void PSListController::State::reloadLater(UIView& page) {
    needsReload = true;
    page.setNeedsLayout();
}

void PSListController::State::reloadNow() {
    if (!std::exchange(needsReload, false)) return;
    formerRows.clear();
    table->reloadData();
}

void PSListController::State::showChange(const PSSpecifierList& before, const PSSpecifierList& after, bool animated) {
    if (!table || needsReload) return; // it will ask for everything
    const auto oldSections = seat::sectionsOf(before);
    const auto newSections = seat::sectionsOf(after);
    const auto gone = pathsMissingFrom(after, oldSections);
    const auto come = pathsMissingFrom(before, newSections);
    // Rows that only came or only went can slide; anything else is shown anew.
    if (groupsOf(oldSections) != groupsOf(newSections) || gone.empty() == come.empty()) return table->reloadData();
    const long animation = animated ? UITableViewRowAnimationFade : UITableViewRowAnimationNone;
    if (gone.empty())
        table->insertRowsAtIndexPaths_withRowAnimation(come, animation);
    else
        table->deleteRowsAtIndexPaths_withRowAnimation(gone, animation);
}

std::shared_ptr<PSSpecifier> PSListController::specifierForID(const std::string& identifier) {
    if (identifier.empty()) return nullptr;
    for (const auto& specifier : specifiers())
        if (specifier && specifier->identifier() == identifier) return specifier;
    return nullptr;
}

bool PSListController::containsSpecifier(const std::shared_ptr<PSSpecifier>& specifier) {
    return indexOfSpecifier(specifier) >= 0;
}

long PSListController::indexOfSpecifier(const std::shared_ptr<PSSpecifier>& specifier) {
    const auto& list = specifiers();
    const auto found = specifier ? std::find(list.begin(), list.end(), specifier) : list.end();
    return found == list.end() ? -1 : found - list.begin();
}

long PSListController::indexOfSpecifierID(const std::string& identifier) {
    return indexOfSpecifier(specifierForID(identifier));
}

void PSListController::insertSpecifier_afterSpecifier_animated(const std::shared_ptr<PSSpecifier>& specifier,
                                                               const std::shared_ptr<PSSpecifier>& after,
                                                               bool animated) {
    insertContiguousSpecifiers_afterSpecifier_animated({specifier}, after, animated);
}

void PSListController::insertSpecifier_afterSpecifierID_animated(const std::shared_ptr<PSSpecifier>& specifier,
                                                                 const std::string& after, bool animated) {
    insertContiguousSpecifiers_afterSpecifier_animated({specifier}, specifierForID(after), animated);
}

void PSListController::insertContiguousSpecifiers_afterSpecifierID_animated(const PSSpecifierList& specifiers,
                                                                            const std::string& after, bool animated) {
    insertContiguousSpecifiers_afterSpecifier_animated(specifiers, specifierForID(after), animated);
}

void PSListController::insertContiguousSpecifiers_afterSpecifier_animated(const PSSpecifierList& inserted,
                                                                          const std::shared_ptr<PSSpecifier>& after,
                                                                          bool animated) {
    const PSSpecifierList before = specifiers();
    PSSpecifierList rows;
    for (const auto& row : inserted)
        if (row && !contains(rows, row)) rows.push_back(row);
    if (rows.empty()) return;

    // Rows that are in the list already move. Should the anchor itself be one of them, the run stays where it stands.
    PSSpecifierList list;
    std::ptrdiff_t place = 0;
    for (const auto& specifier : before) {
        if (!contains(rows, specifier)) list.push_back(specifier);
        if (after && specifier == after) place = std::ssize(list);
    }
    list.insert(list.begin() + place, rows.begin(), rows.end());
    _specifiers = list;
    for (const auto& row : rows) {
        m_list->takeFormerCell(row);
        seat::refreshCell(row);
    }
    m_list->showChange(before, list, animated);
}

void PSListController::removeSpecifierID_animated(const std::string& identifier, bool animated) {
    const auto specifier = specifierForID(identifier);
    if (!specifier) return;
    const PSSpecifierList before = specifiers();
    PSSpecifierList list = before;
    std::erase(list, specifier);
    _specifiers = list;
    m_list->showChange(before, list, animated);
}
