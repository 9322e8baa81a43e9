#include "kit/uikit/TextEditor.h"

#include <gtest/gtest.h>

namespace {

using seat::TextEditor;
using Extent = TextEditor::Extent;
using Selecting = TextEditor::Selecting;

// The text with "|" where the caret stands, and "[" at the other end of a selection.
std::string shown(const TextEditor& editor) {
    std::string text = editor.text();
    const std::size_t anchor =
        editor.caret() == editor.selectionEnd() ? editor.selectionStart() : editor.selectionEnd();
    const bool caretIsLast = editor.caret() >= anchor;
    text.insert(caretIsLast ? editor.caret() : anchor, caretIsLast ? "|" : "[");
    if (editor.hasSelection()) text.insert(caretIsLast ? anchor : editor.caret(), caretIsLast ? "[" : "|");
    return text;
}

TextEditor editor(const std::string& text, std::size_t caret) {
    TextEditor result;
    result.setText(text);
    result.select(caret, caret);
    return result;
}

TEST(TextEditor, NewTextHasTheCaretAtItsEnd) {
    TextEditor text;
    EXPECT_EQ(shown(text), "|");
    text.setText("abc");
    EXPECT_EQ(shown(text), "abc|");
}

TEST(TextEditor, TypingGoesInAtTheCaret) {
    auto text = editor("ac", 1);
    text.insert("b");
    EXPECT_EQ(shown(text), "ab|c");
}

TEST(TextEditor, TypingReplacesTheSelection) {
    auto text = editor("abcd", 0);
    text.select(1, 3);
    EXPECT_EQ(shown(text), "a[bc|d");
    text.insert("x");
    EXPECT_EQ(shown(text), "ax|d");
}

TEST(TextEditor, DeletesBeforeAndBehindTheCaret) {
    auto text = editor("abcd", 2);
    EXPECT_TRUE(text.deleteBackward(Extent::Character));
    EXPECT_EQ(shown(text), "a|cd");
    EXPECT_TRUE(text.deleteForward(Extent::Character));
    EXPECT_EQ(shown(text), "a|d");
    EXPECT_TRUE(text.deleteForward(Extent::Character));
    EXPECT_FALSE(text.deleteForward(Extent::Character));
    EXPECT_TRUE(text.deleteBackward(Extent::Character));
    EXPECT_FALSE(text.deleteBackward(Extent::Character));
    EXPECT_EQ(shown(text), "|");
}

TEST(TextEditor, DeletingASelectionDeletesItAlone) {
    auto text = editor("abcd", 0);
    text.select(3, 1);
    EXPECT_EQ(shown(text), "a|bc[d");
    EXPECT_TRUE(text.deleteBackward(Extent::Word));
    EXPECT_EQ(shown(text), "a|d");
}

TEST(TextEditor, WholeCharactersAreSteppedOverAndDeleted) {
    auto text = editor("aé漢😀e\xCC\x81", 0);
    std::string steps;
    for (int i = 0; i < 6; ++i) {
        steps += std::to_string(text.caret()) + ' ';
        text.moveForward(Extent::Character, Selecting::No);
    }
    EXPECT_EQ(steps, "0 1 3 6 10 13 ");
    text.deleteBackward(Extent::Character); // the letter with its accent
    EXPECT_EQ(shown(text), "aé漢😀|");
    text.deleteBackward(Extent::Character);
    EXPECT_EQ(shown(text), "aé漢|");
}

TEST(TextEditor, StepsByWords) {
    auto text = editor("ann  home.example x", 0);
    text.moveForward(Extent::Word, Selecting::No);
    EXPECT_EQ(shown(text), "ann|  home.example x");
    text.moveForward(Extent::Word, Selecting::Yes);
    EXPECT_EQ(shown(text), "ann[  home.example| x");
    text.moveBackward(Extent::Word, Selecting::No);
    EXPECT_EQ(shown(text), "ann  |home.example x");
    text.deleteBackward(Extent::Word);
    EXPECT_EQ(shown(text), "|home.example x");
    text.deleteForward(Extent::Word);
    EXPECT_EQ(shown(text), "| x");
}

TEST(TextEditor, StepOutOfASelectionGoesToItsEnd) {
    auto text = editor("abcd", 0);
    text.select(1, 3);
    text.moveBackward(Extent::Character, Selecting::No);
    EXPECT_EQ(shown(text), "a|bcd");
    text.select(3, 1);
    text.moveForward(Extent::Character, Selecting::No);
    EXPECT_EQ(shown(text), "abc|d");
}

TEST(TextEditor, SelectionGrowsAndShrinksWithTheCaret) {
    auto text = editor("abcd", 2);
    text.moveForward(Extent::All, Selecting::Yes);
    EXPECT_EQ(text.selectedText(), "cd");
    text.moveBackward(Extent::Character, Selecting::Yes);
    EXPECT_EQ(text.selectedText(), "c");
    text.moveBackward(Extent::All, Selecting::Yes);
    EXPECT_EQ(shown(text), "|ab[cd");
}

TEST(TextEditor, SelectsTheWordAtAPlace) {
    auto text = editor("ann home", 0);
    text.selectWordAt(5);
    EXPECT_EQ(shown(text), "ann [home|");
    text.selectWordAt(3);
    EXPECT_EQ(shown(text), "[ann| home");
}

TEST(TextEditor, PlacesInsideACharacterOrBehindTheTextAreMovedBack) {
    auto text = editor("aé", 0);
    text.select(2, 99);
    EXPECT_EQ(text.selectionStart(), 1u);
    EXPECT_EQ(text.selectionEnd(), 3u);
}

TEST(TextEditor, TextStaysOnOneLine) {
    TextEditor text;
    text.insert("a\r\nb\tc\x01\x7F"
                "\xC2\x85"
                "d\n");
    EXPECT_EQ(text.text(), "a b cd ");
    text.insert("\xFF");
    EXPECT_EQ(text.text(), "a b cd ");
}

} // namespace
