#pragma once

#include "patients/schemapatients.h"
#include "shell/base/basesqlite.h"

#include <QDir>
#include <QList>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

// Patient bases of the tests: real files made by CreerBasePatients and
// filled with a few rows.
struct PatientTest
{
    QString nom;
    QString prenom;
    QString naissance = QStringLiteral("1970-01-01");
    QVariant numero;
    QString base = QStringLiteral("Agenda");
    QVariant agenda = {};
    QVariant derniereVisite = {};
};

// Makes the base in the folder (created when missing) and adds the rows;
// returns the error text, empty on success.
inline QString CreerBaseTest(const QString &dossier, const QList<PatientTest> &patients)
{
    QDir().mkpath(dossier);
    QString d = dossier;
    if (!CreerBasePatients(d))
        return QStringLiteral("CreerBasePatients a échoué dans ") + dossier;
    QString erreur;
    auto base = BaseSqlite::ouvrir(CheminPatientsMdb(d), BaseSqlite::Mode::Existante, &erreur);
    if (!base)
        return erreur;
    for (const PatientTest &p : patients) {
        QSqlQuery q(base->db());
        q.prepare(QStringLiteral("INSERT INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", Numero, Base, Agenda, "
                                 "\"Derniere Visite\", Sexe) VALUES (?, ?, ?, ?, ?, ?, ?, -1)"));
        for (const QVariant &v : {QVariant(p.nom), QVariant(p.prenom), QVariant(p.naissance), p.numero, QVariant(p.base), p.agenda,
                                  p.derniereVisite})
            q.addBindValue(v);
        if (!q.exec())
            return q.lastError().text() + QStringLiteral(" (") + p.nom + u')';
    }
    return {};
}
