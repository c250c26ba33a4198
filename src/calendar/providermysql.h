#pragma once

#include "calendar/calendarstore.h"
#include "calendar/connexionserveur.h"

#include <QString>

// The calendar store on a MySQL database, reached by an ODBC name
// ("DSN=Calendar_MySQL"). Rows are written by the statements of SQLDataHelper,
// sent as they are written, with no transaction. Its event update is refused
// by the server (a comma missing in the statement): every change of an
// appointment answers failure, and the caller tells the user.
// Until OpenDB succeeds every request answers nothing.
class providerMySQL final : public CalendarStore
{
public:
    providerMySQL();
    ~providerMySQL() override;

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
