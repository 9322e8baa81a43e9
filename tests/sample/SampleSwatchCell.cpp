#include "tests/sample/SampleSwatchCell.h"

#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(
    SampleSwatchCell, PSTableCell,
    method<&SampleSwatchCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"))

std::shared_ptr<SampleSwatchCell>
SampleSwatchCell::initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                                          const std::shared_ptr<PSSpecifier>& specifier) {
    if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(style, reuseIdentifier, specifier)) return nullptr;
    const auto swatch = UIView::alloc()->initWithFrame({{0, 0}, {28, 28}});
    swatch->setBackgroundColor(UIColor::colorWithRed_green_blue_alpha(0, 0.3, 1, 1));
    swatch->layer()->setCornerRadius(14);
    setAccessoryView(swatch);
    setAccessoryType(UITableViewCellAccessoryType::DisclosureIndicator);
    return self(this);
}
