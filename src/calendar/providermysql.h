#pragma once

#include "calendar/providerodbc.h"

#include <QString>

// The calendar store on a MySQL database, reached by an ODBC name
// ("DSN=Calendar_MySQL"). Rows are written by the statements of SQLDataHelper,
// sent as they are written, with no transaction. Its event update is refused
// by the server (a comma missing in the statement): every change of an
// appointment answers failure, and the caller tells the user.
class providerMySQL final : public ProviderOdbc
{
public:
    providerMySQL();
    ~providerMySQL() override;

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
