#pragma once

#include "calendar/calendarstore.h"
#include "calendar/connexionserveur.h"

#include <QString>

#include <memory>

class MemoryRecord;
class QSqlQuery;

// The calendar store on a MariaDB (or MySQL) server through Qt's own driver,
// for practices whose workstations outgrow one shared folder. It behaves as
// the Events.mdb store: keys come from the insert itself, the writes of one
// change go in one transaction, the day reads ask for a range of days through
// the indexes, and a series is found on its later days by its master row,
// which spans it. The tables are made on first use.
//
// Its connection string is "Provider=MariaDB;" followed by the parameters as
// the user types them: "Server=...;Port=...;Database=...;User=...;Password=..."
// (or "Socket=/run/mysqld/mysqld.sock" in place of Server and Port).
class MariaDbCalendarStore final : public CalendarStore
{
public:
    explicit MariaDbCalendarStore(QString parameters);
    ~MariaDbCalendarStore() override;

    [[nodiscard]] const QString &lastError() const { return m_lastError; }

    bool Open() override;
    bool Create() override;
    void Close() override;
    [[nodiscard]] bool IsOpen() const override;

    void DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events) override;
    void DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events) override;
    [[nodiscard]] CalendarEventPtr DoReadEvent(int eventId) override;
    [[nodiscard]] CalendarRecurrencePatternPtr DoReadRPattern(int patternId) override;
    [[nodiscard]] QHash<int, CalendarRecurrencePatternPtr> DoReadRPatterns(const QList<int> &patternIds) override;
    bool DoCreateEvent(const CalendarEvent &event, int &newEventId) override;
    bool DoUpdateEvent(const CalendarEvent &event) override;
    bool DoDeleteEvent(const CalendarEvent &event) override;
    bool DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId) override;
    bool DoUpdateRPattern(const CalendarRecurrencePattern &pattern) override;
    bool DoDeleteRPattern(const CalendarRecurrencePattern &pattern) override;
    void DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events,
                             const QDateTime &since = {}) override;
    [[nodiscard]] bool LastReadFailed() const override { return m_readFailed; }
    [[nodiscard]] QString LastErrorText() const override { return m_lastError; }

    bool DoReadSchedules(QList<CalendarSchedule> &schedules) override;
    bool DoCreateSchedule(const QString &name, int &newScheduleId) override;
    bool DoRenameSchedule(int scheduleId, const QString &name) override;
    bool DoDeleteSchedule(int scheduleId) override;
    [[nodiscard]] int DoCountScheduleEvents(int scheduleId) override;

    bool BeginChange() override;
    bool CommitChange() override;
    void RollbackChange() override;

    // The day-range statement, which brings the series of the masters it
    // finds with them, for the DoReadRPatterns that follows (its plan is
    // checked by the tests).
    [[nodiscard]] static QString rangeStatement();

private:
    bool ouvrir(bool creer);
    // Runs the prepared statement, or the text given.
    bool executer(QSqlQuery &q, const QString &sql = {});
    bool insertRow(const QString &table, const MemoryRecord &row, int &newId);
    bool updateRow(const QString &table, const MemoryRecord &row, const QString &keyColumn, int key);
    // Runs the statement and maps its event rows.
    void lire(QSqlQuery &q, QList<CalendarEventPtr> &events, const QString &sql = {});

    QString m_parameters;
    ConnexionServeur m_connexion{QStringLiteral("QMYSQL")};
    QString m_lastError;
    // The day-range statement, prepared on the server once.
    std::unique_ptr<QSqlQuery> m_semaine;
    int m_changeDepth = 0;
    bool m_readFailed = false;
    // Statements sent so far: what was read with the days holds until the
    // next one.
    quint64 m_requetes = 0;
    // The series of the masters of the last day read, with their exceptions,
    // read in the same statement, and when.
    QHash<int, CalendarRecurrencePatternPtr> m_seriesLues;
    quint64 m_seriesLuesApres = 0;
};

// The parameters of a "Provider=MariaDB;" string, by name (case ignored):
// Server, Port, Database, User, Password, Socket.
[[nodiscard]] QString ParametreMariaDb(const QString &parameters, const QString &name);
