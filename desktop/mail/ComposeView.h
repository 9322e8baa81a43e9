#pragma once

#include "desktop/mail/html_blocks.h"
#include "kit/controllers/TextButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScrollView.h"

#include <vector>

namespace seat {

// What the composer shows: a bar with Cancel, the title and Open, a line on what Open does, and the message.
class ComposeView final : public UIView {
    NS_CLASS(ComposeView)
public:
    ~ComposeView() override;

    std::shared_ptr<ComposeView> initWithTitle(const std::string& title);
    void setBlocks(std::vector<HTMLBlock> blocks);
    const std::shared_ptr<TextButton>& cancelButton() const { return m_cancel; }
    const std::shared_ptr<TextButton>& openButton() const { return m_open; }

    // Open waits until the hand-over has failed, and nothing is said of an earlier one.
    void beginHandOver();
    void showHandOverFailed();

    void layoutSubviews() override;

private:
    ComposeView() = default;
    void setNote(std::shared_ptr<UILabel> note);
    void placeNote(bool isScrolled);

    std::vector<HTMLBlock> m_blocks;
    std::shared_ptr<UIView> m_bar;
    std::shared_ptr<UIView> m_barLine;
    std::shared_ptr<TextButton> m_cancel;
    std::shared_ptr<UILabel> m_title;
    std::shared_ptr<TextButton> m_open;
    std::shared_ptr<UILabel> m_note;
    std::shared_ptr<UIView> m_noteLine;
    std::shared_ptr<UIScrollView> m_message;
    double m_messageWidth = 0;  // that the message was laid out at; 0: not yet
    unsigned m_messageText = 0; // the generation of texts that it was laid out with
};

} // namespace seat
