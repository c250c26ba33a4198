#include "calendar/view/monthpane.h"

#include "calendar/view/calendarview.h"

MonthPane::MonthPane(CalendarView *view, QWidget *parent) : CalendarPane(view, parent) {}

QList<QDate> MonthPane::daysFor(const QDate &anchor) const
{
    const QDate first(anchor.year(), anchor.month(), 1);
    const QDate last = first.addMonths(1).addDays(-1);
    QDate day = first.addDays(1 - first.dayOfWeek());
    const QDate end = last.addDays(7 - last.dayOfWeek());
    QList<QDate> days;
    for (; day <= end; day = day.addDays(1))
        days.append(day);
    return days;
}

void MonthPane::setDays(const QList<QDate> &days) { m_days = days; }

void MonthPane::eventsChanged() { update(); }

CalendarHit MonthPane::hitTest(const QPoint &) const { return {}; }
