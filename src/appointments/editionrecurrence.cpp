#include "appointments/editionrecurrence.h"

#include "calendar/calendarrecurrenceoptions.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int minutesParJour = 24 * 60;

// A text field's number as an int: the leading-number rule, kept in range.
int entier(const QString &texte)
{
    const qint64 n = LireEntier(texte);
    return int(std::clamp<qint64>(n, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// A list index from a 1-based value; out of the list: nothing chosen.
int indexListe(int valeur, int taille)
{
    const int index = valeur - 1;
    return index >= 0 && index < taille ? index : -1;
}

} // namespace

QStringList HeuresDebutRecurrence()
{
    QStringList heures;
    for (int m = 0; m <= minutesParJour; m += 30)
        heures << QStringLiteral("%1:%2").arg(m / 60, 2, 10, QLatin1Char('0')).arg(m % 60, 2, 10, QLatin1Char('0'));
    return heures;
}

QStringList DureesRecurrence()
{
    return {QStringLiteral("5 minutes"),
            QStringLiteral("10 minutes"),
            QStringLiteral("15 minutes"),
            QStringLiteral("30 minutes"),
            QStringLiteral("60 minutes (1 Heure)"),
            QStringLiteral("120 minutes (2 Heures)"),
            QStringLiteral("180 minutes (3 Heures)"),
            QStringLiteral("240 minutes (4 Heures)"),
            QStringLiteral("1440 minutes (1 Jour)"),
            QStringLiteral("2880 minutes (2 Jours)")};
}

QStringList JoursDuMoisRecurrence()
{
    QStringList jours;
    for (int j = 1; j <= 31; ++j)
        jours << QString::number(j);
    return jours;
}

QStringList RangsJourRecurrence()
{
    return {QStringLiteral("premier"), QStringLiteral("second"), QStringLiteral("troisième"), QStringLiteral("quatrième"),
            QStringLiteral("dernier")};
}

QStringList JoursMasqueRecurrence()
{
    return {QStringLiteral("Jour"),  QStringLiteral("Jour de semaine"), QStringLiteral("Weekend"), QStringLiteral("Dimanche"),
            QStringLiteral("Lundi"), QStringLiteral("Mardi"),           QStringLiteral("Mercredi"), QStringLiteral("Jeudi"),
            QStringLiteral("Vendredi"), QStringLiteral("Samedi")};
}

QStringList MoisRecurrence()
{
    return {QStringLiteral("Janvier"), QStringLiteral("Février"), QStringLiteral("Mars"),      QStringLiteral("Avril"),
            QStringLiteral("Mai"),     QStringLiteral("Juin"),    QStringLiteral("Juillet"),   QStringLiteral("Août"),
            QStringLiteral("Septembre"), QStringLiteral("Octobre"), QStringLiteral("Novembre"), QStringLiteral("Décembre")};
}

int IndexJourSemaine(QDate date)
{
    if (!date.isValid())
        return -1;
    // The list has Dimanche at 3, Lundi at 4.
    return WhichDayMask2index(1 << (JourSemaineDimanche1(date) - 1));
}

ValeursRecurrence ValeursParDefautRecurrence(QDate selection, QDate aujourdhui)
{
    ValeursRecurrence v;
    if (selection.isValid()) {
        v.cmbMonthlyDayOfMonth = selection.day() - 1;
        v.cmbYearlyDate = selection.day() - 1;
        v.cmbMonthlyDayOfWeek = IndexJourSemaine(selection);
        v.cmbYearlyTheDay = IndexJourSemaine(selection);
    }
    v.ddPatternEndDate = aujourdhui.addDays(5);
    return v;
}

std::optional<QTime> HeureDebutRecurrence(const QString &texte)
{
    const QStringList parties = texte.split(QLatin1Char(':'));
    if (parties.size() < 2)
        return std::nullopt;
    // Hours and minutes beyond their range carry over as on a clock.
    qint64 minutes = LireEntier(parties.at(0)) * 60 + LireEntier(parties.at(1));
    minutes %= minutesParJour;
    if (minutes < 0)
        minutes += minutesParJour;
    return QTime(int(minutes / 60), int(minutes % 60), 0);
}

int DureeRecurrence(const QString &texte)
{
    return entier(texte);
}

QString HeureFinRecurrence(const QString &debut, const QString &duree)
{
    const std::optional<QTime> heure = HeureDebutRecurrence(debut);
    if (!heure)
        return {};
    const qint64 secondes = qint64(DureeRecurrence(duree)) * 60 % (qint64(minutesParJour) * 60);
    return heure->addSecs(int(secondes)).toString(QStringLiteral("hh:mm"));
}

void PatternVersValeurs(const CalendarRecurrencePattern &pattern, ValeursRecurrence &v)
{
    v.cmbEventStartTime = pattern.StartTime().toString(QStringLiteral("hh:mm"));
    v.cmbEventDuration = QString::number(pattern.DurationMinutes()) + QStringLiteral(" minutes");
    v.txtEventEndTime = HeureFinRecurrence(v.cmbEventStartTime, v.cmbEventDuration);

    const CalendarRecurrenceOptions &o = pattern.Options();
    switch (o.RecurrenceType()) {
    case CalendarRecurrenceOptions::Daily:
        v.page = ValeursRecurrence::Journaliere;
        v.optDailyEveryWorkDay = o.EveryWeekDay();
        v.txtDailyEveryNdays = o.EveryWeekDay() ? QStringLiteral("1") : QString::number(o.IntervalDays());
        break;
    case CalendarRecurrenceOptions::Weekly:
        v.page = ValeursRecurrence::Hebdomadaire;
        v.txtWeeklyNWeeks = QString::number(o.IntervalWeeks());
        v.joursCoches = o.DayOfWeekMask() & CalendarRecurrenceOptions::AllDays;
        break;
    case CalendarRecurrenceOptions::Monthly:
        v.page = ValeursRecurrence::Mensuelle;
        v.optMonthlyDay = true;
        v.cmbMonthlyDayOfMonth = indexListe(o.DayOfMonth(), 31);
        v.txtMonthlyEveryMonth = QString::number(o.IntervalMonths());
        break;
    case CalendarRecurrenceOptions::MonthNth:
        v.page = ValeursRecurrence::Mensuelle;
        v.optMonthlyDay = false;
        v.cmbMonthlyDay = indexListe(o.WhichDay(), 5);
        v.cmbMonthlyDayOfWeek = WhichDayMask2index(o.WhichDayMask());
        v.txtMonthlyOfEveryTheMonths = QString::number(o.IntervalMonthsNth());
        break;
    case CalendarRecurrenceOptions::Yearly:
        v.page = ValeursRecurrence::Annuelle;
        v.optYearlyDay = true;
        v.cmbYearlyEveryDate = indexListe(o.MonthOfYear(), 12);
        v.cmbYearlyDate = indexListe(o.DayOfMonthYearly(), 31);
        break;
    case CalendarRecurrenceOptions::YearNth:
        v.page = ValeursRecurrence::Annuelle;
        v.optYearlyDay = false;
        v.cmdYearlyThePartOfWeek = indexListe(o.WhichDayYearly(), 5);
        v.cmbYearlyTheDay = WhichDayMask2index(o.WhichDayMaskYearly());
        v.cmbYearlyTheMonth = indexListe(o.MonthOfYearNth(), 12);
        break;
    default:
        // A kind the dialog doesn't know: the page stays as it was.
        break;
    }

    v.ddPatternStartDate = pattern.StartDate();
    v.finSerie = pattern.EndMethod();
    v.txtPatternEndAfter = QStringLiteral("10");
    if (pattern.EndMethod() == CalendarRecurrencePattern::EndAfterOccurrencesCount)
        v.txtPatternEndAfter = QString::number(pattern.EndAfterOccurrences());
    else if (pattern.EndMethod() == CalendarRecurrencePattern::EndByDate)
        v.ddPatternEndDate = pattern.EndDate();
}

bool ValeursVersPattern(const ValeursRecurrence &v, CalendarRecurrencePattern &pattern)
{
    const std::optional<QTime> debut = HeureDebutRecurrence(v.cmbEventStartTime);
    if (!debut)
        return false;
    pattern.setStartTime(*debut);
    pattern.setDurationMinutes(DureeRecurrence(v.cmbEventDuration));

    CalendarRecurrenceOptions &o = pattern.Options();
    switch (v.page) {
    case ValeursRecurrence::Journaliere:
        o.setRecurrenceType(CalendarRecurrenceOptions::Daily);
        if (v.optDailyEveryWorkDay) {
            o.setEveryWeekDay(true);
        } else {
            o.setEveryWeekDay(false);
            o.setIntervalDays(entier(v.txtDailyEveryNdays));
        }
        break;
    case ValeursRecurrence::Hebdomadaire:
        o.setRecurrenceType(CalendarRecurrenceOptions::Weekly);
        o.setIntervalWeeks(entier(v.txtWeeklyNWeeks));
        o.setDayOfWeekMask(v.joursCoches & CalendarRecurrenceOptions::AllDays);
        break;
    case ValeursRecurrence::Mensuelle:
        // Only the two monthly intervals are kept from going below 1.
        if (v.optMonthlyDay) {
            o.setRecurrenceType(CalendarRecurrenceOptions::Monthly);
            o.setDayOfMonth(v.cmbMonthlyDayOfMonth + 1);
            o.setIntervalMonths(qMax(1, entier(v.txtMonthlyEveryMonth)));
        } else {
            o.setRecurrenceType(CalendarRecurrenceOptions::MonthNth);
            o.setWhichDay(v.cmbMonthlyDay + 1);
            o.setWhichDayMask(index2WhichDayMask(v.cmbMonthlyDayOfWeek));
            o.setIntervalMonthsNth(qMax(1, entier(v.txtMonthlyOfEveryTheMonths)));
        }
        break;
    case ValeursRecurrence::Annuelle:
        if (v.optYearlyDay) {
            o.setRecurrenceType(CalendarRecurrenceOptions::Yearly);
            o.setMonthOfYear(v.cmbYearlyEveryDate + 1);
            o.setDayOfMonthYearly(v.cmbYearlyDate + 1);
        } else {
            o.setRecurrenceType(CalendarRecurrenceOptions::YearNth);
            o.setWhichDayYearly(v.cmdYearlyThePartOfWeek + 1);
            o.setWhichDayMaskYearly(index2WhichDayMask(v.cmbYearlyTheDay));
            o.setMonthOfYearNth(v.cmbYearlyTheMonth + 1);
        }
        break;
    }

    pattern.setStartDate(v.ddPatternStartDate);
    switch (v.finSerie) {
    case CalendarRecurrencePattern::EndAfterOccurrencesCount:
        pattern.setEndMethod(CalendarRecurrencePattern::EndAfterOccurrencesCount);
        pattern.setEndAfterOccurrences(entier(v.txtPatternEndAfter));
        break;
    case CalendarRecurrencePattern::EndByDate:
        pattern.setEndMethod(CalendarRecurrencePattern::EndByDate);
        pattern.setEndDate(v.ddPatternEndDate);
        break;
    default:
        pattern.setEndMethod(CalendarRecurrencePattern::NoEnd);
        break;
    }
    return true;
}

ChargementRecurrence ChargerRecurrence(const CalendarEventPtr &event)
{
    ChargementRecurrence c;
    if (!event)
        return c;

    if (event->RecurrenceState() == CalendarEvent::Master) {
        c.event = event;
        c.pattern = event->RecurrencePattern();
        if (!c.pattern)
            c.pattern = event->CreateRecurrence();
        return c;
    }

    const CalendarEventPtr copie = event->CloneEvent();
    if (copie->RecurrenceState() == CalendarEvent::Occurrence || copie->RecurrenceState() == CalendarEvent::Exception) {
        c.occurrence = true;
        const CalendarRecurrencePatternPtr serie = copie->RecurrencePattern();
        const CalendarEventPtr maitre = serie ? serie->MasterEvent() : CalendarEventPtr();
        if (!maitre)
            return c;
        // A copy of the master carries a copy of the series with its
        // exceptions: the shared objects stay as the store gave them.
        c.event = maitre->CloneEvent();
        c.pattern = c.event->RecurrencePattern();
        if (!c.pattern)
            c.event.clear();
        return c;
    }

    // A plain event becomes the master of a new series at its own time.
    const QDateTime debut = copie->StartDateTime();
    const QDateTime fin = copie->EndDateTime();
    c.event = copie;
    c.pattern = copie->CreateRecurrence();
    c.nouvelleRecurrence = true;
    if (c.pattern && debut.isValid()) {
        c.pattern->setStartTime(debut.time());
        if (fin.isValid())
            c.pattern->setDurationMinutes(int(qAbs(debut.secsTo(fin)) / 60));
        c.pattern->setStartDate(debut.date());
        copie->UpdateRecurrence(c.pattern);
    }
    return c;
}

QString QuestionExceptionsRecurrence()
{
    return QStringLiteral("Toutes les exceptions associées à cette récurrence seront perdues. Êtes vous d'accord ? ");
}

bool ConfirmerRecurrence(const CalendarEventPtr &event, const CalendarRecurrencePatternPtr &pattern)
{
    if (!event || !pattern)
        return false;
    if (pattern->ExceptionsCount() > 0) {
        Prompt::Message m;
        m.titre = QStringLiteral("Tavonel");
        m.texte = QuestionExceptionsRecurrence();
        m.icone = Prompt::Icone::Aucune;
        m.boutons = Prompt::Boutons::OkAnnuler;
        m.parDefaut = Prompt::Reponse::Ok;
        if (Prompt::demander(m) != Prompt::Reponse::Ok)
            return false;
        pattern->RemoveAllExceptions();
    }
    event->UpdateRecurrence(pattern);
    return true;
}
