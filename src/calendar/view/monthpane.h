#pragma once

#include "calendar/view/calendarpane.h"
#include "calendar/view/monthlayout.h"

#include <QRect>
#include <QString>

class QPainter;

// What the week and month views share: day boxes, each with a header line
// and the appointments of the day as lines (see monthlayout.h). The
// subclasses say where the boxes stand and how their headers look.
class DayBoxPane : public CalendarPane
{
    Q_OBJECT

public:
    // One day box, in this widget's coordinates.
    struct Box
    {
        QDate day;
        QRect rect;      // the whole box
        QRect header;    // its date line
        QRect body;      // where the appointment lines go
        QString headerText;
    };

    DayBoxPane(CalendarView *view, QWidget *parent);

    void setDays(const QList<QDate> &days) override;
    void eventsChanged() override;
    [[nodiscard]] CalendarHit hitTest(const QPoint &pos) const override;
    void setScrollingEnabled(bool vertical, bool horizontal) override;

    [[nodiscard]] const QList<QDate> &days() const { return m_days; }
    [[nodiscard]] const QList<Box> &boxes() const { return m_boxes; }
    // Where the line of an appointment stands in a day's box (empty when it
    // is not shown there). A record read before is recognised by its key
    // and start.
    [[nodiscard]] QRect eventRect(const CalendarEventPtr &event, const QDate &day) const;
    // How many appointments of the day did not fit its box.
    [[nodiscard]] int overflow(const QDate &day) const;

    // The times of a line as text: "HH:mm", "HH:mm-HH:mm", "-HH:mm" when
    // only the end is shown, empty when none is.
    [[nodiscard]] static QString timesText(const DayBoxLineTimes &times);

protected:
    // Sets the rectangles and header texts of m_boxes (one per day, in the
    // order of m_days) for the present size.
    virtual void placeBoxes() = 0;
    // Hit area of a day box (HitWeekDay, HitMonthDay).
    [[nodiscard]] virtual int boxArea() const = 0;
    // Boxes of one row that bars may run across (1: every box on its own).
    [[nodiscard]] virtual int daysPerRow() const = 0;
    // The day to show after a wheel step up (-1) or down (+1).
    [[nodiscard]] virtual QDate stepDay(int direction) const = 0;
    // How this view writes the times of its lines.
    [[nodiscard]] virtual const DayBoxTimes &lineTimes() const = 0;

    [[nodiscard]] int lineHeight() const;
    [[nodiscard]] bool isSelectedDay(const QDate &day) const;
    // Background and date line of a box; `more` is the overflow mark, drawn
    // on the other side of the date line; `dim` greys the date.
    void paintBox(QPainter &painter, const Box &box, const QColor &back, const QColor &headerBack,
                  Qt::Alignment dateSide, const QString &more, bool dim) const;
    void paintToday(QPainter &painter) const;
    // The appointment lines of every box (bars run over into their row's
    // boxes).
    void paintLines(QPainter &painter) const;

    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

    QList<QDate> m_days;
    QList<Box> m_boxes;

private:
    struct Line
    {
        MonthLayoutLine line;
        QRect rect;
    };
    void relayout();
    void paintLine(QPainter &painter, const Line &line, int box, const QDate &day, const CalendarTheme &theme) const;
    // Draws the times at the left of r (digits or clock faces) and answers
    // the width they took, a space included.
    int paintTimes(QPainter &painter, const QRect &r, const DayBoxLineTimes &times) const;
    void selectAt(const QPoint &pos, bool add);

    QList<CalendarEventPtr> m_events;       // appointments of the shown days
    QList<QList<Line>> m_lines;             // per box
    QList<int> m_overflow;                  // per box
    bool m_scrolling = true;
};

// The month view: whole weeks, Monday first, covering the anchor's month
// (or a chosen number of weeks from the anchor's week), under a line of
// weekday names. Days of the neighbouring months are shaded.
class MonthPane final : public DayBoxPane
{
    Q_OBJECT

public:
    MonthPane(CalendarView *view, QWidget *parent);

    [[nodiscard]] QList<QDate> daysFor(const QDate &anchor) const override;
    // Day label of a box: "d", with the month on the first of a month
    // ("MMM d") and the full month on the first of January ("MMMM d").
    [[nodiscard]] static QString dayLabel(const QDate &day);
    // The month the boxes are about (days of other months are shaded).
    [[nodiscard]] int shownMonth() const;

protected:
    void placeBoxes() override;
    [[nodiscard]] int boxArea() const override { return HitMonthDay; }
    [[nodiscard]] int daysPerRow() const override { return 7; }
    [[nodiscard]] QDate stepDay(int direction) const override;
    [[nodiscard]] const DayBoxTimes &lineTimes() const override;
    void paintEvent(QPaintEvent *event) override;

private:
    // With the weekend compressed, Saturday and Sunday share the last
    // column, one above the other.
    [[nodiscard]] bool weekendShared() const;

    QRect m_weekdayBand;
    int m_weekColumn = 0;   // width of the week numbers on the left
};
