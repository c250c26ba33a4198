#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarrecurrencepattern.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

#include <optional>

// What the recurrence dialog works on and what its controls hold, kept apart
// from the widgets so that the whole round trip pattern -> controls -> pattern
// can be checked without a window.

// The texts of the dialog's lists.
[[nodiscard]] QStringList HeuresDebutRecurrence();   // 00:00 to 24:00, every 30 minutes
[[nodiscard]] QStringList DureesRecurrence();        // "5 minutes" ... "2880 minutes (2 Jours)"
[[nodiscard]] QStringList JoursDuMoisRecurrence();   // "1" to "31"
[[nodiscard]] QStringList RangsJourRecurrence();     // "premier" ... "dernier" (WhichDay 1 to 5)
[[nodiscard]] QStringList JoursMasqueRecurrence();   // "Jour" ... "Samedi", by index2WhichDayMask index
[[nodiscard]] QStringList MoisRecurrence();          // "Janvier" to "Décembre"

// Index in JoursMasqueRecurrence() of the weekday of a date ("Dimanche" is 3).
[[nodiscard]] int IndexJourSemaine(QDate date);

// The values of the dialog's controls, one member per control under its name.
// Lists hold their index, -1 when nothing is chosen; text fields and editable
// lists hold their text, read by the leading-number rule when they are taken.
struct ValeursRecurrence
{
    enum Page { Journaliere = 1, Hebdomadaire = 2, Mensuelle = 3, Annuelle = 4 };

    QString cmbEventStartTime;
    QString cmbEventDuration;
    QString txtEventEndTime;

    Page page = Journaliere; // optRecDaily ... optRecYearly

    // pageDaily: optDailyEveryWorkDay when true, optDailyEveryNdays otherwise.
    bool optDailyEveryWorkDay = false;
    QString txtDailyEveryNdays = QStringLiteral("1");

    // pageWeekly: the seven day boxes as a day mask (Sunday 1 ... Saturday 64).
    QString txtWeeklyNWeeks = QStringLiteral("1");
    int joursCoches = 0;

    // pageMonthly: optMonthlyDay when true, optMonthlyThe otherwise.
    bool optMonthlyDay = true;
    int cmbMonthlyDayOfMonth = -1;
    QString txtMonthlyEveryMonth = QStringLiteral("1");
    int cmbMonthlyDay = -1;
    int cmbMonthlyDayOfWeek = -1;
    QString txtMonthlyOfEveryTheMonths = QStringLiteral("1");

    // pageYearly: optYearlyDay when true, optYearlyThe otherwise.
    bool optYearlyDay = true;
    int cmbYearlyEveryDate = -1; // month
    int cmbYearlyDate = -1;      // day of the month
    int cmdYearlyThePartOfWeek = -1;
    int cmbYearlyTheDay = -1;
    int cmbYearlyTheMonth = -1;

    // Range of the series.
    QDate ddPatternStartDate;
    int finSerie = CalendarRecurrencePattern::NoEnd; // optPatternNoEnd / EndAfter / EndByDate
    QString txtPatternEndAfter = QStringLiteral("10");
    QDate ddPatternEndDate;
};

// The values of a freshly opened dialog before the pattern is shown: the day
// lists select the day and the weekday of `selection` (the start of the
// calendar's selection), the end of the series offers 10 occurrences or
// `aujourdhui` plus 5 days.
[[nodiscard]] ValeursRecurrence ValeursParDefautRecurrence(QDate selection, QDate aujourdhui);

// The start list's text as a time of day: hours and minutes on either side of
// ":", each read by the leading-number rule, whole days dropped ("24:00" is
// 00:00). No ":" at all is no time.
[[nodiscard]] std::optional<QTime> HeureDebutRecurrence(const QString &texte);
// The duration list's text in minutes: its leading number ("2 heures" is 2).
[[nodiscard]] int DureeRecurrence(const QString &texte);
// The end shown beside them, as hh:mm; empty when the start is no time.
[[nodiscard]] QString HeureFinRecurrence(const QString &debut, const QString &duree);

// Shows the pattern in the values: the time fields, the page of its kind with
// the fields of that kind, and the range. Fields of the other kinds keep what
// `valeurs` held.
void PatternVersValeurs(const CalendarRecurrencePattern &pattern, ValeursRecurrence &valeurs);

// Writes the values into the pattern (time, duration, kind, range). Answers
// false, leaving the pattern as it was, when the start is no time.
[[nodiscard]] bool ValeursVersPattern(const ValeursRecurrence &valeurs, CalendarRecurrencePattern &pattern);

// What the dialog edits once opened on a record.
struct ChargementRecurrence
{
    // The record under work, always a master (state 1) once loaded; empty
    // when the series of an occurrence or exception could not be found.
    CalendarEventPtr event;
    CalendarRecurrencePatternPtr pattern;
    bool occurrence = false;        // opened on an occurrence or an exception
    bool nouvelleRecurrence = false; // the recurrence was made by this opening
};

// Prepares a record for the dialog. A master is edited as given (the caller
// hands in its own copy). A plain event is copied and made a master of a new
// daily series at its time and for its length. An occurrence or an exception
// is replaced by a copy of its master: the dialog always edits the whole
// series, and nothing shared is touched before the caller confirms.
[[nodiscard]] ChargementRecurrence ChargerRecurrence(const CalendarEventPtr &event);

// The question asked before a series with exceptions is changed.
[[nodiscard]] QString QuestionExceptionsRecurrence();

// The end of OK once the values are in the pattern: a series with exceptions
// is changed only when the user agrees to lose them (asked through Prompt,
// even when nothing was changed); then the pattern goes onto the master.
// False: the user declined, nothing is stored on the master.
[[nodiscard]] bool ConfirmerRecurrence(const CalendarEventPtr &event, const CalendarRecurrencePatternPtr &pattern);
