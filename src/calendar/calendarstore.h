#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarrecurrencepattern.h"
#include "calendar/sqldatahelper.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

class CalendarDataProvider;

// One schedule of the store: the appointment editor lists them, and an
// appointment names its schedule by ScheduleID.
struct CalendarSchedule
{
    int ScheduleID = 0;
    QString Name;

    friend bool operator==(const CalendarSchedule &, const CalendarSchedule &) = default;
};

// What a store holds at one moment, as far as the store can tell: two marks
// are the same only when nothing was written in between, by this program or
// by another workstation. A store that cannot tell gives marks that are
// never the same, so that whoever keeps one reads again every time.
struct StoreMark
{
    quint64 instance = 0; // the opened store; 0: cannot tell
    quint64 version = 0;  // other connections' commits
    quint64 changes = 0;  // this connection's writes

    [[nodiscard]] bool sameAs(const StoreMark &other) const
    {
        return instance != 0 && instance == other.instance && version == other.version && changes == other.changes;
    }
};

// The store side of the calendar: the ten requests that the data provider
// sends to whatever holds the rows. Records come back as fresh objects made
// through the provider; a row read as an ordinary event carries its state and
// pattern key in the two transfer entries of its bag, which the provider
// takes over. A store never removes more than the one row it is asked for: a
// series goes as separate requests for its exceptions, pattern and master.
class CalendarStore
{
public:
    virtual ~CalendarStore() = default;

    void SetCalendar(CalendarDataProvider *provider) { m_helper.SetCalendar(provider); }

    // Answers whether the store could be opened; false leaves it closed.
    virtual bool Open() = 0;
    // Makes a new empty store (and opens it).
    virtual bool Create() = 0;
    // Writes what is held in memory, if anything.
    virtual bool Save() { return true; }
    virtual void Close() = 0;
    [[nodiscard]] virtual bool IsOpen() const = 0;

    // Rows of state 0 and 1 that touch the day.
    virtual void DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events) = 0;
    // The same for the days first..last (inclusive) in one request; each row
    // comes once.
    virtual void DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events);
    [[nodiscard]] virtual CalendarEventPtr DoReadEvent(int eventId) = 0;
    // The pattern with its exceptions attached.
    [[nodiscard]] virtual CalendarRecurrencePatternPtr DoReadRPattern(int patternId) = 0;
    // Several patterns at once (the day reads meet many series); the default
    // asks for them one by one.
    [[nodiscard]] virtual QHash<int, CalendarRecurrencePatternPtr> DoReadRPatterns(const QList<int> &patternIds);
    virtual bool DoCreateEvent(const CalendarEvent &event, int &newEventId) = 0;
    virtual bool DoUpdateEvent(const CalendarEvent &event) = 0;
    virtual bool DoDeleteEvent(const CalendarEvent &event) = 0;
    virtual bool DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId) = 0;
    virtual bool DoUpdateRPattern(const CalendarRecurrencePattern &pattern) = 0;
    virtual bool DoDeleteRPattern(const CalendarRecurrencePattern &pattern) = 0;
    // Rows of state 0 and 1 whose reminder moment (start less the reminder
    // minutes) falls before start + minutes, and that are under reminder
    // themselves or are masters with an exception under reminder falling
    // there. A valid `since` lets a store leave out plain rows whose moment
    // lies before it (a store that cannot do so answers them too; the caller
    // filters).
    virtual void DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events,
                                     const QDateTime &since = {}) = 0;

    // The schedules of the book. A store that keeps them keeps them in its
    // own file, so that every workstation sharing it sees the same list and
    // keys, and never gives a key twice. A store that keeps none has none and
    // refuses to add any.
    virtual bool DoReadSchedules(QList<CalendarSchedule> &schedules)
    {
        schedules.clear();
        return true;
    }
    virtual bool DoCreateSchedule(const QString & /*name*/, int & /*newScheduleId*/) { return false; }
    virtual bool DoRenameSchedule(int /*scheduleId*/, const QString & /*name*/) { return false; }
    virtual bool DoDeleteSchedule(int /*scheduleId*/) { return false; }
    // The appointments that name the schedule: plain ones, series (once) and
    // exceptions kept apart from a series of another schedule; -1: unknown.
    [[nodiscard]] virtual int DoCountScheduleEvents(int /*scheduleId*/) { return -1; }

    // The writes of one change of the book (a series with its pattern) go in
    // one transaction, so that another workstation sees all of it or nothing.
    virtual bool BeginChange() { return true; }
    virtual bool CommitChange() { return true; }
    virtual void RollbackChange() {}

    // Claims of reminders being sent, so that two senders (a station's batch
    // and the unattended run, or two stations) never send one twice. A claim
    // is taken inside a change (BeginChange), after the appointment was read
    // again there. DoClaimReminder answers false when another sender holds a
    // claim on the key taken after staleBefore; older claims are abandoned
    // ones (a sender that stopped midway) and are dropped. A store that
    // cannot keep claims grants every one.
    virtual bool DoClaimReminder(const QString & /*key*/, const QString & /*sender*/, const QDateTime & /*now*/,
                                 const QDateTime & /*staleBefore*/)
    {
        return true;
    }
    virtual void DoReleaseReminder(const QString & /*key*/) {}
    // The claims taken after staleBefore: key and sender.
    [[nodiscard]] virtual QHash<QString, QString> DoReadReminderClaims(const QDateTime & /*staleBefore*/) { return {}; }

    // Whether the last read could not be run at all (a file held too long by
    // another workstation): an empty answer then means "unknown", not "none".
    [[nodiscard]] virtual bool LastReadFailed() const { return false; }
    // What the last failed request said (empty when the store cannot tell).
    [[nodiscard]] virtual QString LastErrorText() const { return {}; }
    // The mark of what the store holds now (see StoreMark); the default
    // cannot tell. Taken before a read, it tells the next time whether the
    // read would bring anything new.
    [[nodiscard]] virtual StoreMark DataMark() { return {}; }
    // Whether the data may have changed since the mark was taken: always
    // for a store that cannot tell.
    [[nodiscard]] bool ChangedSince(const StoreMark &mark) { return !mark.sameAs(DataMark()); }

    // How long the next requests wait for a file held by another
    // workstation; -1 puts back the usual wait. A store that never waits
    // ignores it.
    virtual void SetReadWait(int /*milliseconds*/) {}

    [[nodiscard]] const SQLDataHelper &helper() const { return m_helper; }

protected:
    SQLDataHelper m_helper;
};

// The file named by a store's connection string: what stands between the
// quotes after "Data Source=" ("Provider=XML;Data Source='C:\\x.xml';..."),
// or up to the next ";" when there are no quotes. Empty when there is none.
[[nodiscard]] QString SourceDeConnexion(const QString &connection);
