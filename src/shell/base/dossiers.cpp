#include "shell/base/dossiers.h"

#include "shell/base/support.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

// The installed System folder, found from the executable's folder so that an
// installation moved elsewhere (or unpacked in a trial root) still finds its
// files; empty for a program that is not installed.
QString DossierSystemeInstalle()
{
    const QString chemin = QDir::cleanPath(QCoreApplication::applicationDirPath() + u'/' +
                                           QStringLiteral(TAVONEL_SYSTEME_INSTALLE));
    return QFileInfo(chemin).isDir() ? AjouterSlash(chemin) : QString();
}

} // namespace

QString DossierProgramme()
{
    const QString env = qEnvironmentVariable("TAVONEL_PROGRAM_DIR");
    if (!env.trimmed().isEmpty())
        return AjouterSlash(QDir::cleanPath(QDir(env.trimmed()).absolutePath()));
    if (!DossierSystemeInstalle().isEmpty())
        return AjouterSlash(QStringLiteral(TAVONEL_DOSSIER_INSTALLE));
    return AjouterSlash(QCoreApplication::applicationDirPath());
}

QString FichierSysteme(const QString &nom)
{
    for (const QString &sous : {QStringLiteral("System/"), QStringLiteral("system/")}) {
        const QString chemin = DossierProgramme() + sous + nom;
        if (QFileInfo::exists(chemin))
            return chemin;
    }
    const QString installe = DossierSystemeInstalle();
    if (!installe.isEmpty())
        return installe + nom;
    return QStringLiteral(TAVONEL_SOURCE_DATA_DIR) + QStringLiteral("/system/") + nom;
}
