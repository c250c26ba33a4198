#include "calendar/mariadbcalendarstore.h"

#include "calendar/calendardataprovider.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {

const QStringList kEventColumns = {
    QStringLiteral("Subject"), QStringLiteral("Location"), QStringLiteral("Body"), QStringLiteral("IsMeeting"),
    QStringLiteral("IsPrivate"), QStringLiteral("LabelID"), QStringLiteral("BusyStatus"), QStringLiteral("ImportanceLevel"),
    QStringLiteral("StartDateTime"), QStringLiteral("EndDateTime"), QStringLiteral("IsAllDayEvent"), QStringLiteral("IsReminder"),
    QStringLiteral("ReminderMinutesBeforeStart"), QStringLiteral("RemainderSoundFile"), QStringLiteral("RecurrenceState"),
    QStringLiteral("RecurrencePatternID"), QStringLiteral("RExceptionStartTimeOrig"), QStringLiteral("RExceptionEndTimeOrig"),
    QStringLiteral("ISRecurrenceExceptionDeleted"), QStringLiteral("CustomPropertiesXMLData"), QStringLiteral("CustomIconsIDs"),
    QStringLiteral("ScheduleID"), QStringLiteral("CreationTime"), QStringLiteral("LastModificationTime")};

const QStringList kPatternColumns = {
    QStringLiteral("MasterEventID"), QStringLiteral("EventStartTime"), QStringLiteral("EventDuration"),
    QStringLiteral("PatternStartDate"), QStringLiteral("PatternEndMethod"), QStringLiteral("PatternEndDate"),
    QStringLiteral("PatternEndAfterOccurrences"), QStringLiteral("OptionsData1"), QStringLiteral("OptionsData2"),
    QStringLiteral("OptionsData3"), QStringLiteral("OptionsData4"), QStringLiteral("CustomPropertiesXMLData")};

const char *const kSchema[] = {
    "CREATE TABLE IF NOT EXISTS CalendarEvents ("
    " EventID INT NOT NULL AUTO_INCREMENT PRIMARY KEY,"
    " Subject TEXT NOT NULL DEFAULT '', Location TEXT NOT NULL DEFAULT '', Body TEXT NOT NULL DEFAULT '',"
    " IsMeeting INT NOT NULL DEFAULT 0, IsPrivate INT NOT NULL DEFAULT 0, LabelID INT NOT NULL DEFAULT 0,"
    " BusyStatus INT NOT NULL DEFAULT 0, ImportanceLevel INT NOT NULL DEFAULT 1,"
    " StartDateTime DATETIME NOT NULL, EndDateTime DATETIME NOT NULL,"
    " IsAllDayEvent INT NOT NULL DEFAULT 0, IsReminder INT NOT NULL DEFAULT 0,"
    " ReminderMinutesBeforeStart INT NOT NULL DEFAULT 0, RemainderSoundFile TEXT NOT NULL DEFAULT '',"
    " RecurrenceState INT NOT NULL DEFAULT 0, RecurrencePatternID INT NOT NULL DEFAULT 0,"
    " RExceptionStartTimeOrig DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " RExceptionEndTimeOrig DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " ISRecurrenceExceptionDeleted INT NOT NULL DEFAULT 0,"
    " CustomPropertiesXMLData MEDIUMTEXT NOT NULL DEFAULT '', CustomIconsIDs TEXT NOT NULL DEFAULT '',"
    " ScheduleID INT NOT NULL DEFAULT 0,"
    " CreationTime DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " LastModificationTime DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',"
    // Rows longer than a day (masters spanning their series, absences over
    // weeks) are few: the day reads find them by their end, the others by
    // their start.
    " Longue TINYINT AS (EndDateTime > StartDateTime + INTERVAL 1 DAY) PERSISTENT,"
    // The reminder moment of a row, for the reminder poll.
    " MomentRappel DATETIME AS (StartDateTime - INTERVAL ReminderMinutesBeforeStart MINUTE) PERSISTENT,"
    " KEY idx_events_debut (Longue, RecurrenceState, StartDateTime),"
    " KEY idx_events_longs (Longue, EndDateTime),"
    " KEY idx_events_serie (RecurrencePatternID, RecurrenceState),"
    " KEY idx_events_rappel (IsReminder, RecurrenceState, MomentRappel)"
    ") ENGINE=InnoDB DEFAULT CHARSET=utf8mb4",
    "CREATE TABLE IF NOT EXISTS CalendarRecurrencePatterns ("
    " RecurrencePatternID INT NOT NULL AUTO_INCREMENT PRIMARY KEY,"
    " MasterEventID INT NOT NULL DEFAULT 0, EventStartTime DATETIME NOT NULL, EventDuration INT NOT NULL DEFAULT 0,"
    " PatternStartDate DATETIME NOT NULL, PatternEndMethod INT NOT NULL DEFAULT 2,"
    " PatternEndDate DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00', PatternEndAfterOccurrences INT NOT NULL DEFAULT 0,"
    " OptionsData1 INT NOT NULL DEFAULT 0, OptionsData2 INT NOT NULL DEFAULT 0,"
    " OptionsData3 INT NOT NULL DEFAULT 0, OptionsData4 INT NOT NULL DEFAULT 0,"
    " CustomPropertiesXMLData MEDIUMTEXT NOT NULL DEFAULT ''"
    ") ENGINE=InnoDB DEFAULT CHARSET=utf8mb4",
    "CREATE TABLE IF NOT EXISTS CalendarSchedules ("
    " ScheduleID INT NOT NULL AUTO_INCREMENT PRIMARY KEY, Name TEXT NOT NULL DEFAULT ''"
    ") ENGINE=InnoDB DEFAULT CHARSET=utf8mb4",
};

// The columns the reads ask for. Date-times come as text in the stores'
// own form, which the record mapping reads without the general date parser
// (a week holds hundreds of them).
const QString &colonnesLues()
{
    static const QString liste = [] {
        const QStringList dates = {QStringLiteral("StartDateTime"), QStringLiteral("EndDateTime"),
                                   QStringLiteral("RExceptionStartTimeOrig"), QStringLiteral("RExceptionEndTimeOrig"),
                                   QStringLiteral("CreationTime"), QStringLiteral("LastModificationTime")};
        QStringList l{QStringLiteral("EventID")};
        for (const QString &c : kEventColumns)
            l << (dates.contains(c) ? QStringLiteral("CAST(%1 AS CHAR) AS %1").arg(c) : c);
        return l.join(QStringLiteral(", "));
    }();
    return liste;
}

QVariant bindable(const QVariant &v)
{
    if (v.typeId() == QMetaType::QDateTime && !v.toDateTime().isValid())
        return RecordValue::zeroDate();
    if (v.typeId() == QMetaType::QString && v.toString().isNull())
        return QStringLiteral("");
    return v;
}

QString listeCles(const QList<int> &ids)
{
    QStringList l;
    for (const int id : ids)
        l << QString::number(id);
    return l.join(QLatin1Char(','));
}

} // namespace

QString ParametreMariaDb(const QString &parameters, const QString &name)
{
    for (const QString &partie : parameters.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const qsizetype egal = partie.indexOf(QLatin1Char('='));
        if (egal > 0 && partie.left(egal).trimmed().compare(name, Qt::CaseInsensitive) == 0)
            return partie.mid(egal + 1).trimmed();
    }
    return {};
}

MariaDbCalendarStore::MariaDbCalendarStore(QString parameters)
    : m_parameters(std::move(parameters))
{
}

MariaDbCalendarStore::~MariaDbCalendarStore()
{
    Close();
}

bool MariaDbCalendarStore::ouvrir(bool creer)
{
    Close();
    // The agenda stays open for days: a connection the server dropped for
    // idleness (wait_timeout) is made again by the driver.
    QString options = QStringLiteral("MYSQL_OPT_RECONNECT=1");
    const QString socket = ParametreMariaDb(m_parameters, QStringLiteral("Socket"));
    if (!socket.isEmpty())
        options += QStringLiteral(";UNIX_SOCKET=") + socket;
    if (!m_connexion.ouvrir(ParametreMariaDb(m_parameters, QStringLiteral("Database")),
                            ParametreMariaDb(m_parameters, QStringLiteral("User")),
                            ParametreMariaDb(m_parameters, QStringLiteral("Password")),
                            ParametreMariaDb(m_parameters, QStringLiteral("Server")),
                            ParametreMariaDb(m_parameters, QStringLiteral("Port")).toInt(), options)) {
        m_lastError = m_connexion.lastError();
        return false;
    }
    try {
        // The workstations read what the others committed, at each statement.
        m_connexion.executer(QStringLiteral("SET SESSION TRANSACTION ISOLATION LEVEL READ COMMITTED"));
        bool presentes = false;
        {
            const std::unique_ptr<RecordCursor> t = m_connexion.execute(QStringLiteral("SHOW TABLES LIKE 'CalendarEvents'"));
            presentes = !t->atEnd();
        }
        // A user given only the rights on the rows may open a book that
        // exists: the tables are made only when they are not there.
        if (!presentes) {
            if (!creer) {
                m_connexion.fermer();
                return false;
            }
            for (const char *s : kSchema)
                m_connexion.executer(QString::fromLatin1(s));
        }
    } catch (const FieldError &e) {
        m_lastError = QString::fromStdString(e.what());
        m_connexion.fermer();
        return false;
    }
    return true;
}

bool MariaDbCalendarStore::Open()
{
    return ouvrir(false);
}

bool MariaDbCalendarStore::Create()
{
    return ouvrir(true);
}

void MariaDbCalendarStore::Close()
{
    m_changeDepth = 0;
    m_connexion.fermer();
}

bool MariaDbCalendarStore::IsOpen() const
{
    return m_connexion.estOuverte();
}

bool MariaDbCalendarStore::executer(QSqlQuery &q, const QString &sql)
{
    if (sql.isEmpty() ? q.exec() : q.exec(sql))
        return true;
    m_lastError = q.lastError().text();
    return false;
}

void MariaDbCalendarStore::lire(QSqlQuery &q, QList<CalendarEventPtr> &events, bool exceptions, const QString &sql)
{
    m_readFailed = !(sql.isEmpty() ? executer(q) : executer(q, sql));
    if (m_readFailed)
        return;
    for (QueryCursor rs(&q); !rs.atEnd(); rs.next()) {
        if (CalendarEventPtr e = m_helper.CreateEventFromRS(rs, exceptions)) {
            lireHeures(rs, *e);
            events.append(e);
        }
    }
}

void MariaDbCalendarStore::lireHeures(const RecordSource &rs, CalendarEvent &e)
{
    try {
        e.setCreationTime(RecordValue::dateTime(rs.field(QStringLiteral("CreationTime"))));
        e.setLastModificationTime(RecordValue::dateTime(rs.field(QStringLiteral("LastModificationTime"))));
    } catch (const FieldError &) {
        // Times of a row written by another program: left unset.
    }
}

QString MariaDbCalendarStore::rangeStatement()
{
    return QStringLiteral("SELECT ") + colonnesLues()
           + QStringLiteral(" FROM CalendarEvents FORCE INDEX (idx_events_debut)"
                            " WHERE Longue = 0 AND RecurrenceState IN (0, 1) AND StartDateTime >= ? AND StartDateTime < ?"
                            " AND EndDateTime >= ?"
                            " UNION ALL SELECT ")
           + colonnesLues()
           + QStringLiteral(" FROM CalendarEvents FORCE INDEX (idx_events_longs)"
                            " WHERE Longue = 1 AND EndDateTime >= ? AND StartDateTime < ? AND RecurrenceState IN (0, 1)");
}

void MariaDbCalendarStore::DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events)
{
    DoRetrieveRangeEvents(day, day, events);
}

void MariaDbCalendarStore::DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events)
{
    if (!IsOpen())
        return;
    // A row touches the days when it begins before the end of the last one
    // and does not end before the first one begins; a short row begins at
    // most a day before.
    const QDateTime debut(first, QTime(0, 0));
    const QDateTime fin(last.addDays(1), QTime(0, 0));
    // The values go into the text: the views ask for a week every ten
    // seconds on every station, and a statement prepared on the server costs
    // two more round trips each time.
    QString sql = rangeStatement();
    for (const QDateTime &v : {debut.addDays(-1), fin, debut, debut, fin})
        sql.replace(sql.indexOf(QLatin1Char('?')), 1, QLatin1Char('\'') + RecordValue::isoText(v) + QLatin1Char('\''));
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    lire(q, events, false, sql);
}

CalendarEventPtr MariaDbCalendarStore::DoReadEvent(int eventId)
{
    if (!IsOpen())
        return {};
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT ") + colonnesLues() + QStringLiteral(" FROM CalendarEvents WHERE EventID = ?"));
    q.addBindValue(eventId);
    QList<CalendarEventPtr> events;
    lire(q, events);
    return events.isEmpty() ? CalendarEventPtr() : events.first();
}

CalendarRecurrencePatternPtr MariaDbCalendarStore::DoReadRPattern(int patternId)
{
    return DoReadRPatterns({patternId}).value(patternId);
}

QHash<int, CalendarRecurrencePatternPtr> MariaDbCalendarStore::DoReadRPatterns(const QList<int> &patternIds)
{
    QHash<int, CalendarRecurrencePatternPtr> lus;
    if (!IsOpen() || patternIds.isEmpty())
        return lus;
    const QString cles = listeCles(patternIds);
    // All the exceptions of these series in one read, then the patterns.
    QHash<int, QList<CalendarEventPtr>> exceptions;
    {
        QSqlQuery q(m_connexion.db());
        q.setForwardOnly(true);
        if (!executer(q, QStringLiteral("SELECT ") + colonnesLues() + QStringLiteral(" FROM CalendarEvents WHERE RecurrenceState = 3 AND RecurrencePatternID IN (") + cles
                             + QStringLiteral(")")))
            return lus;
        for (QueryCursor rs(&q); !rs.atEnd(); rs.next()) {
            try {
                const int serie = RecordValue::integer(rs.field(QStringLiteral("RecurrencePatternID")));
                if (CalendarEventPtr e = m_helper.CreateEventFromRS(rs, true)) {
                    lireHeures(rs, *e);
                    exceptions[serie].append(e);
                }
            } catch (const FieldError &) {
            }
        }
    }
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    if (!executer(q, QStringLiteral("SELECT * FROM CalendarRecurrencePatterns WHERE RecurrencePatternID IN (") + cles + QStringLiteral(")")))
        return lus;
    // The exceptions are read already: the mapping's own question gets no rows.
    FixedRowsConnection dejaLues({});
    for (QueryCursor rs(&q); !rs.atEnd(); rs.next()) {
        if (CalendarRecurrencePatternPtr p = m_helper.CreateRPatternFromRS(rs, dejaLues)) {
            for (const CalendarEventPtr &e : exceptions.value(p->RecurrencePatternID()))
                p->SetException(e);
            lus.insert(p->RecurrencePatternID(), p);
        }
    }
    return lus;
}

bool MariaDbCalendarStore::insertRow(const QString &table, const MemoryRecord &row, int &newId)
{
    if (!IsOpen())
        return false;
    QStringList marques;
    for (qsizetype i = 0; i < row.columns().size(); ++i)
        marques << QStringLiteral("?");
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("INSERT INTO ") + table + QStringLiteral(" (") + row.columns().join(QStringLiteral(", "))
              + QStringLiteral(") VALUES (") + marques.join(QStringLiteral(", ")) + QStringLiteral(")"));
    for (const QVariant &v : row.values())
        q.addBindValue(bindable(v));
    if (!executer(q))
        return false;
    // The key of this very insert, whatever the other workstations write.
    newId = q.lastInsertId().toInt();
    return newId != 0;
}

bool MariaDbCalendarStore::updateRow(const QString &table, const MemoryRecord &row, const QString &keyColumn, int key)
{
    if (!IsOpen())
        return false;
    QStringList affectations;
    for (const QString &c : row.columns())
        affectations << c + QStringLiteral(" = ?");
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") + affectations.join(QStringLiteral(", "))
              + QStringLiteral(" WHERE ") + keyColumn + QStringLiteral(" = ?"));
    for (const QVariant &v : row.values())
        q.addBindValue(bindable(v));
    q.addBindValue(key);
    if (!executer(q))
        return false;
    // A row whose values did not change counts as not affected: ask whether
    // it is there at all.
    if (q.numRowsAffected() == 1)
        return true;
    QSqlQuery existe(m_connexion.db());
    existe.prepare(QStringLiteral("SELECT 1 FROM ") + table + QStringLiteral(" WHERE ") + keyColumn + QStringLiteral(" = ?"));
    existe.addBindValue(key);
    return executer(existe) && existe.next();
}

bool MariaDbCalendarStore::DoCreateEvent(const CalendarEvent &event, int &newEventId)
{
    MemoryRecord row(kEventColumns);
    m_helper.PutEventToRS(event, row);
    row.setField(QStringLiteral("CreationTime"), event.CreationTime());
    row.setField(QStringLiteral("LastModificationTime"), event.LastModificationTime());
    return insertRow(QStringLiteral("CalendarEvents"), row, newEventId);
}

bool MariaDbCalendarStore::DoUpdateEvent(const CalendarEvent &event)
{
    MemoryRecord row(kEventColumns);
    m_helper.PutEventToRS(event, row);
    row.setField(QStringLiteral("CreationTime"), event.CreationTime());
    row.setField(QStringLiteral("LastModificationTime"), event.LastModificationTime());
    return updateRow(QStringLiteral("CalendarEvents"), row, QStringLiteral("EventID"), event.EventID());
}

bool MariaDbCalendarStore::DoDeleteEvent(const CalendarEvent &event)
{
    if (!IsOpen())
        return false;
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("DELETE FROM CalendarEvents WHERE EventID = ?"));
    q.addBindValue(event.EventID());
    return executer(q);
}

bool MariaDbCalendarStore::DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId)
{
    MemoryRecord row(kPatternColumns);
    m_helper.PutRPatternToRS(pattern, row);
    return insertRow(QStringLiteral("CalendarRecurrencePatterns"), row, newPatternId);
}

bool MariaDbCalendarStore::DoUpdateRPattern(const CalendarRecurrencePattern &pattern)
{
    MemoryRecord row(kPatternColumns);
    m_helper.PutRPatternToRS(pattern, row);
    return updateRow(QStringLiteral("CalendarRecurrencePatterns"), row, QStringLiteral("RecurrencePatternID"),
                     pattern.RecurrencePatternID());
}

bool MariaDbCalendarStore::DoDeleteRPattern(const CalendarRecurrencePattern &pattern)
{
    if (!IsOpen())
        return false;
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("DELETE FROM CalendarRecurrencePatterns WHERE RecurrencePatternID = ?"));
    q.addBindValue(pattern.RecurrencePatternID());
    return executer(q);
}

void MariaDbCalendarStore::DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events,
                                               const QDateTime &since)
{
    if (!IsOpen())
        return;
    // Plain rows by their reminder moment; masters are few and are all
    // looked at: their occurrences decide.
    const QDateTime t = start.addSecs(qint64(minutes) * 60);
    QString s = QStringLiteral("SELECT ") + colonnesLues()
                + QStringLiteral(" FROM CalendarEvents WHERE IsReminder <> 0 AND RecurrenceState = 0 AND MomentRappel <= ?");
    if (since.isValid())
        s += QStringLiteral(" AND MomentRappel >= ?");
    s += QStringLiteral(" UNION ALL SELECT ") + colonnesLues()
         + QStringLiteral(" FROM CalendarEvents WHERE RecurrenceState = 1 AND MomentRappel <= ?"
                        " AND (IsReminder <> 0 OR RecurrencePatternID IN (SELECT RecurrencePatternID FROM CalendarEvents"
                        " WHERE RecurrenceState = 3 AND IsReminder <> 0 AND MomentRappel <= ?))");
    if (since.isValid())
        s += QStringLiteral(" AND EndDateTime >= ?");
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    q.prepare(s);
    q.addBindValue(t);
    if (since.isValid())
        q.addBindValue(since);
    q.addBindValue(t);
    q.addBindValue(t);
    if (since.isValid())
        q.addBindValue(since);
    lire(q, events);
}

bool MariaDbCalendarStore::BeginChange()
{
    if (!IsOpen())
        return false;
    if (m_changeDepth++ > 0)
        return true;
    if (m_connexion.db().transaction())
        return true;
    m_lastError = m_connexion.db().lastError().text();
    m_changeDepth = 0;
    return false;
}

bool MariaDbCalendarStore::CommitChange()
{
    if (!IsOpen() || m_changeDepth == 0)
        return false;
    if (--m_changeDepth > 0)
        return true;
    if (m_connexion.db().commit())
        return true;
    m_lastError = m_connexion.db().lastError().text();
    m_connexion.db().rollback();
    return false;
}

void MariaDbCalendarStore::RollbackChange()
{
    if (!IsOpen() || m_changeDepth == 0)
        return;
    m_changeDepth = 0;
    m_connexion.db().rollback();
}

bool MariaDbCalendarStore::DoReadSchedules(QList<CalendarSchedule> &schedules)
{
    schedules.clear();
    if (!IsOpen())
        return false;
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT ScheduleID, Name FROM CalendarSchedules ORDER BY ScheduleID"));
    if (!executer(q))
        return false;
    while (q.next())
        schedules.append({q.value(0).toInt(), q.value(1).toString()});
    return true;
}

bool MariaDbCalendarStore::DoCreateSchedule(const QString &name, int &newScheduleId)
{
    if (!IsOpen())
        return false;
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("INSERT INTO CalendarSchedules (Name) VALUES (?)"));
    q.addBindValue(bindable(name));
    if (!executer(q))
        return false;
    newScheduleId = q.lastInsertId().toInt();
    return newScheduleId != 0;
}

bool MariaDbCalendarStore::DoRenameSchedule(int scheduleId, const QString &name)
{
    if (!IsOpen())
        return false;
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("UPDATE CalendarSchedules SET Name = ? WHERE ScheduleID = ?"));
    q.addBindValue(bindable(name));
    q.addBindValue(scheduleId);
    return executer(q);
}

bool MariaDbCalendarStore::DoDeleteSchedule(int scheduleId)
{
    if (!IsOpen())
        return false;
    QSqlQuery q(m_connexion.db());
    q.prepare(QStringLiteral("DELETE FROM CalendarSchedules WHERE ScheduleID = ?"));
    q.addBindValue(scheduleId);
    return executer(q) && q.numRowsAffected() == 1;
}

int MariaDbCalendarStore::DoCountScheduleEvents(int scheduleId)
{
    if (!IsOpen())
        return -1;
    // A series counts once, by its master; an exception only when it was
    // moved to this schedule apart from its series.
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral(
        "SELECT COUNT(*) FROM CalendarEvents e WHERE e.ScheduleID = ? AND (e.RecurrenceState IN (0, 1)"
        " OR (e.RecurrenceState = 3 AND e.ISRecurrenceExceptionDeleted = 0 AND NOT EXISTS ("
        "SELECT 1 FROM CalendarEvents m WHERE m.RecurrenceState = 1"
        " AND m.RecurrencePatternID = e.RecurrencePatternID AND m.ScheduleID = e.ScheduleID)))"));
    q.addBindValue(scheduleId);
    if (!executer(q) || !q.next())
        return -1;
    return q.value(0).toInt();
}
