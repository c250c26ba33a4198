#include "calendar/view/daypane.h"

#include "calendar/view/calendarview.h"

DayPane::DayPane(CalendarView *view, QWidget *parent) : CalendarPane(view, parent) {}

QList<QDate> DayPane::daysFor(const QDate &anchor) const
{
    if (m_view->viewType() == CalendarViewType::Day)
        return {anchor};
    const QDate monday = anchor.addDays(1 - anchor.dayOfWeek());
    QList<QDate> days;
    for (int i = 0; i < 5; ++i)
        days.append(monday.addDays(i));
    return days;
}

void DayPane::setDays(const QList<QDate> &days) { m_days = days; }

void DayPane::eventsChanged() { update(); }

CalendarHit DayPane::hitTest(const QPoint &) const { return {}; }
