#include "calendar/sqlitecalendarstore.h"

#include "calendar/calendardataprovider.h"
#include "calendar/lecteurlignes.h"
#include "shell/base/basesqlite.h"

#include <sqlite3.h>

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QScopeGuard>
#include <QSqlRecord>

#include <array>
#include <atomic>
#include <cstring>
#include <limits>
#include <utility>

namespace {

const QStringList kEventColumns = {
    QStringLiteral("Subject"), QStringLiteral("Location"), QStringLiteral("Body"), QStringLiteral("IsMeeting"),
    QStringLiteral("IsPrivate"), QStringLiteral("LabelID"), QStringLiteral("BusyStatus"), QStringLiteral("ImportanceLevel"),
    QStringLiteral("StartDateTime"), QStringLiteral("EndDateTime"), QStringLiteral("IsAllDayEvent"), QStringLiteral("IsReminder"),
    QStringLiteral("ReminderMinutesBeforeStart"), QStringLiteral("RemainderSoundFile"), QStringLiteral("RecurrenceState"),
    QStringLiteral("RecurrencePatternID"), QStringLiteral("RExceptionStartTimeOrig"), QStringLiteral("RExceptionEndTimeOrig"),
    QStringLiteral("ISRecurrenceExceptionDeleted"), QStringLiteral("CustomPropertiesXMLData"), QStringLiteral("CustomIconsIDs"),
    QStringLiteral("ScheduleID"),
    // Kept by this store only: the editor shows them and the mirror copies
    // the creation time.
    QStringLiteral("CreationTime"), QStringLiteral("LastModificationTime")};

const QStringList kPatternColumns = {
    QStringLiteral("MasterEventID"), QStringLiteral("EventStartTime"), QStringLiteral("EventDuration"),
    QStringLiteral("PatternStartDate"), QStringLiteral("PatternEndMethod"), QStringLiteral("PatternEndDate"),
    QStringLiteral("PatternEndAfterOccurrences"), QStringLiteral("OptionsData1"), QStringLiteral("OptionsData2"),
    QStringLiteral("OptionsData3"), QStringLiteral("OptionsData4"), QStringLiteral("CustomPropertiesXMLData")};

// Date-times are kept as "yyyy-MM-dd HH:mm:ss" text, which sorts as the
// dates do and lets the indexes answer range questions.
QVariant bindable(const QVariant &v)
{
    if (v.typeId() == QMetaType::QDateTime)
        return RecordValue::isoText(v.toDateTime());
    // An empty text is a text, not a missing value.
    if (v.typeId() == QMetaType::QString && v.toString().isNull())
        return QStringLiteral("");
    return v;
}

const char *const kSchema[] = {
    "CREATE TABLE IF NOT EXISTS CalendarEvents ("
    " EventID INTEGER PRIMARY KEY AUTOINCREMENT,"
    " Subject TEXT NOT NULL DEFAULT '',"
    " Location TEXT NOT NULL DEFAULT '',"
    " Body TEXT NOT NULL DEFAULT '',"
    " IsMeeting INTEGER NOT NULL DEFAULT 0,"
    " IsPrivate INTEGER NOT NULL DEFAULT 0,"
    " LabelID INTEGER NOT NULL DEFAULT 0,"
    " BusyStatus INTEGER NOT NULL DEFAULT 0,"
    " ImportanceLevel INTEGER NOT NULL DEFAULT 1,"
    " StartDateTime TEXT NOT NULL,"
    " EndDateTime TEXT NOT NULL,"
    " IsAllDayEvent INTEGER NOT NULL DEFAULT 0,"
    " IsReminder INTEGER NOT NULL DEFAULT 0,"
    " ReminderMinutesBeforeStart INTEGER NOT NULL DEFAULT 0,"
    " RemainderSoundFile TEXT NOT NULL DEFAULT '',"
    " RecurrenceState INTEGER NOT NULL DEFAULT 0,"
    " RecurrencePatternID INTEGER NOT NULL DEFAULT 0,"
    " RExceptionStartTimeOrig TEXT NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " RExceptionEndTimeOrig TEXT NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " ISRecurrenceExceptionDeleted INTEGER NOT NULL DEFAULT 0,"
    " CustomPropertiesXMLData TEXT NOT NULL DEFAULT '',"
    " CustomIconsIDs TEXT NOT NULL DEFAULT '',"
    " ScheduleID INTEGER NOT NULL DEFAULT 0,"
    " CreationTime TEXT NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " LastModificationTime TEXT NOT NULL DEFAULT '1899-12-30 00:00:00')",
    "CREATE TABLE IF NOT EXISTS CalendarRecurrencePatterns ("
    " RecurrencePatternID INTEGER PRIMARY KEY AUTOINCREMENT,"
    " MasterEventID INTEGER NOT NULL DEFAULT 0,"
    " EventStartTime TEXT NOT NULL,"
    " EventDuration INTEGER NOT NULL DEFAULT 0,"
    " PatternStartDate TEXT NOT NULL,"
    " PatternEndMethod INTEGER NOT NULL DEFAULT 2,"
    " PatternEndDate TEXT NOT NULL DEFAULT '1899-12-30 00:00:00',"
    " PatternEndAfterOccurrences INTEGER NOT NULL DEFAULT 0,"
    " OptionsData1 INTEGER NOT NULL DEFAULT 0,"
    " OptionsData2 INTEGER NOT NULL DEFAULT 0,"
    " OptionsData3 INTEGER NOT NULL DEFAULT 0,"
    " OptionsData4 INTEGER NOT NULL DEFAULT 0,"
    " CustomPropertiesXMLData TEXT NOT NULL DEFAULT '')",
    // The schedules live in the file, beside the rows that name them, so that
    // every workstation sharing it has the same list and keys. AUTOINCREMENT:
    // the key of a removed schedule is never given again, so appointments
    // that still name it never fall into a new one.
    "CREATE TABLE IF NOT EXISTS CalendarSchedules ("
    " ScheduleID INTEGER PRIMARY KEY AUTOINCREMENT,"
    " Name TEXT NOT NULL DEFAULT '')",
    // Reminders being sent: the key of the reminder (the row, and the
    // occurrence's start for a series), who sends it and since when.
    "CREATE TABLE IF NOT EXISTS RappelsEnCours ("
    " Cle TEXT PRIMARY KEY,"
    " Expediteur TEXT NOT NULL,"
    " Depuis TEXT NOT NULL)",
    // Short rows (a day or less) touching a range start at most a day before
    // it: found by their start.
    "CREATE INDEX IF NOT EXISTS idx_events_debut ON CalendarEvents(RecurrenceState, StartDateTime)",
    // Long rows (masters spanning their series, absences over weeks) are few:
    // they have an index of their own, by end.
    "CREATE INDEX IF NOT EXISTS idx_events_longs ON CalendarEvents(EndDateTime)"
    " WHERE julianday(EndDateTime) - julianday(StartDateTime) > 1",
    // Exceptions of a series.
    "CREATE INDEX IF NOT EXISTS idx_events_serie ON CalendarEvents(RecurrencePatternID, RecurrenceState)",
    // Plain rows under reminder, by their reminder moment.
    "CREATE INDEX IF NOT EXISTS idx_events_rappel ON CalendarEvents("
    "datetime(StartDateTime, (-ReminderMinutesBeforeStart) || ' minutes'))"
    " WHERE IsReminder <> 0 AND RecurrenceState = 0",
};

const QString kMoment = QStringLiteral("datetime(StartDateTime, (-ReminderMinutesBeforeStart) || ' minutes')");

// The current row of a statement read straight from SQLite, by column, for
// the row mapping of lecteurlignes.h: no name look-ups and no QVariant round
// trip of the general database layer. A value of the expected kind is taken
// as it is; anything else goes through the strict conversions of the record
// mapping (RecordValue), which throw FieldError as it does.
template<int N>
class LigneSqlite
{
public:
    LigneSqlite(sqlite3_stmt *st, const char *const (&noms)[N])
        : m_st(st)
    {
        // Positions are found once per statement, names in any case.
        m_positions.fill(-1);
        const int n = sqlite3_column_count(st);
        for (int quoi = 0; quoi < N; ++quoi) {
            for (int i = 0; i < n && m_positions[quoi] < 0; ++i) {
                if (sqlite3_stricmp(sqlite3_column_name(st, i), noms[quoi]) == 0)
                    m_positions[quoi] = i;
            }
        }
    }

    [[nodiscard]] qint32 entier(int quoi) const
    {
        const int i = position(quoi);
        if (sqlite3_column_type(m_st, i) == SQLITE_INTEGER) {
            const sqlite3_int64 n = sqlite3_column_int64(m_st, i);
            if (n >= std::numeric_limits<qint32>::min() && n <= std::numeric_limits<qint32>::max())
                return qint32(n);
        }
        return RecordValue::integer(valeur(i));
    }

    [[nodiscard]] QString texte(int quoi) const
    {
        const int i = position(quoi);
        if (sqlite3_column_type(m_st, i) == SQLITE_TEXT) {
            const int n = sqlite3_column_bytes(m_st, i);
            // An empty text is a text, not a missing value.
            return n == 0 ? QStringLiteral("")
                          : QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_st, i)), n);
        }
        return RecordValue::text(valeur(i));
    }

    // A column in the stores' own date text, other than the zero date (which
    // stands for no date): its date and time of day, taken without the
    // general parser.
    [[nodiscard]] bool enTexte(int quoi, QDate &j, QTime &h) const
    {
        const int i = position(quoi);
        if (sqlite3_column_type(m_st, i) != SQLITE_TEXT)
            return false;
        const auto *octets = reinterpret_cast<const char *>(sqlite3_column_text(m_st, i));
        return RecordValue::parseIsoText(QLatin1StringView(octets, sqlite3_column_bytes(m_st, i)), j, h)
            && !(j == QDate(1899, 12, 30) && h == QTime(0, 0));
    }

    // Whether the column holds the zero date as text.
    [[nodiscard]] bool dateZero(int quoi) const
    {
        const int i = position(quoi);
        return sqlite3_column_type(m_st, i) == SQLITE_TEXT && sqlite3_column_bytes(m_st, i) == 19
            && std::memcmp(sqlite3_column_text(m_st, i), "1899-12-30 00:00:00", 19) == 0;
    }

    // Any other form of a date-time column, read by the record mapping's rule.
    [[nodiscard]] QDateTime dateGenerale(int quoi) const { return RecordValue::dateTime(valeur(position(quoi))); }

private:
    [[nodiscard]] int position(int quoi) const
    {
        const int i = m_positions[quoi];
        if (i < 0)
            throw FieldError(QStringLiteral("colonne absente : ") + QString::number(quoi));
        return i;
    }

    // The value as the general database layer hands it.
    [[nodiscard]] QVariant valeur(int i) const
    {
        switch (sqlite3_column_type(m_st, i)) {
        case SQLITE_INTEGER:
            return qlonglong(sqlite3_column_int64(m_st, i));
        case SQLITE_FLOAT:
            return sqlite3_column_double(m_st, i);
        case SQLITE_NULL:
            return {};
        case SQLITE_BLOB:
            return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_st, i)), sqlite3_column_bytes(m_st, i));
        default:
            return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_st, i)), sqlite3_column_bytes(m_st, i));
        }
    }

    sqlite3_stmt *m_st;
    std::array<int, N> m_positions{};
};

} // namespace

QString NomDeCoteStore(const QString &path, const QDateTime &moment)
{
    const QString base = path + QStringLiteral(".illisible-") + moment.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString nom = base;
    for (int n = 2; QFileInfo::exists(nom); ++n)
        nom = base + QStringLiteral("-") + QString::number(n);
    return nom;
}

SqliteCalendarStore::SqliteCalendarStore(QString path)
    : m_path(std::move(path))
{
}

SqliteCalendarStore::~SqliteCalendarStore()
{
    Close();
}

QStringList SqliteCalendarStore::eventColumns()
{
    return kEventColumns;
}

QStringList SqliteCalendarStore::patternColumns()
{
    return kPatternColumns;
}

bool SqliteCalendarStore::IsOpen() const
{
    return m_base != nullptr;
}

void SqliteCalendarStore::Close()
{
    if (m_base && m_changeDepth > 0)
        m_base->executer(QStringLiteral("ROLLBACK"));
    m_changeDepth = 0;
    for (sqlite3_stmt **st :
         {&m_rangeStmt, &m_patternsStmt, &m_seriesExceptionsStmt, &m_upcomingStmt, &m_upcomingSinceStmt, &m_versionStmt}) {
        sqlite3_finalize(*st);
        *st = nullptr;
    }
    m_pattern.reset();
    m_exceptions.reset();
    m_base.reset();
}

QSqlQuery &SqliteCalendarStore::prepared(std::unique_ptr<QSqlQuery> &slot, const QString &sql)
{
    if (!slot) {
        slot = std::make_unique<QSqlQuery>(m_base->db());
        slot->setForwardOnly(true);
        slot->prepare(sql);
    }
    slot->finish();
    return *slot;
}

bool SqliteCalendarStore::prepareKept(sqlite3_stmt *&slot, const QString &sql)
{
    if (slot)
        return true;
    const QByteArray texte = sql.toUtf8();
    if (sqlite3_prepare_v2(m_base->poignee(), texte.constData(), int(texte.size()), &slot, nullptr) == SQLITE_OK)
        return true;
    m_lastError = QString::fromUtf8(sqlite3_errmsg(m_base->poignee()));
    sqlite3_finalize(slot);
    slot = nullptr;
    return false;
}

bool SqliteCalendarStore::ensureSchema()
{
    for (const char *sql : kSchema) {
        if (!m_base->executer(QString::fromLatin1(sql), &m_lastError)) {
            m_base.reset();
            return false;
        }
    }
    static std::atomic<quint64> ouvertures{0};
    m_instance = ++ouvertures;
    m_readWait = -1;
    return true;
}

bool SqliteCalendarStore::Open()
{
    Close();
    if (!QFileInfo(m_path).isFile() || !EstFichierSqlite(m_path))
        return false;
    m_base = BaseSqlite::ouvrir(m_path, BaseSqlite::Mode::Existante, &m_lastError);
    return m_base && ensureSchema();
}

bool SqliteCalendarStore::Create()
{
    Close();
    m_keptAside.clear();
    if (QFileInfo::exists(m_path)) {
        if (EstFichierSqlite(m_path)) {
            m_base = BaseSqlite::ouvrir(m_path, BaseSqlite::Mode::Existante, &m_lastError);
            if (m_base)
                return ensureSchema();
            // A database that another workstation holds is waited for, never
            // replaced.
            if (m_lastError.contains(QLatin1String("locked"), Qt::CaseInsensitive)
                || m_lastError.contains(QLatin1String("busy"), Qt::CaseInsensitive))
                return false;
        }
        // Not a database: kept aside under another name, nothing deleted.
        const QString aside = NomDeCoteStore(m_path, QDateTime::currentDateTime());
        if (!QFile::rename(m_path, aside)) {
            m_lastError = QStringLiteral("Impossible de mettre de côté le fichier %1.").arg(m_path);
            return false;
        }
        m_keptAside = aside;
    }
    // Built aside and put in place whole; when another workstation's store
    // got there first, that one is opened.
    const auto remplir = [](BaseSqlite &base, QString *erreur) {
        for (const char *sql : kSchema) {
            if (!base.executer(QString::fromLatin1(sql), erreur))
                return false;
        }
        return true;
    };
    if (BaseSqlite::creer(m_path, remplir, &m_lastError) == BaseSqlite::Creation::Echec)
        return false;
    m_base = BaseSqlite::ouvrir(m_path, BaseSqlite::Mode::Existante, &m_lastError);
    return m_base && ensureSchema();
}

bool SqliteCalendarStore::execBound(QSqlQuery &q)
{
    if (q.exec())
        return true;
    m_lastError = q.lastError().text();
    return false;
}

void SqliteCalendarStore::readEvents(QSqlQuery &q, QList<CalendarEventPtr> &events)
{
    QueryCursor rs(&q);
    while (!rs.atEnd()) {
        if (CalendarEventPtr e = m_helper.CreateEventFromRS(rs)) {
            try {
                e->setCreationTime(RecordValue::dateTime(rs.field(QStringLiteral("CreationTime"))));
                e->setLastModificationTime(RecordValue::dateTime(rs.field(QStringLiteral("LastModificationTime"))));
            } catch (const FieldError &) {
                // Times of a row written by another program: left unset.
            }
            events.append(e);
        }
        rs.next();
    }
}

QString SqliteCalendarStore::rangeStatement()
{
    return QStringLiteral(
        "SELECT * FROM CalendarEvents INDEXED BY idx_events_debut"
        " WHERE RecurrenceState IN (0, 1) AND StartDateTime >= ? AND StartDateTime < ? AND EndDateTime >= ?"
        " AND NOT (julianday(EndDateTime) - julianday(StartDateTime) > 1)"
        " UNION ALL "
        "SELECT * FROM CalendarEvents INDEXED BY idx_events_longs"
        " WHERE julianday(EndDateTime) - julianday(StartDateTime) > 1"
        " AND EndDateTime >= ? AND StartDateTime < ? AND RecurrenceState IN (0, 1)");
}

void SqliteCalendarStore::DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events)
{
    DoRetrieveRangeEvents(day, day, events);
}

void SqliteCalendarStore::DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events)
{
    if (!m_base)
        return;
    // A row touches the days when it begins before the end of the last one
    // and does not end before the first one begins.
    const QString debut = RecordValue::isoText(QDateTime(first, QTime(0, 0)));
    const QString fin = RecordValue::isoText(QDateTime(last.addDays(1), QTime(0, 0)));
    const QString avant = RecordValue::isoText(QDateTime(first.addDays(-1), QTime(0, 0)));
    readKeptEvents(m_rangeStmt, rangeStatement(), {avant.toUtf8(), fin.toUtf8(), debut.toUtf8(), debut.toUtf8(), fin.toUtf8()},
                   events);
}

void SqliteCalendarStore::readKeptEvents(sqlite3_stmt *&st, const QString &sql, const QList<QByteArray> &values,
                                         QList<CalendarEventPtr> &events)
{
    m_readFailed = true;
    if (!prepareKept(st, sql))
        return;
    for (int i = 0; i < values.size(); ++i)
        sqlite3_bind_text(st, i + 1, values.at(i).constData(), int(values.at(i).size()), SQLITE_TRANSIENT);
    const LigneSqlite<kColonnesEvenement> ligne(st, kNomsEvenement);
    LecteurEvenements lecteur(ligne, m_helper.calendar());
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        if (CalendarEventPtr e = lecteur.lire())
            events.append(e);
    }
    m_readFailed = rc != SQLITE_DONE;
    if (m_readFailed)
        m_lastError = QString::fromUtf8(sqlite3_errmsg(m_base->poignee()));
    // A statement left open keeps the file locked for the other workstations.
    sqlite3_reset(st);
    sqlite3_clear_bindings(st);
}

CalendarEventPtr SqliteCalendarStore::DoReadEvent(int eventId)
{
    if (!m_base)
        return {};
    QSqlQuery q(m_base->db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM CalendarEvents WHERE EventID = ?"));
    q.addBindValue(eventId);
    QList<CalendarEventPtr> events;
    if (execBound(q))
        readEvents(q, events);
    return events.isEmpty() ? CalendarEventPtr() : events.first();
}

CalendarRecurrencePatternPtr SqliteCalendarStore::DoReadRPattern(int patternId)
{
    if (!m_base)
        return {};
    QSqlQuery &q = prepared(m_pattern, QStringLiteral("SELECT * FROM CalendarRecurrencePatterns WHERE RecurrencePatternID = ?"));
    q.bindValue(0, patternId);
    if (!execBound(q))
        return {};
    auto fermer = qScopeGuard([&] {
        q.finish();
        if (m_exceptions)
            m_exceptions->finish();
    });
    QueryCursor rs(&q);

    // The exceptions question of the record mapping, asked through the
    // prepared statement of this store.
    class Exceptions final : public RecordConnection
    {
    public:
        Exceptions(SqliteCalendarStore &store, int id)
            : m_store(store)
            , m_id(id)
        {
        }
        std::unique_ptr<RecordCursor> execute(const QString &) override
        {
            QSqlQuery &e = m_store.prepared(m_store.m_exceptions,
                                            QStringLiteral("SELECT * FROM CalendarEvents WHERE RecurrenceState = 3 AND RecurrencePatternID = ?"));
            e.bindValue(0, m_id);
            if (!e.exec())
                throw FieldError(e.lastError().text());
            return std::make_unique<QueryCursor>(&e);
        }

    private:
        SqliteCalendarStore &m_store;
        int m_id;
    } connection(*this, patternId);
    try {
        return m_helper.CreateRPatternFromRS(rs, connection);
    } catch (const FieldError &e) {
        m_lastError = QString::fromStdString(e.what());
        return {};
    }
}

QHash<int, CalendarRecurrencePatternPtr> SqliteCalendarStore::DoReadRPatterns(const QList<int> &patternIds)
{
    QHash<int, CalendarRecurrencePatternPtr> lus;
    if (!m_base || patternIds.isEmpty())
        return lus;
    // The keys go in as one bound list, so that both statements stay
    // prepared from one read to the next.
    QByteArray liste = "[";
    for (const int id : patternIds) {
        if (liste.size() > 1)
            liste += ',';
        liste += QByteArray::number(id);
    }
    liste += ']';
    if (!prepareKept(m_seriesExceptionsStmt,
                     QStringLiteral("SELECT * FROM CalendarEvents WHERE RecurrenceState = 3"
                                    " AND RecurrencePatternID IN (SELECT value FROM json_each(?))"))
        || !prepareKept(m_patternsStmt, QStringLiteral("SELECT * FROM CalendarRecurrencePatterns"
                                                       " WHERE RecurrencePatternID IN (SELECT value FROM json_each(?))")))
        return CalendarStore::DoReadRPatterns(patternIds); // an SQLite without its JSON functions: one by one
    // A statement left open keeps the file locked for the other workstations.
    auto fermer = qScopeGuard([this] {
        for (sqlite3_stmt *st : {m_seriesExceptionsStmt, m_patternsStmt}) {
            sqlite3_reset(st);
            sqlite3_clear_bindings(st);
        }
    });

    // All the exceptions of these series in one read, kept by series.
    QHash<int, QList<CalendarEventPtr>> exceptions;
    sqlite3_bind_text(m_seriesExceptionsStmt, 1, liste.constData(), int(liste.size()), SQLITE_TRANSIENT);
    const LigneSqlite<kColonnesEvenement> ligne(m_seriesExceptionsStmt, kNomsEvenement);
    LecteurEvenements lecteur(ligne, m_helper.calendar());
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(m_seriesExceptionsStmt)) == SQLITE_ROW) {
        try {
            const int serie = ligne.entier(ColonneEvenement::RecurrencePatternID);
            if (CalendarEventPtr e = lecteur.lire(true))
                exceptions[serie].append(e);
        } catch (const FieldError &) {
        }
    }

    sqlite3_bind_text(m_patternsStmt, 1, liste.constData(), int(liste.size()), SQLITE_TRANSIENT);
    const LigneSqlite<kColonnesMotif> ligneMotif(m_patternsStmt, kNomsMotif);
    const LecteurMotifs motifs(ligneMotif, m_helper.calendar());
    // A series read without its exceptions would show occurrences that were
    // moved or deleted: the failure of either read is the failure of the
    // whole read (LastReadFailed).
    const bool exceptionsLues = rc == SQLITE_DONE;
    while ((rc = sqlite3_step(m_patternsStmt)) == SQLITE_ROW) {
        if (CalendarRecurrencePatternPtr p = motifs.lire()) {
            for (const CalendarEventPtr &e : exceptions.value(p->RecurrencePatternID()))
                p->SetException(e);
            lus.insert(p->RecurrencePatternID(), p);
        }
    }
    if (!exceptionsLues || rc != SQLITE_DONE) {
        m_readFailed = true;
        m_lastError = QString::fromUtf8(sqlite3_errmsg(m_base->poignee()));
    }
    return lus;
}

bool SqliteCalendarStore::insertRow(const QString &table, const MemoryRecord &row, int &newId)
{
    if (!m_base)
        return false;
    QStringList marques;
    for (qsizetype i = 0; i < row.columns().size(); ++i)
        marques << QStringLiteral("?");
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("INSERT INTO ") + table + QStringLiteral(" (") + row.columns().join(QStringLiteral(", "))
              + QStringLiteral(") VALUES (") + marques.join(QStringLiteral(", ")) + QStringLiteral(")"));
    for (const QVariant &v : row.values())
        q.addBindValue(bindable(v));
    if (!execBound(q))
        return false;
    newId = q.lastInsertId().toInt();
    return newId != 0;
}

bool SqliteCalendarStore::updateRow(const QString &table, const MemoryRecord &row, const QString &keyColumn, int key)
{
    if (!m_base)
        return false;
    QStringList affectations;
    for (const QString &c : row.columns())
        affectations << c + QStringLiteral(" = ?");
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") + affectations.join(QStringLiteral(", "))
              + QStringLiteral(" WHERE ") + keyColumn + QStringLiteral(" = ?"));
    for (const QVariant &v : row.values())
        q.addBindValue(bindable(v));
    q.addBindValue(key);
    return execBound(q) && q.numRowsAffected() == 1;
}

MemoryRecord SqliteCalendarStore::eventRow(const CalendarEvent &event)
{
    MemoryRecord row(kEventColumns);
    m_helper.PutEventToRS(event, row);
    row.setField(QStringLiteral("CreationTime"), event.CreationTime());
    row.setField(QStringLiteral("LastModificationTime"), event.LastModificationTime());
    return row;
}

bool SqliteCalendarStore::DoCreateEvent(const CalendarEvent &event, int &newEventId)
{
    return insertRow(QStringLiteral("CalendarEvents"), eventRow(event), newEventId);
}

bool SqliteCalendarStore::DoUpdateEvent(const CalendarEvent &event)
{
    return updateRow(QStringLiteral("CalendarEvents"), eventRow(event), QStringLiteral("EventID"), event.EventID());
}

bool SqliteCalendarStore::DoDeleteEvent(const CalendarEvent &event)
{
    if (!m_base)
        return false;
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("DELETE FROM CalendarEvents WHERE EventID = ?"));
    q.addBindValue(event.EventID());
    return execBound(q);
}

bool SqliteCalendarStore::DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId)
{
    MemoryRecord row(kPatternColumns);
    m_helper.PutRPatternToRS(pattern, row);
    return insertRow(QStringLiteral("CalendarRecurrencePatterns"), row, newPatternId);
}

bool SqliteCalendarStore::DoUpdateRPattern(const CalendarRecurrencePattern &pattern)
{
    MemoryRecord row(kPatternColumns);
    m_helper.PutRPatternToRS(pattern, row);
    return updateRow(QStringLiteral("CalendarRecurrencePatterns"), row, QStringLiteral("RecurrencePatternID"),
                     pattern.RecurrencePatternID());
}

bool SqliteCalendarStore::DoDeleteRPattern(const CalendarRecurrencePattern &pattern)
{
    if (!m_base)
        return false;
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("DELETE FROM CalendarRecurrencePatterns WHERE RecurrencePatternID = ?"));
    q.addBindValue(pattern.RecurrencePatternID());
    return execBound(q);
}

QString SqliteCalendarStore::upcomingStatement(bool withLowerBound)
{
    // Plain rows by their reminder moment (index idx_events_rappel); masters
    // are few and are all looked at: their occurrences decide.
    QString s = QStringLiteral("SELECT * FROM CalendarEvents INDEXED BY idx_events_rappel"
                               " WHERE IsReminder <> 0 AND RecurrenceState = 0 AND ")
                + kMoment + QStringLiteral(" <= ?");
    if (withLowerBound)
        s += QStringLiteral(" AND ") + kMoment + QStringLiteral(" >= ?");
    s += QStringLiteral(" UNION ALL SELECT * FROM CalendarEvents WHERE RecurrenceState = 1 AND ") + kMoment
         + QStringLiteral(" <= ? AND (IsReminder <> 0 OR RecurrencePatternID IN (SELECT RecurrencePatternID FROM CalendarEvents"
                          " WHERE RecurrenceState = 3 AND IsReminder <> 0 AND ")
         + kMoment + QStringLiteral(" <= ?))");
    if (withLowerBound)
        s += QStringLiteral(" AND EndDateTime >= ?");
    return s;
}

void SqliteCalendarStore::DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events,
                                              const QDateTime &since)
{
    if (!m_base)
        return;
    const bool borne = since.isValid();
    const QByteArray t = RecordValue::isoText(start.addSecs(qint64(minutes) * 60)).toUtf8();
    const QByteArray depuis = RecordValue::isoText(since).toUtf8();
    readKeptEvents(borne ? m_upcomingSinceStmt : m_upcomingStmt, upcomingStatement(borne),
                   borne ? QList<QByteArray>{t, depuis, t, t, depuis} : QList<QByteArray>{t, t, t}, events);
}

StoreMark SqliteCalendarStore::DataMark()
{
    if (!m_base || !prepareKept(m_versionStmt, QStringLiteral("PRAGMA data_version")))
        return {};
    // A file held by another workstation is not waited for here: the mark
    // then tells nothing, and the read that follows waits as reads do.
    sqlite3 *poignee = m_base->poignee();
    sqlite3_busy_timeout(poignee, 0);
    StoreMark marque;
    if (sqlite3_step(m_versionStmt) == SQLITE_ROW)
        marque = {m_instance, quint64(sqlite3_column_int64(m_versionStmt, 0)),
                  quint64(sqlite3_total_changes64(poignee)) + m_rollbacks};
    sqlite3_reset(m_versionStmt);
    sqlite3_busy_timeout(poignee, m_readWait >= 0 ? m_readWait : BaseSqlite::delaiOccupe());
    return marque;
}

void SqliteCalendarStore::SetReadWait(int milliseconds)
{
    m_readWait = milliseconds;
    if (m_base)
        sqlite3_busy_timeout(m_base->poignee(), milliseconds >= 0 ? milliseconds : BaseSqlite::delaiOccupe());
}

bool SqliteCalendarStore::BeginChange()
{
    if (!m_base)
        return false;
    if (m_changeDepth++ > 0)
        return true;
    // IMMEDIATE takes the write lock at once: a workstation that is writing
    // is waited for here, not halfway through the change.
    if (m_base->executer(QStringLiteral("BEGIN IMMEDIATE"), &m_lastError))
        return true;
    m_changeDepth = 0;
    return false;
}

bool SqliteCalendarStore::CommitChange()
{
    if (!m_base || m_changeDepth == 0)
        return false;
    if (--m_changeDepth > 0)
        return true;
    return m_base->executer(QStringLiteral("COMMIT"), &m_lastError);
}

void SqliteCalendarStore::RollbackChange()
{
    if (!m_base || m_changeDepth == 0)
        return;
    m_changeDepth = 0;
    ++m_rollbacks;
    m_base->executer(QStringLiteral("ROLLBACK"), &m_lastError);
}

bool SqliteCalendarStore::DoClaimReminder(const QString &key, const QString &sender, const QDateTime &now,
                                          const QDateTime &staleBefore)
{
    if (!m_base)
        return false;
    const QString format = QStringLiteral("yyyy-MM-dd HH:mm:ss");
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("DELETE FROM RappelsEnCours WHERE Depuis < ?"));
    q.addBindValue(staleBefore.toString(format));
    if (!execBound(q))
        return false;
    q.prepare(QStringLiteral("SELECT Expediteur FROM RappelsEnCours WHERE Cle = ?"));
    q.addBindValue(key);
    if (!execBound(q))
        return false;
    if (q.next() && q.value(0).toString() != sender)
        return false;
    q.prepare(QStringLiteral("INSERT OR REPLACE INTO RappelsEnCours (Cle, Expediteur, Depuis) VALUES (?, ?, ?)"));
    q.addBindValue(key);
    q.addBindValue(sender);
    q.addBindValue(now.toString(format));
    return execBound(q);
}

void SqliteCalendarStore::DoReleaseReminder(const QString &key)
{
    if (!m_base)
        return;
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("DELETE FROM RappelsEnCours WHERE Cle = ?"));
    q.addBindValue(key);
    execBound(q);
}

QHash<QString, QString> SqliteCalendarStore::DoReadReminderClaims(const QDateTime &staleBefore)
{
    QHash<QString, QString> claims;
    if (!m_base)
        return claims;
    QSqlQuery q(m_base->db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT Cle, Expediteur FROM RappelsEnCours WHERE Depuis >= ?"));
    q.addBindValue(staleBefore.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    if (execBound(q)) {
        while (q.next())
            claims.insert(q.value(0).toString(), q.value(1).toString());
    }
    return claims;
}

bool SqliteCalendarStore::DoReadSchedules(QList<CalendarSchedule> &schedules)
{
    schedules.clear();
    if (!m_base)
        return false;
    QSqlQuery q(m_base->db());
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT ScheduleID, Name FROM CalendarSchedules ORDER BY ScheduleID"))) {
        m_lastError = q.lastError().text();
        return false;
    }
    while (q.next())
        schedules.append({q.value(0).toInt(), q.value(1).toString()});
    return true;
}

bool SqliteCalendarStore::DoCreateSchedule(const QString &name, int &newScheduleId)
{
    if (!m_base)
        return false;
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("INSERT INTO CalendarSchedules (Name) VALUES (?)"));
    q.addBindValue(bindable(name));
    if (!execBound(q))
        return false;
    newScheduleId = q.lastInsertId().toInt();
    return newScheduleId != 0;
}

bool SqliteCalendarStore::DoRenameSchedule(int scheduleId, const QString &name)
{
    if (!m_base)
        return false;
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("UPDATE CalendarSchedules SET Name = ? WHERE ScheduleID = ?"));
    q.addBindValue(bindable(name));
    q.addBindValue(scheduleId);
    return execBound(q) && q.numRowsAffected() == 1;
}

bool SqliteCalendarStore::DoDeleteSchedule(int scheduleId)
{
    if (!m_base)
        return false;
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("DELETE FROM CalendarSchedules WHERE ScheduleID = ?"));
    q.addBindValue(scheduleId);
    return execBound(q) && q.numRowsAffected() == 1;
}

int SqliteCalendarStore::DoCountScheduleEvents(int scheduleId)
{
    if (!m_base)
        return -1;
    // A series counts once, by its master; an exception only when it was
    // moved to this schedule apart from its series. Deleted occurrences are
    // no appointments.
    QSqlQuery q(m_base->db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral(
        "SELECT COUNT(*) FROM CalendarEvents e WHERE e.ScheduleID = ? AND (e.RecurrenceState IN (0, 1)"
        " OR (e.RecurrenceState = 3 AND e.ISRecurrenceExceptionDeleted = 0 AND NOT EXISTS ("
        "SELECT 1 FROM CalendarEvents m WHERE m.RecurrenceState = 1"
        " AND m.RecurrencePatternID = e.RecurrencePatternID AND m.ScheduleID = e.ScheduleID)))"));
    q.addBindValue(scheduleId);
    if (!execBound(q) || !q.next())
        return -1;
    return q.value(0).toInt();
}
