#pragma once

#include <QStringList>
#include <QTextStream>

// Exit codes of kora-budget-report.
namespace ReportExit {
inline constexpr int Ok = 0;
inline constexpr int Failed = 1;  // start-up or the report failed; the message says why
inline constexpr int Unknown = 2; // no such report, fund, option, category or format
inline constexpr int Usage = 64;
} // namespace ReportExit

// kora-budget-report [--config F] <login-id> <root> <report> [--ledger E|R] [--fund A]
//   [--option N] [--compare CODE] [--category NAME] [--percent] [--format NAME]
//   (--pdf FILE | --csv FILE | --xlsx FILE)
// Starts as the program does (configuration, budget database, user, years),
// prepares the report exactly as the Reports menu does and writes it. Needs an
// application object for painting (charts use Qt Charts).
int runReportCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

QString reportUsage();
