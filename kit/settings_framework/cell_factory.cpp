#include "kit/settings_framework/cell_factory.h"

#include "kit/settings_framework/cell_kinds.h"
#include "kit/settings_framework/row_value.h"
#include "platform/log.h"

namespace seat {
namespace {

Class kindClass(const PSSpecifier& row) {
    switch (row.cellType()) {
    case PSCellType::Switch:
        return PSSwitchTableCell::classObject();
    case PSCellType::LinkList:
        return PSLinkListTableCell::classObject();
    case PSCellType::StaticText:
        return PSStaticTextTableCell::classObject();
    case PSCellType::Group:
    case PSCellType::Button:
        break;
    }
    return PSButtonTableCell::classObject();
}

// nil when the row names none, or none that is a settings cell.
Class ownClass(const PSSpecifier& row) {
    const id wanted = row.propertyForKey("cellClass");
    if (!wanted) return nullptr;
    const Class cls = wanted.string() ? objc_getClass(*wanted.string()) : wanted.classValue();
    if (cls && class_isSubclassOf(cls, PSTableCell::classObject())) return cls;
    NSLog("making the cell of row \"%s\": its class %s is no settings cell", row.name().c_str(),
          wanted.string() ? wanted.string()->c_str() : "(none)");
    return nullptr;
}

std::shared_ptr<PSTableCell> makeCell(Class cls, const std::shared_ptr<PSSpecifier>& row) {
    const auto object = class_createInstance(cls);
    if (!object) return nullptr;
    return objc_msgSend(*object, "initWithStyle:reuseIdentifier:specifier:",
                        {NSNumber::numberWithInteger(UITableViewCellStyleDefault), id(class_getName(cls)), id(row)})
        .object<PSTableCell>();
}

} // namespace

std::shared_ptr<PSTableCell> keptCell(const PSSpecifier& row) {
    return row.propertyForKey("cellObject").object<PSTableCell>();
}

std::shared_ptr<PSTableCell> cellFor(const std::shared_ptr<PSSpecifier>& row) {
    if (auto kept = keptCell(*row)) return kept;
    const id value = shownValue(row);
    row->setProperty_forKey(value, "value");
    const Class own = ownClass(*row);
    auto cell = own ? makeCell(own, row) : nullptr;
    if (own && !cell) NSLog("making the cell of row \"%s\": its class makes none", row->name().c_str());
    if (!cell) cell = makeCell(kindClass(*row), row);
    row->setProperty_forKey(id(cell), "cellObject");
    cell->refreshCellContentsWithSpecifier(row);
    cell->setValue(value);
    return cell;
}

void refreshCell(const std::shared_ptr<PSSpecifier>& row) {
    const auto cell = keptCell(*row);
    if (!cell) return;
    const id value = shownValue(row);
    row->setProperty_forKey(value, "value");
    cell->refreshCellContentsWithSpecifier(row);
    cell->setValue(value);
    cell->setNeedsLayout();
}

} // namespace seat
