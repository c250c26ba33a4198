#pragma once

#include "calendar/calendarstore.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class BaseSqlite;
class MemoryRecord;
class QSqlQuery;
struct sqlite3_stmt;

// The calendar store of the normal installation: the file Events.mdb (a
// SQLite database) in the agenda's folder, shared by the workstations through
// the file share. The connection stays open while the store is; nothing is
// cached between two requests, so each read sees what other workstations
// have committed meanwhile. A file locked by another workstation is waited
// for (busy timeout) rather than refused.
class SqliteCalendarStore final : public CalendarStore
{
public:
    explicit SqliteCalendarStore(QString path);
    ~SqliteCalendarStore() override;

    [[nodiscard]] const QString &path() const { return m_path; }
    // Where an unreadable file was put aside by the last Create (empty when
    // none was).
    [[nodiscard]] const QString &keptAsidePath() const { return m_keptAside; }
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
    void SetReadWait(int milliseconds) override;
    // SQLite's data version of the connection (other connections' commits)
    // and the rows this connection has written.
    [[nodiscard]] StoreMark DataMark() override;

    bool DoReadSchedules(QList<CalendarSchedule> &schedules) override;
    bool DoCreateSchedule(const QString &name, int &newScheduleId) override;
    bool DoRenameSchedule(int scheduleId, const QString &name) override;
    bool DoDeleteSchedule(int scheduleId) override;
    [[nodiscard]] int DoCountScheduleEvents(int scheduleId) override;

    bool DoClaimReminder(const QString &key, const QString &sender, const QDateTime &now,
                         const QDateTime &staleBefore) override;
    void DoReleaseReminder(const QString &key) override;
    [[nodiscard]] QHash<QString, QString> DoReadReminderClaims(const QDateTime &staleBefore) override;

    bool BeginChange() override;
    bool CommitChange() override;
    void RollbackChange() override;

    // The statements of the day reads and the reminder poll, for checking
    // their query plans.
    [[nodiscard]] static QString rangeStatement();
    [[nodiscard]] static QString upcomingStatement(bool withLowerBound);
    [[nodiscard]] static QStringList eventColumns();
    [[nodiscard]] static QStringList patternColumns();

    // The open connection (tests and the store check look at the plans).
    [[nodiscard]] BaseSqlite *base() const { return m_base.get(); }

private:
    bool ensureSchema();
    bool execBound(QSqlQuery &q);
    // One row written with bound values, columns in the row's order.
    bool insertRow(const QString &table, const MemoryRecord &row, int &newId);
    bool updateRow(const QString &table, const MemoryRecord &row, const QString &keyColumn, int key);
    [[nodiscard]] MemoryRecord eventRow(const CalendarEvent &event);
    QSqlQuery &prepared(std::unique_ptr<QSqlQuery> &slot, const QString &sql);
    void readEvents(QSqlQuery &q, QList<CalendarEventPtr> &events);
    bool prepareKept(sqlite3_stmt *&slot, const QString &sql);
    // Binds the texts in turn to a kept statement (prepared on first use),
    // maps its rows and leaves it reset; a failed step is told by
    // LastReadFailed.
    void readKeptEvents(sqlite3_stmt *&st, const QString &sql, const QList<QByteArray> &values,
                        QList<CalendarEventPtr> &events);

    QString m_path;
    QString m_keptAside;
    QString m_lastError;
    std::unique_ptr<BaseSqlite> m_base;
    int m_changeDepth = 0;
    bool m_readFailed = false;
    // Given anew at each opening, so that no two openings share a mark.
    quint64 m_instance = 0;
    // Changes undone: what was read meanwhile from this connection saw them.
    quint64 m_rollbacks = 0;
    int m_readWait = -1;
    // Statements asked again and again by the day reads, kept prepared.
    sqlite3_stmt *m_rangeStmt = nullptr;
    sqlite3_stmt *m_patternsStmt = nullptr;
    sqlite3_stmt *m_seriesExceptionsStmt = nullptr;
    sqlite3_stmt *m_upcomingStmt = nullptr;
    sqlite3_stmt *m_upcomingSinceStmt = nullptr;
    sqlite3_stmt *m_versionStmt = nullptr;
    std::unique_ptr<QSqlQuery> m_pattern;
    std::unique_ptr<QSqlQuery> m_exceptions;
};

// The file name an unreadable store is renamed to before a fresh one takes
// its place: "Events.mdb.illisible-yyyyMMdd-HHmmss" (a number is added when
// that name is taken).
[[nodiscard]] QString NomDeCoteStore(const QString &path, const QDateTime &moment);
