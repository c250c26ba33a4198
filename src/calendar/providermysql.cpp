#include "calendar/providermysql.h"

#include "calendar/lecturesserveur.h"
#include "shell/base/prompt.h"

providerMySQL::providerMySQL() : ProviderOdbc(5) {}

providerMySQL::~providerMySQL()
{
    CloseDB();
}

QString providerMySQL::TexteEchecOuverture(const QString &driverText)
{
    // "SQL Server" and no colon: these are the words this box has always had.
    return QStringLiteral("Cannot open SQL Server DB") + driverText;
}

bool providerMySQL::DoCreateEvent(const CalendarEvent &event, int &newEventId)
{
    if (!m_bOpened || !LecturesServeur::Execute(m_connexion, SQLDataHelper::MakeCreateEventSQL(event)))
        return false;
    newEventId = LecturesServeur::NewKey(m_connexion, QStringLiteral("SELECT MAX(EventID) AS NewEventID FROM CalendarEvents"),
                                         QStringLiteral("NewEventID"));
    return newEventId != 0;
}

bool providerMySQL::DoUpdateEvent(const CalendarEvent &event)
{
    return m_bOpened && LecturesServeur::Execute(m_connexion, SQLDataHelper::MakeUpdateEventSQL(event));
}

bool providerMySQL::DoDeleteEvent(const CalendarEvent &event)
{
    return m_bOpened
        && LecturesServeur::Execute(m_connexion,
                                    QStringLiteral("DELETE FROM CalendarEvents WHERE EventID = ") + QString::number(event.EventID()));
}

bool providerMySQL::DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId)
{
    if (!m_bOpened || !LecturesServeur::Execute(m_connexion, SQLDataHelper::MakeCreatePatternSQL(pattern)))
        return false;
    newPatternId = LecturesServeur::NewKey(
        m_connexion, QStringLiteral("SELECT MAX(RecurrencePatternID) AS NewNewPatternID FROM CalendarRecurrencePatterns"),
        QStringLiteral("NewNewPatternID"));
    return newPatternId != 0;
}

bool providerMySQL::DoUpdateRPattern(const CalendarRecurrencePattern &pattern)
{
    return m_bOpened && LecturesServeur::Execute(m_connexion, SQLDataHelper::MakeUpdatePatternSQL(pattern));
}

bool providerMySQL::DoDeleteRPattern(const CalendarRecurrencePattern &pattern)
{
    return m_bOpened
        && LecturesServeur::Execute(m_connexion, QStringLiteral("DELETE FROM CalendarRecurrencePatterns WHERE RecurrencePatternID = ")
                                                     + QString::number(pattern.RecurrencePatternID()));
}
