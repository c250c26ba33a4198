#include "calendar/mariadbcalendarstore.h"

#include "calendar/calendardataprovider.h"
#include "calendar/lecteurlignes.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QScopeGuard>
#include <QSet>
#include <QSqlRecord>

#include <array>
#include <utility>

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

// The columns the reads ask for, with a table name and a prefix for their
// names when given. Date-times come as text in the stores' own form, which
// the row mapping reads without the general date parser (a week holds
// hundreds of them).
template<int N>
QString colonnes(const char *const (&noms)[N], QLatin1StringView table = {}, QLatin1StringView prefixe = {})
{
    static const QStringList dates = {
        QStringLiteral("StartDateTime"), QStringLiteral("EndDateTime"), QStringLiteral("RExceptionStartTimeOrig"),
        QStringLiteral("RExceptionEndTimeOrig"), QStringLiteral("CreationTime"), QStringLiteral("LastModificationTime"),
        QStringLiteral("EventStartTime"), QStringLiteral("PatternStartDate"), QStringLiteral("PatternEndDate")};
    QStringList l;
    for (const char *nom : noms) {
        const QString c = QLatin1StringView(nom);
        const QString valeur = table.isEmpty() ? c : table + QLatin1Char('.') + c;
        const QString alias = prefixe + c;
        l << (dates.contains(c) ? QStringLiteral("CAST(%1 AS CHAR) AS %2").arg(valeur, alias)
                                : valeur == alias ? c : valeur + QStringLiteral(" AS ") + alias);
    }
    return l.join(QStringLiteral(", "));
}

const QString &colonnesLues()
{
    static const QString liste = colonnes(kNomsEvenement);
    return liste;
}

// The current row of a statement on the server, by column, for the row
// mapping of lecteurlignes.h: the positions are found once per statement (by
// name, after a prefix when given), each value goes through the strict
// conversions of RecordValue, as the general record layer does, but a number
// or a date in the stores' own text is taken as it stands.
template<int N>
class LigneMariaDb
{
public:
    LigneMariaDb(const QSqlQuery &q, const char *const (&noms)[N], QLatin1StringView prefixe = {})
        : m_q(q)
    {
        const QSqlRecord r = q.record();
        for (int quoi = 0; quoi < N; ++quoi)
            m_positions[quoi] = r.indexOf(prefixe + QLatin1StringView(noms[quoi]));
    }

    [[nodiscard]] qint32 entier(int quoi) const
    {
        const QVariant v = valeur(quoi);
        if (v.typeId() == QMetaType::Int && !v.isNull())
            return v.toInt();
        return RecordValue::integer(v);
    }

    [[nodiscard]] QString texte(int quoi) const { return RecordValue::text(valeur(quoi)); }

    [[nodiscard]] bool enTexte(int quoi, QDate &j, QTime &h) const
    {
        const QVariant v = valeur(quoi);
        if (v.typeId() != QMetaType::QString || v.isNull())
            return false;
        const QString s = v.toString();
        return RecordValue::parseIsoText(QStringView(s), j, h) && !(j == QDate(1899, 12, 30) && h == QTime(0, 0));
    }

    [[nodiscard]] bool dateZero(int quoi) const
    {
        const QVariant v = valeur(quoi);
        return v.typeId() == QMetaType::QString && v.toString() == QLatin1StringView("1899-12-30 00:00:00");
    }

    [[nodiscard]] QDateTime dateGenerale(int quoi) const { return RecordValue::dateTime(valeur(quoi)); }

    // Whether the column is there and empty (the side of an outer join that
    // found nothing).
    [[nodiscard]] bool nulle(int quoi) const { return m_positions[quoi] >= 0 && m_q.isNull(m_positions[quoi]); }

private:
    [[nodiscard]] QVariant valeur(int quoi) const
    {
        const int i = m_positions[quoi];
        if (i < 0)
            throw FieldError(QStringLiteral("colonne absente : ") + QString::number(quoi));
        return m_q.value(i);
    }

    const QSqlQuery &m_q;
    std::array<int, N> m_positions{};
};

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
    m_seriesLues.clear();
    m_semaine.reset();
    m_connexion.fermer();
}

bool MariaDbCalendarStore::IsOpen() const
{
    return m_connexion.estOuverte();
}

bool MariaDbCalendarStore::executer(QSqlQuery &q, const QString &sql)
{
    ++m_requetes;
    if (sql.isEmpty() ? q.exec() : q.exec(sql))
        return true;
    m_lastError = q.lastError().text();
    return false;
}

void MariaDbCalendarStore::lire(QSqlQuery &q, QList<CalendarEventPtr> &events, const QString &sql)
{
    m_readFailed = !(sql.isEmpty() ? executer(q) : executer(q, sql));
    if (m_readFailed)
        return;
    const LigneMariaDb<kColonnesEvenement> ligne(q, kNomsEvenement);
    LecteurEvenements lecteur(ligne, m_helper.calendar());
    while (q.next()) {
        if (CalendarEventPtr e = lecteur.lire())
            events.append(e);
    }
}

QString MariaDbCalendarStore::rangeStatement()
{
    // The rows of the days, each master with its pattern and its exceptions
    // beside it (once per exception): the week in one exchange with the
    // server. Each part is read as it is found, with no table in between.
    static const QString lignes = QStringLiteral("SELECT ") + colonnes(kNomsEvenement, QLatin1StringView("e"))
                                  + QStringLiteral(", ")
                                  + colonnes(kNomsMotif, QLatin1StringView("p"), QLatin1StringView("Motif_"))
                                  + QStringLiteral(", ")
                                  + colonnes(kNomsEvenement, QLatin1StringView("x"), QLatin1StringView("Exception_"))
                                  + QStringLiteral(" FROM CalendarEvents e FORCE INDEX (%1)"
                                                   " LEFT JOIN CalendarRecurrencePatterns p"
                                                   " ON e.RecurrenceState = 1 AND p.RecurrencePatternID = e.RecurrencePatternID"
                                                   " LEFT JOIN CalendarEvents x FORCE INDEX (idx_events_serie)"
                                                   " ON e.RecurrenceState = 1 AND x.RecurrencePatternID = e.RecurrencePatternID"
                                                   " AND x.RecurrenceState = 3 WHERE ");
    return lignes.arg(QLatin1StringView("idx_events_debut"))
           + QStringLiteral("e.Longue = 0 AND e.RecurrenceState IN (0, 1) AND e.StartDateTime >= ? AND e.StartDateTime < ?"
                            " AND e.EndDateTime >= ? UNION ALL ")
           + lignes.arg(QLatin1StringView("idx_events_longs"))
           + QStringLiteral("e.Longue = 1 AND e.EndDateTime >= ? AND e.StartDateTime < ? AND e.RecurrenceState IN (0, 1)");
}

void MariaDbCalendarStore::DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events)
{
    DoRetrieveRangeEvents(day, day, events);
}

void MariaDbCalendarStore::DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events)
{
    m_seriesLues.clear();
    if (!IsOpen())
        return;
    // A row touches the days when it begins before the end of the last one
    // and does not end before the first one begins; a short row begins at
    // most a day before.
    const QDateTime debut(first, QTime(0, 0));
    const QDateTime fin(last.addDays(1), QTime(0, 0));
    // The views ask for a week every ten seconds on every station: the
    // statement stays prepared on the server while the connection lasts, so
    // that each read is one exchange, with its rows in binary form. A
    // connection that the driver made again has lost it: prepared anew.
    const QList<QDateTime> valeurs{debut.addDays(-1), fin, debut, debut, fin};
    for (bool nouvelle = !m_semaine;; nouvelle = true) {
        if (!m_semaine) {
            m_semaine = std::make_unique<QSqlQuery>(m_connexion.db());
            m_semaine->setForwardOnly(true);
            if (!m_semaine->prepare(rangeStatement())) {
                m_lastError = m_semaine->lastError().text();
                m_semaine.reset();
                m_readFailed = true;
                return;
            }
        }
        for (int i = 0; i < valeurs.size(); ++i)
            m_semaine->bindValue(i, RecordValue::isoText(valeurs.at(i)));
        m_readFailed = !executer(*m_semaine);
        if (!m_readFailed)
            break;
        m_semaine.reset();
        if (nouvelle)
            return;
    }
    QSqlQuery &q = *m_semaine;
    auto liberer = qScopeGuard([&q] { q.finish(); });
    const LigneMariaDb<kColonnesEvenement> ligne(q, kNomsEvenement);
    const LigneMariaDb<kColonnesMotif> ligneMotif(q, kNomsMotif, QLatin1StringView("Motif_"));
    const LigneMariaDb<kColonnesEvenement> ligneException(q, kNomsEvenement, QLatin1StringView("Exception_"));
    LecteurEvenements lecteur(ligne, m_helper.calendar());
    const LecteurMotifs motifs(ligneMotif, m_helper.calendar());
    LecteurEvenements lecteurExceptions(ligneException, m_helper.calendar());
    QHash<int, CalendarRecurrencePatternPtr> series;
    QHash<int, QList<CalendarEventPtr>> exceptions;
    QSet<int> maitres;
    while (q.next()) {
        try {
            if (ligne.entier(ColonneEvenement::RecurrenceState) != CalendarEvent::Master) {
                if (CalendarEventPtr e = lecteur.lire())
                    events.append(e);
                continue;
            }
            // A master comes once per exception of its series.
            const int serie = ligne.entier(ColonneEvenement::RecurrencePatternID);
            const int maitre = ligne.entier(ColonneEvenement::EventID);
            if (!maitres.contains(maitre)) {
                maitres.insert(maitre);
                if (CalendarEventPtr e = lecteur.lire()) {
                    events.append(e);
                    if (CalendarRecurrencePatternPtr p = motifs.lire())
                        series.insert(p->RecurrencePatternID(), p);
                }
            }
            if (ligneException.nulle(ColonneEvenement::EventID))
                continue;
            if (CalendarEventPtr e = lecteurExceptions.lire(true))
                exceptions[serie].append(e);
        } catch (const FieldError &) {
            // A row whose state cannot be read is left out, as the mapping does.
        }
    }
    for (const CalendarRecurrencePatternPtr &p : std::as_const(series)) {
        for (const CalendarEventPtr &e : exceptions.value(p->RecurrencePatternID()))
            p->SetException(e);
    }
    m_seriesLues = std::move(series);
    m_seriesLuesApres = m_requetes;
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
    // The series of the days just read came with them, unless this store
    // sent anything since; they are handed out once.
    const QHash<int, CalendarRecurrencePatternPtr> semaine = std::exchange(m_seriesLues, {});
    QHash<int, CalendarRecurrencePatternPtr> lus;
    bool toutes = m_seriesLuesApres == m_requetes && !semaine.isEmpty();
    for (const int id : patternIds)
        toutes = toutes && semaine.contains(id);
    if (toutes) {
        for (const int id : patternIds)
            lus.insert(id, semaine.value(id));
        return lus;
    }
    if (!IsOpen() || patternIds.isEmpty())
        return lus;
    const QString cles = listeCles(patternIds);
    // All the exceptions of these series in one read, then the patterns. A
    // series read without its exceptions would show occurrences that were
    // moved or deleted: the failure of either read is the failure of the
    // whole read.
    QHash<int, QList<CalendarEventPtr>> exceptions;
    {
        QSqlQuery q(m_connexion.db());
        q.setForwardOnly(true);
        if (!executer(q, QStringLiteral("SELECT ") + colonnesLues()
                             + QStringLiteral(" FROM CalendarEvents WHERE RecurrenceState = 3 AND RecurrencePatternID IN (")
                             + cles + QStringLiteral(")"))) {
            m_readFailed = true;
            return lus;
        }
        const LigneMariaDb<kColonnesEvenement> ligne(q, kNomsEvenement);
        LecteurEvenements lecteur(ligne, m_helper.calendar());
        while (q.next()) {
            try {
                const int serie = ligne.entier(ColonneEvenement::RecurrencePatternID);
                if (CalendarEventPtr e = lecteur.lire(true))
                    exceptions[serie].append(e);
            } catch (const FieldError &) {
            }
        }
    }
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    if (!executer(q, QStringLiteral("SELECT ") + colonnes(kNomsMotif)
                         + QStringLiteral(" FROM CalendarRecurrencePatterns WHERE RecurrencePatternID IN (") + cles
                         + QStringLiteral(")"))) {
        m_readFailed = true;
        return lus;
    }
    const LigneMariaDb<kColonnesMotif> ligne(q, kNomsMotif);
    const LecteurMotifs motifs(ligne, m_helper.calendar());
    while (q.next()) {
        if (CalendarRecurrencePatternPtr p = motifs.lire()) {
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
