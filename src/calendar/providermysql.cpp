#include "calendar/providermysql.h"

#include "calendar/lecturesserveur.h"
#include "shell/base/prompt.h"

providerMySQL::providerMySQL() = default;

providerMySQL::~providerMySQL()
{
    CloseDB();
}

QString providerMySQL::TexteEchecOuverture(const QString &driverText)
{
    // "SQL Server" and no colon: these are the words this box has always had.
    return QStringLiteral("Cannot open SQL Server DB") + driverText;
}

void providerMySQL::OpenDB(const QString &connection)
{
    CloseDB();
    const std::optional<QString> dsn = SQLDataHelper::GetDSN(connection);
    if (!dsn) {
        Prompt::informer(QStringLiteral("Agenda"), TexteEchecOuverture(QStringLiteral("chaîne de connexion trop courte")),
                         Prompt::Icone::Aucune);
        return;
    }
    if (!m_connexion.ouvrir(*dsn)) {
        Prompt::informer(QStringLiteral("Agenda"), TexteEchecOuverture(m_connexion.lastError()), Prompt::Icone::Aucune);
        return;
    }
    m_bOpened = true;
}

void providerMySQL::CloseDB()
{
    if (!m_bOpened)
        return;
    m_connexion.fermer();
    m_bOpened = false;
}

void providerMySQL::DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events)
{
    if (m_bOpened)
        LecturesServeur::RetrieveDayEvents(m_helper, m_connexion, day, events);
}

CalendarEventPtr providerMySQL::DoReadEvent(int eventId)
{
    return m_bOpened ? LecturesServeur::ReadEvent(m_helper, m_connexion, eventId) : CalendarEventPtr();
}

CalendarRecurrencePatternPtr providerMySQL::DoReadRPattern(int patternId)
{
    return m_bOpened ? LecturesServeur::ReadRPattern(m_helper, m_connexion, patternId) : CalendarRecurrencePatternPtr();
}

void providerMySQL::DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events, const QDateTime &)
{
    if (m_bOpened)
        LecturesServeur::GetUpcomingEvents(m_helper, m_connexion, 5 /* MySQL */, start, minutes, events);
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
