#include "support/dossiertest.h"

#include "shell/base/cp1252.h"

#include <QFile>

DossierProgrammeTest::DossierProgrammeTest()
    : m_variable("TAVONEL_PROGRAM_DIR", m_dossier.path().toLocal8Bit())
{
}

QString DossierProgrammeTest::chemin() const
{
    return m_dossier.path() + u'/';
}

void DossierProgrammeTest::ecrire(const QString &nom, const QString &texte) const
{
    QFile f(chemin() + nom);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(VersCp1252(QString(texte).replace(QStringLiteral("\n"), QStringLiteral("\r\n"))));
}
