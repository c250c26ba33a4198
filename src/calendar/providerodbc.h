#pragma once

#include "calendar/calendarstore.h"
#include "calendar/connexionserveur.h"

#include <QString>

// What the two calendar stores reached through ODBC share: the connection
// opened from the string as typed, its failure box, and the reads through
// SQLDataHelper's statements. The subclasses write their own way.
// Until OpenDB succeeds every request answers nothing.
class ProviderOdbc : public CalendarStore
{
public:
    ~ProviderOdbc() override;

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
    void DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events,
                             const QDateTime &since = {}) override;

protected:
    // kind: 4 SQL Server, 5 MySQL (the dialect of the upcoming reads).
    explicit ProviderOdbc(int kind);
    // The words of the box shown when the connection cannot be opened.
    [[nodiscard]] virtual QString texteEchec(const QString &driverText) const = 0;

    ConnexionServeur m_connexion{QStringLiteral("QODBC")};
    bool m_bOpened = false;

private:
    int m_kind;
};
