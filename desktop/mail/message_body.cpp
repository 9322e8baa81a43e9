#include "desktop/mail/message_body.h"

#include "desktop/mail/MessageLink.h"
#include "desktop/painting/TextLayout.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/text_runs.h"
#include "kit/uikit/appearance.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>

namespace seat {

namespace {

constexpr double bodySize = 15;
constexpr double itemIndent = 28;
constexpr double betweenItems = 4;
constexpr double betweenBlocks = 14;

std::shared_ptr<UILabel> blockLabel(const HTMLBlock& block) {
    using Kind = HTMLBlock::Kind;
    const auto font = block.kind == Kind::Heading      ? appearance::boldTextFont(22)
                      : block.kind == Kind::Subheading ? appearance::boldTextFont(17)
                                                       : appearance::textFont(bodySize);
    const auto text = NSMutableAttributedString::alloc()->initWithString_attributes("", {});
    for (const auto& run : block.runs)
        text->appendAttributedString(*NSMutableAttributedString::alloc()->initWithString_attributes(
            run.text, {font, !run.address.empty() ? appearance::tintColor() : appearance::textColor()}));
    const auto result = UILabel::alloc()->init();
    result->setFont(font);
    result->setAttributedText(text);
    result->setNumberOfLines(0);
    return result;
}

std::shared_ptr<UILabel> markerLabel(const std::string& marker) {
    const auto label = UILabel::alloc()->init();
    label->setFont(appearance::textFont(bodySize));
    label->setTextColor(appearance::secondaryTextColor());
    label->setTextAlignment(NSTextAlignmentRight);
    label->setText(marker);
    return label;
}

constexpr double linkPadding = 4; // around the text, for fingers

// Where a run of the label's text stands, in the label; empty when it is not shown.
CGRect extentOfRun(const UILabel& label, std::size_t run) {
    const double scale = UIScreen::mainScreen()->scale();
    const auto runs = textRuns(*label.attributedText(), label.font(), nullptr);
    const auto layout = textLayout(runs, label.bounds().size.width * scale, /*lines=*/0, scale);
    QRectF extent;
    for (const auto& line : layout->lines)
        for (const auto& piece : line.pieces)
            if (piece.run == run) extent |= piece.glyphs.boundingRect().translated(0, line.baseline);
    return {{extent.x() / scale, extent.y() / scale}, {extent.width() / scale, extent.height() / scale}};
}

void addLinks(UIView& view, const UILabel& label, const HTMLBlock& block) {
    for (std::size_t run = 0; run < block.runs.size(); ++run) {
        if (block.runs[run].address.empty()) continue;
        CGRect extent = CGRectInset(extentOfRun(label, run), -linkPadding, -linkPadding);
        extent.origin.x += label.frame().origin.x;
        extent.origin.y += label.frame().origin.y;
        const auto link = MessageLink::alloc()->initWithText_address(block.runs[run].text, block.runs[run].address);
        link->setFrame(extent);
        view.addSubview(link);
    }
}

} // namespace

double messageMargin(double width) { return std::max(appearance::sideMargin, (width - appearance::readableWidth) / 2); }

double layOutMessage(UIView& view, const std::vector<HTMLBlock>& blocks, double width) {
    const auto former = view.subviews();
    for (const auto& subview : former) subview->removeFromSuperview();
    const double left = messageMargin(width);
    double y = 0;
    for (const auto& block : blocks) {
        const bool isItem = block.kind == HTMLBlock::Kind::ListItem;
        const double indent = isItem ? itemIndent : 0;
        const double available = std::max(1.0, width - 2 * left - indent);
        y += isItem ? betweenItems : betweenBlocks;
        const auto text = blockLabel(block);
        const CGSize size = text->sizeThatFits(CGSizeMake(available, 1e6));
        text->setFrame(CGRectMake(left + indent, y, available, size.height));
        if (isItem) {
            const auto marker = markerLabel(block.marker);
            const double height = marker->sizeThatFits(CGSizeMake(indent, 1e6)).height;
            marker->setFrame(CGRectMake(left, y, indent - 7, height));
            view.addSubview(marker);
        }
        view.addSubview(text);
        addLinks(view, *text, block);
        y += size.height;
    }
    return y + appearance::sideMargin;
}

} // namespace seat
