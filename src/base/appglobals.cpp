#include "appglobals.h"

QString gstrUserID;
QString gstrRootPath;
QString gstrFundPath;
QString gstrFundDataPath;
QString gstrUserName;
std::int16_t gintPrintPreview = 0;
QString gstrProposalID;
QString gstrBudgetYearID;
QString gstrProposedYearID;
bool gbCalendarYear = false;
QString gstrYear;
QString gstrFundYear;
QString gstrFirstFiscalMonth;

void resetAppGlobals()
{
    gstrUserID.clear();
    gstrRootPath.clear();
    gstrFundPath.clear();
    gstrFundDataPath.clear();
    gstrUserName.clear();
    gintPrintPreview = 0;
    gstrProposalID.clear();
    gstrBudgetYearID.clear();
    gstrProposedYearID.clear();
    gbCalendarYear = false;
    gstrYear.clear();
    gstrFundYear.clear();
    gstrFirstFiscalMonth.clear();
}
