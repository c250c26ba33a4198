#include "rules/regles.h"

#include "shell/base/basesqlite.h"

#include <QDir>

// Config.mdb: the shared settings (Ini) and the schedule rules (Regles).
// Dates of Regles are stored as "yyyy-MM-dd" and hours as "HH:mm:ss" texts,
// so that comparing the texts compares the moments.
bool CreerBaseConfig(const QString &dossier, QString *erreur)
{
    const QString chemin = dossier + QStringLiteral("Config.mdb");
    const QStringList instructions = {
        QStringLiteral("BEGIN IMMEDIATE"),
        QStringLiteral("CREATE TABLE Ini ("
                       "Section TEXT(255) COLLATE NOCASE NOT NULL DEFAULT '', "
                       "Item TEXT(255) COLLATE NOCASE NOT NULL DEFAULT '', "
                       "Valeur TEXT(255) DEFAULT '', "
                       "CONSTRAINT idxPrimary PRIMARY KEY (Section, Item))"),
        QStringLiteral("CREATE TABLE Regles ("
                       "Compteur INTEGER CONSTRAINT idxPrimary PRIMARY KEY AUTOINCREMENT NOT NULL, "
                       "DateDebut DATE, "
                       "DateFin DATE, "
                       "HeureDebut TIME, "
                       "HeureFin TIME, "
                       "JourNumero SMALLINT, "
                       "Jour TEXT(10), "
                       "Semaine SMALLINT, "
                       "PraticienNumero SMALLINT, "
                       "Praticien TEXT(50), "
                       "TypeRV SMALLINT, "
                       "TypeText TEXT(50), "
                       "TypeColor INTEGER)"),
        QStringLiteral("COMMIT"),
    };
    // Made aside and put in place whole: a station starting at the same
    // moment either finds nothing or the complete file, and a failure
    // removes only our own temporary file.
    const auto remplir = [&](BaseSqlite &base, QString *detail) {
        for (const QString &sql : instructions) {
            if (!base.executer(sql, detail))
                return false;
        }
        return true;
    };
    switch (BaseSqlite::creer(chemin, remplir, erreur)) {
    case BaseSqlite::Creation::Creee:
        return true;
    case BaseSqlite::Creation::DejaLa:
        if (erreur)
            *erreur = QStringLiteral("Le fichier %1 existe déjà.").arg(QDir::toNativeSeparators(chemin));
        return false;
    case BaseSqlite::Creation::Echec:
        break;
    }
    return false;
}
