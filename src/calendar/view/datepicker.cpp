#include "calendar/view/datepicker.h"

#include "calendar/view/calendarview.h"

DatePicker::DatePicker(QWidget *parent) : QCalendarWidget(parent)
{
    setObjectName(QStringLiteral("wndDatePicker"));
}

void DatePicker::AttachToCalendar(CalendarView *) {}

void DatePicker::RedrawControl() {}
