#include "calendar/view/calendarview.h"

#include "calendar/calendardataprovider.h"
#include "calendar/view/colorationregles.h"
#include "calendar/view/daypane.h"
#include "calendar/view/monthpane.h"
#include "calendar/view/weekpane.h"
#include "shell/base/horloge.h"

#include <QKeyEvent>
#include <QStackedLayout>

#include <algorithm>

namespace {

// Two records stand for the same appointment: the same row, or the same
// occurrence of the same series.
bool memeRendezVous(const CalendarEventPtr &a, const CalendarEventPtr &b)
{
    if (a->EventID() != 0 || b->EventID() != 0)
        return a->EventID() == b->EventID() && a->RecurrenceState() == b->RecurrenceState();
    const CalendarRecurrencePatternPtr pa = a->RecurrencePattern();
    const CalendarRecurrencePatternPtr pb = b->RecurrencePattern();
    if (!pa || !pb)
        return a == b;
    return pa->RecurrencePatternID() == pb->RecurrencePatternID() && a->RExceptionStartTimeOrig() == b->RExceptionStartTimeOrig();
}

// A copy that is a plain appointment of its own, whatever the original was.
CalendarEventPtr copieIndependante(const CalendarEventPtr &event)
{
    CalendarEventPtr copie = event->CloneEvent();
    copie->setRecurrencePattern({});
    copie->setRecurrenceState(CalendarEvent::NotRecurring);
    copie->setRExceptionStartTimeOrig({});
    copie->setRExceptionEndTimeOrig({});
    copie->setRExceptionDeleted(false);
    copie->setEventID(0);
    return copie;
}

// The same, as a new appointment at these times (pasted or copied by a drag).
CalendarEventPtr nouvelleCopie(const CalendarEventPtr &event, const QDateTime &start, const QDateTime &end)
{
    CalendarEventPtr copie = copieIndependante(event);
    copie->setStartDateTime(start);
    copie->setEndDateTime(end);
    copie->setCreationTime({});
    return copie;
}

} // namespace

CalendarView::CalendarView(QWidget *parent) : QWidget(parent), m_theme(CalendarTheme::forNumber(3))
{
    setFocusPolicy(Qt::StrongFocus);
    m_stack = new QStackedLayout(this);
    m_stack->setContentsMargins(0, 0, 0, 0);
    m_dayPane = new DayPane(this, this);
    m_weekPane = new WeekPane(this, this);
    m_monthPane = new MonthPane(this, this);
    for (CalendarPane *pane : {static_cast<CalendarPane *>(m_dayPane), static_cast<CalendarPane *>(m_weekPane),
                               static_cast<CalendarPane *>(m_monthPane)}) {
        m_stack->addWidget(pane);
        pane->setFocusProxy(this);
        connect(pane, &CalendarPane::doubleClicked, this,
                [this, pane](const QPoint &p) { emit doubleClicked(pane->mapTo(this, p)); });
        connect(pane, &CalendarPane::rightClicked, this,
                [this, pane](const QPoint &p) { emit rightClicked(pane->mapTo(this, p)); });
    }
    m_stack->setCurrentWidget(m_dayPane);
    m_currentZone = FuseauCourant();
    // The second scale starts on the workstation's own zone.
    m_options.additionalTimeZone = m_currentZone;
    m_anchor = Horloge::aujourdhui();
    layOutDays();
}

CalendarView::~CalendarView() = default;

void CalendarView::setDataProvider(CalendarDataProvider *provider) { m_provider = provider; }

CalendarDataProvider *CalendarView::dataProvider() const { return m_provider; }

void CalendarView::setLabels(const CalendarLabelList &labels)
{
    m_labels = labels;
    panesChanged();
}

void CalendarView::Populate()
{
    QList<CalendarEventPtr> events;
    bool busy = false;
    StoreMark mark;
    if (m_provider && m_provider->IsOpen() && !m_days.isEmpty()) {
        mark = m_provider->DataMark();
        events = m_provider->RetrieveEvents(m_days.first(), m_days.last());
        busy = m_provider->LastReadFailed();
    }
    m_markRead = busy ? StoreMark{} : mark;
    m_todayRead = Horloge::aujourdhui();
    emit storeBusy(busy);
    // An empty answer of a busy store is no empty book: the picture of the
    // same days stays as it was.
    if (busy && m_daysRead == m_days) {
        panesChanged();
        return;
    }
    m_daysRead = busy ? QList<QDate>() : m_days;
    std::stable_sort(events.begin(), events.end(), [](const CalendarEventPtr &a, const CalendarEventPtr &b) {
        return a->StartDateTime() < b->StartDateTime();
    });
    m_events = events;
    reselectEvents();
    panesChanged();
}

bool CalendarView::Refresh()
{
    if (m_provider && m_provider->IsOpen() && !m_days.isEmpty() && m_daysRead == m_days
        && m_todayRead == Horloge::aujourdhui() && !m_provider->ChangedSince(m_markRead))
        return false;
    Populate();
    return true;
}

void CalendarView::reportWrite(bool ok)
{
    if (!ok && m_provider && m_provider->IsOpen())
        emit writeRefused(m_provider->store() ? m_provider->store()->LastErrorText() : QString());
}

void CalendarView::RedrawControl() { panesChanged(); }

const QList<CalendarEventPtr> &CalendarView::shownEvents() const { return m_events; }

void CalendarView::setViewType(CalendarViewType type)
{
    const bool changed = type != m_type;
    m_type = type;
    m_stack->setCurrentWidget(currentPane());
    const QList<QDate> before = m_days;
    layOutDays();
    if (before != m_days || changed)
        Populate();
    else
        panesChanged();
    emit viewChanged();
}

CalendarViewType CalendarView::viewType() const { return m_type; }

void CalendarView::setTimeScale(int minutes)
{
    static const int scales[] = {5, 6, 10, 15, 20, 30, 45, 60, 90, 120};
    if (std::find(std::begin(scales), std::end(scales), minutes) == std::end(scales))
        return;
    const int old = m_timeScale;
    m_timeScale = minutes;
    m_dayPane->timeScaleChanged(old);
    panesChanged();
}

int CalendarView::timeScale() const { return m_timeScale; }

void CalendarView::setWorkingHours(QTime begin, QTime end)
{
    if (!begin.isValid() || !end.isValid())
        return;
    m_workBegin = begin;
    m_workEnd = end;
    panesChanged();
}

QTime CalendarView::workDayBegin() const { return m_workBegin; }

QTime CalendarView::workDayEnd() const { return m_workEnd; }

void CalendarView::setTheme(int number)
{
    m_theme = CalendarTheme::forNumber(number);
    panesChanged();
}

int CalendarView::theme() const { return m_theme.number; }

int CalendarView::shownDaysCount() const { return static_cast<int>(m_days.size()); }

QDate CalendarView::shownDay(int i) const { return i >= 0 && i < m_days.size() ? m_days.at(i) : QDate(); }

void CalendarView::ShowDay(const QDate &day)
{
    if (!day.isValid())
        return;
    m_anchor = day;
    layOutDays();
    CalendarSelection s;
    if (m_type == CalendarViewType::Day || m_type == CalendarViewType::WorkWeek) {
        s.begin = QDateTime(day, m_workBegin);
        s.end = s.begin.addSecs(60 * m_timeScale);
    } else {
        s.begin = QDateTime(day, QTime(0, 0));
        s.end = s.begin.addDays(1);
        s.allDay = true;
    }
    m_selection = s;
    m_selectedEvents.clear();
    Populate();
    if (currentPane() == m_dayPane)
        m_dayPane->ensureVisible(s.begin);
    emit viewChanged();
    emit selectionChanged();
}

CalendarSelection CalendarView::selection() const { return m_selection; }

void CalendarView::setSelection(const CalendarSelection &selection)
{
    if (selection == m_selection)
        return;
    m_selection = selection;
    currentPane()->update();
    emit selectionChanged();
}

QList<CalendarEventPtr> CalendarView::selectedEvents() const { return m_selectedEvents; }

int CalendarView::scrollPosition() const { return m_dayPane->scrollPosition(); }

void CalendarView::setScrollPosition(int pixels) { m_dayPane->setScrollPosition(pixels); }

void CalendarView::setScrolling(bool dayVertical, bool dayHorizontal, bool weekVertical, bool monthVertical)
{
    m_dayPane->setScrollingEnabled(dayVertical, dayHorizontal);
    m_weekPane->setScrollingEnabled(weekVertical, false);
    m_monthPane->setScrollingEnabled(monthVertical, false);
}

const CalendarOptions &CalendarView::options() const { return m_options; }

void CalendarView::setOptions(const CalendarOptions &options)
{
    const bool jours = options.workDaysMask != m_options.workDaysMask || options.firstDayOfWeek != m_options.firstDayOfWeek
                       || options.monthWeeksCount != m_options.monthWeeksCount;
    m_options = options;
    if (jours) {
        layOutDays();
        Populate();
        emit viewChanged();
        return;
    }
    panesChanged();
}

const FuseauHoraire &CalendarView::currentTimeZone() const { return m_currentZone; }

bool CalendarView::editSelectedSubject()
{
    if (!m_options.editSubjectByF2 || currentPane() != m_dayPane || m_selectedEvents.size() != 1)
        return false;
    if (isOperationRefused(OpEditSubjectByF2, m_selectedEvents))
        return false;
    return m_dayPane->editSubject(m_selectedEvents.first());
}

bool CalendarView::CanCut() const { return !m_selectedEvents.isEmpty() && m_provider; }

bool CalendarView::CanCopy() const { return !m_selectedEvents.isEmpty(); }

bool CalendarView::CanPaste() const { return !m_clipboard.isEmpty() && m_selection.isValid() && m_provider; }

void CalendarView::Cut()
{
    if (!CanCut())
        return;
    Copy();
    deleteSelected(false);
}

void CalendarView::Copy()
{
    if (!CanCopy())
        return;
    m_clipboard.clear();
    for (const CalendarEventPtr &e : std::as_const(m_selectedEvents))
        m_clipboard.append(copieIndependante(e));
    std::stable_sort(m_clipboard.begin(), m_clipboard.end(), [](const CalendarEventPtr &a, const CalendarEventPtr &b) {
        return a->StartDateTime() < b->StartDateTime();
    });
    emit selectionChanged();
}

void CalendarView::Paste()
{
    if (!CanPaste())
        return;
    // The first copied appointment starts at the selection; the others keep
    // their distance to it. Each paste writes fresh copies.
    const QDateTime origine = m_clipboard.first()->StartDateTime();
    bool any = false;
    for (const CalendarEventPtr &modele : std::as_const(m_clipboard)) {
        const qint64 duree = modele->StartDateTime().secsTo(modele->EndDateTime());
        const QDateTime debut = m_selection.begin.addSecs(origine.secsTo(modele->StartDateTime()));
        const bool ok = m_provider->AddEvent(nouvelleCopie(modele, debut, debut.addSecs(duree)));
        reportWrite(ok);
        any = ok || any;
    }
    Populate();
    if (any)
        emit eventsEdited();
}

CalendarHit CalendarView::hitTest(const QPoint &pos) const
{
    CalendarPane *pane = currentPane();
    return pane->hitTest(pane->mapFrom(this, pos));
}

void CalendarView::setCellPainter(CellPainter painter)
{
    m_cellPainter = std::move(painter);
    panesChanged();
}

void CalendarView::setOperationGuard(OperationGuard guard) { m_guard = std::move(guard); }

void CalendarView::setEditConfirmation(EditConfirmation confirm) { m_confirm = std::move(confirm); }

const CalendarLabelList &CalendarView::labels() const { return m_labels; }

QColor CalendarView::labelColor(int labelId) const
{
    for (const CalendarLabel &l : m_labels) {
        if (l.id == labelId)
            return CouleurDepuisBGR(l.color);
    }
    return QColor(255, 255, 255);
}

const CalendarTheme &CalendarView::themeColors() const { return m_theme; }

const CalendarView::CellPainter &CalendarView::cellPainter() const { return m_cellPainter; }

bool CalendarView::isEventSelected(const CalendarEventPtr &event) const
{
    return event && m_selectedEvents.contains(event);
}

void CalendarView::selectFromPane(const CalendarSelection &selection, const QList<CalendarEventPtr> &events)
{
    if (selection == m_selection && events == m_selectedEvents)
        return;
    m_selection = selection;
    m_selectedEvents = events;
    // The layout does not depend on the selection: this runs on every move
    // of a mouse selection, so it only repaints.
    currentPane()->update();
    emit selectionChanged();
}

bool CalendarView::isOperationRefused(int operation, const QList<CalendarEventPtr> &events) const
{
    return m_guard && m_guard(operation, events);
}

bool CalendarView::commitChangedEvent(const CalendarEventPtr &event)
{
    const bool ok = m_provider && m_provider->ChangeEvent(event);
    reportWrite(ok);
    Populate();
    if (ok)
        emit eventsEdited();
    return ok;
}

bool CalendarView::addCopyOfEvent(const CalendarEventPtr &event, const QDateTime &start, const QDateTime &end)
{
    const bool ok = m_provider && m_provider->AddEvent(nouvelleCopie(event, start, end));
    reportWrite(ok);
    Populate();
    if (ok)
        emit eventsEdited();
    return ok;
}

CalendarPane *CalendarView::currentPane() const { return paneFor(m_type); }

void CalendarView::keyPressEvent(QKeyEvent *event)
{
    emit keyPressed(event->key());
    if (event->key() == Qt::Key_F2 && editSelectedSubject()) {
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Delete && !m_selectedEvents.isEmpty()) {
        deleteSelected(true);
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

CalendarPane *CalendarView::paneFor(CalendarViewType type) const
{
    switch (type) {
    case CalendarViewType::Week:
        return m_weekPane;
    case CalendarViewType::Month:
        return m_monthPane;
    default:
        return m_dayPane;
    }
}

void CalendarView::layOutDays()
{
    CalendarPane *pane = currentPane();
    m_days = pane->daysFor(m_anchor);
    pane->setDays(m_days);
}

bool CalendarView::deleteSelected(bool ask)
{
    if (m_selectedEvents.isEmpty() || !m_provider)
        return false;
    const QList<CalendarEventPtr> events = m_selectedEvents;
    if (ask) {
        if (isOperationRefused(OpDeleteSelected, events))
            return false;
        if (m_confirm && !m_confirm(OpDeleteSelected, events))
            return false;
    }
    bool any = false;
    for (const CalendarEventPtr &e : events) {
        const bool ok = m_provider->DeleteEvent(e);
        reportWrite(ok);
        any = ok || any;
    }
    m_selectedEvents.clear();
    Populate();
    if (any)
        emit eventsEdited();
    emit selectionChanged();
    return any;
}

void CalendarView::reselectEvents()
{
    QList<CalendarEventPtr> found;
    for (const CalendarEventPtr &old : std::as_const(m_selectedEvents)) {
        for (const CalendarEventPtr &e : std::as_const(m_events)) {
            if (memeRendezVous(old, e)) {
                found.append(e);
                break;
            }
        }
    }
    m_selectedEvents = found;
}

void CalendarView::panesChanged() { currentPane()->eventsChanged(); }
