#include "calendar/view/weekpane.h"

#include "calendar/view/calendarview.h"

WeekPane::WeekPane(CalendarView *view, QWidget *parent) : CalendarPane(view, parent) {}

QList<QDate> WeekPane::daysFor(const QDate &anchor) const
{
    const QDate monday = anchor.addDays(1 - anchor.dayOfWeek());
    QList<QDate> days;
    for (int i = 0; i < 7; ++i)
        days.append(monday.addDays(i));
    return days;
}

void WeekPane::setDays(const QList<QDate> &days) { m_days = days; }

void WeekPane::eventsChanged() { update(); }

CalendarHit WeekPane::hitTest(const QPoint &) const { return {}; }
