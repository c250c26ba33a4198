#include "calendar/lecturesserveur.h"

#include "calendar/connexionserveur.h"
#include "calendar/sqldatahelper.h"

namespace LecturesServeur {

namespace {

void lireLignes(const SQLDataHelper &helper, ConnexionServeur &connexion, const QString &sql, QList<CalendarEventPtr> &events)
{
    // A refused statement or a lost connection must not go up through the
    // views' event loop: the request ends with the rows read so far.
    try {
        const std::unique_ptr<RecordCursor> rs = connexion.execute(sql);
        for (; !rs->atEnd(); rs->next()) {
            if (CalendarEventPtr e = helper.CreateEventFromRS(*rs))
                events.append(e);
        }
    } catch (const FieldError &) {
    }
}

} // namespace

void RetrieveDayEvents(const SQLDataHelper &helper, ConnexionServeur &connexion, const QDate &day, QList<CalendarEventPtr> &events)
{
    lireLignes(helper, connexion, SQLDataHelper::MakeRetrieveDayEventsSQL(day), events);
}

void GetUpcomingEvents(const SQLDataHelper &helper, ConnexionServeur &connexion, int kind, const QDateTime &start, int minutes,
                       QList<CalendarEventPtr> &events)
{
    lireLignes(helper, connexion, SQLDataHelper::MakeGetUpcomingEventsSQL(kind, start, minutes, true), events);
}

CalendarEventPtr ReadEvent(const SQLDataHelper &helper, ConnexionServeur &connexion, int eventId)
{
    QList<CalendarEventPtr> events;
    lireLignes(helper, connexion, QStringLiteral("SELECT * FROM CalendarEvents WHERE EventID = ") + QString::number(eventId), events);
    return events.isEmpty() ? CalendarEventPtr() : events.first();
}

CalendarRecurrencePatternPtr ReadRPattern(const SQLDataHelper &helper, ConnexionServeur &connexion, int patternId)
{
    try {
        const std::unique_ptr<RecordCursor> rs
            = connexion.execute(QStringLiteral("SELECT * FROM CalendarRecurrencePatterns ")
                                + QStringLiteral(" WHERE RecurrencePatternID = ") + QString::number(patternId));
        return helper.CreateRPatternFromRS(*rs, connexion);
    } catch (const FieldError &) {
        return {};
    }
}

int NewKey(ConnexionServeur &connexion, const QString &sql, const QString &alias)
{
    try {
        const std::unique_ptr<RecordCursor> rs = connexion.execute(sql);
        return rs->atEnd() ? 0 : RecordValue::integer(rs->field(alias));
    } catch (const FieldError &) {
        return 0;
    }
}

bool Execute(ConnexionServeur &connexion, const QString &sql)
{
    try {
        connexion.executer(sql);
        return true;
    } catch (const FieldError &) {
        return false;
    }
}

} // namespace LecturesServeur
