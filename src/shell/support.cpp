#include "shell/support.h"

QString AjouterSlash(const QString &chemin)
{
    QString c = chemin.trimmed();
    if (c.endsWith(u'\\') || c.endsWith(u'/'))
        return c;
    return c + u'/';
}
// TEMP placeholder
#include <QFileInfo>
bool FichierExiste(const QString &c) { return QFileInfo(c).isFile(); }
qint64 ChampNumeroPatient(const QString &) { return 0; }
QStringList ListeDurees(bool, bool) { return {}; }
