#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QTime>

class ConfigIni;

// The answer of the rule lookup: the moment asked for, and what the winning
// rule says of it (practitioner, type, colour), or 0 / empty without a rule.
struct RegleMatch
{
    QDate Date;
    QTime Heure;
    qint16 JourNumero = 0; // 1 = Sunday
    QString Jour;
    qint16 Semaine = 0; // parity, 1 or 2
    qint16 NumeroSemaine = 0;
    qint16 PraticienNumero = 0;
    QString Praticien;
    qint16 TypeRV = 0;
    QString TypeText;
    qint32 TypeColor = 0; // 0xBBGGRR, 0 = no colour
};

// One row of table Regles. Dates and hours are stored as "yyyy-MM-dd" and
// "HH:mm:ss" texts; an invalid QDate / QTime is stored as NULL (such a rule
// never matches).
struct Regle
{
    qint32 Compteur = 0; // given by the base; also the rule's precedence
    QDate DateDebut;     // inclusive
    QDate DateFin;       // inclusive
    QTime HeureDebut;    // inclusive
    QTime HeureFin;      // inclusive
    qint16 JourNumero = 0; // 1 = Sunday ... 7 = Saturday
    QString Jour;          // "Dimanche" ... "Samedi", for display
    qint16 Semaine = 3;    // 1 odd weeks, 2 even weeks, 3 every week
    qint16 PraticienNumero = 0;
    QString Praticien;
    qint16 TypeRV = 0;
    QString TypeText;
    qint32 TypeColor = 0; // 0xBBGGRR, 0 = no colour
};

// The weekday name of a number, 1 = "Dimanche" ... 7 = "Samedi" (the names of
// table Regles and of AppState::JoursSemaine); empty out of range.
[[nodiscard]] QString NomJourRegle(int jourNumero);

// Adds the rule as the newest one (its Compteur is ignored) and returns the
// Compteur given to it, or 0 on a failure (French description in *erreur).
qint32 AjouterRegle(ConfigIni &config, const Regle &regle, QString *erreur = nullptr);

// Writes the rule over the row of its Compteur, which it keeps (and with it
// its precedence).
bool ModifierRegle(ConfigIni &config, const Regle &regle, QString *erreur = nullptr);
bool SupprimerRegle(ConfigIni &config, qint32 compteur, QString *erreur = nullptr);
// Moves every rule ending on one date to end on another, whatever its
// weekday. The number of rules moved, -1 on a failure.
int DeplacerDateFin(ConfigIni &config, const QDate &ancienne, const QDate &nouvelle, QString *erreur = nullptr);
// The rules of a weekday (1 = Sunday) in the order of their Compteur; with a
// valid date, only those that end on it or later.
[[nodiscard]] QList<Regle> ListerRegles(ConfigIni &config, int jourNumero, const QDate &dateFinMin = {},
                                        QString *erreur = nullptr);

// Creates Config.mdb in the data folder (path + "Config.mdb") with the tables
// Ini and Regles. Returns false, with a French description in *erreur, when
// the file cannot be made; an existing file is never touched (false).
bool CreerBaseConfig(const QString &dossier, QString *erreur = nullptr);

// Which rule holds at a date and time: the one of highest Compteur whose
// dates, hours (both ends inclusive), weekday and week parity match. Runs on
// the open Config.mdb. An invalid moment gives an empty RegleMatch.
// A failing query leaves the rule fields empty and, when erreur is given,
// sets it to the database's text (empty on success).
[[nodiscard]] RegleMatch GetRegleForDate(ConfigIni &config, const QDateTime &when, QString *erreur = nullptr);
// The same on the configuration opened at start-up (ConfigOuverte).
[[nodiscard]] RegleMatch GetRegleForDate(const QDateTime &when, QString *erreur = nullptr);
// The rule of a cell being drawn. While another station holds Config.mdb
// the lookup waits a fifth of a second, not the full busy time, and answers
// the rule last read for that moment; after such a refusal the next two
// seconds answer from what was read, so that a repaint never freezes.
[[nodiscard]] RegleMatch GetRegleAffichee(const QDateTime &when);

// The colour of a day-view cell, 0xBBGGRR: a selected cell keeps its
// current colour; otherwise the pause (not on Sundays) greys it and a rule's
// colour overrides both. pauseDebut / pauseFin are "hh:nn:ss" texts.
struct CouleurCellule
{
    quint32 couleur;
    bool modifiee; // false: the cell keeps the calendar's own colour
};
[[nodiscard]] CouleurCellule CouleurCelluleJour(const QDateTime &debutCellule, bool selectionnee, quint32 couleurActuelle,
                                                const RegleMatch &regle, const QString &pauseDebut, const QString &pauseFin);
