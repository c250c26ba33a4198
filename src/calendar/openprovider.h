#pragma once

#include <QString>

class CalendarDataProvider;
struct AppState;

// Attaches a store to the calendar: the kind (1 XML data file, 2 Events.mdb,
// 3 Outlook, 4 SQL Server, 5 MySQL) and its connection string. The store is
// opened, or created when it cannot be (a wrong path silently gives a new
// empty book). Answers whether a store is attached; on true `kind` is the
// kind to remember, and the caller repopulates the calendar.
//
// Outlook is not available on this system, and the SQL server kinds are not
// there yet: both are answered with a message, and the store in place stays.
bool OpenProvider(CalendarDataProvider &provider, int kind, const QString &connection);

// The same on the agenda's own calendar (made when there is none yet): the
// kind attached is kept in TypeFournisseur. Used by the start-up and by the
// command that opens another store.
bool OpenProvider(AppState &etat, int kind, const QString &connection);

// The texts of those two messages.
[[nodiscard]] QString TexteMapiIndisponible();
[[nodiscard]] QString TexteServeurSqlIndisponible();
