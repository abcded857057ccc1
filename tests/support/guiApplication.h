#pragma once

#include <QByteArray>
#include <QGuiApplication>

/** What the font library keeps until the end is not ours; the leak checker asks for such places by this name.
 */
extern "C" inline __attribute__((visibility("default"), used)) const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

/** For tests that draw or measure text: one application without a screen, which lives until the end. */
inline QGuiApplication& guiApplication()
{
    static auto* s_application = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int s_count = 1;
        static char s_name[] = "test";
        static char* s_arguments[] = {s_name, nullptr};
        return new QGuiApplication(s_count, s_arguments);
    }();
    return *s_application;
}
