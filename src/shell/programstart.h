#pragma once

#include "mainwindowload.h"
#include "mdiparent.h"

#include <QTextStream>

#include <functional>
#include <memory>
#include <optional>

struct ProgramArguments;

// Exit codes of kora-budget.
namespace ProgramExit {
inline constexpr int Ok = 0;
inline constexpr int Failed = 1; // start-up stopped after telling the user why
inline constexpr int Usage = 64;
} // namespace ProgramExit

// The main window with its load; the load goes (and unloads) before the frame.
struct ProgramWindow {
    mdiParent frame;
    MainWindowLoad load{frame};
};

// The usage on out for --help, on err for an empty command line or a misused
// option: the exit code then. nullopt when the program goes on. Needs no GUI.
std::optional<int> answerUsage(const ProgramArguments &arguments, QTextStream &out, QTextStream &err);

struct ProgramStart {
    std::unique_ptr<ProgramWindow> window; // null when start-up stopped
    int exitCode = ProgramExit::Ok;        // when it did
};

// Reads the configuration, registers the program's tasks and runs start-up.
// The window is ready to show; nothing is created when something is missing.
ProgramStart startProgram(const ProgramArguments &arguments,
                          std::function<void(formErrorDialog &)> errorDialogLoaded = {});
