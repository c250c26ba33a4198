#include "calendar/providersqlserver.h"

#include "calendar/lecturesserveur.h"
#include "shell/base/prompt.h"

#include <QSqlError>

namespace {

const QString kEvents = QStringLiteral("CalendarEvents");
const QString kPatterns = QStringLiteral("CalendarRecurrencePatterns");

} // namespace

providerSQLServer::providerSQLServer() : ProviderOdbc(4) {}

providerSQLServer::~providerSQLServer()
{
    CloseDB();
}

QString providerSQLServer::TexteEchecOuverture(const QString &driverText)
{
    return QStringLiteral("Cannot open SQL Server DB: ") + driverText;
}

// One row written through a row set inside a transaction. A failure leaves
// the row unwritten: the transaction is rolled back, so that the writes that
// follow on this connection are not held in it and lost.
template<typename Remplir>
static bool ecrireParRecordset(ConnexionServeur &connexion, const QString &table, const QString &cle, const QString &sql,
                               bool nouvelle, Remplir &&remplir)
{
    RecordsetServeur rs(connexion, table, cle);
    bool transaction = false;
    try {
        rs.Open(sql);
        transaction = connexion.db().transaction();
        if (!transaction)
            throw FieldError(connexion.db().lastError().text());
        if (nouvelle)
            rs.AddNew();
        remplir(rs);
        if (!rs.Update())
            throw FieldError(rs.lastError());
        rs.Close();
        if (!connexion.db().commit())
            throw FieldError(QStringLiteral("commit"));
        return true;
    } catch (const FieldError &e) {
        connexion.noterErreur(QString::fromStdString(e.what()));
        if (transaction)
            connexion.db().rollback();
        return false;
    }
}

bool providerSQLServer::DoCreateEvent(const CalendarEvent &event, int &newEventId)
{
    if (!m_bOpened)
        return false;
    if (!ecrireParRecordset(m_connexion, kEvents, QStringLiteral("EventID"),
                            QStringLiteral("SELECT * FROM CalendarEvents WHERE EventID = 0"), true,
                            [&](RecordsetServeur &rs) { m_helper.PutEventToRS(event, rs); }))
        return false;
    newEventId = LecturesServeur::NewKey(m_connexion, QStringLiteral("SELECT MAX(EventID) AS NewEventID FROM CalendarEvents"),
                                         QStringLiteral("NewEventID"));
    return newEventId != 0;
}

bool providerSQLServer::DoUpdateEvent(const CalendarEvent &event)
{
    if (!m_bOpened)
        return false;
    return ecrireParRecordset(m_connexion, kEvents, QStringLiteral("EventID"),
                              QStringLiteral("SELECT * FROM CalendarEvents WHERE EventID = ") + QString::number(event.EventID()),
                              false, [&](RecordsetServeur &rs) { m_helper.PutEventToRS(event, rs); });
}

bool providerSQLServer::DoDeleteEvent(const CalendarEvent &event)
{
    return m_bOpened
        && LecturesServeur::Execute(m_connexion,
                                    QStringLiteral("DELETE FROM CalendarEvents WHERE EventID = ") + QString::number(event.EventID()));
}

bool providerSQLServer::DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId)
{
    if (!m_bOpened)
        return false;
    if (!ecrireParRecordset(m_connexion, kPatterns, QStringLiteral("RecurrencePatternID"),
                            QStringLiteral("SELECT * FROM CalendarRecurrencePatterns ")
                                + QStringLiteral(" WHERE RecurrencePatternID = 0 "),
                            true, [&](RecordsetServeur &rs) { m_helper.PutRPatternToRS(pattern, rs); }))
        return false;
    newPatternId = LecturesServeur::NewKey(
        m_connexion, QStringLiteral("SELECT MAX(RecurrencePatternID) AS NewNewPatternID FROM CalendarRecurrencePatterns"),
        QStringLiteral("NewNewPatternID"));
    return newPatternId != 0;
}

bool providerSQLServer::DoUpdateRPattern(const CalendarRecurrencePattern &pattern)
{
    if (!m_bOpened)
        return false;
    return ecrireParRecordset(m_connexion, kPatterns, QStringLiteral("RecurrencePatternID"),
                              QStringLiteral("SELECT * FROM CalendarRecurrencePatterns ")
                                  + QStringLiteral(" WHERE RecurrencePatternID = ")
                                  + QString::number(pattern.RecurrencePatternID()),
                              false, [&](RecordsetServeur &rs) { m_helper.PutRPatternToRS(pattern, rs); });
}

bool providerSQLServer::DoDeleteRPattern(const CalendarRecurrencePattern &pattern)
{
    return m_bOpened
        && LecturesServeur::Execute(m_connexion, QStringLiteral("DELETE FROM CalendarRecurrencePatterns WHERE RecurrencePatternID = ")
                                                     + QString::number(pattern.RecurrencePatternID()));
}
