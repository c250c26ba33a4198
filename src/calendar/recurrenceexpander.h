#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarrecurrencepattern.h"

#include <QDate>
#include <QDateTime>
#include <QList>

#include <optional>

// Working out the occurrences of a series. Occurrences are local wall-clock
// times: a series at 09:00 stays at 09:00 across the changes of summer time.
//
// Days that a month or a year lacks: a series on the 29th, 30th or 31st of the
// month falls on the last day of the shorter months, and a yearly series on
// 29 February falls on 28 February in common years. This is how the practice
// reads "every 31st": once a month, never skipped.
//
// Weeks of a weekly series every N weeks begin on Monday; a weekly series with
// no day checked falls on the weekday of its first day.

// Occurrences (state 2, fresh objects pointing at the master's pattern) of a
// master whose pattern is attached, that touch the days firstDay..lastDay
// (inclusive); an exception in the pattern replaces the occurrence whose start
// equals its RExceptionStartTimeOrig (the exception object itself is returned,
// state 3, if it touches the range), a deleted exception masks it. Sorted by
// start.
QList<CalendarEventPtr> ExpandOccurrences(const CalendarEventPtr &master, QDate firstDay, QDate lastDay);

// Start of the first occurrence starting at or after `from` (nullopt when
// none), for reminders. Exceptions are not looked at: the start is the one the
// rule gives.
std::optional<QDateTime> NextOccurrenceStart(const CalendarRecurrencePatternPtr &pattern, const QDateTime &from);

// The date range the whole series spans (for the master row): first start,
// last end, or an invalid end when the series has no end.
struct SeriesSpan
{
    QDateTime firstStart;
    QDateTime lastEnd;
};
// Invalid first start when the series has no occurrence at all.
SeriesSpan SeriesSpanOf(const CalendarRecurrencePatternPtr &pattern);

// Starts of the occurrences that the rule gives on firstDay..lastDay
// (inclusive), exceptions not applied. The lowest layer, open for tests and for
// the reminder engine.
QList<QDateTime> OccurrenceStarts(const CalendarRecurrencePatternPtr &pattern, QDate firstDay, QDate lastDay);

// The days of a series are kept once worked out, so that the views asking
// again every ten seconds cost next to nothing. Switched off, every
// question walks the series from its first day (for checks and diagnostics).
void SetOccurrenceCacheEnabled(bool enabled);

// The rules of the six kinds are worked out by date arithmetic; switched off,
// libical's iterator gives their days (the reference the arithmetic is checked
// against). Takes effect for series not yet kept.
void SetRuleArithmeticEnabled(bool enabled);

// The rule in the text form of recurrence rules (RRULE), as handed to the
// iterator; for diagnostics and tests.
QString RecurrenceRuleText(const CalendarRecurrencePattern &pattern);
