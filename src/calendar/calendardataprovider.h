#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarlabel.h"
#include "calendar/calendarrecurrencepattern.h"
#include "calendar/calendarstore.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>

// The store side of the calendar. Every change of the book goes through
// AddEvent, ChangeEvent and DeleteEvent, which turn it into the store's
// requests (a series as its master, pattern and exceptions) and then tell the
// world with eventAdded, eventChanged or eventDeleted. The reads for the views
// give plain events and the occurrences of the series, worked out from their
// patterns; nothing is kept between two reads, so what another workstation
// wrote shows on the next one.
class CalendarDataProvider final : public QObject
{
    Q_OBJECT

public:
    // The kinds of store, numbered as everywhere in the program; 6 is the
    // MariaDB store.
    enum Kind { Memory = 1, Access = 2, MAPI = 3, SQLServer = 4, MySQL = 5, MariaDB = 6 };

    explicit CalendarDataProvider(QObject *parent = nullptr);
    ~CalendarDataProvider() override;

    // Chooses the store by its connection string: "Provider=XML;..." the XML
    // data file, "Provider=Microsoft.Jet.OLEDB.4.0;..." the Events.mdb file.
    // Answers false (and keeps no store) for a string naming neither; a
    // "Provider=Custom;" store is handed over with setStore.
    bool SetDataProvider(const QString &connection);
    // Takes a store of another kind (the SQL servers).
    void setStore(std::unique_ptr<CalendarStore> store, const QString &connection = {});
    [[nodiscard]] CalendarStore *store() const { return m_store.get(); }
    [[nodiscard]] const QString &ConnectionString() const { return m_connection; }

    // Whether the store could be opened; Create makes a new empty one.
    bool Open();
    bool Create();
    bool Save();
    void Close();
    [[nodiscard]] bool IsOpen() const;

    // Kept for the callers that set it; every read goes to the store.
    int CacheMode = 0;

    // New empty records with the given key, for the record mapping.
    [[nodiscard]] CalendarEventPtr CreateEventFromId(int eventId) const;
    [[nodiscard]] CalendarRecurrencePatternPtr CreateRPatternFromId(int patternId) const;
    // A new appointment of the given times, not yet in the store.
    [[nodiscard]] CalendarEventPtr CreateNewEvent(const QDateTime &start = {}, const QDateTime &end = {}) const;

    bool AddEvent(const CalendarEventPtr &event);
    bool ChangeEvent(const CalendarEventPtr &event);
    bool DeleteEvent(const CalendarEventPtr &event);

    // What the views show for a day or for the days first..last: plain
    // appointments and the occurrences (or their exceptions) of the series,
    // ordered by start.
    [[nodiscard]] QList<CalendarEventPtr> RetrieveDayEvents(const QDate &day);
    [[nodiscard]] QList<CalendarEventPtr> RetrieveEvents(const QDate &first, const QDate &last);

    // One record by key: a master comes with its pattern and exceptions, an
    // exception as the one attached to its series.
    [[nodiscard]] CalendarEventPtr GetEvent(int eventId);
    [[nodiscard]] CalendarRecurrencePatternPtr GetRecurrencePattern(int patternId);
    // The rows under reminder whose moment falls before start + minutes
    // (masters with their pattern attached); see CalendarStore.
    // *ok (when given) is false when the store could not be asked.
    [[nodiscard]] QList<CalendarEventPtr> GetUpcomingEvents(const QDateTime &start, int minutes, const QDateTime &since = {},
                                                            bool *ok = nullptr);

    // Whether the last read could not be run (the store held by another
    // workstation past the wait): its empty answer means "unknown".
    [[nodiscard]] bool LastReadFailed() const { return m_store && m_store->LastReadFailed(); }
    // The wait of the reads that follow, in milliseconds (-1: the usual
    // one); a periodic refresh waits briefly and keeps what it showed.
    void setReadWait(int milliseconds)
    {
        if (m_store)
            m_store->SetReadWait(milliseconds);
    }

    // The store's mark of what it holds now, for readers that skip a read
    // when nothing changed (see StoreMark); a mark that tells nothing when
    // no store is open.
    [[nodiscard]] StoreMark DataMark() const { return m_store && m_store->IsOpen() ? m_store->DataMark() : StoreMark{}; }
    [[nodiscard]] bool ChangedSince(const StoreMark &mark) const { return !mark.sameAs(DataMark()); }

    // Labels (colour and appointment type) of the book.
    [[nodiscard]] const CalendarLabelList &LabelList() const { return m_labels; }
    void setLabelList(const CalendarLabelList &labels) { m_labels = labels; }

    // The schedules of the book, as the store keeps them: read again at each
    // call, so that a schedule another workstation added shows; the last list
    // read when the store cannot be asked. Each change is written at once, in
    // one transaction. AddSchedule answers the new key (0 when the store
    // refused); a key is never given twice, even after its schedule is gone.
    [[nodiscard]] QList<CalendarSchedule> Schedules();
    int AddSchedule(const QString &name);
    bool RenameSchedule(int scheduleId, const QString &name);
    bool RemoveSchedule(int scheduleId);
    // How many appointments still name the schedule (a series counts once);
    // -1 when the store cannot tell.
    [[nodiscard]] int CountScheduleEvents(int scheduleId);

    // The last day of a series with no end, as the master's row keeps it.
    [[nodiscard]] static QDateTime openSeriesEnd();

signals:
    void eventAdded(CalendarEventPtr event);
    void eventChanged(CalendarEventPtr event);
    void eventDeleted(CalendarEventPtr event);
    // Rows of a series removed with it or dropped from it (exceptions), once
    // their change is committed: whatever copies them elsewhere drops them.
    void rowsRemoved(QList<int> eventIds);

private:
    // A row read as an ordinary event becomes a record of its state; a master
    // gets its pattern (nothing when the pattern row is gone).
    CalendarEventPtr takeOver(const CalendarEventPtr &row, const QHash<int, CalendarRecurrencePatternPtr> *read = nullptr);
    // The patterns of the masters among rows read as ordinary events.
    [[nodiscard]] QHash<int, CalendarRecurrencePatternPtr> patternsOf(const QList<CalendarEventPtr> &rows);
    bool writeMaster(const CalendarEventPtr &master, bool isNew);
    bool syncExceptions(const CalendarRecurrencePatternPtr &pattern);
    bool deleteSeriesRows(int patternId, int keepEventId);
    bool writeException(const CalendarEventPtr &exception);
    bool writeAsException(const CalendarEventPtr &event, bool deleted);
    template<typename F>
    bool inOneChange(F &&work);
    // The schedules read again into m_schedules (kept when the read fails).
    void readSchedules();

    std::unique_ptr<CalendarStore> m_store;
    QString m_connection;
    CalendarLabelList m_labels;
    QList<CalendarSchedule> m_schedules;
    // Masters of the series read so far, by pattern key (see takeOver).
    QHash<int, CalendarEventPtr> m_keepAlive;
    // Keys of the rows deleted by the change under way (see rowsRemoved).
    QList<int> m_removedRows;
};
