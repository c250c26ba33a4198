#include "shell/base/dossiers.h"

#include "shell/base/support.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString DossierProgramme()
{
    const QString env = qEnvironmentVariable("TAVONEL_PROGRAM_DIR");
    if (!env.trimmed().isEmpty())
        return AjouterSlash(QDir::cleanPath(QDir(env.trimmed()).absolutePath()));
    return AjouterSlash(QCoreApplication::applicationDirPath());
}

QString FichierSysteme(const QString &nom)
{
    for (const QString &sous : {QStringLiteral("System/"), QStringLiteral("system/")}) {
        const QString chemin = DossierProgramme() + sous + nom;
        if (QFileInfo::exists(chemin))
            return chemin;
    }
    return QStringLiteral(TAVONEL_SOURCE_DATA_DIR) + QStringLiteral("/system/") + nom;
}
