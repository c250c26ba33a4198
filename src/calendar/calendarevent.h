#pragma once

#include "calendar/calendarrecurrencepattern.h"
#include "calendar/customproperties.h"

#include <QDateTime>
#include <QSharedPointer>
#include <QString>

// One appointment of the calendar: a plain event, the master of a series, an
// occurrence worked out from a master, or an exception stored for one
// occurrence. Objects are shared: always made through create() and passed as
// CalendarEventPtr; CloneEvent gives a copy that can be edited apart.
class CalendarEvent : public QEnableSharedFromThis<CalendarEvent>
{
public:
    enum RecurrenceStates {
        NotRecurring = 0,
        Master = 1,
        Occurrence = 2,
        Exception = 3,
    };

    [[nodiscard]] static CalendarEventPtr create(int id = 0);

    // Key of the row; 0 until the store has written it. Read-only to clients:
    // setEventID is for the data layer.
    [[nodiscard]] int EventID() const { return m_id; }
    void setEventID(int id);

    [[nodiscard]] QString Subject() const { return m_subject; }
    void setSubject(const QString &text) { m_subject = text; }
    [[nodiscard]] QString Location() const { return m_location; }
    void setLocation(const QString &text) { m_location = text; }
    [[nodiscard]] QString Body() const { return m_body; }
    void setBody(const QString &text) { m_body = text; }

    [[nodiscard]] bool IsMeeting() const { return m_isMeeting; }
    void setIsMeeting(bool value) { m_isMeeting = value; }
    [[nodiscard]] bool IsPrivate() const { return m_isPrivate; }
    void setIsPrivate(bool value) { m_isPrivate = value; }

    [[nodiscard]] int LabelID() const { return m_labelId; }
    void setLabelID(int id) { m_labelId = id; }
    [[nodiscard]] int BusyStatus() const { return m_busyStatus; }
    void setBusyStatus(int value) { m_busyStatus = value; }
    [[nodiscard]] int ImportanceLevel() const { return m_importanceLevel; }
    void setImportanceLevel(int value) { m_importanceLevel = value; }

    [[nodiscard]] QDateTime StartDateTime() const { return m_start; }
    void setStartDateTime(const QDateTime &value) { m_start = value; }
    [[nodiscard]] QDateTime EndDateTime() const { return m_end; }
    void setEndDateTime(const QDateTime &value) { m_end = value; }
    [[nodiscard]] bool IsAllDayEvent() const { return m_isAllDay; }
    void setIsAllDayEvent(bool value) { m_isAllDay = value; }

    [[nodiscard]] bool IsReminder() const { return m_isReminder; }
    void setIsReminder(bool value) { m_isReminder = value; }
    [[nodiscard]] int ReminderMinutesBeforeStart() const { return m_reminderMinutes; }
    void setReminderMinutesBeforeStart(int minutes) { m_reminderMinutes = minutes; }
    [[nodiscard]] QString ReminderSoundFile() const { return m_reminderSoundFile; }
    void setReminderSoundFile(const QString &path) { m_reminderSoundFile = path; }

    // 0 not recurring, 1 master, 2 occurrence, 3 exception. Read-only to
    // clients: the transitions go through the calls below, and
    // setRecurrenceState is for the data layer taking a row over.
    [[nodiscard]] int RecurrenceState() const { return m_state; }
    void setRecurrenceState(int state) { m_state = state; }

    // The series of a master, an occurrence or an exception; empty otherwise.
    [[nodiscard]] CalendarRecurrencePatternPtr RecurrencePattern() const;
    // Key of the series row as a statement writes it: the pattern's key for a
    // master or an exception, 0 for any other state.
    [[nodiscard]] int RecurrencePatternIDForRow() const;

    [[nodiscard]] QDateTime RExceptionStartTimeOrig() const { return m_exceptionStartOrig; }
    void setRExceptionStartTimeOrig(const QDateTime &value) { m_exceptionStartOrig = value; }
    [[nodiscard]] QDateTime RExceptionEndTimeOrig() const { return m_exceptionEndOrig; }
    void setRExceptionEndTimeOrig(const QDateTime &value) { m_exceptionEndOrig = value; }
    [[nodiscard]] bool RExceptionDeleted() const { return m_exceptionDeleted; }
    void setRExceptionDeleted(bool value) { m_exceptionDeleted = value; }

    [[nodiscard]] ::CustomProperties &CustomProperties() { return m_properties; }
    [[nodiscard]] const ::CustomProperties &CustomProperties() const { return m_properties; }
    [[nodiscard]] ::CustomIcons &CustomIcons() { return m_icons; }
    [[nodiscard]] const ::CustomIcons &CustomIcons() const { return m_icons; }

    [[nodiscard]] int ScheduleID() const { return m_scheduleId; }
    void setScheduleID(int id) { m_scheduleId = id; }

    [[nodiscard]] QDateTime CreationTime() const { return m_creationTime.value(); }
    void setCreationTime(const QDateTime &value) { m_creationTime = value; }
    [[nodiscard]] QDateTime LastModificationTime() const { return m_lastModificationTime.value(); }
    void setLastModificationTime(const QDateTime &value) { m_lastModificationTime = value; }
    // For the stores: the two times as the row gives them, a local wall-clock
    // time that is placed in the time zone only when asked for (the views
    // read hundreds of rows and seldom look at these).
    void setCreationTimeWallClock(QDate date, QTime time) { m_creationTime.defer(date, time); }
    void setLastModificationTimeWallClock(QDate date, QTime time) { m_lastModificationTime.defer(date, time); }

    // State 0 to 1: a fresh pattern, starting on this event's day at its time,
    // lasting as long as it, daily with no end. Answers the pattern (also for a
    // master, whose pattern is kept). Empty for an occurrence or an exception.
    CalendarRecurrencePatternPtr CreateRecurrence();
    // Stores the pattern on this event, which becomes (or stays) the master.
    void UpdateRecurrence(const CalendarRecurrencePatternPtr &pattern);
    // State 1 to 0: the event keeps the first day of the series at the
    // series' time and duration, and loses the pattern.
    void RemoveRecurrence();
    // State 2 to 3; an occurrence remembers its start and end as the original
    // ones. On a record read from the store (any other state) the state simply
    // becomes 3 and the reader fills the rest.
    void MarkAsRecurrenceException();

    // A copy for editing. A master's copy has its own copy of the pattern (with
    // copies of the exceptions), so that changing the series on the copy leaves
    // the shared one alone until the copy is handed back; an occurrence's or an
    // exception's copy belongs to the same series as the original.
    [[nodiscard]] CalendarEventPtr CloneEvent() const;

    // For the calendar layer: links the event to a series without changing its
    // state. An exception attached to its pattern only refers to it weakly (the
    // pattern owns the exception); an occurrence holds its pattern and master.
    void setRecurrencePattern(const CalendarRecurrencePatternPtr &pattern);
    // For the calendar layer: takes over the transfer entries of the bag (state
    // and pattern key of a row read as an ordinary event) and removes them.
    // Answers the pattern key found, 0 when none. The state is set when present.
    int TakeOverTransferEntries();
    // For the calendar layer: one occurrence (state 2) of a master, with the
    // master's fields and the given times, which are also its original times.
    // An occurrence is no row: its key is 0. It holds the series and the master.
    [[nodiscard]] static CalendarEventPtr CreateOccurrence(const CalendarEventPtr &master, const QDateTime &start,
                                                           const QDateTime &end);

protected:
    CalendarEvent() = default;

private:
    friend class CalendarRecurrencePattern;

    void copyFieldsFrom(const CalendarEvent &other);
    void linkAsException(const CalendarRecurrencePatternPtr &pattern);

    int m_id = 0;
    QString m_subject;
    QString m_location;
    QString m_body;
    bool m_isMeeting = false;
    bool m_isPrivate = false;
    int m_labelId = 0;
    int m_busyStatus = 0;
    int m_importanceLevel = 1;
    QDateTime m_start;
    QDateTime m_end;
    bool m_isAllDay = false;
    bool m_isReminder = false;
    int m_reminderMinutes = 15;
    QString m_reminderSoundFile;
    int m_state = NotRecurring;
    QDateTime m_exceptionStartOrig;
    QDateTime m_exceptionEndOrig;
    bool m_exceptionDeleted = false;
    ::CustomProperties m_properties;
    ::CustomIcons m_icons;
    int m_scheduleId = 0;
    // A local date-time whose conversion waits until it is read.
    class DeferredLocalTime
    {
    public:
        DeferredLocalTime &operator=(const QDateTime &value)
        {
            m_value = value;
            m_date = {};
            return *this;
        }
        void defer(QDate date, QTime time)
        {
            m_value = {};
            m_date = date;
            m_time = time;
        }
        [[nodiscard]] QDateTime value() const
        {
            if (m_date.isValid()) {
                m_value = QDateTime(m_date, m_time);
                m_date = {};
            }
            return m_value;
        }

    private:
        mutable QDateTime m_value;
        mutable QDate m_date;
        QTime m_time;
    };
    DeferredLocalTime m_creationTime;
    DeferredLocalTime m_lastModificationTime;

    // A master and an occurrence hold their series; an exception attached to
    // its pattern holds it weakly, because the pattern holds the exception.
    CalendarRecurrencePatternPtr m_pattern;
    QWeakPointer<CalendarRecurrencePattern> m_weakPattern;
    // An occurrence keeps its master alive (the pattern only refers back to it).
    CalendarEventPtr m_occurrenceMaster;
};
