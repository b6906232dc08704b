#pragma once

#include <QApplication>

#include <memory>

// Widget tests need one QApplication for the whole test binary; the first
// call creates it (on the offscreen platform the test runner selects).
inline QApplication &guiApplication()
{
    static int argc = 1;
    static char name[] = "kora-tests";
    static char *argv[] = {name, nullptr};
    static const auto app = std::make_unique<QApplication>(argc, argv);
    return *app;
}

// The first member of a widget test fixture, so the application exists
// before any widget member is built.
struct GuiApplicationGuard {
    GuiApplicationGuard() { guiApplication(); }
};
