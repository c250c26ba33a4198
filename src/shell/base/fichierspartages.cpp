#include "shell/base/fichierspartages.h"

#include <QAtomicInteger>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QHostInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QAtomicInteger<quint64> g_numero = 0;

QString texteErrno(int numero)
{
    return QString::fromLocal8Bit(std::strerror(numero));
}

} // namespace

bool PartagerDescripteur(int descripteur)
{
    return descripteur >= 0 && ::fchmod(descripteur, ModeFichierPartage) == 0;
}

bool PartagerFichier(const QString &chemin)
{
    return ::chmod(QFile::encodeName(chemin).constData(), ModeFichierPartage) == 0;
}

void FixerMasqueCreation()
{
    ::umask(0007);
}

QString NomTemporaire(const QString &chemin)
{
    const QFileInfo info(chemin);
    QString poste = QHostInfo::localHostName();
    poste.replace(u'/', u'_');
    return info.path() + u'/' + u'.' + info.fileName()
           + QStringLiteral(".tmp-%1-%2-%3").arg(poste).arg(QCoreApplication::applicationPid()).arg(++g_numero);
}

Installation InstallerSansEcraser(const QString &temporaire, const QString &cible, QString *erreur)
{
    const QByteArray de = QFile::encodeName(temporaire);
    const QByteArray vers = QFile::encodeName(cible);
    // The kernel refuses the rename when the target exists: no window in
    // which two stations could both put their file there.
    if (::renameat2(AT_FDCWD, de.constData(), AT_FDCWD, vers.constData(), RENAME_NOREPLACE) == 0)
        return Installation::Posee;
    int numero = errno;
    if (numero == EINVAL || numero == ENOSYS || numero == EOPNOTSUPP) {
        // File systems without that rename (some network shares): a hard
        // link fails as well on an existing target, then the temporary name
        // goes.
        if (::link(de.constData(), vers.constData()) == 0) {
            ::unlink(de.constData());
            return Installation::Posee;
        }
        numero = errno;
        // Nor hard links (some SMB mounts): a plain rename after a look, the
        // only way left; the window between the two is a few microseconds.
        if (numero == EPERM || numero == EOPNOTSUPP || numero == ENOSYS) {
            struct stat st = {};
            if (::lstat(vers.constData(), &st) == 0)
                return Installation::DejaLa;
            if (::rename(de.constData(), vers.constData()) == 0)
                return Installation::Posee;
            numero = errno;
        }
    }
    if (numero == EEXIST)
        return Installation::DejaLa;
    if (erreur)
        *erreur = QStringLiteral("Impossible de mettre en place %1 : %2").arg(cible, texteErrno(numero));
    return Installation::Echec;
}
