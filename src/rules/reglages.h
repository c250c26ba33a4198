#pragma once

#include "calendar/calendarlabel.h"

#include <QString>
#include <QStringList>
#include <QDate>
#include <QTime>

#include <array>

struct AppState;

// The practice's settings of table Ini that the configuration dialog edits:
// hours, practitioners, appointment types and their colours.

struct TypeRdvReglage
{
    QString nom;
    quint32 couleur1 = 0xFFFFFF; // 0xBBGGRR, practitioner 1
    quint32 couleur2 = 0xFFFFFF; // practitioner 2
};

struct ReglagesCabinet
{
    QString debut = QStringLiteral("08:00:00");
    QString fin = QStringLiteral("20:00:00");
    QString pauseDebut = QStringLiteral("12:00:00");
    QString pauseFin = QStringLiteral("14:00:00");
    QString duree; // minutes, as text; empty when never set
    bool feriesAlsaceMoselle = false; // Good Friday and 26 December as holidays
    std::array<QString, 2> noms;
    std::array<QString, 2> initiales;
    std::array<TypeRdvReglage, 7> types;
};

// As table Ini holds them, with the defaults where it holds nothing (the
// type names of the state's built-in list).
[[nodiscard]] ReglagesCabinet LireReglagesCabinet(const AppState &etat);

// Writes them back in one transaction of Config.mdb: empty initials as "P" +
// number, an empty type name as "RDV Type " + number (the values are updated
// as written). False, with the reason in French and nothing written, when
// the table cannot be written.
bool EcrireReglagesCabinet(ReglagesCabinet &reglages, QString *erreur);

// The eighteen labels of the calendar rebuilt from the settings, in the
// order the editor uses them by position.
[[nodiscard]] CalendarLabelList LibellesDesReglages(const ReglagesCabinet &reglages);

// "hh:mm:ss" texts from a first hour in half-hour steps (the hour lists).
[[nodiscard]] QStringList ListeDemiHeures(const QTime &premiere, int nombre = 11);

// The colour families of the practitioners' lists, "Turquoise" to "Rouge"
// (columns 1 to 5 of the palette), and the colour of a type (row 0 to 6)
// in a family.
[[nodiscard]] const QStringList &FamillesCouleurs();
[[nodiscard]] quint32 CouleurFamille(const AppState &etat, int type, int famille);

// Colours as the settings write them: decimal text of 0xBBGGRR; the "&H"
// hexadecimal form of older settings is read too.
[[nodiscard]] quint32 LireCouleur(const QString &texte);

// The one buffer that the rule tab and the rule dialog share. JourNumero is
// "-1" after a cancel; a TypeColor of 0 opens the dialog blank.
struct RegleEdition
{
    QString Jour;
    QString JourNumero;
    qint16 Semaine = 0; // 1 odd, 2 even, 3 all
    QDate DateDebut;
    QDate DateFin;
    QTime HeureDebut;
    QTime HeureFin;
    QString Praticien;
    QString PraticienNumero;
    qint16 TypeRV = 0;
    QString TypeText;
    qint32 TypeColor = 0;
};
extern RegleEdition RegleEnEdition;

struct Regle;
[[nodiscard]] RegleEdition TamponDeRegle(const Regle &regle);
// The rule that the buffer describes (Compteur 0).
[[nodiscard]] Regle RegleDuTampon(const RegleEdition &tampon);
