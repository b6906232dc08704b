#pragma once

#include <QString>

#include <cstdint>

// The application-wide context that start-up fills and every task reads.
// Written only by start-up, except the proposal, which the user may switch.
// The open budget-database connection (gadoConnection) lives with the
// connection class; the shared-window collection lives with the main window.
extern QString gstrUserID;
extern QString gstrRootPath;
extern QString gstrFundPath;
extern QString gstrFundDataPath;
extern QString gstrUserName;
extern std::int16_t gintPrintPreview;
extern QString gstrProposalID;
extern QString gstrBudgetYearID;
extern QString gstrProposedYearID;
extern bool gbCalendarYear;
extern QString gstrYear;
extern QString gstrFundYear;
extern QString gstrFirstFiscalMonth;

// Back to the state before start-up (tests run start-up many times in one process).
void resetAppGlobals();
