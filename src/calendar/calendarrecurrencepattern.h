#pragma once

#include "calendar/calendarrecurrenceoptions.h"
#include "calendar/customproperties.h"

#include <QDate>
#include <QList>
#include <QSharedPointer>
#include <QTime>
#include <QWeakPointer>

class CalendarEvent;
class CalendarRecurrencePattern;
using CalendarEventPtr = QSharedPointer<CalendarEvent>;
using CalendarRecurrencePatternPtr = QSharedPointer<CalendarRecurrencePattern>;

// One series: when its occurrences fall, how long they last, and the exceptions
// that replace or mask some of them. The master owns the pattern and the pattern
// owns its exceptions; the way back to the master is a weak reference, so that
// a series that nobody holds any more goes away.
class CalendarRecurrencePattern : public QEnableSharedFromThis<CalendarRecurrencePattern>
{
public:
    enum EndMethod {
        EndByDate = 0,
        EndAfterOccurrencesCount = 1,
        NoEnd = 2,
    };

    [[nodiscard]] static CalendarRecurrencePatternPtr create(int id = 0);

    // Key of the row; 0 until the store has written it. Set by the data layer only.
    [[nodiscard]] int RecurrencePatternID() const { return m_id; }
    void setRecurrencePatternID(int id) { m_id = id; }

    [[nodiscard]] int MasterEventID() const { return m_masterEventId; }
    void setMasterEventID(int id) { m_masterEventId = id; }

    // Time of day of every occurrence (local wall-clock time).
    [[nodiscard]] QTime StartTime() const { return m_startTime; }
    void setStartTime(QTime time) { m_startTime = time; }
    [[nodiscard]] int DurationMinutes() const { return m_durationMinutes; }
    void setDurationMinutes(int minutes) { m_durationMinutes = minutes; }
    // First day of the series.
    [[nodiscard]] QDate StartDate() const { return m_startDate; }
    void setStartDate(QDate date) { m_startDate = date; }

    [[nodiscard]] int EndMethod() const { return m_endMethod; }
    void setEndMethod(int method) { m_endMethod = method; }
    // Last day of the series (inclusive), for EndByDate.
    [[nodiscard]] QDate EndDate() const { return m_endDate; }
    void setEndDate(QDate date) { m_endDate = date; }
    [[nodiscard]] int EndAfterOccurrences() const { return m_endAfterOccurrences; }
    void setEndAfterOccurrences(int count) { m_endAfterOccurrences = count; }

    [[nodiscard]] CalendarRecurrenceOptions &Options() { return m_options; }
    [[nodiscard]] const CalendarRecurrenceOptions &Options() const { return m_options; }
    void setOptions(const CalendarRecurrenceOptions &options) { m_options = options; }

    [[nodiscard]] ::CustomProperties &CustomProperties() { return m_properties; }
    [[nodiscard]] const ::CustomProperties &CustomProperties() const { return m_properties; }

    // Exceptions of the series, in the order they were attached.
    [[nodiscard]] const QList<CalendarEventPtr> &Exceptions() const { return m_exceptions; }
    [[nodiscard]] int ExceptionsCount() const { return int(m_exceptions.size()); }
    // Attaches an exception: the event becomes state 3 of this series. An
    // exception already attached for the same original start is replaced.
    void SetException(const CalendarEventPtr &exception);
    // The exception for an occurrence of the series, by its original start.
    [[nodiscard]] CalendarEventPtr FindException(const QDateTime &originalStart) const;
    bool RemoveException(const CalendarEventPtr &exception);
    void RemoveAllExceptions();

    // The master, while someone holds it.
    [[nodiscard]] CalendarEventPtr MasterEvent() const { return m_master.toStrongRef(); }
    // For the calendar layer: the master object of the series.
    void setMasterEvent(const CalendarEventPtr &master);

    // A copy of the fields, options and bag, with copies of the exceptions
    // attached to it. The copy has no master until one is set.
    [[nodiscard]] CalendarRecurrencePatternPtr ClonePattern() const;

protected:
    CalendarRecurrencePattern() = default;

private:
    friend class CalendarEvent;

    int m_id = 0;
    int m_masterEventId = 0;
    QTime m_startTime{0, 0};
    int m_durationMinutes = 30;
    QDate m_startDate;
    int m_endMethod = NoEnd;
    QDate m_endDate;
    int m_endAfterOccurrences = 10;
    CalendarRecurrenceOptions m_options;
    ::CustomProperties m_properties;
    QList<CalendarEventPtr> m_exceptions;
    QWeakPointer<CalendarEvent> m_master;
};
