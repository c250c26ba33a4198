#pragma once

#include "calendar/view/monthpane.h"

// The week view: the seven days of the week as boxes in two columns,
// Monday to Wednesday on the left, Thursday to Sunday on the right, with
// Saturday and Sunday sharing the last box.
class WeekPane final : public DayBoxPane
{
    Q_OBJECT

public:
    WeekPane(CalendarView *view, QWidget *parent);

    [[nodiscard]] QList<QDate> daysFor(const QDate &anchor) const override;
    // Header of a day box: "ddd, dd MMMM" in French.
    [[nodiscard]] static QString headerText(const QDate &day);

protected:
    void placeBoxes() override;
    [[nodiscard]] int boxArea() const override { return HitWeekDay; }
    [[nodiscard]] int daysPerRow() const override { return 1; }
    [[nodiscard]] QDate stepDay(int direction) const override;
    [[nodiscard]] const DayBoxTimes &lineTimes() const override;
    void paintEvent(QPaintEvent *event) override;
};
