#pragma once

#include "calendar/calendarstore.h"
#include "calendar/connexionserveur.h"

#include <QString>

// The calendar store on a SQL Server database, reached by an ODBC name
// ("DSN=Calendar_SQLServer"). Rows are written through a row set opened on
// the table (an empty one for a new row) inside a transaction; statements are
// sent as SQLDataHelper writes them.
// Until OpenDB succeeds every request answers nothing.
class providerSQLServer final : public CalendarStore
{
public:
    providerSQLServer();
    ~providerSQLServer() override;

    // The connection string with "Provider=Custom;" in front. A failure is
    // told in a box, and the store stays closed.
    void OpenDB(const QString &connection);
    void CloseDB();
    [[nodiscard]] bool opened() const { return m_bOpened; }

    bool Open() override { return m_bOpened; }
    // The tables are the server's: there is nothing to make here.
    bool Create() override { return m_bOpened; }
    void Close() override { CloseDB(); }
    [[nodiscard]] bool IsOpen() const override { return m_bOpened; }
    // The server's words on the last request it refused.
    [[nodiscard]] QString LastErrorText() const override { return m_connexion.lastError(); }

    void DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events) override;
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

    // The words of the box shown when the connection cannot be opened.
    [[nodiscard]] static QString TexteEchecOuverture(const QString &driverText);

private:
    ConnexionServeur m_connexion{QStringLiteral("QODBC")};
    bool m_bOpened = false;
};
