#include "calendar/xmlcalendarstore.h"

#include "calendar/sqlitecalendarstore.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

QStringList colonnesEvenement()
{
    return QStringList{QStringLiteral("EventID")} + SqliteCalendarStore::eventColumns();
}

QStringList colonnesModele()
{
    return QStringList{QStringLiteral("RecurrencePatternID")} + SqliteCalendarStore::patternColumns();
}

QString texteDe(const QVariant &v)
{
    if (v.typeId() == QMetaType::QDateTime)
        return RecordValue::isoText(v.toDateTime());
    return v.toString();
}

// XML cannot carry every control character, and readers fold CR LF into LF:
// a text holding any of them goes in base64 so that it comes back as it was.
bool aEncoder(const QString &s)
{
    for (const QChar c : s) {
        if (c.unicode() < 0x20 && c != QLatin1Char('\n') && c != QLatin1Char('\t'))
            return true;
        if (c.isSurrogate() || c.unicode() == 0xFFFE || c.unicode() == 0xFFFF)
            return true;
    }
    return false;
}

QDateTime dateDe(const MemoryRecord &r, const QString &colonne)
{
    try {
        return RecordValue::dateTime(r.field(colonne));
    } catch (const FieldError &) {
        return {};
    }
}

int entierDe(const MemoryRecord &r, const QString &colonne)
{
    try {
        return RecordValue::integer(r.field(colonne));
    } catch (const FieldError &) {
        return -1;
    }
}

} // namespace

XmlCalendarStore::XmlCalendarStore(QString path)
    : m_path(std::move(path))
{
}

XmlCalendarStore::~XmlCalendarStore()
{
    Close();
}

bool XmlCalendarStore::Open()
{
    m_open = false;
    if (!QFileInfo(m_path).isFile())
        return false;
    m_open = load();
    m_dirty = false;
    return m_open;
}

bool XmlCalendarStore::Create()
{
    m_events.clear();
    m_patterns.clear();
    m_schedules.clear();
    m_nextEventId = 1;
    m_nextPatternId = 1;
    m_nextScheduleId = 1;
    m_open = true;
    m_dirty = true;
    if (QFileInfo::exists(m_path)) {
        // A file that could not be read is kept aside, never written over.
        const QString aside = NomDeCoteStore(m_path, QDateTime::currentDateTime());
        if (!QFile::rename(m_path, aside)) {
            m_lastError = QStringLiteral("Impossible de mettre de côté le fichier %1.").arg(m_path);
            m_open = false;
            return false;
        }
    }
    return Save();
}

void XmlCalendarStore::Close()
{
    if (m_open && m_dirty)
        Save();
    m_open = false;
    m_events.clear();
    m_patterns.clear();
    m_schedules.clear();
}

bool XmlCalendarStore::load()
{
    QFile f(m_path);
    if (!f.open(QIODevice::ReadOnly)) {
        m_lastError = f.errorString();
        return false;
    }
    m_events.clear();
    m_patterns.clear();
    m_schedules.clear();
    m_nextEventId = 1;
    m_nextPatternId = 1;
    m_nextScheduleId = 1;
    QXmlStreamReader x(&f);
    if (!x.readNextStartElement() || x.name() != QLatin1String("Calendar")) {
        m_lastError = QStringLiteral("Le fichier %1 n'est pas un calendrier XML.").arg(m_path);
        return false;
    }
    m_nextEventId = qMax(1, x.attributes().value(QLatin1String("NextEventID")).toInt());
    m_nextPatternId = qMax(1, x.attributes().value(QLatin1String("NextPatternID")).toInt());
    while (x.readNextStartElement()) {
        if (x.name() == QLatin1String("CalendarSchedules")) {
            m_nextScheduleId = qMax(1, x.attributes().value(QLatin1String("NextScheduleID")).toInt());
            while (x.readNextStartElement()) {
                const int id = x.attributes().value(QLatin1String("ScheduleID")).toInt();
                const QString nom = x.readElementText();
                if (id > 0) {
                    m_schedules.append({id, nom});
                    m_nextScheduleId = qMax(m_nextScheduleId, id + 1);
                }
            }
            continue;
        }
        const bool evenements = x.name() == QLatin1String("CalendarEvents");
        const bool modeles = x.name() == QLatin1String("CalendarRecurrencePatterns");
        if (!evenements && !modeles) {
            x.skipCurrentElement();
            continue;
        }
        const QStringList colonnes = evenements ? colonnesEvenement() : colonnesModele();
        while (x.readNextStartElement()) {
            MemoryRecord row(colonnes);
            while (x.readNextStartElement()) {
                const QString nom = x.name().toString();
                const bool base64 = x.attributes().value(QLatin1String("base64")) == QLatin1String("1");
                QString texte = x.readElementText();
                if (base64)
                    texte = QString::fromUtf8(QByteArray::fromBase64(texte.toLatin1()));
                if (colonnes.contains(nom))
                    row.setField(nom, texte);
            }
            const int id = entierDe(row, colonnes.first());
            if (id <= 0)
                continue;
            if (evenements) {
                m_events.insert(id, row);
                m_nextEventId = qMax(m_nextEventId, id + 1);
            } else {
                m_patterns.insert(id, row);
                m_nextPatternId = qMax(m_nextPatternId, id + 1);
            }
        }
    }
    if (x.hasError()) {
        m_lastError = x.errorString();
        m_events.clear();
        m_patterns.clear();
        m_schedules.clear();
        return false;
    }
    return true;
}

bool XmlCalendarStore::Save()
{
    if (!m_open)
        return false;
    QSaveFile f(m_path);
    if (!f.open(QIODevice::WriteOnly)) {
        m_lastError = f.errorString();
        return false;
    }
    QXmlStreamWriter x(&f);
    x.setAutoFormatting(true);
    x.writeStartDocument();
    x.writeStartElement(QStringLiteral("Calendar"));
    x.writeAttribute(QStringLiteral("NextEventID"), QString::number(m_nextEventId));
    x.writeAttribute(QStringLiteral("NextPatternID"), QString::number(m_nextPatternId));
    auto table = [&](const QString &nom, const QMap<int, MemoryRecord> &rows) {
        x.writeStartElement(nom);
        for (const MemoryRecord &row : rows) {
            x.writeStartElement(QStringLiteral("Row"));
            for (qsizetype i = 0; i < row.columns().size(); ++i) {
                const QString texte = texteDe(row.values().at(i));
                x.writeStartElement(row.columns().at(i));
                if (aEncoder(texte)) {
                    x.writeAttribute(QStringLiteral("base64"), QStringLiteral("1"));
                    x.writeCharacters(QString::fromLatin1(texte.toUtf8().toBase64()));
                } else {
                    x.writeCharacters(texte);
                }
                x.writeEndElement();
            }
            x.writeEndElement();
        }
        x.writeEndElement();
    };
    table(QStringLiteral("CalendarEvents"), m_events);
    table(QStringLiteral("CalendarRecurrencePatterns"), m_patterns);
    x.writeStartElement(QStringLiteral("CalendarSchedules"));
    x.writeAttribute(QStringLiteral("NextScheduleID"), QString::number(m_nextScheduleId));
    for (const CalendarSchedule &p : std::as_const(m_schedules)) {
        x.writeStartElement(QStringLiteral("Schedule"));
        x.writeAttribute(QStringLiteral("ScheduleID"), QString::number(p.ScheduleID));
        x.writeCharacters(p.Name);
        x.writeEndElement();
    }
    x.writeEndElement();
    x.writeEndElement();
    x.writeEndDocument();
    if (x.hasError() || !f.commit()) {
        m_lastError = f.errorString();
        return false;
    }
    m_dirty = false;
    return true;
}

CalendarEventPtr XmlCalendarStore::readRow(const MemoryRecord &row) const
{
    CalendarEventPtr e = m_helper.CreateEventFromRS(row);
    if (e) {
        e->setCreationTime(dateDe(row, QStringLiteral("CreationTime")));
        e->setLastModificationTime(dateDe(row, QStringLiteral("LastModificationTime")));
    }
    return e;
}

MemoryRecord XmlCalendarStore::eventRow(const CalendarEvent &event, int id) const
{
    MemoryRecord row(colonnesEvenement());
    row.setField(QStringLiteral("EventID"), id);
    m_helper.PutEventToRS(event, row);
    row.setField(QStringLiteral("CreationTime"), event.CreationTime());
    row.setField(QStringLiteral("LastModificationTime"), event.LastModificationTime());
    return row;
}

void XmlCalendarStore::DoRetrieveDayEvents(const QDate &day, QList<CalendarEventPtr> &events)
{
    DoRetrieveRangeEvents(day, day, events);
}

void XmlCalendarStore::DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events)
{
    if (!m_open)
        return;
    for (const MemoryRecord &row : std::as_const(m_events)) {
        const int etat = entierDe(row, QStringLiteral("RecurrenceState"));
        if (etat != 0 && etat != 1)
            continue;
        const QDateTime debut = dateDe(row, QStringLiteral("StartDateTime"));
        const QDateTime fin = dateDe(row, QStringLiteral("EndDateTime"));
        if (!debut.isValid() || !fin.isValid() || debut.date() > last || fin.date() < first)
            continue;
        if (CalendarEventPtr e = readRow(row))
            events.append(e);
    }
}

CalendarEventPtr XmlCalendarStore::DoReadEvent(int eventId)
{
    if (!m_open || !m_events.contains(eventId))
        return {};
    return readRow(m_events.value(eventId));
}

CalendarRecurrencePatternPtr XmlCalendarStore::DoReadRPattern(int patternId)
{
    if (!m_open || !m_patterns.contains(patternId))
        return {};
    QList<MemoryRecord> exceptions;
    for (const MemoryRecord &row : std::as_const(m_events)) {
        if (entierDe(row, QStringLiteral("RecurrenceState")) == 3 && entierDe(row, QStringLiteral("RecurrencePatternID")) == patternId)
            exceptions.append(row);
    }
    FixedRowsConnection connexion(exceptions);
    return m_helper.CreateRPatternFromRS(m_patterns.value(patternId), connexion);
}

bool XmlCalendarStore::DoCreateEvent(const CalendarEvent &event, int &newEventId)
{
    if (!m_open)
        return false;
    newEventId = m_nextEventId++;
    m_events.insert(newEventId, eventRow(event, newEventId));
    m_dirty = true;
    return true;
}

bool XmlCalendarStore::DoUpdateEvent(const CalendarEvent &event)
{
    if (!m_open || !m_events.contains(event.EventID()))
        return false;
    m_events.insert(event.EventID(), eventRow(event, event.EventID()));
    m_dirty = true;
    return true;
}

bool XmlCalendarStore::DoDeleteEvent(const CalendarEvent &event)
{
    if (!m_open)
        return false;
    m_dirty = m_events.remove(event.EventID()) > 0 || m_dirty;
    return true;
}

bool XmlCalendarStore::DoCreateRPattern(const CalendarRecurrencePattern &pattern, int &newPatternId)
{
    if (!m_open)
        return false;
    newPatternId = m_nextPatternId++;
    MemoryRecord row(colonnesModele());
    row.setField(QStringLiteral("RecurrencePatternID"), newPatternId);
    m_helper.PutRPatternToRS(pattern, row);
    m_patterns.insert(newPatternId, row);
    m_dirty = true;
    return true;
}

bool XmlCalendarStore::DoUpdateRPattern(const CalendarRecurrencePattern &pattern)
{
    if (!m_open || !m_patterns.contains(pattern.RecurrencePatternID()))
        return false;
    MemoryRecord row(colonnesModele());
    row.setField(QStringLiteral("RecurrencePatternID"), pattern.RecurrencePatternID());
    m_helper.PutRPatternToRS(pattern, row);
    m_patterns.insert(pattern.RecurrencePatternID(), row);
    m_dirty = true;
    return true;
}

bool XmlCalendarStore::DoDeleteRPattern(const CalendarRecurrencePattern &pattern)
{
    if (!m_open)
        return false;
    m_dirty = m_patterns.remove(pattern.RecurrencePatternID()) > 0 || m_dirty;
    return true;
}

void XmlCalendarStore::DoGetUpcomingEvents(const QDateTime &start, int minutes, QList<CalendarEventPtr> &events, const QDateTime &since)
{
    if (!m_open)
        return;
    const QDateTime t = start.addSecs(qint64(minutes) * 60);
    auto moment = [](const MemoryRecord &row) {
        const QDateTime debut = dateDe(row, QStringLiteral("StartDateTime"));
        return debut.isValid() ? debut.addSecs(-qint64(entierDe(row, QStringLiteral("ReminderMinutesBeforeStart"))) * 60) : QDateTime();
    };
    auto sousRappel = [](const MemoryRecord &row) { return entierDe(row, QStringLiteral("IsReminder")) > 0; };
    QSet<int> seriesSousRappel;
    for (const MemoryRecord &row : std::as_const(m_events)) {
        const QDateTime m = moment(row);
        if (entierDe(row, QStringLiteral("RecurrenceState")) == 3 && sousRappel(row) && m.isValid() && m <= t)
            seriesSousRappel.insert(entierDe(row, QStringLiteral("RecurrencePatternID")));
    }
    for (const MemoryRecord &row : std::as_const(m_events)) {
        const int etat = entierDe(row, QStringLiteral("RecurrenceState"));
        const QDateTime m = moment(row);
        if (!m.isValid() || m > t)
            continue;
        bool retenue = false;
        if (etat == 0)
            retenue = sousRappel(row) && (!since.isValid() || m >= since);
        else if (etat == 1)
            retenue = (sousRappel(row) || seriesSousRappel.contains(entierDe(row, QStringLiteral("RecurrencePatternID"))))
                      && (!since.isValid() || dateDe(row, QStringLiteral("EndDateTime")) >= since);
        if (retenue) {
            if (CalendarEventPtr e = readRow(row))
                events.append(e);
        }
    }
}

bool XmlCalendarStore::DoReadSchedules(QList<CalendarSchedule> &schedules)
{
    schedules = m_schedules;
    return m_open;
}

// The file is the only copy: a change of the schedules is written at once,
// and taken back when the file cannot be written.
bool XmlCalendarStore::DoCreateSchedule(const QString &name, int &newScheduleId)
{
    if (!m_open)
        return false;
    m_schedules.append({m_nextScheduleId++, name});
    if (!Save()) {
        m_schedules.removeLast();
        --m_nextScheduleId;
        return false;
    }
    newScheduleId = m_schedules.last().ScheduleID;
    return true;
}

bool XmlCalendarStore::DoRenameSchedule(int scheduleId, const QString &name)
{
    const QList<CalendarSchedule> avant = m_schedules;
    for (CalendarSchedule &p : m_schedules) {
        if (p.ScheduleID == scheduleId) {
            p.Name = name;
            if (Save())
                return true;
            m_schedules = avant;
            return false;
        }
    }
    return false;
}

bool XmlCalendarStore::DoDeleteSchedule(int scheduleId)
{
    const QList<CalendarSchedule> avant = m_schedules;
    if (!m_open || m_schedules.removeIf([&](const CalendarSchedule &p) { return p.ScheduleID == scheduleId; }) == 0)
        return false;
    if (Save())
        return true;
    m_schedules = avant;
    return false;
}

int XmlCalendarStore::DoCountScheduleEvents(int scheduleId)
{
    if (!m_open)
        return -1;
    QHash<int, int> planningDeSerie;
    for (const MemoryRecord &row : std::as_const(m_events)) {
        if (entierDe(row, QStringLiteral("RecurrenceState")) == 1)
            planningDeSerie.insert(entierDe(row, QStringLiteral("RecurrencePatternID")), entierDe(row, QStringLiteral("ScheduleID")));
    }
    int n = 0;
    for (const MemoryRecord &row : std::as_const(m_events)) {
        if (entierDe(row, QStringLiteral("ScheduleID")) != scheduleId)
            continue;
        const int etat = entierDe(row, QStringLiteral("RecurrenceState"));
        if (etat == 0 || etat == 1)
            ++n;
        else if (etat == 3 && entierDe(row, QStringLiteral("ISRecurrenceExceptionDeleted")) == 0
                 && planningDeSerie.value(entierDe(row, QStringLiteral("RecurrencePatternID")), -1) != scheduleId)
            ++n;
    }
    return n;
}
