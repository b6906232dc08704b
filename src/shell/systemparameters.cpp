#include "systemparameters.h"

#include "appglobals.h"
#include "messageservice.h"

std::unique_ptr<classObjectSysParams> systemParameters;

bool openSystemParameters()
{
    systemParameters = std::make_unique<classObjectSysParams>();
    const int status = systemParameters->Init(gstrRootPath, gstrFundPath);
    if (status == 0)
        return true;
    messages().errorDialog({4, QStringLiteral("Kora-Budget"),
                            QStringLiteral("Cannot initialize system parameters. error:") + QString::number(status),
                            false});
    return false;
}
