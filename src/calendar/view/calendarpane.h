#pragma once

#include "calendar/view/viewtypes.h"

#include <QDate>
#include <QList>
#include <QWidget>

class CalendarView;

// One way of drawing the shown days inside a CalendarView: the time columns
// of the day and work-week views, the seven day boxes of the week view, the
// weeks of the month view. A pane reads the appointments, labels, theme and
// selection from its view, and reports clicks in its own coordinates; the
// view maps them to its own and emits them.
class CalendarPane : public QWidget
{
    Q_OBJECT

public:
    CalendarPane(CalendarView *view, QWidget *parent) : QWidget(parent), m_view(view) {}

    // The days this pane shows when the view is brought to the given day.
    [[nodiscard]] virtual QList<QDate> daysFor(const QDate &anchor) const = 0;
    // The view now shows these days; appointments follow with eventsChanged.
    virtual void setDays(const QList<QDate> &days) = 0;
    // The view read its appointments again (CalendarView::shownEvents) or
    // its labels, theme or settings changed: lay out and repaint. A new
    // selection only repaints (QWidget::update).
    virtual void eventsChanged() = 0;
    [[nodiscard]] virtual CalendarHit hitTest(const QPoint &pos) const = 0;
    [[nodiscard]] virtual int scrollPosition() const { return 0; }
    virtual void setScrollPosition(int) {}
    virtual void setScrollingEnabled(bool vertical, bool horizontal) { Q_UNUSED(vertical) Q_UNUSED(horizontal) }

signals:
    void doubleClicked(const QPoint &pos);
    void rightClicked(const QPoint &pos);

protected:
    CalendarView *m_view;
};
