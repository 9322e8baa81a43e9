// For fuzzers of what the toolkit does: it works only within an application, which is made before the first input.

#include <QGuiApplication>

extern "C" int LLVMFuzzerInitialize(int* count, char*** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static auto* const application = new QGuiApplication(*count, *words);
    return application == nullptr;
}
