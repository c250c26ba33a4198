#pragma once

#include <QList>

// Placing the timed appointments of one day column side by side. Pure and
// free of widgets: the screen and the printed calendar lay out the same way.

// One appointment of the day, in minutes from the day's 00:00 (the end may
// pass 1440 for an appointment running past midnight; the caller clips).
struct DayLayoutItem
{
    int id = 0;
    int startMinute = 0;
    int endMinute = 0;
};

// Where an appointment goes: column `column` of `columns` equal columns
// shared by its overlap cluster (a chain of appointments, each overlapping
// the next). shownStart / shownEnd are the minutes drawn: an appointment
// shorter than the minimum is drawn (and laid out) as long as the minimum,
// so that its text stays readable and nothing is drawn over it.
struct DayLayoutPlace
{
    int id = 0;
    int column = 0;
    int columns = 1;
    int shownStart = 0;
    int shownEnd = 0;

    friend bool operator==(const DayLayoutPlace &, const DayLayoutPlace &) = default;
};

// One place per item, in the order of the items. Earlier appointments take
// the left-most free column, a longer one before a shorter one starting at
// the same minute; an appointment ending exactly when another begins does
// not overlap it.
[[nodiscard]] QList<DayLayoutPlace> LayoutDayEvents(const QList<DayLayoutItem> &items, int minimumMinutes);

// Where the dragged edge of an appointment from startMinute to endMinute
// goes when the pointer is at pointerMinute (all from the day's 00:00), on a
// grid of stepMinutes. The edge takes the grid line nearest the pointer, or
// stays where it was while that is nearer; the appointment keeps at least
// the shorter of a step and its own length, so shortening never lengthens it
// and an edge never crosses the other.
[[nodiscard]] int ResizedEdgeMinute(int startMinute, int endMinute, bool beginEdge, int pointerMinute, int stepMinutes);
