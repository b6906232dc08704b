#include "funddataplace.h"

#include "appglobals.h"
#include "fundfiles.h"

FundDataPlace currentFundDataPlace()
{
    return {gstrRootPath, GetFundDataLocation(gstrFundYear.toInt())};
}
