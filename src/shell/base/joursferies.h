#pragma once

#include <QDate>
#include <QList>
#include <QString>

// French public holidays, worked out from the calendar (no list to keep up
// to date): the eight fixed dates and the three that follow Easter. Alsace
// and Moselle add Good Friday and 26 December; a practice there turns them
// on in the practice settings (off by default; row "AlsaceMoselle" = "1" of
// section "JoursFeries" in table Ini, read at start-up).

struct JourFerie
{
    QDate date;
    QString nom; // "Fête nationale", "Lundi de Pâques", ...
};

// Easter Sunday of a Gregorian year (1583 onwards); invalid before.
[[nodiscard]] QDate DatePaques(int annee);
// The holidays of a year in date order.
[[nodiscard]] QList<JourFerie> JoursFeries(int annee, bool alsaceMoselle);
// The holiday's name of a date, empty on an ordinary day, with the practice's
// choice of the two local holidays.
[[nodiscard]] QString NomJourFerie(const QDate &date);
[[nodiscard]] QString NomJourFerie(const QDate &date, bool alsaceMoselle);

void FixerFeriesAlsaceMoselle(bool actif);
[[nodiscard]] bool FeriesAlsaceMoselle();

// The editor's warning before booking on a holiday: "Le 14/07/2026 est un
// jour férié (Fête nationale)." Empty on an ordinary day.
[[nodiscard]] QString AvertissementJourFerie(const QDate &date);
