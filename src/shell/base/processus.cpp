#include "shell/base/processus.h"

#include "shell/base/fichierspartages.h"

#include <QtGlobal>

#include <ctime>

void PreparerProcessus()
{
    FixerMasqueCreation();
#ifdef Q_OS_LINUX
    if (qEnvironmentVariableIsEmpty("TZ"))
        qputenv("TZ", ":/etc/localtime");
    ::tzset();
#endif
}
