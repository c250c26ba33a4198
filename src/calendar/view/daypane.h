#pragma once

#include "calendar/view/calendarpane.h"

#include <QDateTime>
#include <QList>
#include <QRect>

class QLineEdit;
class QScrollBar;

// The time columns of the day and work-week views: a header with the dates,
// a band for the all-day appointments, the time scale at the left and one
// column of cells per day, scrolled vertically over the whole 24 hours.
// Appointments can be moved and resized with the mouse; the cells under the
// mouse are selected by click, shift-click and drag.
class DayPane final : public CalendarPane
{
    Q_OBJECT

public:
    DayPane(CalendarView *view, QWidget *parent);

    [[nodiscard]] QList<QDate> daysFor(const QDate &anchor) const override;
    void setDays(const QList<QDate> &days) override;
    void eventsChanged() override;
    [[nodiscard]] CalendarHit hitTest(const QPoint &pos) const override;
    [[nodiscard]] int scrollPosition() const override;
    void setScrollPosition(int pixels) override;
    void setScrollingEnabled(bool vertical, bool horizontal) override;

    // The view's time scale changed from oldScale: the time at the top stays.
    void timeScaleChanged(int oldScale);
    // Scrolls as little as needed for the cell beginning at this time to show.
    void ensureVisible(const QDateTime &time);
    // Opens the line editor of the subject over the appointment: Enter writes
    // it through the view as a changed appointment, Escape gives it up, and
    // leaving it for another place of the window writes it too. False when
    // the appointment is not on show.
    bool editSubject(const CalendarEventPtr &event);
    // The editor while it is open, else null.
    [[nodiscard]] QLineEdit *subjectEditor() const;

    // Geometry in this pane's coordinates, for the view and its tests.
    [[nodiscard]] int rowHeight() const { return m_rowHeight; }
    [[nodiscard]] QRect bodyRect() const;
    [[nodiscard]] QRect timeScaleRect() const;
    [[nodiscard]] QRect allDayBandRect() const;
    // The rectangle of a cell, scrolled as shown (may lie outside the body).
    [[nodiscard]] QRect cellRect(const QDateTime &begin) const;
    // Where an appointment is drawn in its first shown column (scrolled as
    // shown); empty when it is not on show.
    [[nodiscard]] QRect eventRect(const CalendarEventPtr &event) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // An appointment as drawn: body rectangles are in content coordinates
    // (y from 00:00 of the day, unscrolled), band rectangles in the pane's.
    struct Box
    {
        CalendarEventPtr event;
        QRect rect;
        bool allDay = false;
    };
    enum class Drag { None, Select, SelectAllDay, Pending, Refused, Move, ResizeBegin, ResizeEnd };

    void relayout();
    void updateScrollBar();
    [[nodiscard]] int scale() const;
    [[nodiscard]] int rowCount() const { return 24 * 60 / scale(); }
    [[nodiscard]] int timeScaleWidth() const { return m_timeWidth; }
    [[nodiscard]] int bodyTop() const { return m_headerHeight + m_bandHeight; }
    [[nodiscard]] int columnsWidth() const;
    [[nodiscard]] int columnLeft(int day) const;
    [[nodiscard]] int columnRight(int day) const;
    // The day column under x, or -1.
    [[nodiscard]] int dayAt(int x) const;
    // Minutes from the day's 00:00 at the pane's y in the body, unsnapped.
    [[nodiscard]] int minuteAt(int y) const;
    [[nodiscard]] QDateTime cellBegin(int day, int row) const;
    [[nodiscard]] int contentHeight() const { return rowCount() * m_rowHeight; }
    [[nodiscard]] int maxScroll() const;
    [[nodiscard]] const Box *boxAt(const QPoint &pos, int *edge) const;
    [[nodiscard]] QRect shownRect(const Box &box) const;
    [[nodiscard]] bool isWorkingTime(const QDate &day, int minute) const;
    // The colour of the cell at a time, rules included.
    [[nodiscard]] QColor cellBackground(const QDateTime &at) const;

    void paintHeader(QPainter &p, const QRect &clip);
    void paintAllDayBand(QPainter &p);
    void paintCells(QPainter &p, const QRect &clip);
    void paintTimeScale(QPainter &p);
    // One scale in r, its hours shifted by offset minutes from the main one.
    void paintScale(QPainter &p, const QRect &r, int offset);
    void paintCaptions(QPainter &p);
    void paintTimeMark(QPainter &p);
    void finishSubjectEdit(bool save);
    void paintEventBox(QPainter &p, const CalendarEventPtr &event, const QRect &r, bool ghost);
    void paintDragGhost(QPainter &p);

    // Selection made with the mouse.
    void selectCells(const QDateTime &from, const QDateTime &to);
    void selectDays(int from, int to);
    void selectEventAt(const CalendarHit &hit, bool add);
    // The new times of the dragged appointment for the mouse at pos.
    void trackDrag(const QPoint &pos);

    QList<QDate> m_days;
    QList<Box> m_boxes;
    QScrollBar *m_scrollBar = nullptr;
    int m_scroll = 0;
    bool m_scrollPlaced = false;
    bool m_verticalScrolling = true;
    int m_headerHeight = 0;
    int m_bandHeight = 0;
    int m_bandRowHeight = 0;
    int m_rowHeight = 20;
    int m_timeWidth = 56;    // both time scales
    int m_scaleWidth = 56;   // one of them
    int m_additionalOffset = 0; // minutes from the main scale to the second one

    QLineEdit *m_subjectEditor = nullptr;
    CalendarEventPtr m_editedEvent;
    bool m_finishingEdit = false;

    Drag m_drag = Drag::None;
    Drag m_pendingKind = Drag::Move; // what a press on an appointment starts once the mouse moves
    QPoint m_pressPos;
    CalendarEventPtr m_dragEvent;
    bool m_dragAllDay = false;
    bool m_dragCopy = false;
    qint64 m_grabSeconds = 0; // from the appointment's start to the pressed point
    QDateTime m_anchorCell;   // where a selection by the mouse began
    int m_anchorDay = -1;
    QDateTime m_newStart;
    QDateTime m_newEnd;
};
