#pragma once

#include <QDate>
#include <QString>

// What the advanced options keep beyond the calendar's memory: the time mark
// number of the day views and the keys of the agenda's section of Agenda.ini.

// The current-time line of the day and work-week views: never, on today's
// column only, on every column; MarqueHeureImprimee added when it is printed
// too (never with Jamais).
enum class MarqueHeure { Jamais = 0, PourAujourdhui = 1, Toujours = 2 };
inline constexpr int MarqueHeureImprimee = 4;

[[nodiscard]] int NumeroMarqueHeure(MarqueHeure choix, bool imprimee);
[[nodiscard]] MarqueHeure ChoixMarqueHeure(int numero);
// Whether the line crosses the column of jour, on screen or on paper.
[[nodiscard]] bool MarqueHeureSurJour(int numero, const QDate &jour, const QDate &aujourdhui, bool impression);

// The keys the dialog's OK writes into the agenda's section.
struct ClesOptionsAvancees
{
    bool rappels = false;    // RemindersManEnabled, as the check box's number
    bool mails = false;      // MAILS, "Oui" or "Non"
    bool sms = false;        // SMS
    QString imprimante;      // PrinterRDV
    QString format;          // PrinterFormat
    QString entete;          // PrinterEntete
    QString margeGauche;     // MarginL
    QString margeDroite;     // MarginR
};

// Writes the eight keys in one go into the profile file: either all of them
// or, when the file cannot be written, none, with the reason in French in
// *erreur.
bool EcrireOptionsAvancees(const QString &fichier, const QString &section, const ClesOptionsAvancees &cles,
                           QString *erreur = nullptr);
