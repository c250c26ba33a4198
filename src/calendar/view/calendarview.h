#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarlabel.h"
#include "calendar/calendarstore.h"
#include "calendar/view/viewtypes.h"

#include <QColor>
#include <QDate>
#include <QList>
#include <QTime>
#include <QWidget>

#include <functional>

class CalendarDataProvider;
class CalendarPane;
class DayPane;
class MonthPane;
class QStackedLayout;
class WeekPane;

// The calendar the secretary works on: a day / work-week view with a time
// scale, a week view and a month view over one data provider. It reads the
// appointments of the shown days on Populate() only, and writes changes made
// with the mouse or the keyboard (drag, resize, delete, paste) through the
// provider's AddEvent / ChangeEvent / DeleteEvent. Opening and creating
// appointments is the main window's: the view only reports the clicks.
class CalendarView : public QWidget
{
    Q_OBJECT

public:
    explicit CalendarView(QWidget *parent = nullptr);
    ~CalendarView() override;

    // The store read by Populate and written by the edit operations; not owned.
    void setDataProvider(CalendarDataProvider *provider);
    [[nodiscard]] CalendarDataProvider *dataProvider() const;
    // Label colours and names by LabelID.
    void setLabels(const CalendarLabelList &labels);

    // Reloads the appointments of the shown days from the store and redraws,
    // keeping scroll position and selection.
    void Populate();
    // The periodic refresh: Populate when the store may have changed since
    // the shown days were read (or they were not read whole, or the day has
    // turned since), nothing at all otherwise. True when it read.
    bool Refresh();
    // Repaints without reading the store.
    void RedrawControl();
    // The appointments last read, ordered by start.
    [[nodiscard]] const QList<CalendarEventPtr> &shownEvents() const;

    // View type 0 day, 1 work week, 2 week, 3 month. Emits viewChanged.
    void setViewType(CalendarViewType type);
    [[nodiscard]] CalendarViewType viewType() const;
    // Step of the day view's time scale: 60, 30, 15, 10 or 5 minutes.
    void setTimeScale(int minutes);
    [[nodiscard]] int timeScale() const;
    // Working hours of the day view (shaded as such on weekdays).
    void setWorkingHours(QTime begin, QTime end);
    [[nodiscard]] QTime workDayBegin() const;
    [[nodiscard]] QTime workDayEnd() const;
    // Visual theme 0 to 3 (see CalendarTheme).
    void setTheme(int number);
    [[nodiscard]] int theme() const;

    // Days on show: one in the day view, Monday to Friday of the work week,
    // seven in the week view, the weeks of the month view.
    [[nodiscard]] int shownDaysCount() const;
    [[nodiscard]] QDate shownDay(int i) const;
    // Brings the day on show in the current view type and selects it (the
    // working day's begin in time views). Emits viewChanged.
    void ShowDay(const QDate &day);

    [[nodiscard]] CalendarSelection selection() const;
    void setSelection(const CalendarSelection &selection);
    // The appointments selected by a click (at most one unless Ctrl is held).
    [[nodiscard]] QList<CalendarEventPtr> selectedEvents() const;

    // Vertical scroll of the day view, in pixels.
    [[nodiscard]] int scrollPosition() const;
    void setScrollPosition(int pixels);
    // Scroll switches of the advanced options.
    void setScrolling(bool dayVertical, bool dayHorizontal, bool weekVertical, bool monthVertical);

    // Options of the session (in-place editing, time scale, time mark, the
    // second time scale); setting them redraws.
    [[nodiscard]] const CalendarOptions &options() const;
    void setOptions(const CalendarOptions &options);
    // The workstation's zone, that of the main time scale.
    [[nodiscard]] const FuseauHoraire &currentTimeZone() const;
    // F2: the subject editor over the one selected appointment of the day
    // views. False when the option is off, the guard refuses, or there is no
    // such appointment.
    bool editSelectedSubject();

    [[nodiscard]] bool CanCut() const;
    [[nodiscard]] bool CanCopy() const;
    [[nodiscard]] bool CanPaste() const;
    void Cut();
    void Copy();
    void Paste();

    // What is under a point given in this widget's coordinates.
    [[nodiscard]] CalendarHit hitTest(const QPoint &pos) const;

    // Hook run before each day-view cell is drawn; it may set the background.
    using CellPainter = std::function<void(DayViewCell &)>;
    void setCellPainter(CellPainter painter);
    // Guard asked before an operation (codes of CalendarEditOperation) on the
    // given appointments; answering true refuses it.
    using OperationGuard = std::function<bool(int operation, const QList<CalendarEventPtr> &events)>;
    void setOperationGuard(OperationGuard guard);
    // Asked before an edit operation is carried out; answering false cancels it.
    using EditConfirmation = std::function<bool(int operation, const QList<CalendarEventPtr> &events)>;
    void setEditConfirmation(EditConfirmation confirm);

signals:
    // Shown days or view type changed.
    void viewChanged();
    void selectionChanged();
    void keyPressed(int key);
    // Clicks, with the point in this widget's coordinates; the receiver runs
    // hitTest itself.
    void doubleClicked(const QPoint &pos);
    void rightClicked(const QPoint &pos);
    // An appointment was moved, resized, pasted or deleted through the view.
    void eventsEdited();
    // After each reading: true when the store could not be read (held by
    // another workstation); the view then keeps what it showed of the same
    // days.
    void storeBusy(bool busy);
    // A change made through the view (move, resize, paste, delete) was
    // refused by the store; `detail` is the store's reason. The view shows
    // the book as stored.
    void writeRefused(const QString &detail);

public:
    // For the panes (day, week and month widgets inside the view).
    [[nodiscard]] const CalendarLabelList &labels() const;
    [[nodiscard]] QColor labelColor(int labelId) const;
    [[nodiscard]] const CalendarTheme &themeColors() const;
    [[nodiscard]] const CellPainter &cellPainter() const;
    [[nodiscard]] bool isEventSelected(const CalendarEventPtr &event) const;
    // A click of a pane selects a period and the appointments under it.
    void selectFromPane(const CalendarSelection &selection, const QList<CalendarEventPtr> &events);
    // True when the guard refuses the operation on these appointments.
    [[nodiscard]] bool isOperationRefused(int operation, const QList<CalendarEventPtr> &events) const;
    // Writes an appointment a pane moved or resized (times already set on it)
    // through the provider, reads the shown days again and emits eventsEdited.
    bool commitChangedEvent(const CalendarEventPtr &event);
    // Adds a plain copy of the appointment at these times (a drag with Ctrl),
    // reads the shown days again and emits eventsEdited.
    bool addCopyOfEvent(const CalendarEventPtr &event, const QDateTime &start, const QDateTime &end);
    // The pane of the current view type.
    [[nodiscard]] CalendarPane *currentPane() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    [[nodiscard]] CalendarPane *paneFor(CalendarViewType type) const;
    // The shown days for the anchor day in the current view type, handed to its pane.
    void layOutDays();
    // Deletes the selected appointments, asking the confirmation when ask is set.
    bool deleteSelected(bool ask);
    // The selected appointments found again among the appointments just read.
    void reselectEvents();
    void panesChanged();

    CalendarDataProvider *m_provider = nullptr;
    CalendarLabelList m_labels;
    CalendarTheme m_theme;
    CalendarViewType m_type = CalendarViewType::WorkWeek;
    int m_timeScale = 30;
    QTime m_workBegin{8, 0};
    QTime m_workEnd{20, 0};
    QDate m_anchor;
    QList<QDate> m_days;
    CalendarSelection m_selection;
    CalendarOptions m_options;
    FuseauHoraire m_currentZone;
    QList<CalendarEventPtr> m_selectedEvents;
    QList<CalendarEventPtr> m_events;
    // Tells writeRefused when a write through the view failed.
    void reportWrite(bool ok);
    // The days of the last reading that succeeded (see storeBusy), the
    // store's mark taken just before it, and the day it was (what is
    // "today" on the panes).
    QList<QDate> m_daysRead;
    StoreMark m_markRead;
    QDate m_todayRead;
    QList<CalendarEventPtr> m_clipboard;
    CellPainter m_cellPainter;
    OperationGuard m_guard;
    EditConfirmation m_confirm;
    QStackedLayout *m_stack = nullptr;
    DayPane *m_dayPane = nullptr;
    WeekPane *m_weekPane = nullptr;
    MonthPane *m_monthPane = nullptr;
};
