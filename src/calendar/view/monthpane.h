#pragma once

#include "calendar/view/calendarpane.h"

// The month view: whole weeks, Monday first, covering the anchor's month.
class MonthPane final : public CalendarPane
{
    Q_OBJECT

public:
    MonthPane(CalendarView *view, QWidget *parent);

    [[nodiscard]] QList<QDate> daysFor(const QDate &anchor) const override;
    void setDays(const QList<QDate> &days) override;
    void eventsChanged() override;
    [[nodiscard]] CalendarHit hitTest(const QPoint &pos) const override;

private:
    QList<QDate> m_days;
};
