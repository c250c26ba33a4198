#include "support/configtest.h"

#include "shell/base/config.h"

ConfigTest::ConfigTest()
{
    m_ouverte = m_dossier.isValid() && CreerBaseConfig(dossier()) && OuvrirConfig(dossier() + QStringLiteral("Config.mdb"));
}

ConfigTest::~ConfigTest() { FermerConfig(); }

Regle RegleDe2026(int jour, QTime debut, QTime fin, int praticien, int type, const QString &nomPraticien)
{
    Regle r;
    r.DateDebut = QDate(2026, 1, 1);
    r.DateFin = QDate(2026, 12, 31);
    r.HeureDebut = debut;
    r.HeureFin = fin;
    r.JourNumero = static_cast<qint16>(jour);
    r.PraticienNumero = static_cast<qint16>(praticien);
    r.Praticien = nomPraticien;
    r.TypeRV = static_cast<qint16>(type);
    return r;
}
