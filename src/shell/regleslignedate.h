#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// The main window's small rules, kept apart from the widgets so that they can
// be checked on their own: the date line above the calendar and the two
// guards of the calendar's edit operations.

// A day in the French long form, "lundi 23 novembre 2026", whatever the
// machine's own language.
[[nodiscard]] QString DateLongue(const QDate &jour);

// The date line: "Semaine N : <day>" for one day, "Semaine N : <first> -
// <last>" for several, N the week number of the first day. Nothing for no
// day (the line then stays as it was).
[[nodiscard]] std::optional<QString> TexteLigneDate(const QList<QDate> &jours);

// Drag, move-copy and resize (operation codes 1 to 4) refused on a series
// when the dragging switch is on; premierEtatRecurrence is the recurrence
// state of the first appointment of the operation (-1 when there is none).
[[nodiscard]] bool RefuserGlisserRecurrent(bool interrupteur, int operation, int premierEtatRecurrence);

// Creation in place (operation code 14) refused over a weekend when that
// switch is on: n is the number of days between the ends of the selected
// period (one less for an all-day selection of more than a day), w the
// weekday (Sunday 1) of its earlier end; refused when w + n >= 7 or w is
// Sunday. No selection, nothing refused.
[[nodiscard]] bool RefuserCreationWeekEnd(bool interrupteur, int operation, const QDateTime &debut, const QDateTime &fin,
                                          bool journeeEntiere);
