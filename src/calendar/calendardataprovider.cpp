#include "calendar/calendardataprovider.h"

#include "calendar/recurrenceexpander.h"
#include "calendar/sqlitecalendarstore.h"
#include "calendar/xmlcalendarstore.h"
#include "shell/base/horloge.h"

#include <QScopeGuard>
#include <QSet>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// An occurrence that is changed or deleted lives on as an exception row of
// its series; an exception already kept for the same occurrence lends it its
// row, so that one occurrence never has two.
void KeepAsException(const CalendarEventPtr &event, const CalendarRecurrencePatternPtr &pattern)
{
    if (event->RecurrenceState() != CalendarEvent::Occurrence)
        return;
    event->MarkAsRecurrenceException();
    if (const CalendarEventPtr ancienne = pattern->FindException(event->RExceptionStartTimeOrig()))
        event->setEventID(ancienne->EventID());
    pattern->SetException(event);
}

} // namespace

CalendarDataProvider::CalendarDataProvider(QObject *parent)
    : QObject(parent)
{
}

CalendarDataProvider::~CalendarDataProvider()
{
    Close();
}

QDateTime CalendarDataProvider::openSeriesEnd()
{
    return QDateTime(QDate(9999, 12, 31), QTime(0, 0));
}

bool CalendarDataProvider::SetDataProvider(const QString &connection)
{
    Close();
    m_store.reset();
    m_connection = connection;
    const QString source = SourceDeConnexion(connection);
    const QString texte = connection.trimmed();
    if (texte.startsWith(QLatin1String("Provider=XML"), Qt::CaseInsensitive) && !source.isEmpty())
        m_store = std::make_unique<XmlCalendarStore>(source);
    else if (texte.startsWith(QLatin1String("Provider=Microsoft.Jet"), Qt::CaseInsensitive) && !source.isEmpty())
        m_store = std::make_unique<SqliteCalendarStore>(source);
    if (m_store)
        m_store->SetCalendar(this);
    return m_store != nullptr;
}

void CalendarDataProvider::setStore(std::unique_ptr<CalendarStore> store, const QString &connection)
{
    Close();
    m_store = std::move(store);
    m_connection = connection;
    if (m_store)
        m_store->SetCalendar(this);
}

bool CalendarDataProvider::Open()
{
    m_schedules.clear();
    if (!m_store || !m_store->Open())
        return false;
    readSchedules();
    return true;
}

bool CalendarDataProvider::Create()
{
    m_schedules.clear();
    if (!m_store || !m_store->Create())
        return false;
    readSchedules();
    return true;
}

bool CalendarDataProvider::Save()
{
    return m_store && m_store->Save();
}

void CalendarDataProvider::Close()
{
    m_keepAlive.clear();
    if (m_store && m_store->IsOpen()) {
        m_store->Save();
        m_store->Close();
    }
}

bool CalendarDataProvider::IsOpen() const
{
    return m_store && m_store->IsOpen();
}

CalendarEventPtr CalendarDataProvider::CreateEventFromId(int eventId) const
{
    return CalendarEvent::create(eventId);
}

CalendarRecurrencePatternPtr CalendarDataProvider::CreateRPatternFromId(int patternId) const
{
    return CalendarRecurrencePattern::create(patternId);
}

CalendarEventPtr CalendarDataProvider::CreateNewEvent(const QDateTime &start, const QDateTime &end) const
{
    CalendarEventPtr e = CalendarEvent::create(0);
    e->setStartDateTime(start);
    e->setEndDateTime(end.isValid() ? end : start);
    return e;
}

template<typename F>
bool CalendarDataProvider::inOneChange(F &&work)
{
    if (!m_store || !m_store->IsOpen() || !m_store->BeginChange())
        return false;
    m_removedRows.clear();
    if (!work()) {
        m_store->RollbackChange();
        return false;
    }
    if (!m_store->CommitChange())
        return false;
    if (!m_removedRows.isEmpty())
        emit rowsRemoved(std::exchange(m_removedRows, {}));
    return true;
}

QHash<int, CalendarRecurrencePatternPtr> CalendarDataProvider::patternsOf(const QList<CalendarEventPtr> &rows)
{
    QList<int> cles;
    for (const CalendarEventPtr &row : rows) {
        const CustomProperties &bag = row->CustomProperties();
        if (bag.GetProperty(CustomProperties::RecurrenceStateEntry).toInt() == CalendarEvent::Master)
            cles << bag.GetProperty(CustomProperties::RecurrencePatternIDEntry).toInt();
    }
    return m_store->DoReadRPatterns(cles);
}

CalendarEventPtr CalendarDataProvider::takeOver(const CalendarEventPtr &row, const QHash<int, CalendarRecurrencePatternPtr> *read)
{
    if (!row)
        return {};
    const int patternId = row->TakeOverTransferEntries();
    const int state = row->RecurrenceState();
    if (state != CalendarEvent::Master && state != CalendarEvent::Exception) {
        row->setRecurrenceState(CalendarEvent::NotRecurring);
        return row;
    }
    const CalendarRecurrencePatternPtr pattern = read && state == CalendarEvent::Master ? read->value(patternId)
                                                                                       : m_store->DoReadRPattern(patternId);
    if (!pattern)
        return {};
    if (state == CalendarEvent::Master) {
        row->UpdateRecurrence(pattern);
        // The row spans the series; the master itself stands for its first
        // occurrence, as the pattern says.
        const QDateTime debut(pattern->StartDate(), pattern->StartTime());
        row->setStartDateTime(debut);
        row->setEndDateTime(debut.addSecs(qint64(pattern->DurationMinutes()) * 60));
        // An exception handed out alone only refers to its series weakly:
        // the master of every series read stays alive here so that a change
        // of that exception still knows its series.
        m_keepAlive.insert(patternId, row);
        return row;
    }
    // An exception read by its key: the one attached to its series.
    const CalendarEventPtr master = GetEvent(pattern->MasterEventID());
    const CalendarRecurrencePatternPtr serie = master ? master->RecurrencePattern() : pattern;
    if (!master)
        m_keepAlive.remove(patternId);
    for (const CalendarEventPtr &e : serie->Exceptions()) {
        if (e->EventID() == row->EventID())
            return e;
    }
    return {};
}

QList<CalendarEventPtr> CalendarDataProvider::RetrieveDayEvents(const QDate &day)
{
    return RetrieveEvents(day, day);
}

QList<CalendarEventPtr> CalendarDataProvider::RetrieveEvents(const QDate &first, const QDate &last)
{
    QList<CalendarEventPtr> resultat;
    if (!IsOpen() || !first.isValid() || !last.isValid() || last < first)
        return resultat;
    QList<CalendarEventPtr> rows;
    m_store->DoRetrieveRangeEvents(first, last, rows);
    const QHash<int, CalendarRecurrencePatternPtr> series = patternsOf(rows);
    for (const CalendarEventPtr &row : std::as_const(rows)) {
        const CalendarEventPtr e = takeOver(row, &series);
        if (!e)
            continue;
        if (e->RecurrenceState() == CalendarEvent::Master)
            resultat.append(ExpandOccurrences(e, first, last));
        else if (e->RecurrenceState() == CalendarEvent::NotRecurring)
            resultat.append(e);
    }
    // Ordered by wall-clock start; the keys are worked out once, as comparing
    // local date-times converts both through the time zone every time.
    QList<QPair<qint64, CalendarEventPtr>> cles;
    cles.reserve(resultat.size());
    for (const CalendarEventPtr &e : std::as_const(resultat)) {
        const QDateTime d = e->StartDateTime();
        cles.append({d.isValid() ? d.date().toJulianDay() * 86400000 + d.time().msecsSinceStartOfDay()
                                 : std::numeric_limits<qint64>::min(),
                     e});
    }
    std::stable_sort(cles.begin(), cles.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    for (qsizetype i = 0; i < cles.size(); ++i)
        resultat[i] = cles.at(i).second;
    return resultat;
}

CalendarEventPtr CalendarDataProvider::GetEvent(int eventId)
{
    if (!IsOpen() || eventId == 0)
        return {};
    return takeOver(m_store->DoReadEvent(eventId));
}

CalendarRecurrencePatternPtr CalendarDataProvider::GetRecurrencePattern(int patternId)
{
    if (!IsOpen() || patternId == 0)
        return {};
    const CalendarRecurrencePatternPtr p = m_store->DoReadRPattern(patternId);
    if (!p)
        return {};
    const CalendarEventPtr master = GetEvent(p->MasterEventID());
    return master && master->RecurrencePattern() ? master->RecurrencePattern() : p;
}

QList<CalendarEventPtr> CalendarDataProvider::GetUpcomingEvents(const QDateTime &start, int minutes, const QDateTime &since,
                                                                bool *ok)
{
    QList<CalendarEventPtr> resultat;
    if (ok)
        *ok = IsOpen();
    if (!IsOpen())
        return resultat;
    QList<CalendarEventPtr> rows;
    m_store->DoGetUpcomingEvents(start, minutes, rows, since);
    if (ok)
        *ok = !m_store->LastReadFailed();
    const QHash<int, CalendarRecurrencePatternPtr> series = patternsOf(rows);
    for (const CalendarEventPtr &row : std::as_const(rows)) {
        if (const CalendarEventPtr e = takeOver(row, &series))
            resultat.append(e);
    }
    return resultat;
}

bool CalendarDataProvider::syncExceptions(const CalendarRecurrencePatternPtr &pattern)
{
    QSet<int> gardees;
    for (const CalendarEventPtr &e : pattern->Exceptions()) {
        if (!writeException(e))
            return false;
        gardees.insert(e->EventID());
    }
    // Exceptions thrown away from the series lose their rows.
    if (const CalendarRecurrencePatternPtr stocke = m_store->DoReadRPattern(pattern->RecurrencePatternID())) {
        for (const CalendarEventPtr &e : stocke->Exceptions()) {
            if (gardees.contains(e->EventID()))
                continue;
            if (!m_store->DoDeleteEvent(*e))
                return false;
            m_removedRows.append(e->EventID());
        }
    }
    return true;
}

bool CalendarDataProvider::writeException(const CalendarEventPtr &e)
{
    const QDateTime maintenant = Horloge::maintenant();
    if (!e->CreationTime().isValid())
        e->setCreationTime(maintenant);
    e->setLastModificationTime(maintenant);
    if (e->EventID() != 0)
        return m_store->DoUpdateEvent(*e);
    int id = 0;
    if (!m_store->DoCreateEvent(*e, id))
        return false;
    e->setEventID(id);
    return true;
}

bool CalendarDataProvider::writeMaster(const CalendarEventPtr &master, bool isNew)
{
    const CalendarRecurrencePatternPtr pattern = master->RecurrencePattern();
    if (!pattern)
        return false;
    // The master's row spans the whole series, so that a day read finds the
    // series on its later days too; the master object keeps its own times.
    const QDateTime debut = master->StartDateTime();
    const QDateTime fin = master->EndDateTime();
    const SeriesSpan etendue = SeriesSpanOf(pattern);
    if (etendue.firstStart.isValid()) {
        master->setStartDateTime(etendue.firstStart);
        master->setEndDateTime(etendue.lastEnd.isValid() ? etendue.lastEnd : openSeriesEnd());
    }
    auto remettre = qScopeGuard([&] {
        master->setStartDateTime(debut);
        master->setEndDateTime(fin);
    });

    if (isNew) {
        int id = 0;
        if (!m_store->DoCreateEvent(*master, id))
            return false;
        master->setEventID(id);
    }
    pattern->setMasterEventID(master->EventID());
    if (pattern->RecurrencePatternID() == 0) {
        int pid = 0;
        if (!m_store->DoCreateRPattern(*pattern, pid))
            return false;
        pattern->setRecurrencePatternID(pid);
    } else if (!m_store->DoUpdateRPattern(*pattern)) {
        return false;
    }
    // Now the pattern has its key, the master's row names it.
    if (!m_store->DoUpdateEvent(*master))
        return false;
    m_keepAlive.insert(pattern->RecurrencePatternID(), master);
    return syncExceptions(pattern);
}

bool CalendarDataProvider::deleteSeriesRows(int patternId, int keepEventId)
{
    const CalendarRecurrencePatternPtr stocke = m_store->DoReadRPattern(patternId);
    if (!stocke)
        return true;
    for (const CalendarEventPtr &e : stocke->Exceptions()) {
        if (e->EventID() == keepEventId)
            continue;
        if (!m_store->DoDeleteEvent(*e))
            return false;
        m_removedRows.append(e->EventID());
    }
    m_keepAlive.remove(patternId);
    return m_store->DoDeleteRPattern(*stocke);
}

bool CalendarDataProvider::AddEvent(const CalendarEventPtr &event)
{
    if (!event || !IsOpen())
        return false;
    const QDateTime maintenant = Horloge::maintenant();
    if (!event->CreationTime().isValid())
        event->setCreationTime(maintenant);
    event->setLastModificationTime(maintenant);
    bool ok = false;
    switch (event->RecurrenceState()) {
    case CalendarEvent::NotRecurring:
        ok = inOneChange([&] {
            int id = 0;
            if (!m_store->DoCreateEvent(*event, id))
                return false;
            event->setEventID(id);
            return true;
        });
        break;
    case CalendarEvent::Master:
        ok = inOneChange([&] { return writeMaster(event, true); });
        break;
    case CalendarEvent::Exception: {
        const CalendarRecurrencePatternPtr pattern = event->RecurrencePattern();
        ok = pattern && pattern->RecurrencePatternID() != 0 && inOneChange([&] { return writeException(event); });
        break;
    }
    default:
        // An occurrence only exists through its series: change it instead.
        ok = false;
        break;
    }
    if (ok)
        emit eventAdded(event);
    return ok;
}

bool CalendarDataProvider::ChangeEvent(const CalendarEventPtr &event)
{
    if (!event || !IsOpen())
        return false;
    event->setLastModificationTime(Horloge::maintenant());
    bool ok = false;
    switch (event->RecurrenceState()) {
    case CalendarEvent::NotRecurring:
    case CalendarEvent::Master:
        if (event->EventID() == 0)
            return false;
        ok = inOneChange([&] {
            // What the row was: a series that was made plain, or replaced by
            // a new pattern, leaves no pattern or exception rows behind.
            int ancienneSerie = 0;
            if (const CalendarEventPtr avant = m_store->DoReadEvent(event->EventID())) {
                const int pid = avant->TakeOverTransferEntries();
                if (avant->RecurrenceState() == CalendarEvent::Master)
                    ancienneSerie = pid;
            }
            if (event->RecurrenceState() == CalendarEvent::NotRecurring) {
                if (ancienneSerie != 0 && !deleteSeriesRows(ancienneSerie, 0))
                    return false;
                return m_store->DoUpdateEvent(*event);
            }
            const CalendarRecurrencePatternPtr pattern = event->RecurrencePattern();
            if (!pattern)
                return false;
            if (ancienneSerie != 0 && ancienneSerie != pattern->RecurrencePatternID() && !deleteSeriesRows(ancienneSerie, 0))
                return false;
            return writeMaster(event, false);
        });
        break;
    case CalendarEvent::Occurrence:
    case CalendarEvent::Exception: {
        ok = writeAsException(event, false);
        break;
    }
    default:
        break;
    }
    if (ok)
        emit eventChanged(event);
    return ok;
}

// A changed or deleted occurrence (or an exception changed again) is
// written as the exception row of its series.
bool CalendarDataProvider::writeAsException(const CalendarEventPtr &event, bool deleted)
{
    const CalendarRecurrencePatternPtr pattern = event->RecurrencePattern();
    if (!pattern || pattern->RecurrencePatternID() == 0)
        return false;
    // The series refers to its master only weakly: hold it while writing.
    const CalendarEventPtr master = pattern->MasterEvent();
    KeepAsException(event, pattern);
    if (deleted) {
        event->setRExceptionDeleted(true);
        event->setLastModificationTime(Horloge::maintenant());
    }
    return inOneChange([&] { return writeException(event); });
}

bool CalendarDataProvider::DeleteEvent(const CalendarEventPtr &event)
{
    if (!event || !IsOpen())
        return false;
    bool ok = false;
    switch (event->RecurrenceState()) {
    case CalendarEvent::NotRecurring:
        ok = event->EventID() != 0 && inOneChange([&] { return m_store->DoDeleteEvent(*event); });
        break;
    case CalendarEvent::Master: {
        const CalendarRecurrencePatternPtr pattern = event->RecurrencePattern();
        ok = event->EventID() != 0 && inOneChange([&] {
            if (pattern && pattern->RecurrencePatternID() != 0 && !deleteSeriesRows(pattern->RecurrencePatternID(), 0))
                return false;
            return m_store->DoDeleteEvent(*event);
        });
        break;
    }
    case CalendarEvent::Occurrence:
    case CalendarEvent::Exception: {
        // The occurrence stays masked by a deleted exception row.
        ok = writeAsException(event, true);
        break;
    }
    default:
        break;
    }
    if (ok)
        emit eventDeleted(event);
    return ok;
}

void CalendarDataProvider::readSchedules()
{
    QList<CalendarSchedule> lus;
    if (!IsOpen())
        m_schedules.clear();
    else if (m_store->DoReadSchedules(lus))
        m_schedules = lus;
}

QList<CalendarSchedule> CalendarDataProvider::Schedules()
{
    readSchedules();
    return m_schedules;
}

int CalendarDataProvider::AddSchedule(const QString &name)
{
    int id = 0;
    if (!inOneChange([&] { return m_store->DoCreateSchedule(name, id) && id != 0; }))
        return 0;
    readSchedules();
    return id;
}

bool CalendarDataProvider::RenameSchedule(int scheduleId, const QString &name)
{
    const bool ok = scheduleId != 0 && inOneChange([&] { return m_store->DoRenameSchedule(scheduleId, name); });
    readSchedules();
    return ok;
}

bool CalendarDataProvider::RemoveSchedule(int scheduleId)
{
    const bool ok = scheduleId != 0 && inOneChange([&] { return m_store->DoDeleteSchedule(scheduleId); });
    readSchedules();
    return ok;
}

int CalendarDataProvider::CountScheduleEvents(int scheduleId)
{
    return IsOpen() ? m_store->DoCountScheduleEvents(scheduleId) : -1;
}
