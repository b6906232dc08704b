#pragma once

#include "budgetdbconfig.h"

#include <QString>

// The start-up procedures of the application. Each fills the application
// globals (appglobals.h, gadoConnection) and reports through the message
// service; the main window's load runs them in order (mainwindowload.h).

// Result codes of the command-line and user checks.
inline constexpr long invalidCommandLine = -6; // empty, or no blank between user and root
inline constexpr long rootNotFound = -1;
inline constexpr long unknownUser = -2;          // no such user, or one no longer active
inline constexpr long fundFileNotOpened = -2001; // the users or the parameter file

// Makes gadoConnection from the configuration (data source and server name
// included) and opens an existing budget database; on failure logs and shows
// the connection's error (what was looked for and why) and returns false.
bool OpenDatabase(const BudgetDbConfig &config);
// Closes gadoConnection when there is one; false (after showing why) when closing failed.
bool CloseDatabase();

// "USER ROOT": the user is the text before the first blank, the root
// everything after it, upper-cased, blanks included. 0, -6 or -1.
long ParseCommandLine(const QString &commandLine, QString &user, QString &root);
// 0 and gstrRootPath set when the folder exists (matched case-insensitively,
// as the fund files are), else -1.
long CheckRootPath(const QString &root);

// Finds the user by log-in ID in the Kora-Fund users file: the ID becomes the
// record ID, the display name "First M. Last", and gintPrintPreview the
// user's setting. 0, -2 (no such user, or not active) or -2001 (users file not opened, after
// saying so).
long LoadUser(QString &userId, QString &userName);

// gstrProposalID from the active proposal; "1" after saying it could not be read.
void ReadActiveProposal();
// gstrBudgetYearID, gstrProposedYearID (next calendar year when there is
// none) and gbCalendarYear; each failure is shown and start-up goes on.
void ReadBudgetYears();
// gstrYear (the latest Kora-Fund year) and gstrFirstFiscalMonth; 0, or a
// status with its explanation in message.
long ReadFundYear(QString &message);

// The organisation's report name (its name when that is blank); empty when
// the organisation record cannot be read.
QString ReadDistrictName();
// The name of the proposal with that ID; empty when it cannot be read.
QString ProposalName(const QString &proposalId);

// Everything start-up reads once the database is open: the user and root of
// the command line ("USER ROOT"), the Kora-Fund folders, the active proposal,
// the budget years and the latest Kora-Fund year (gstrFundYear; gstrYear
// becomes the budget year). False, after saying why, when the command line or
// the user is refused; a year or proposal that cannot be read is said and
// start-up goes on.
bool OpenSession(const QString &commandLine);

// Busy-waits two seconds.
void Pause();
