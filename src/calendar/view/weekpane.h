#pragma once

#include "calendar/view/calendarpane.h"

// The week view: the seven days of the week as boxes in two columns,
// Monday to Wednesday on the left, Thursday to Sunday on the right.
class WeekPane final : public CalendarPane
{
    Q_OBJECT

public:
    WeekPane(CalendarView *view, QWidget *parent);

    [[nodiscard]] QList<QDate> daysFor(const QDate &anchor) const override;
    void setDays(const QList<QDate> &days) override;
    void eventsChanged() override;
    [[nodiscard]] CalendarHit hitTest(const QPoint &pos) const override;

private:
    QList<QDate> m_days;
};
