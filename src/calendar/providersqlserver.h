#pragma once

#include "calendar/providerodbc.h"

#include <QString>

// The calendar store on a SQL Server database, reached by an ODBC name
// ("DSN=Calendar_SQLServer"). Rows are written through a row set opened on
// the table (an empty one for a new row) inside a transaction; statements are
// sent as SQLDataHelper writes them.
class providerSQLServer final : public ProviderOdbc
{
public:
    providerSQLServer();
    ~providerSQLServer() override;

    bool DoCreateEvent(const CalendarEvent &event, int &newEventId) override;
    bool DoUpdateEvent(const CalendarEvent &event) override;
    bool DoDeleteEvent(const CalendarEvent &event) override;
    bool DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId) override;
    bool DoUpdateRPattern(const CalendarRecurrencePattern &pattern) override;
    bool DoDeleteRPattern(const CalendarRecurrencePattern &pattern) override;

    // The words of the box shown when the connection cannot be opened.
    [[nodiscard]] static QString TexteEchecOuverture(const QString &driverText);

protected:
    [[nodiscard]] QString texteEchec(const QString &driverText) const override { return TexteEchecOuverture(driverText); }
};
