#pragma once

#include <QDateTime>
#include <QString>

// The texts of the reminder windows, kept apart from the widgets.

// Window title for a list of n rows: "0 Rappel", "1 Rappel", "2 Rappels".
[[nodiscard]] QString TitreRappels(int lignes);

// Minutes from now to the start as the calendar counts them: the minute
// boundaries crossed, seconds ignored on both sides (10:00:59 to 10:01:00 is
// one minute, 10:00:00 to 10:00:59 none).
[[nodiscard]] qint64 MinutesAvantDebut(const QDateTime &maintenant, const QDateTime &debut);

// Second column of the list for m minutes before the start: the rounded
// duration ("29 minutes", "1 heure" for 45, "2 heures" for 90, "1 semaine" for
// four days), and for m of 0 or less the same of -m followed by " de retard".
[[nodiscard]] QString TexteEcheance(qint64 minutes);

// The snooze text read as minutes: the number before the first character
// that is not one of "-+.,0123456789", times the factor of the unit's first
// letter (m 1, h 60, d 1440, w 10080, anything else 1), rounded to the even.
// An empty text or one without a unit is 0. The list's own French texts thus
// read "1 jour" as 1 minute and "0.5 jour" as 0: that is how snoozing has
// always behaved here.
[[nodiscard]] int MinutesRepos(const QString &texte);

// What the snooze box offers for a reminder's lead: "5 minutes" under 5
// minutes, else the exact duration ("1 jour" for 1440).
[[nodiscard]] QString TexteRepos(int minutesAvant);

// A moment in the general form of a French desktop: "23/11/2026 10:30:00",
// the date alone at midnight.
[[nodiscard]] QString DateGenerale(const QDateTime &moment);

// The second description line of a selected reminder: "RDV à :  " and the
// start in the general form.
[[nodiscard]] QString TexteDebutRappel(const QDateTime &debut);
