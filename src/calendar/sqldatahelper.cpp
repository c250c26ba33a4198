#include "calendar/sqldatahelper.h"

#include "calendar/calendardataprovider.h"

namespace {

const QString CRLF = QStringLiteral("\r\n");

QString num(qint64 n)
{
    return QString::number(n);
}

QString bit(bool b)
{
    return b ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

QString SQLDataHelper::PadTwoDigits(int number)
{
    return number < 10 ? QStringLiteral("0") + num(number) : num(number);
}

QString SQLDataHelper::MakeSQLDateTime(const QDateTime &dateTime)
{
    // An unset date is day 0 of the calendar's date count.
    const QDateTime d = dateTime.isValid() ? dateTime : RecordValue::zeroDate();
    const QDate j = d.date();
    const QTime t = d.time();
    return QStringLiteral("{ts'") + num(j.year()) + QStringLiteral("-") + PadTwoDigits(j.month()) + QStringLiteral("-")
           + PadTwoDigits(j.day()) + QStringLiteral(" ") + PadTwoDigits(t.hour()) + QStringLiteral(":")
           + PadTwoDigits(t.minute()) + QStringLiteral(":") + PadTwoDigits(t.second()) + QStringLiteral("'}");
}

QString SQLDataHelper::MakeSQLstr(const QString &text)
{
    QString s = text;
    s.replace(QStringLiteral("\\"), QStringLiteral("\\\\"));
    s.replace(QStringLiteral("\""), QStringLiteral("\\\""));
    return QStringLiteral("\"") + s + QStringLiteral("\"");
}

std::optional<QString> SQLDataHelper::GetDSN(const QString &connection)
{
    constexpr qsizetype marker = 16; // "Provider=Custom;"
    if (connection.size() < marker)
        return std::nullopt;
    return connection.right(connection.size() - marker);
}

qint32 SQLDataHelper::PatternKeyOf(const CalendarEvent &event)
{
    const int state = event.RecurrenceState();
    if (state != 1 && state != 3)
        return 0;
    const CalendarRecurrencePatternPtr p = event.RecurrencePattern();
    return p ? p->RecurrencePatternID() : 0;
}

CalendarEventPtr SQLDataHelper::CreateEventFromRS(const RecordSource &rs, bool exception) const
{
    try {
        if (rs.atEnd())
            return {};
        const qint32 id = RecordValue::integer(rs.field(QStringLiteral("EventID")));
        if (!m_provider)
            return {};
        CalendarEventPtr e = m_provider->CreateEventFromId(id);
        if (!e)
            return {};
        using namespace RecordValue;
        e->setSubject(text(rs.field(QStringLiteral("Subject"))));
        e->setLocation(text(rs.field(QStringLiteral("Location"))));
        e->setBody(text(rs.field(QStringLiteral("Body"))));
        e->setIsMeeting(flag(rs.field(QStringLiteral("IsMeeting"))));
        e->setIsPrivate(flag(rs.field(QStringLiteral("IsPrivate"))));
        e->setLabelID(integer(rs.field(QStringLiteral("LabelID"))));
        e->setBusyStatus(integer(rs.field(QStringLiteral("BusyStatus"))));
        e->setImportanceLevel(integer(rs.field(QStringLiteral("ImportanceLevel"))));
        e->setStartDateTime(dateTime(rs.field(QStringLiteral("StartDateTime"))));
        e->setEndDateTime(dateTime(rs.field(QStringLiteral("EndDateTime"))));
        e->setIsAllDayEvent(flag(rs.field(QStringLiteral("IsAllDayEvent"))));
        e->setIsReminder(flag(rs.field(QStringLiteral("IsReminder"))));
        e->setReminderMinutesBeforeStart(integer(rs.field(QStringLiteral("ReminderMinutesBeforeStart"))));
        e->setReminderSoundFile(text(rs.field(QStringLiteral("RemainderSoundFile"))));
        e->CustomProperties().LoadFromString(text(rs.field(QStringLiteral("CustomPropertiesXMLData"))));
        e->CustomIcons().LoadFromString(text(rs.field(QStringLiteral("CustomIconsIDs"))));
        e->setScheduleID(integer(rs.field(QStringLiteral("ScheduleID"))));
        if (exception) {
            e->MarkAsRecurrenceException();
            e->setRExceptionStartTimeOrig(dateTime(rs.field(QStringLiteral("RExceptionStartTimeOrig"))));
            e->setRExceptionEndTimeOrig(dateTime(rs.field(QStringLiteral("RExceptionEndTimeOrig"))));
            e->setRExceptionDeleted(flag(rs.field(QStringLiteral("ISRecurrenceExceptionDeleted"))));
        } else {
            e->CustomProperties().SetProperty(QStringLiteral("process_RecurrenceState"),
                                              integer(rs.field(QStringLiteral("RecurrenceState"))));
            e->CustomProperties().SetProperty(QStringLiteral("process_RecurrencePatternID"),
                                              integer(rs.field(QStringLiteral("RecurrencePatternID"))));
        }
        return e;
    } catch (const FieldError &) {
        return {};
    }
}

void SQLDataHelper::PutEventToRS(const CalendarEvent &e, RecordSink &rs) const
{
    try {
        rs.setField(QStringLiteral("Subject"), e.Subject());
        rs.setField(QStringLiteral("Location"), e.Location());
        rs.setField(QStringLiteral("Body"), e.Body());
        rs.setField(QStringLiteral("IsMeeting"), e.IsMeeting() ? 1 : 0);
        rs.setField(QStringLiteral("IsPrivate"), e.IsPrivate() ? 1 : 0);
        rs.setField(QStringLiteral("LabelID"), e.LabelID());
        rs.setField(QStringLiteral("BusyStatus"), e.BusyStatus());
        rs.setField(QStringLiteral("ImportanceLevel"), e.ImportanceLevel());
        rs.setField(QStringLiteral("StartDateTime"), e.StartDateTime());
        rs.setField(QStringLiteral("EndDateTime"), e.EndDateTime());
        rs.setField(QStringLiteral("IsAllDayEvent"), e.IsAllDayEvent() ? 1 : 0);
        rs.setField(QStringLiteral("IsReminder"), e.IsReminder() ? 1 : 0);
        rs.setField(QStringLiteral("ReminderMinutesBeforeStart"), e.ReminderMinutesBeforeStart());
        rs.setField(QStringLiteral("RemainderSoundFile"), e.ReminderSoundFile());
        rs.setField(QStringLiteral("RecurrenceState"), e.RecurrenceState());
        rs.setField(QStringLiteral("RecurrencePatternID"), PatternKeyOf(e));
        rs.setField(QStringLiteral("RExceptionStartTimeOrig"), e.RExceptionStartTimeOrig());
        rs.setField(QStringLiteral("RExceptionEndTimeOrig"), e.RExceptionEndTimeOrig());
        rs.setField(QStringLiteral("ISRecurrenceExceptionDeleted"), e.RExceptionDeleted() ? 1 : 0);
        rs.setField(QStringLiteral("CustomPropertiesXMLData"), e.CustomProperties().SaveToString());
        rs.setField(QStringLiteral("CustomIconsIDs"), e.CustomIcons().SaveToString());
        rs.setField(QStringLiteral("ScheduleID"), e.ScheduleID());
    } catch (const FieldError &) {
        // The row stays as far as it got; the caller's update decides.
    }
}

CalendarRecurrencePatternPtr SQLDataHelper::CreateRPatternFromRS(const RecordSource &rs, RecordConnection &connection) const
{
    CalendarRecurrencePatternPtr p;
    try {
        if (rs.atEnd())
            return {};
        const qint32 id = RecordValue::integer(rs.field(QStringLiteral("RecurrencePatternID")));
        if (!m_provider)
            return {};
        p = m_provider->CreateRPatternFromId(id);
        if (!p)
            return {};
        using namespace RecordValue;
        p->setMasterEventID(integer(rs.field(QStringLiteral("MasterEventID"))));
        p->setStartTime(dateTime(rs.field(QStringLiteral("EventStartTime"))).time());
        p->setDurationMinutes(integer(rs.field(QStringLiteral("EventDuration"))));
        p->setStartDate(dateTime(rs.field(QStringLiteral("PatternStartDate"))).date());
        const int method = integer(rs.field(QStringLiteral("PatternEndMethod")));
        p->setEndMethod(method);
        if (method == 0)
            p->setEndDate(dateTime(rs.field(QStringLiteral("PatternEndDate"))).date());
        else if (method == 1)
            p->setEndAfterOccurrences(integer(rs.field(QStringLiteral("PatternEndAfterOccurrences"))));
        p->Options().setData(integer(rs.field(QStringLiteral("OptionsData1"))), integer(rs.field(QStringLiteral("OptionsData2"))),
                             integer(rs.field(QStringLiteral("OptionsData3"))), integer(rs.field(QStringLiteral("OptionsData4"))));
        p->CustomProperties().LoadFromString(text(rs.field(QStringLiteral("CustomPropertiesXMLData"))));
        // Reading the exceptions is a step of this reader like the others: a
        // failing statement leaves the pattern out, as an unreadable column does.
        ReadRPatternExceptions(p, connection);
    } catch (const FieldError &) {
        return {};
    }
    return p;
}

void SQLDataHelper::PutRPatternToRS(const CalendarRecurrencePattern &p, RecordSink &rs) const
{
    try {
        rs.setField(QStringLiteral("MasterEventID"), p.MasterEventID());
        rs.setField(QStringLiteral("EventStartTime"), QDateTime(RecordValue::zeroDate().date(), p.StartTime()));
        rs.setField(QStringLiteral("EventDuration"), p.DurationMinutes());
        rs.setField(QStringLiteral("PatternStartDate"), QDateTime(p.StartDate(), QTime(0, 0)));
        rs.setField(QStringLiteral("PatternEndMethod"), p.EndMethod());
        rs.setField(QStringLiteral("PatternEndDate"), QDateTime(p.EndDate(), QTime(0, 0)));
        rs.setField(QStringLiteral("PatternEndAfterOccurrences"), p.EndAfterOccurrences());
        rs.setField(QStringLiteral("OptionsData1"), p.Options().Data1());
        rs.setField(QStringLiteral("OptionsData2"), p.Options().Data2());
        rs.setField(QStringLiteral("OptionsData3"), p.Options().Data3());
        rs.setField(QStringLiteral("OptionsData4"), p.Options().Data4());
        rs.setField(QStringLiteral("CustomPropertiesXMLData"), p.CustomProperties().SaveToString());
    } catch (const FieldError &) {
    }
}

void SQLDataHelper::ReadRPatternExceptions(const CalendarRecurrencePatternPtr &pattern, RecordConnection &connection) const
{
    const QString sql = QStringLiteral("SELECT * FROM CalendarEvents WHERE ") + CRLF + QStringLiteral(" RecurrenceState = ") + num(3)
                        + QStringLiteral(" AND ") + CRLF + QStringLiteral(" RecurrencePatternID = ")
                        + num(pattern->RecurrencePatternID());
    const std::unique_ptr<RecordCursor> rs = connection.execute(sql);
    while (!rs->atEnd()) {
        if (CalendarEventPtr e = CreateEventFromRS(*rs, true))
            pattern->SetException(e);
        rs->next();
    }
}

QString SQLDataHelper::MakeUpdateEventSQL(const CalendarEvent &e)
{
    const QString sep = QStringLiteral(", ") + CRLF;
    QString s = QStringLiteral("UPDATE CalendarEvents SET ") + CRLF;
    s += QStringLiteral("Subject = ") + MakeSQLstr(e.Subject()) + sep;
    s += QStringLiteral("Location = ") + MakeSQLstr(e.Location()) + sep;
    s += QStringLiteral("Body = ") + MakeSQLstr(e.Body()) + sep;
    s += QStringLiteral("IsMeeting = ") + bit(e.IsMeeting()) + sep;
    s += QStringLiteral("IsPrivate = ") + bit(e.IsPrivate()) + sep;
    s += QStringLiteral("LabelID = ") + num(e.LabelID()) + sep;
    s += QStringLiteral("BusyStatus = ") + num(e.BusyStatus()) + sep;
    s += QStringLiteral("ImportanceLevel = ") + num(e.ImportanceLevel()) + sep;
    s += QStringLiteral("StartDateTime = ") + MakeSQLDateTime(e.StartDateTime()) + sep;
    s += QStringLiteral("EndDateTime = ") + MakeSQLDateTime(e.EndDateTime()) + sep;
    s += QStringLiteral("IsAllDayEvent = ") + bit(e.IsAllDayEvent()) + sep;
    s += QStringLiteral("IsReminder = ") + bit(e.IsReminder()) + sep;
    s += QStringLiteral("ReminderMinutesBeforeStart = ") + num(e.ReminderMinutesBeforeStart()) + sep;
    s += QStringLiteral("RemainderSoundFile = ") + MakeSQLstr(e.ReminderSoundFile()) + sep;
    s += QStringLiteral("RecurrenceState = ") + num(e.RecurrenceState()) + sep;
    s += QStringLiteral("RecurrencePatternID = ") + num(PatternKeyOf(e)) + sep;
    s += QStringLiteral("RExceptionStartTimeOrig = ") + MakeSQLDateTime(e.RExceptionStartTimeOrig()) + sep;
    s += QStringLiteral("RExceptionEndTimeOrig = ") + MakeSQLDateTime(e.RExceptionEndTimeOrig()) + sep;
    s += QStringLiteral("ISRecurrenceExceptionDeleted = ") + bit(e.RExceptionDeleted()) + sep;
    // No comma here: the servers have always been sent it so.
    s += QStringLiteral("CustomPropertiesXMLData = ") + MakeSQLstr(e.CustomProperties().SaveToString()) + QStringLiteral(" ") + CRLF;
    s += QStringLiteral("CustomIconsIDs = ") + MakeSQLstr(e.CustomIcons().SaveToString()) + sep;
    s += QStringLiteral("ScheduleID = ") + num(e.ScheduleID()) + QStringLiteral(" ") + CRLF;
    s += QStringLiteral("WHERE EventID = ") + num(e.EventID()) + QStringLiteral(";");
    return s;
}

QString SQLDataHelper::MakeCreateEventSQL(const CalendarEvent &e)
{
    const QString sep = QStringLiteral(", ") + CRLF;
    QString s = QStringLiteral(
        "INSERT INTO CalendarEvents (Subject, Location, Body, IsMeeting, IsPrivate, LabelID, BusyStatus, ImportanceLevel, "
        "StartDateTime, EndDateTime, IsAllDayEvent, IsReminder, ReminderMinutesBeforeStart, RemainderSoundFile, "
        "RecurrenceState, RecurrencePatternID, RExceptionStartTimeOrig, RExceptionEndTimeOrig, "
        "ISRecurrenceExceptionDeleted, CustomPropertiesXMLData, CustomIconsIDs, ScheduleID) ");
    s += CRLF + QStringLiteral("VALUES(");
    s += MakeSQLstr(e.Subject()) + sep;
    s += MakeSQLstr(e.Location()) + sep;
    s += MakeSQLstr(e.Body()) + sep;
    s += bit(e.IsMeeting()) + sep;
    s += bit(e.IsPrivate()) + sep;
    s += num(e.LabelID()) + sep;
    s += num(e.BusyStatus()) + sep;
    s += num(e.ImportanceLevel()) + sep;
    s += MakeSQLDateTime(e.StartDateTime()) + sep;
    s += MakeSQLDateTime(e.EndDateTime()) + sep;
    s += bit(e.IsAllDayEvent()) + sep;
    s += bit(e.IsReminder()) + sep;
    s += num(e.ReminderMinutesBeforeStart()) + sep;
    s += MakeSQLstr(e.ReminderSoundFile()) + sep;
    s += num(e.RecurrenceState()) + sep;
    s += num(PatternKeyOf(e)) + sep;
    s += MakeSQLDateTime(e.RExceptionStartTimeOrig()) + sep;
    s += MakeSQLDateTime(e.RExceptionEndTimeOrig()) + sep;
    s += bit(e.RExceptionDeleted()) + sep;
    s += MakeSQLstr(e.CustomProperties().SaveToString()) + sep;
    s += MakeSQLstr(e.CustomIcons().SaveToString()) + sep;
    s += num(e.ScheduleID()) + QStringLiteral(");") + CRLF;
    return s;
}

namespace {

// The pattern's dates as the calendar keeps them: the time of day on day 0,
// the start and end days at midnight.
QDateTime heureDuJourZero(const QTime &t)
{
    return QDateTime(RecordValue::zeroDate().date(), t.isValid() ? t : QTime(0, 0));
}

QDateTime jourAMinuit(const QDate &d)
{
    return d.isValid() ? QDateTime(d, QTime(0, 0)) : QDateTime();
}

} // namespace

QString SQLDataHelper::MakeUpdatePatternSQL(const CalendarRecurrencePattern &p)
{
    const QString sep = QStringLiteral(", ") + CRLF;
    QString s = QStringLiteral("UPDATE CalendarRecurrencePatterns SET ") + CRLF;
    s += QStringLiteral("MasterEventID = ") + num(p.MasterEventID()) + sep;
    s += QStringLiteral("EventStartTime = ") + MakeSQLDateTime(heureDuJourZero(p.StartTime())) + sep;
    s += QStringLiteral("EventDuration = ") + num(p.DurationMinutes()) + sep;
    s += QStringLiteral("PatternStartDate = ") + MakeSQLDateTime(jourAMinuit(p.StartDate())) + sep;
    s += QStringLiteral("PatternEndMethod = ") + num(p.EndMethod()) + sep;
    s += QStringLiteral("PatternEndDate = ") + MakeSQLDateTime(jourAMinuit(p.EndDate())) + sep;
    s += QStringLiteral("PatternEndAfterOccurrences = ") + num(p.EndAfterOccurrences()) + sep;
    s += QStringLiteral("OptionsData1 = ") + num(p.Options().Data1()) + sep;
    s += QStringLiteral("OptionsData2 = ") + num(p.Options().Data2()) + sep;
    s += QStringLiteral("OptionsData3 = ") + num(p.Options().Data3()) + sep;
    s += QStringLiteral("OptionsData4 = ") + num(p.Options().Data4()) + sep;
    s += QStringLiteral("CustomPropertiesXMLData = ") + MakeSQLstr(p.CustomProperties().SaveToString()) + QStringLiteral(" ") + CRLF;
    s += QStringLiteral(" WHERE RecurrencePatternID = ") + num(p.RecurrencePatternID());
    return s;
}

QString SQLDataHelper::MakeCreatePatternSQL(const CalendarRecurrencePattern &p)
{
    const QString sep = QStringLiteral(", ") + CRLF;
    QString s = QStringLiteral("INSERT INTO CalendarRecurrencePatterns (");
    for (const char *colonne : {"MasterEventID, ", "EventStartTime, ", "EventDuration, ", "PatternStartDate, ", "PatternEndMethod, ",
                                "PatternEndDate, ", "PatternEndAfterOccurrences, ", "OptionsData1, ", "OptionsData2, ",
                                "OptionsData3, ", "OptionsData4, ", "CustomPropertiesXMLData) "})
        s += QLatin1String(colonne) + CRLF;
    s += QStringLiteral("VALUES(");
    s += num(p.MasterEventID()) + sep;
    s += MakeSQLDateTime(heureDuJourZero(p.StartTime())) + sep;
    s += num(p.DurationMinutes()) + sep;
    s += MakeSQLDateTime(jourAMinuit(p.StartDate())) + sep;
    s += num(p.EndMethod()) + sep;
    s += MakeSQLDateTime(jourAMinuit(p.EndDate())) + sep;
    s += num(p.EndAfterOccurrences()) + sep;
    s += num(p.Options().Data1()) + sep;
    s += num(p.Options().Data2()) + sep;
    s += num(p.Options().Data3()) + sep;
    s += num(p.Options().Data4()) + sep;
    s += MakeSQLstr(p.CustomProperties().SaveToString()) + QStringLiteral("); ");
    return s;
}

QString SQLDataHelper::MakeRetrieveDayEventsSQL(const QDate &day)
{
    const QString Y = num(day.year());
    const QString M = num(day.month());
    const QString D = num(day.day());
    QString s;
    s += QStringLiteral("SELECT * FROM CalendarEvents WHERE ") + CRLF;
    s += QStringLiteral(" ( RecurrenceState = ") + num(0) + QStringLiteral(" OR ") + CRLF;
    s += QStringLiteral("   RecurrenceState = ") + num(1) + QStringLiteral(") AND ") + CRLF;
    s += QStringLiteral("( YEAR(StartDateTime) < ") + Y + CRLF;
    s += QStringLiteral("  OR ( YEAR(StartDateTime) = ") + Y + QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral("       ( MONTH(StartDateTime) < ") + M + QStringLiteral(" OR ");
    s += QStringLiteral("         MONTH(StartDateTime) = ") + M + QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral("         DAY(StartDateTime) <= ") + D + CRLF;
    s += QStringLiteral("     ) ) )AND ") + CRLF;
    s += QStringLiteral("( YEAR(EndDateTime) > ") + Y + CRLF;
    s += QStringLiteral("  OR ( YEAR(EndDateTime) = ") + Y + QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral("       (MONTH(EndDateTime) > ") + M + QStringLiteral(" OR ");
    s += QStringLiteral("        MONTH(EndDateTime) = ") + M + QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral("        DAY(EndDateTime) >= ") + D + CRLF;
    s += QStringLiteral("     ) ) ) ") + CRLF;
    return s;
}

QString SQLDataHelper::MakeGetUpcomingEventsSQL(int kind, const QDateTime &start, int minutes, bool filter)
{
    QString s;
    s += QStringLiteral("SELECT * FROM CalendarEvents WHERE ") + CRLF;
    s += QStringLiteral("(RecurrenceState = ") + num(0) + QStringLiteral(" OR ") + CRLF;
    s += QStringLiteral(" RecurrenceState = ") + num(1) + QStringLiteral(") ") + CRLF;
    if (!filter)
        return s;

    // Calendar times are wall-clock times: the minutes are added to the
    // clock reading, with no regard to a change of summer time in between.
    const QDateTime horloge(start.date(), start.time(), Qt::UTC);
    const QString T = MakeSQLDateTime(horloge.addSecs(qint64(minutes) * 60));
    QString E;
    if (kind == 4)
        E = QStringLiteral(" DATEADD(\"n\", -1 * ReminderMinutesBeforeStart, StartDateTime) ");
    else if (kind == 5)
        E = QStringLiteral(" ADDDATE(StartDateTime, INTERVAL -1*ReminderMinutesBeforeStart MINUTE) ");
    else
        return QStringLiteral("err");

    s += QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral(" ( IsReminder <> 0 OR ") + CRLF;
    s += QStringLiteral("     ( RecurrenceState = ") + num(1) + QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral("       RecurrencePatternID IN ") + CRLF;
    s += QStringLiteral("         ( SELECT RecurrencePatternID  FROM CalendarEvents ") + CRLF;
    s += QStringLiteral("           WHERE ") + CRLF;
    s += QStringLiteral("             RecurrenceState = ") + num(3) + QStringLiteral(" AND ") + CRLF;
    s += QStringLiteral("             IsReminder <> 0 AND ") + CRLF;
    s += QStringLiteral("         ") + E + QStringLiteral(" <= ") + T + CRLF;
    s += QStringLiteral("         ) ") + CRLF;
    s += QStringLiteral("     ) ") + CRLF;
    s += QStringLiteral(" ) AND ") + CRLF;
    s += E + QStringLiteral(" <= ") + T;
    return s;
}
