#include "rules/regles.h"

#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/support.h"

#include <QElapsedTimer>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <array>

#include <sqlite3.h>

namespace {

// The same names as AppState::JoursSemaine; kept here so that a lookup made
// before the tables are filled (or by the command line) still names the day.
const std::array<QString, 8> &nomsJours()
{
    static const std::array<QString, 8> noms = {
        QString(),           QStringLiteral("Dimanche"), QStringLiteral("Lundi"),    QStringLiteral("Mardi"),
        QStringLiteral("Mercredi"), QStringLiteral("Jeudi"),    QStringLiteral("Vendredi"), QStringLiteral("Samedi"),
    };
    return noms;
}

// Both ends of the dates and of the hours are inclusive. Dates and hours are
// compared as texts, which orders them because they are stored zero-padded
// ("yyyy-MM-dd", "HH:mm:ss"). Compteur is the rowid, so the descending order
// costs nothing and the scan stops at the first rule that holds. The weekday
// comes first: it turns most rows away with one integer comparison, before
// the text comparisons.
const QString sqlRegle = QStringLiteral(
    "SELECT PraticienNumero, Praticien, TypeRV, TypeText, TypeColor FROM Regles "
    "WHERE JourNumero = ? AND (Semaine = ? OR Semaine = 3) "
    "AND DateDebut <= ? AND DateFin >= ? AND HeureDebut <= ? AND HeureFin >= ? "
    "ORDER BY Compteur DESC LIMIT 1");

QString texteDate(const QDate &d)
{
    return d.toString(QStringLiteral("yyyy-MM-dd"));
}

QString texteHeure(const QTime &t)
{
    return t.toString(QStringLiteral("HH:mm:ss"));
}

QVariant valeurOuNull(const QString &texte)
{
    return texte.isEmpty() ? QVariant() : QVariant(texte);
}

// The moment's own fields of the answer: what holds with or without a rule.
RegleMatch champsDuMoment(const QDateTime &when)
{
    RegleMatch r;
    if (!when.isValid())
        return r;
    r.Date = when.date();
    // The lookup works to the second: milliseconds are dropped, as the text
    // of the hour drops them.
    const QTime t = when.time();
    r.Heure = QTime(t.hour(), t.minute(), t.second());
    r.JourNumero = static_cast<qint16>(JourSemaineDimanche1(r.Date));
    r.Jour = NomJourRegle(r.JourNumero);
    r.NumeroSemaine = static_cast<qint16>(GetWeekNumber(r.Date));
    r.Semaine = static_cast<qint16>(GetWeekParity(r.Date));
    return r;
}

// "hh:nn:ss" as the settings write it; a shorter "hh:nn" is taken too.
QTime lireHeure(const QString &texte)
{
    const QString t = texte.trimmed();
    QTime h = QTime::fromString(t, QStringLiteral("H:mm:ss"));
    if (!h.isValid())
        h = QTime::fromString(t, QStringLiteral("H:mm"));
    return h;
}

} // namespace

QString NomJourRegle(int jourNumero)
{
    if (jourNumero < 1 || jourNumero > 7)
        return {};
    return nomsJours()[static_cast<std::size_t>(jourNumero)];
}

namespace {

void lierRegle(QSqlQuery &q, const Regle &regle)
{
    // Dates and hours are bound as our own texts: Qt would write a QTime
    // with milliseconds, and "12:00:00.000" sorts after "12:00:00".
    q.addBindValue(valeurOuNull(texteDate(regle.DateDebut)));
    q.addBindValue(valeurOuNull(texteDate(regle.DateFin)));
    q.addBindValue(valeurOuNull(texteHeure(regle.HeureDebut)));
    q.addBindValue(valeurOuNull(texteHeure(regle.HeureFin)));
    q.addBindValue(static_cast<int>(regle.JourNumero));
    q.addBindValue(regle.Jour);
    q.addBindValue(static_cast<int>(regle.Semaine));
    q.addBindValue(static_cast<int>(regle.PraticienNumero));
    q.addBindValue(regle.Praticien);
    q.addBindValue(static_cast<int>(regle.TypeRV));
    q.addBindValue(regle.TypeText);
    q.addBindValue(regle.TypeColor);
}

const QString colonnesRegle = QStringLiteral("DateDebut, DateFin, HeureDebut, HeureFin, JourNumero, Jour, Semaine, "
                                             "PraticienNumero, Praticien, TypeRV, TypeText, TypeColor");

bool executerRegles(QSqlQuery &q, QString *erreur)
{
    if (q.exec())
        return true;
    if (erreur)
        *erreur = QStringLiteral("Enregistrement de la règle impossible : %1").arg(q.lastError().text());
    return false;
}

} // namespace

qint32 AjouterRegle(ConfigIni &config, const Regle &regle, QString *erreur)
{
    QSqlQuery q(config.base().db());
    q.prepare(QStringLiteral("INSERT INTO Regles (%1) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)").arg(colonnesRegle));
    lierRegle(q, regle);
    return executerRegles(q, erreur) ? q.lastInsertId().toInt() : 0;
}

bool ModifierRegle(ConfigIni &config, const Regle &regle, QString *erreur)
{
    QSqlQuery q(config.base().db());
    q.prepare(QStringLiteral("UPDATE Regles SET DateDebut = ?, DateFin = ?, HeureDebut = ?, HeureFin = ?, JourNumero = ?, "
                             "Jour = ?, Semaine = ?, PraticienNumero = ?, Praticien = ?, TypeRV = ?, TypeText = ?, "
                             "TypeColor = ? WHERE Compteur = ?"));
    lierRegle(q, regle);
    q.addBindValue(regle.Compteur);
    return executerRegles(q, erreur);
}

bool SupprimerRegle(ConfigIni &config, qint32 compteur, QString *erreur)
{
    QSqlQuery q(config.base().db());
    q.prepare(QStringLiteral("DELETE FROM Regles WHERE Compteur = ?"));
    q.addBindValue(compteur);
    return executerRegles(q, erreur);
}

int DeplacerDateFin(ConfigIni &config, const QDate &ancienne, const QDate &nouvelle, QString *erreur)
{
    QSqlQuery q(config.base().db());
    q.prepare(QStringLiteral("UPDATE Regles SET DateFin = ? WHERE DateFin = ?"));
    q.addBindValue(texteDate(nouvelle));
    q.addBindValue(texteDate(ancienne));
    return executerRegles(q, erreur) ? q.numRowsAffected() : -1;
}

QList<Regle> ListerRegles(ConfigIni &config, int jourNumero, const QDate &dateFinMin, QString *erreur)
{
    QList<Regle> regles;
    QSqlQuery q(config.base().db());
    q.setForwardOnly(true);
    QString sql = QStringLiteral("SELECT Compteur, %1 FROM Regles WHERE JourNumero = ?").arg(colonnesRegle);
    if (dateFinMin.isValid())
        sql += QStringLiteral(" AND DateFin >= ?");
    q.prepare(sql + QStringLiteral(" ORDER BY Compteur"));
    q.addBindValue(jourNumero);
    if (dateFinMin.isValid())
        q.addBindValue(texteDate(dateFinMin));
    if (!q.exec()) {
        if (erreur)
            *erreur = q.lastError().text();
        return regles;
    }
    while (q.next()) {
        Regle r;
        r.Compteur = q.value(0).toInt();
        r.DateDebut = QDate::fromString(q.value(1).toString().left(10), QStringLiteral("yyyy-MM-dd"));
        r.DateFin = QDate::fromString(q.value(2).toString().left(10), QStringLiteral("yyyy-MM-dd"));
        r.HeureDebut = lireHeure(q.value(3).toString().right(8));
        r.HeureFin = lireHeure(q.value(4).toString().right(8));
        r.JourNumero = static_cast<qint16>(q.value(5).toInt());
        r.Jour = q.value(6).toString();
        r.Semaine = static_cast<qint16>(q.value(7).toInt());
        r.PraticienNumero = static_cast<qint16>(q.value(8).toInt());
        r.Praticien = q.value(9).toString();
        r.TypeRV = static_cast<qint16>(q.value(10).toInt());
        r.TypeText = q.value(11).toString();
        r.TypeColor = q.value(12).toInt();
        regles.append(r);
    }
    return regles;
}

RegleMatch GetRegleForDate(ConfigIni &config, const QDateTime &when, QString *erreur)
{
    if (erreur)
        erreur->clear();
    RegleMatch r = champsDuMoment(when);
    if (!when.isValid())
        return r;

    const QString d = texteDate(r.Date);
    const QString t = texteHeure(r.Heure);
    QSqlQuery &q = config.requete(sqlRegle);
    q.bindValue(0, static_cast<int>(r.JourNumero));
    q.bindValue(1, static_cast<int>(r.Semaine));
    q.bindValue(2, d);
    q.bindValue(3, d);
    q.bindValue(4, t);
    q.bindValue(5, t);
    if (!q.exec()) {
        if (erreur)
            *erreur = q.lastError().text();
        q.finish();
        return r;
    }
    if (q.next()) {
        // Nulls read as 0 or empty text.
        r.PraticienNumero = static_cast<qint16>(q.value(0).toInt());
        r.Praticien = q.value(1).toString();
        r.TypeRV = static_cast<qint16>(q.value(2).toInt());
        r.TypeText = q.value(3).toString();
        r.TypeColor = q.value(4).toInt();
    }
    // The statement is kept for the next cell; resetting it now releases the
    // file's read lock, which would otherwise hold off every other
    // workstation's writes until the next lookup.
    q.finish();
    return r;
}

RegleMatch GetRegleForDate(const QDateTime &when, QString *erreur)
{
    if (erreur)
        erreur->clear();
    const auto &config = ConfigOuverte();
    if (!config)
        return champsDuMoment(when);
    return GetRegleForDate(*config, when, erreur);
}

RegleMatch GetRegleAffichee(const QDateTime &when)
{
    static QHash<QDateTime, RegleMatch> lues;
    static QElapsedTimer refus;
    const auto &config = ConfigOuverte();
    if (!config)
        return champsDuMoment(when);
    if (refus.isValid() && refus.elapsed() < 2000)
        return lues.value(when, champsDuMoment(when));
    sqlite3 *poignee = config->base().poignee();
    if (poignee)
        sqlite3_busy_timeout(poignee, 200);
    QString erreur;
    const RegleMatch r = GetRegleForDate(*config, when, &erreur);
    if (poignee)
        sqlite3_busy_timeout(poignee, BaseSqlite::delaiOccupe());
    if (!erreur.isEmpty()) {
        refus.start();
        return lues.value(when, r);
    }
    refus.invalidate();
    if (lues.size() > 50000)
        lues.clear();
    lues.insert(when, r);
    return r;
}

CouleurCellule CouleurCelluleJour(const QDateTime &debutCellule, bool selectionnee, quint32 couleurActuelle,
                                  const RegleMatch &regle, const QString &pauseDebut, const QString &pauseFin)
{
    CouleurCellule c{couleurActuelle, false};
    if (selectionnee)
        return c;
    if (debutCellule.isValid()) {
        const QTime t = debutCellule.time();
        const QTime heure(t.hour(), t.minute(), t.second());
        const QTime debut = lireHeure(pauseDebut);
        const QTime fin = lireHeure(pauseFin);
        if (debut.isValid() && fin.isValid() && heure >= debut && heure < fin
            && JourSemaineDimanche1(debutCellule.date()) != 1) {
            c = {0xC6C6C6, true}; // red, green and blue 198
        }
    }
    if (regle.TypeColor != 0)
        c = {static_cast<quint32>(regle.TypeColor), true};
    return c;
}
