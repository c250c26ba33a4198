#pragma once

#include <QString>
#include <QStringList>

// What a check of an Events.mdb finds: the rows by kind and every broken
// link between masters, patterns and exceptions.
struct ControleStore
{
    bool ouvert = false;
    QString erreur;        // why the file could not be read
    int evenements = 0;    // rows of CalendarEvents
    int simples = 0;       // state 0
    int maitres = 0;       // state 1
    int exceptions = 0;    // state 3 (deleted ones included)
    int supprimees = 0;    // exceptions that mask a deleted occurrence
    int series = 0;        // rows of CalendarRecurrencePatterns
    QStringList problemes; // one French line per broken rule

    [[nodiscard]] bool sain() const { return ouvert && problemes.isEmpty(); }
};

// Checks the Events.mdb of a folder without changing it (a missing or
// unreadable file is reported, never created or put aside).
[[nodiscard]] ControleStore ControlerStore(const QString &dossier);
