// Compiled into every module, not into the library that loads them: a note in the file, which can be read without
// running the module, with the word for the declarations that it was compiled with.

#define JOYVANE_TEXT_OF(word) #word
#define JOYVANE_TEXT(word) JOYVANE_TEXT_OF(word)

// clang-format off
asm(".pushsection .note.joyvane, \"a\", %note\n"
    ".balign 4\n"
    ".long 8, 4, 1\n" // the lengths of the name and of the word, and which note of ours it is
    ".asciz \"Joyvane\"\n"
    ".long " JOYVANE_TEXT(JOYVANE_MODULE_ABI) "\n"
    ".popsection\n");
// clang-format on
