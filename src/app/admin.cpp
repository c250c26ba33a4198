#include "app/commandesadmin.h"
#include "shell/base/fichierspartages.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    // Every file this program makes in the shared folder is for the
    // practice's group only.
    FixerMasqueCreation();
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
