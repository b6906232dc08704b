#pragma once

#include <QString>
#include <QStringList>

// The program's own options taken out of its arguments; what is left after
// the program name, joined by single blanks, is the command line start-up
// parses ("USER ROOT", a root with blanks arriving as several arguments).
struct ProgramArguments {
    QString commandLine;
    QString configPath; // --config FILE, else KORA_BUDGET_CONFIG, else the default
    // --startup-timing (or KORA_STARTUP_TIMING set): print the milliseconds from
    // process start to a shown main window, then quit.
    bool startupTiming = false;
    bool help = false; // --help or -h
    QString problem;   // an option used wrongly, said with the usage
};

ProgramArguments parseProgramArguments(const QStringList &arguments);

// The text --help prints.
QString programUsage();
