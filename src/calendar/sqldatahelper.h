#pragma once

#include "calendar/calendarevent.h"
#include "calendar/calendarrecurrencepattern.h"
#include "calendar/sqlrecord.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

class CalendarDataProvider;

// Everything the SQL stores know of the two calendar tables: the date and
// string literals, the mapping of a row to a record and back, and the text of
// every statement with more than one column. The statements are sent to the
// servers exactly as written here, blanks and line ends included; the odd
// spots (the comma missing after CustomPropertiesXMLData in the event update,
// "err" for an unknown kind) are part of what the servers have always been
// sent, so they stay.
class SQLDataHelper final
{
public:
    // The provider that makes the empty records the mapping fills.
    void SetCalendar(CalendarDataProvider *provider) { m_provider = provider; }
    [[nodiscard]] CalendarDataProvider *calendar() const { return m_provider; }

    [[nodiscard]] static QString MakeSQLDateTime(const QDateTime &dateTime);
    [[nodiscard]] static QString MakeSQLstr(const QString &text);

    // Nothing when the row is at its end, when the provider gives no record,
    // or when any column is missing or unreadable (the row is then skipped
    // without a word).
    [[nodiscard]] CalendarEventPtr CreateEventFromRS(const RecordSource &rs, bool exception = false) const;
    // Fills the row column by column; a failure leaves it half filled.
    void PutEventToRS(const CalendarEvent &event, RecordSink &rs) const;
    // Reads the pattern and then its exceptions through the connection;
    // nothing when a column or the exceptions' statement fails.
    [[nodiscard]] CalendarRecurrencePatternPtr CreateRPatternFromRS(const RecordSource &rs, RecordConnection &connection) const;
    void PutRPatternToRS(const CalendarRecurrencePattern &pattern, RecordSink &rs) const;
    // A failing statement goes out to the caller (FieldError).
    void ReadRPatternExceptions(const CalendarRecurrencePatternPtr &pattern, RecordConnection &connection) const;

    [[nodiscard]] static QString MakeUpdateEventSQL(const CalendarEvent &event);
    [[nodiscard]] static QString MakeCreateEventSQL(const CalendarEvent &event);
    [[nodiscard]] static QString MakeUpdatePatternSQL(const CalendarRecurrencePattern &pattern);
    [[nodiscard]] static QString MakeCreatePatternSQL(const CalendarRecurrencePattern &pattern);
    [[nodiscard]] static QString MakeRetrieveDayEventsSQL(const QDate &day);
    // kind 4 SQL Server, 5 MySQL; "err" for any other kind when filtering.
    [[nodiscard]] static QString MakeGetUpcomingEventsSQL(int kind, const QDateTime &start, int minutes, bool filter);
    // The connection string behind the 16 characters of "Provider=Custom;"
    // (not compared); nothing for a shorter string.
    [[nodiscard]] static std::optional<QString> GetDSN(const QString &connection);

    // The key written for an event's pattern: the pattern's key for a master
    // or an exception, 0 for any other state (the pattern is not looked at).
    [[nodiscard]] static qint32 PatternKeyOf(const CalendarEvent &event);

private:
    [[nodiscard]] static QString PadTwoDigits(int number);
    CalendarDataProvider *m_provider = nullptr; // owns the store that owns this helper
};
