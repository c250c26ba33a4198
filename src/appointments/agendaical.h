#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>

class CalendarDataProvider;
class CalendarEvent;
struct CalendarLabel;

// One practitioner's agenda as an iCalendar file (RFC 5545), for the
// calendar of a phone. Times are the practice's wall-clock times (floating,
// as the agenda shows them); a series is one event with its rule (RRULE,
// with COUNT or UNTIL), its deleted or given-away occurrences as EXDATE and
// its changed ones as events of the same UID with their RECURRENCE-ID.
struct OptionsIcal
{
    int praticien = 1;       // 1 or 2
    QDate depuis;            // first day
    int semaines = 4;        // how many weeks from that day
    bool noms = false;       // the patients' names and the motive
    QString nomCalendrier;   // the calendar's name on the phone
    QDateTime horodatage;    // DTSTAMP of every event
};

// The practitioner (1 or 2) of a label: 1 when its name holds
// "Praticien 1", otherwise 2, as the editor tells them apart.
[[nodiscard]] int PraticienDuLibelleNumero(const QString &nomLibelle);

// The title of an appointment on the phone. With a patient: the initials of
// the name and first name ("D. J."), or the full name with noms; without a
// patient, its wording. The type of the label follows (" - Consultation").
[[nodiscard]] QString ResumeIcal(const CalendarEvent &e, const QString &type, bool noms);

// The calendar text; *evenements, when given, the number of VEVENTs in it.
[[nodiscard]] QByteArray AgendaIcal(CalendarDataProvider &calendrier, const OptionsIcal &options, int *evenements = nullptr);
