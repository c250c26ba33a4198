#include "calendar/providerodbc.h"

#include "calendar/lecturesserveur.h"
#include "shell/base/prompt.h"

ProviderOdbc::ProviderOdbc(int kind) : m_kind(kind) {}

ProviderOdbc::~ProviderOdbc()
{
    // CloseDB by hand: the subclass is gone by now, and closing needs none of it.
    if (m_bOpened)
        m_connexion.fermer();
}

void ProviderOdbc::OpenDB(const QString &connection)
{
    CloseDB();
    const std::optional<QString> dsn = SQLDataHelper::GetDSN(connection);
    if (!dsn) {
        Prompt::informer(QStringLiteral("Agenda"), texteEchec(QStringLiteral("chaîne de connexion trop courte")),
                         Prompt::Icone::Aucune);
        return;
    }
    if (!m_connexion.ouvrir(*dsn)) {
        Prompt::informer(QStringLiteral("Agenda"), texteEchec(m_connexion.lastError()), Prompt::Icone::Aucune);
        return;
    }
    m_bOpened = true;
}

void ProviderOdbc::CloseDB()
{
    if (!m_bOpened)
        return;
    m_connexion.fermer();
    m_bOpened = false;
}

void ProviderOdbc::DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events)
{
    if (m_bOpened)
        LecturesServeur::RetrieveDayEvents(m_helper, m_connexion, day, events);
}

CalendarEventPtr ProviderOdbc::DoReadEvent(int eventId)
{
    return m_bOpened ? LecturesServeur::ReadEvent(m_helper, m_connexion, eventId) : CalendarEventPtr();
}

CalendarRecurrencePatternPtr ProviderOdbc::DoReadRPattern(int patternId)
{
    return m_bOpened ? LecturesServeur::ReadRPattern(m_helper, m_connexion, patternId) : CalendarRecurrencePatternPtr();
}

void ProviderOdbc::DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events, const QDateTime &)
{
    if (m_bOpened)
        LecturesServeur::GetUpcomingEvents(m_helper, m_connexion, m_kind, start, minutes, events);
}
