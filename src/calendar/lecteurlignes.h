#pragma once

#include "calendar/calendardataprovider.h"
#include "calendar/sqlrecord.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QTime>

#include <iterator>
#include <utility>

// The rows of the calendar tables mapped to records straight from a store's
// own row, column by column, as SQLDataHelper::CreateEventFromRS and
// CreateRPatternFromRS map them through the general record layer. The day
// reads and the reminder poll are the hot path of the views (every ten
// seconds on every workstation): this spares them the name look-ups and most
// conversions of that layer.
//
// A row type (one per database library) answers, for the column number in
// the list of names it was given:
//   qint32 entier(int), QString texte(int)          the strict conversions of
//                                                    RecordValue (FieldError)
//   bool enTexte(int, QDate &, QTime &)              the stores' own date text,
//                                                    other than the zero date
//   bool dateZero(int)                               the zero date as text
//   QDateTime dateGenerale(int)                      any other form of a date,
//                                                    by RecordValue::dateTime

inline const char *const kNomsEvenement[] = {
    "EventID", "Subject", "Location", "Body", "IsMeeting", "IsPrivate", "LabelID", "BusyStatus", "ImportanceLevel",
    "StartDateTime", "EndDateTime", "IsAllDayEvent", "IsReminder", "ReminderMinutesBeforeStart", "RemainderSoundFile",
    "RecurrenceState", "RecurrencePatternID", "RExceptionStartTimeOrig", "RExceptionEndTimeOrig",
    "ISRecurrenceExceptionDeleted", "CustomPropertiesXMLData", "CustomIconsIDs", "ScheduleID", "CreationTime",
    "LastModificationTime"};
inline constexpr int kColonnesEvenement = int(std::size(kNomsEvenement));

inline const char *const kNomsMotif[] = {
    "RecurrencePatternID", "MasterEventID", "EventStartTime", "EventDuration", "PatternStartDate", "PatternEndMethod",
    "PatternEndDate", "PatternEndAfterOccurrences", "OptionsData1", "OptionsData2", "OptionsData3", "OptionsData4",
    "CustomPropertiesXMLData"};
inline constexpr int kColonnesMotif = int(std::size(kNomsMotif));

// Column numbers, in the order of the lists above.
struct ColonneEvenement
{
    enum : int {
        EventID, Subject, Location, Body, IsMeeting, IsPrivate, LabelID, BusyStatus, ImportanceLevel, StartDateTime,
        EndDateTime, IsAllDayEvent, IsReminder, ReminderMinutesBeforeStart, RemainderSoundFile, RecurrenceState,
        RecurrencePatternID, RExceptionStartTimeOrig, RExceptionEndTimeOrig, ISRecurrenceExceptionDeleted,
        CustomPropertiesXMLData, CustomIconsIDs, ScheduleID, CreationTime, LastModificationTime
    };
};

struct ColonneMotif
{
    enum : int {
        RecurrencePatternID, MasterEventID, EventStartTime, EventDuration, PatternStartDate, PatternEndMethod,
        PatternEndDate, PatternEndAfterOccurrences, OptionsData1, OptionsData2, OptionsData3, OptionsData4,
        CustomPropertiesXMLData
    };
};

// Event rows: a row with a missing or unreadable column is skipped. A start
// or end met again in the same read is not placed in the local zone again (a
// read meets the same slots of the day, ends that are starts); creation and
// change times are placed only when asked for.
template<class Ligne>
class LecteurEvenements final
{
public:
    using C = ColonneEvenement;

    LecteurEvenements(const Ligne &ligne, const CalendarDataProvider *calendrier)
        : m_ligne(ligne)
        , m_calendrier(calendrier)
    {
    }

    // The current row as a record; nothing when the row cannot be mapped.
    [[nodiscard]] CalendarEventPtr lire(bool exception = false)
    {
        try {
            const qint32 id = m_ligne.entier(C::EventID);
            if (!m_calendrier)
                return {};
            CalendarEventPtr e = m_calendrier->CreateEventFromId(id);
            if (!e)
                return {};
            e->setSubject(m_ligne.texte(C::Subject));
            e->setLocation(m_ligne.texte(C::Location));
            e->setBody(m_ligne.texte(C::Body));
            e->setIsMeeting(m_ligne.entier(C::IsMeeting) != 0);
            e->setIsPrivate(m_ligne.entier(C::IsPrivate) != 0);
            e->setLabelID(m_ligne.entier(C::LabelID));
            e->setBusyStatus(m_ligne.entier(C::BusyStatus));
            e->setImportanceLevel(m_ligne.entier(C::ImportanceLevel));
            e->setStartDateTime(date(C::StartDateTime));
            e->setEndDateTime(date(C::EndDateTime));
            e->setIsAllDayEvent(m_ligne.entier(C::IsAllDayEvent) != 0);
            e->setIsReminder(m_ligne.entier(C::IsReminder) != 0);
            e->setReminderMinutesBeforeStart(m_ligne.entier(C::ReminderMinutesBeforeStart));
            e->setReminderSoundFile(m_ligne.texte(C::RemainderSoundFile));
            e->CustomProperties().LoadFromString(m_ligne.texte(C::CustomPropertiesXMLData));
            e->CustomIcons().LoadFromString(m_ligne.texte(C::CustomIconsIDs));
            e->setScheduleID(m_ligne.entier(C::ScheduleID));
            if (exception) {
                e->MarkAsRecurrenceException();
                e->setRExceptionStartTimeOrig(date(C::RExceptionStartTimeOrig));
                e->setRExceptionEndTimeOrig(date(C::RExceptionEndTimeOrig));
                e->setRExceptionDeleted(m_ligne.entier(C::ISRecurrenceExceptionDeleted) != 0);
            } else {
                e->CustomProperties().SetProperty(CustomProperties::RecurrenceStateEntry, m_ligne.entier(C::RecurrenceState));
                e->CustomProperties().SetProperty(CustomProperties::RecurrencePatternIDEntry,
                                                  m_ligne.entier(C::RecurrencePatternID));
            }
            try {
                QDate j;
                QTime h;
                if (m_ligne.enTexte(C::CreationTime, j, h))
                    e->setCreationTimeWallClock(j, h);
                else
                    e->setCreationTime(date(C::CreationTime));
                if (m_ligne.enTexte(C::LastModificationTime, j, h))
                    e->setLastModificationTimeWallClock(j, h);
                else
                    e->setLastModificationTime(date(C::LastModificationTime));
            } catch (const FieldError &) {
                // Times of a row written by another program: left unset.
            }
            return e;
        } catch (const FieldError &) {
            return {};
        }
    }

private:
    [[nodiscard]] QDateTime date(int quoi)
    {
        QDate j;
        QTime h;
        if (m_ligne.enTexte(quoi, j, h)) {
            const qint64 cle = j.toJulianDay() * 86400 + h.msecsSinceStartOfDay() / 1000;
            auto it = m_dates.constFind(cle);
            if (it == m_dates.cend())
                it = m_dates.insert(cle, QDateTime(j, h));
            return *it;
        }
        return m_ligne.dateZero(quoi) ? QDateTime() : m_ligne.dateGenerale(quoi);
    }

    const Ligne &m_ligne;
    const CalendarDataProvider *m_calendrier;
    QHash<qint64, QDateTime> m_dates;
};

// Pattern rows, without the exceptions (which the caller attaches). Only the
// date or the time of day of the date-time columns is kept, so they are taken
// from the text as they stand, without placing them in the local zone.
template<class Ligne>
class LecteurMotifs final
{
public:
    using C = ColonneMotif;

    LecteurMotifs(const Ligne &ligne, const CalendarDataProvider *calendrier)
        : m_ligne(ligne)
        , m_calendrier(calendrier)
    {
    }

    [[nodiscard]] CalendarRecurrencePatternPtr lire() const
    {
        try {
            const qint32 id = m_ligne.entier(C::RecurrencePatternID);
            if (!m_calendrier)
                return {};
            CalendarRecurrencePatternPtr p = m_calendrier->CreateRPatternFromId(id);
            if (!p)
                return {};
            p->setMasterEventID(m_ligne.entier(C::MasterEventID));
            p->setStartTime(parties(C::EventStartTime).second);
            p->setDurationMinutes(m_ligne.entier(C::EventDuration));
            p->setStartDate(parties(C::PatternStartDate).first);
            const int methode = m_ligne.entier(C::PatternEndMethod);
            p->setEndMethod(methode);
            if (methode == 0)
                p->setEndDate(parties(C::PatternEndDate).first);
            else if (methode == 1)
                p->setEndAfterOccurrences(m_ligne.entier(C::PatternEndAfterOccurrences));
            p->Options().setData(m_ligne.entier(C::OptionsData1), m_ligne.entier(C::OptionsData2),
                                 m_ligne.entier(C::OptionsData3), m_ligne.entier(C::OptionsData4));
            p->CustomProperties().LoadFromString(m_ligne.texte(C::CustomPropertiesXMLData));
            return p;
        } catch (const FieldError &) {
            return {};
        }
    }

private:
    // Date and time of day of a column; both invalid for the zero date.
    [[nodiscard]] std::pair<QDate, QTime> parties(int quoi) const
    {
        QDate j;
        QTime h;
        if (m_ligne.enTexte(quoi, j, h))
            return {j, h};
        if (m_ligne.dateZero(quoi))
            return {};
        const QDateTime d = m_ligne.dateGenerale(quoi);
        return {d.date(), d.time()};
    }

    const Ligne &m_ligne;
    const CalendarDataProvider *m_calendrier;
};
