#pragma once

#include "kit/uikit/TextEditor.h"
#include "platform/uikit/UITextField.h"

struct UITextField::State {
    seat::TextEditor editor;
    std::string placeholder;
    std::shared_ptr<UIFont> font = UIFont::systemFontOfSize(17);
    double scroll = 0;        // points of the text that have gone out at the left
    bool dragSelects = false; // the finger that is down came down alone
};
