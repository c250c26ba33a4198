#include "shell/base/registre.h"

#include <QSettings>

namespace {
QSettings parametres()
{
    return QSettings(QStringLiteral("Tavonel"), QStringLiteral("Tavonel"));
}
} // namespace

QString LireParametreUtilisateur(const QString &section, const QString &cle, const QString &defaut)
{
    return parametres().value(section + u'/' + cle, defaut).toString();
}

void EcrireParametreUtilisateur(const QString &section, const QString &cle, const QString &valeur)
{
    QSettings s = parametres();
    s.setValue(section + u'/' + cle, valeur);
    s.sync();
}

QString TexteBooleen(bool valeur)
{
    return valeur ? QStringLiteral("Vrai") : QStringLiteral("Faux");
}
