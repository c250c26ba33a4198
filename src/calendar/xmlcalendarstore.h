#pragma once

#include "calendar/calendarstore.h"
#include "calendar/sqlrecord.h"

#include <QMap>
#include <QString>

// The XML data file store: the whole book is read into memory when the store
// opens and written back when it closes (or on Save). The file is replaced in
// one step, so a failure while writing leaves the previous file whole. Rows
// keep the columns of the two calendar tables.
class XmlCalendarStore final : public CalendarStore
{
public:
    explicit XmlCalendarStore(QString path);
    ~XmlCalendarStore() override;

    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] const QString &lastError() const { return m_lastError; }

    bool Open() override;
    bool Create() override;
    bool Save() override;
    void Close() override;
    [[nodiscard]] bool IsOpen() const override { return m_open; }

    void DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events) override;
    void DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events) override;
    [[nodiscard]] CalendarEventPtr DoReadEvent(int eventId) override;
    [[nodiscard]] CalendarRecurrencePatternPtr DoReadRPattern(int patternId) override;
    bool DoCreateEvent(const CalendarEvent &event, int &newEventId) override;
    bool DoUpdateEvent(const CalendarEvent &event) override;
    bool DoDeleteEvent(const CalendarEvent &event) override;
    bool DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId) override;
    bool DoUpdateRPattern(const CalendarRecurrencePattern &pattern) override;
    bool DoDeleteRPattern(const CalendarRecurrencePattern &pattern) override;
    void DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events,
                             const QDateTime &since = {}) override;

    bool DoReadSchedules(QList<CalendarSchedule> &schedules) override;
    bool DoCreateSchedule(const QString &name, int &newScheduleId) override;
    bool DoRenameSchedule(int scheduleId, const QString &name) override;
    bool DoDeleteSchedule(int scheduleId) override;
    [[nodiscard]] int DoCountScheduleEvents(int scheduleId) override;

private:
    bool load();
    [[nodiscard]] CalendarEventPtr readRow(const MemoryRecord &row) const;
    [[nodiscard]] MemoryRecord eventRow(const CalendarEvent &event, int id) const;

    QString m_path;
    QString m_lastError;
    bool m_open = false;
    bool m_dirty = false;
    int m_nextEventId = 1;
    int m_nextPatternId = 1;
    int m_nextScheduleId = 1;
    QList<CalendarSchedule> m_schedules;
    QMap<int, MemoryRecord> m_events;
    QMap<int, MemoryRecord> m_patterns;
};
