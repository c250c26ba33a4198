#pragma once

#include "calendar/marqueheure.h"

#include <QString>

// What the advanced options keep beyond the calendar's memory: the keys of
// the agenda's section of Agenda.ini (the time mark is the calendar's).

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
