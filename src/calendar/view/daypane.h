#pragma once

#include "calendar/view/calendarpane.h"

// The time columns of the day and work-week views.
class DayPane final : public CalendarPane
{
    Q_OBJECT

public:
    DayPane(CalendarView *view, QWidget *parent);

    [[nodiscard]] QList<QDate> daysFor(const QDate &anchor) const override;
    void setDays(const QList<QDate> &days) override;
    void eventsChanged() override;
    [[nodiscard]] CalendarHit hitTest(const QPoint &pos) const override;

private:
    QList<QDate> m_days;
};
