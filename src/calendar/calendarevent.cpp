#include "calendar/calendarevent.h"

CalendarEventPtr CalendarEvent::create(int id)
{
    auto event = CalendarEventPtr(new CalendarEvent);
    event->m_id = id;
    return event;
}

void CalendarEvent::setEventID(int id)
{
    m_id = id;
    // The row of a series names its master: keep it following the key.
    if (m_state == Master && m_pattern)
        m_pattern->setMasterEventID(id);
}

CalendarRecurrencePatternPtr CalendarEvent::RecurrencePattern() const
{
    if (m_pattern)
        return m_pattern;
    return m_weakPattern.toStrongRef();
}

int CalendarEvent::RecurrencePatternIDForRow() const
{
    if (m_state != Master && m_state != Exception)
        return 0;
    const CalendarRecurrencePatternPtr pattern = RecurrencePattern();
    return pattern ? pattern->RecurrencePatternID() : 0;
}

CalendarRecurrencePatternPtr CalendarEvent::CreateRecurrence()
{
    if (m_state == Master && m_pattern)
        return m_pattern;
    if (m_state == Occurrence || m_state == Exception)
        return {};

    auto pattern = CalendarRecurrencePattern::create();
    if (m_start.isValid()) {
        pattern->setStartDate(m_start.date());
        pattern->setStartTime(m_start.time());
        if (m_end.isValid())
            pattern->setDurationMinutes(int(qAbs(m_start.secsTo(m_end)) / 60));
    }
    pattern->setEndMethod(CalendarRecurrencePattern::NoEnd);
    UpdateRecurrence(pattern);
    return pattern;
}

void CalendarEvent::UpdateRecurrence(const CalendarRecurrencePatternPtr &pattern)
{
    if (!pattern)
        return;
    m_pattern = pattern;
    m_weakPattern.clear();
    m_occurrenceMaster.clear();
    m_state = Master;
    pattern->m_master = sharedFromThis();
    pattern->setMasterEventID(m_id);
}

void CalendarEvent::RemoveRecurrence()
{
    if (m_state != Master)
        return;
    if (m_pattern) {
        const QDate jour = m_pattern->StartDate().isValid() ? m_pattern->StartDate() : m_start.date();
        if (jour.isValid()) {
            m_start = QDateTime(jour, m_pattern->StartTime());
            m_end = m_start.addSecs(qint64(m_pattern->DurationMinutes()) * 60);
        }
        if (m_pattern->MasterEvent().data() == this)
            m_pattern->m_master.clear();
    }
    m_pattern.clear();
    m_weakPattern.clear();
    m_state = NotRecurring;
}

void CalendarEvent::MarkAsRecurrenceException()
{
    if (m_state == Occurrence) {
        if (!m_exceptionStartOrig.isValid())
            m_exceptionStartOrig = m_start;
        if (!m_exceptionEndOrig.isValid())
            m_exceptionEndOrig = m_end;
    }
    m_state = Exception;
}

void CalendarEvent::copyFieldsFrom(const CalendarEvent &other)
{
    m_id = other.m_id;
    m_subject = other.m_subject;
    m_location = other.m_location;
    m_body = other.m_body;
    m_isMeeting = other.m_isMeeting;
    m_isPrivate = other.m_isPrivate;
    m_labelId = other.m_labelId;
    m_busyStatus = other.m_busyStatus;
    m_importanceLevel = other.m_importanceLevel;
    m_start = other.m_start;
    m_end = other.m_end;
    m_isAllDay = other.m_isAllDay;
    m_isReminder = other.m_isReminder;
    m_reminderMinutes = other.m_reminderMinutes;
    m_reminderSoundFile = other.m_reminderSoundFile;
    m_state = other.m_state;
    m_exceptionStartOrig = other.m_exceptionStartOrig;
    m_exceptionEndOrig = other.m_exceptionEndOrig;
    m_exceptionDeleted = other.m_exceptionDeleted;
    m_properties = other.m_properties;
    m_icons = other.m_icons;
    m_scheduleId = other.m_scheduleId;
    m_creationTime = other.m_creationTime;
    m_lastModificationTime = other.m_lastModificationTime;
}

CalendarEventPtr CalendarEvent::CloneEvent() const
{
    auto copie = create(m_id);
    copie->copyFieldsFrom(*this);
    const CalendarRecurrencePatternPtr pattern = RecurrencePattern();
    if (m_state == Master && pattern) {
        copie->m_pattern = pattern->ClonePattern();
        copie->m_pattern->m_master = copie;
    } else if (pattern) {
        // Not in the pattern's own list: the copy may hold the series itself.
        copie->m_pattern = pattern;
        copie->m_occurrenceMaster = m_occurrenceMaster ? m_occurrenceMaster : pattern->MasterEvent();
    }
    return copie;
}

void CalendarEvent::setRecurrencePattern(const CalendarRecurrencePatternPtr &pattern)
{
    m_weakPattern.clear();
    m_occurrenceMaster.clear();
    m_pattern.clear();
    if (!pattern)
        return;
    if (pattern->Exceptions().contains(sharedFromThis())) {
        m_weakPattern = pattern;
        return;
    }
    m_pattern = pattern;
    if (m_state == Master)
        pattern->m_master = sharedFromThis();
    else
        m_occurrenceMaster = pattern->MasterEvent();
}

void CalendarEvent::linkAsException(const CalendarRecurrencePatternPtr &pattern)
{
    m_pattern.clear();
    m_occurrenceMaster.clear();
    m_weakPattern = pattern;
}

int CalendarEvent::TakeOverTransferEntries()
{
    const std::optional<int> etat = m_properties.TakeTransferEntry(::CustomProperties::RecurrenceStateEntry);
    const std::optional<int> cle = m_properties.TakeTransferEntry(::CustomProperties::RecurrencePatternIDEntry);
    if (etat)
        m_state = *etat;
    return cle.value_or(0);
}

CalendarEventPtr CalendarEvent::CreateOccurrence(const CalendarEventPtr &master, const QDateTime &start,
                                                 const QDateTime &end)
{
    auto occurrence = create(0);
    if (master) {
        occurrence->copyFieldsFrom(*master);
        occurrence->m_id = 0;
        occurrence->m_pattern = master->RecurrencePattern();
        occurrence->m_occurrenceMaster = master;
    }
    occurrence->m_state = Occurrence;
    occurrence->m_start = start;
    occurrence->m_end = end;
    occurrence->m_exceptionStartOrig = start;
    occurrence->m_exceptionEndOrig = end;
    occurrence->m_exceptionDeleted = false;
    return occurrence;
}
