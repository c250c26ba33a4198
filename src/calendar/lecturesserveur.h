#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarrecurrencepattern.h"

#include <QDate>
#include <QDateTime>
#include <QList>

class ConnexionServeur;
class SQLDataHelper;

// The read requests of the two database-server providers, which read alike:
// every statement is sent as the helper writes it, and each row is mapped
// by the helper (a row it cannot map is left out). A statement the server
// refuses ends the request with what was read so far.
namespace LecturesServeur {
void RetrieveDayEvents(const SQLDataHelper &helper, ConnexionServeur &connexion, const QDate &day,
                       QList<CalendarEventPtr> &events);
void GetUpcomingEvents(const SQLDataHelper &helper, ConnexionServeur &connexion, int kind, const QDateTime &start,
                       int minutes, QList<CalendarEventPtr> &events);
[[nodiscard]] CalendarEventPtr ReadEvent(const SQLDataHelper &helper, ConnexionServeur &connexion, int eventId);
[[nodiscard]] CalendarRecurrencePatternPtr ReadRPattern(const SQLDataHelper &helper, ConnexionServeur &connexion,
                                                        int patternId);
// "SELECT MAX(column) AS alias FROM table" and the field of that name; 0
// when the statement fails.
[[nodiscard]] int NewKey(ConnexionServeur &connexion, const QString &sql, const QString &alias);
// A statement with no rows; false when the server refuses it.
bool Execute(ConnexionServeur &connexion, const QString &sql);
} // namespace LecturesServeur
