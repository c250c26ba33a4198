#include "calendar/calendarrecurrencepattern.h"

#include "calendar/calendarevent.h"

namespace {

// Occurrences are identified by their wall-clock start, to the second.
bool memeDebut(const QDateTime &a, const QDateTime &b)
{
    return a.date() == b.date() && a.time().hour() == b.time().hour()
        && a.time().minute() == b.time().minute() && a.time().second() == b.time().second();
}

} // namespace

CalendarRecurrencePatternPtr CalendarRecurrencePattern::create(int id)
{
    auto pattern = CalendarRecurrencePatternPtr(new CalendarRecurrencePattern);
    pattern->m_id = id;
    return pattern;
}

void CalendarRecurrencePattern::SetException(const CalendarEventPtr &exception)
{
    if (!exception)
        return;
    const CalendarRecurrencePatternPtr moi = sharedFromThis();
    for (qsizetype i = 0; i < m_exceptions.size(); ++i) {
        const CalendarEventPtr &existante = m_exceptions.at(i);
        if (existante == exception
            || memeDebut(existante->RExceptionStartTimeOrig(), exception->RExceptionStartTimeOrig())) {
            m_exceptions.removeAt(i);
            break;
        }
    }
    exception->m_state = CalendarEvent::Exception;
    exception->linkAsException(moi);
    m_exceptions.append(exception);
}

CalendarEventPtr CalendarRecurrencePattern::FindException(const QDateTime &originalStart) const
{
    for (const CalendarEventPtr &e : m_exceptions) {
        if (memeDebut(e->RExceptionStartTimeOrig(), originalStart))
            return e;
    }
    return {};
}

bool CalendarRecurrencePattern::RemoveException(const CalendarEventPtr &exception)
{
    return m_exceptions.removeOne(exception);
}

void CalendarRecurrencePattern::RemoveAllExceptions()
{
    m_exceptions.clear();
}

void CalendarRecurrencePattern::setMasterEvent(const CalendarEventPtr &master)
{
    m_master = master;
    if (master)
        m_masterEventId = master->EventID();
}

CalendarRecurrencePatternPtr CalendarRecurrencePattern::ClonePattern() const
{
    auto copie = create(m_id);
    copie->m_masterEventId = m_masterEventId;
    copie->m_startTime = m_startTime;
    copie->m_durationMinutes = m_durationMinutes;
    copie->m_startDate = m_startDate;
    copie->m_endMethod = m_endMethod;
    copie->m_endDate = m_endDate;
    copie->m_endAfterOccurrences = m_endAfterOccurrences;
    copie->m_options = m_options;
    copie->m_properties = m_properties;
    for (const CalendarEventPtr &e : m_exceptions) {
        auto c = CalendarEvent::create(e->EventID());
        c->copyFieldsFrom(*e);
        copie->SetException(c);
    }
    return copie;
}
