#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>

// Placement of appointments in the day boxes of the month and week views, and
// of the month pages of calendar printing. Pure: plain records in, plain
// records out, no widget.
//
// Every day box holds a few lines ("lanes"). Bars (all-day appointments and
// those that run over several days) come first and keep one lane over all the
// boxes of a row they cross, so that a bar reads straight across the row; the
// appointments of a single day then take the free lanes of their box in order
// of start. What does not fit a box is counted as its overflow.

// One appointment to place.
struct MonthLayoutItem
{
    int id = 0;         // the caller's key, handed back untouched
    QDateTime start;
    QDateTime end;
    bool allDay = false;
};

// One line of a day box.
struct MonthLayoutLine
{
    int item = -1;              // index into the items given
    int lane = 0;               // 0 is the top line of the box
    bool bar = false;           // all-day or several days: drawn as a coloured bar
    bool continuesBefore = false; // the appointment began on an earlier day
    bool continuesAfter = false;  // it goes on to a later day
    // On the first box of a bar within its row: how many boxes of the row the
    // bar crosses from here (1 for a one-day bar); 0 on the other boxes.
    int spanInRow = 0;

    friend bool operator==(const MonthLayoutLine &, const MonthLayoutLine &) = default;
};

struct MonthLayoutDay
{
    QDate day;
    QList<MonthLayoutLine> lines;   // the lines shown, by lane
    int overflow = 0;               // appointments of the day left out
};

// The first and last day an appointment covers. An appointment ending at
// 00:00 does not cover the day it ends on (unless it also starts there).
[[nodiscard]] QDate MonthLayoutFirstDay(const MonthLayoutItem &item);
[[nodiscard]] QDate MonthLayoutLastDay(const MonthLayoutItem &item);

// Places the items in the given consecutive days, rows of daysPerRow days
// (7 for the month grid, 1 when every box stands on its own as in the week
// view). linesPerDay gives how many lines fit each box: one number for all,
// or one per day. Items covering none of the days are ignored.
[[nodiscard]] QList<MonthLayoutDay> LayoutMonthDays(const QList<QDate> &days, const QList<MonthLayoutItem> &items,
                                                    const QList<int> &linesPerDay, int daysPerRow = 7);
