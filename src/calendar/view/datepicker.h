#pragma once

#include <QCalendarWidget>
#include <QDate>

class CalendarView;

// The month calendar beside the book (wndDatePicker): it follows the days the
// view shows, a click brings the clicked day on show in the view, and days
// that hold an appointment are drawn in bold.
class DatePicker final : public QCalendarWidget
{
    Q_OBJECT

public:
    explicit DatePicker(QWidget *parent = nullptr);

    // Follows and drives this view from now on (nullptr detaches).
    void AttachToCalendar(CalendarView *view);
    // Reads again which days of the shown month hold appointments.
    void RedrawControl();
};
