#include "app/commandesadmin.h"
#include "shell/base/processus.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    PreparerProcessus();
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Tavonel"));
    QCoreApplication::setOrganizationName(QStringLiteral("Tavonel"));
    QTextStream out(stdout);
    QTextStream err(stderr);
    const int code = ExecuterCommandeAdmin(QCoreApplication::arguments().mid(1), out, err);
    out.flush();
    err.flush();
    return code;
}
