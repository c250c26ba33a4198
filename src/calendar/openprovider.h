#pragma once

#include <QString>

#include <memory>

class CalendarDataProvider;

// Attaches a store to the calendar: the kind (1 XML data file, 2 Events.mdb,
// 3 Outlook, 4 SQL Server, 5 MySQL, 6 MariaDB) and its connection string.
// The store in place is dropped first (a server store closes its
// connection). A file store is opened, or created when it cannot be (a wrong
// path silently gives a new empty book). A SQL Server or MySQL store that
// cannot connect has told the user so in its own box, and leaves an empty
// book; a MariaDB store that can be neither opened nor created is told in
// French. Answers whether a store was attached (open or not): the caller then
// keeps the kind and repopulates the calendar.
//
// Outlook is not available on this system: it is answered with a message,
// and the store in place stays.
bool OpenProvider(CalendarDataProvider &provider, int kind, const QString &connection);

// The same on the agenda's calendar, made when there is none yet; the kind
// attached goes into `kind`.
bool OpenProvider(std::shared_ptr<CalendarDataProvider> &calendrier, int &kind, int newKind, const QString &connection);

// The texts of the messages.
[[nodiscard]] QString TexteMapiIndisponible();
[[nodiscard]] QString TexteEchecMariaDb(const QString &erreur);
