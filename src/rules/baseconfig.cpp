#include "rules/regles.h"

#include "shell/base/basesqlite.h"

#include <QFile>

// Config.mdb: the shared settings (Ini) and the schedule rules (Regles).
// Dates of Regles are stored as "yyyy-MM-dd" and hours as "HH:mm:ss" texts,
// so that comparing the texts compares the moments.
bool CreerBaseConfig(const QString &dossier, QString *erreur)
{
    const QString chemin = dossier + QStringLiteral("Config.mdb");
    auto base = BaseSqlite::ouvrir(chemin, BaseSqlite::Mode::Creer, erreur);
    if (!base)
        return false;
    const QStringList instructions = {
        QStringLiteral("BEGIN"),
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
    for (const QString &sql : instructions) {
        QString detail;
        if (!base->executer(sql, &detail)) {
            base->executer(QStringLiteral("ROLLBACK"));
            base.reset();
            // The file is ours, made a moment ago: a half-made one would stop
            // every later start.
            QFile::remove(chemin);
            if (erreur)
                *erreur = QStringLiteral("Création de %1 impossible : %2").arg(chemin, detail);
            return false;
        }
    }
    return true;
}
