// What keys, fingers and assistive technology do to the text.

#include "kit/uikit/hid_keys.h"
#include "kit/uikit/text_field_state.h"
#include "platform/uikit/UIKeyEvent.h"
#include "platform/uikit/UIPasteboard.h"
#include "platform/uikit/UIWindow.h"

namespace {

using seat::TextEditor;

constexpr unsigned commandKeys = UIKeyEvent::Control | UIKeyEvent::Alt | UIKeyEvent::GUI;

} // namespace

void UITextField::edited(const std::string& former) {
    showCaret();
    if (text() != former) sendActionsForControlEvents(UIControlEventEditingChanged);
}

void UITextField::insertText(const std::string& added) {
    const std::string former = text();
    m_field->editor.insert(added);
    edited(former);
}

bool UITextField::takeKey(const UIKeyEvent& event) {
    namespace hid = seat::hid;
    const unsigned command = event.modifiers() & commandKeys;
    if (command != 0 && command != UIKeyEvent::Control) return false;
    const bool isControl = command == UIKeyEvent::Control;
    const auto extent = isControl ? TextEditor::Extent::Word : TextEditor::Extent::Character;
    const bool isShift = event.modifiers() & UIKeyEvent::Shift;
    const auto selecting = isShift ? TextEditor::Selecting::Yes : TextEditor::Selecting::No;
    auto& editor = m_field->editor;
    const std::string former = text();
    switch (event._keyCode()) {
    case hid::left:
        editor.moveBackward(extent, selecting);
        break;
    case hid::right:
        editor.moveForward(extent, selecting);
        break;
    case hid::home:
        editor.moveBackward(TextEditor::Extent::All, selecting);
        break;
    case hid::end:
        editor.moveForward(TextEditor::Extent::All, selecting);
        break;
    case hid::backspace:
        editor.deleteBackward(extent);
        break;
    case hid::forwardDelete:
        if (isShift) return takeShortcut('x');
        editor.deleteForward(extent);
        break;
    case hid::insert:
        return isShift ? takeShortcut('v') : isControl && takeShortcut('c');
    case hid::tab:
    case hid::enter:
    case hid::keypadEnter:
    case hid::escape:
        return false;
    default:
        if (event.characters().empty()) return false;
        if (isControl) return takeShortcut(event.characters().front());
        editor.insert(event.characters());
        break;
    }
    edited(former);
    return true;
}

bool UITextField::takeShortcut(char letter) {
    auto& editor = m_field->editor;
    const std::string former = text();
    const auto pasteboard = UIPasteboard::generalPasteboard();
    switch (letter) {
    case 'a':
        editor.select(0, text().size());
        break;
    case 'c':
    case 'x':
        if (!editor.hasSelection()) return true;
        pasteboard->setString(editor.selectedText());
        if (letter == 'x') editor.insert("");
        break;
    case 'v':
        editor.insert(pasteboard->string());
        break;
    default:
        return false;
    }
    edited(former);
    return true;
}

void UITextField::touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) {
    UIControl::touchesBegan_withEvent(touches, event);
    if (!isEnabled() || touches.empty()) return;
    if (const auto owner = window()) owner->setFocusedView(std::static_pointer_cast<UIView>(shared_from_this()));
    auto& editor = m_field->editor;
    const auto& touch = *touches.front();
    m_field->dragSelects = touch.tapCount() <= 1;
    const std::size_t place = placeAt(touch.locationInView(this).x);
    if (touch.tapCount() <= 1)
        editor.moveTo(place, TextEditor::Selecting::No);
    else if (touch.tapCount() == 2)
        editor.selectWordAt(place);
    else
        editor.select(0, text().size());
    showCaret();
}

void UITextField::touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) {
    UIControl::touchesMoved_withEvent(touches, event);
    if (!m_field->dragSelects || touches.empty()) return;
    m_field->editor.moveTo(placeAt(touches.front()->locationInView(this).x), TextEditor::Selecting::Yes);
    showCaret();
}

void UITextField::touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) {
    m_field->dragSelects = false;
    UIControl::touchesEnded_withEvent(touches, event);
}

void UITextField::touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) {
    m_field->dragSelects = false;
    UIControl::touchesCancelled_withEvent(touches, event);
}

bool UITextField::accessibilitySetText(const std::string& newText) {
    const std::string former = text();
    m_field->editor.setText(newText);
    edited(former);
    return true;
}

bool UITextField::accessibilitySelectText(std::size_t start, std::size_t end) {
    m_field->editor.select(start, end);
    showCaret();
    return true;
}
