#include "appointments/agendaical.h"

#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "calendar/recurrenceexpander.h"

#include <libical/ical.h>

#include <QRegularExpression>
#include <QSet>

#include <cstdlib>
#include <memory>

namespace {

struct LiberateurComposant
{
    void operator()(icalcomponent *c) const { icalcomponent_free(c); }
};
using Composant = std::unique_ptr<icalcomponent, LiberateurComposant>;

// A wall-clock time without zone, or a date alone.
icaltimetype heure(const QDateTime &t, bool jourSeul = false)
{
    icaltimetype r = icaltime_null_time();
    r.year = t.date().year();
    r.month = t.date().month();
    r.day = t.date().day();
    r.is_date = jourSeul ? 1 : 0;
    if (!jourSeul) {
        r.hour = t.time().hour();
        r.minute = t.time().minute();
        r.second = t.time().second();
    }
    return r;
}

QByteArray utf8(const QString &texte)
{
    return texte.toUtf8();
}

QString initiales(const QString &texte)
{
    QStringList parts;
    for (const QString &mot : texte.split(QRegularExpression(QStringLiteral("[\\s-]+")), Qt::SkipEmptyParts))
        parts << mot.left(1).toUpper() + u'.';
    return parts.join(u' ');
}

class Ecriture final
{
public:
    Ecriture(CalendarDataProvider &calendrier, const OptionsIcal &o)
        : m_calendrier(calendrier)
        , m_options(o)
        , m_cal(icalcomponent_new_vcalendar())
    {
        icalcomponent_add_property(m_cal.get(), icalproperty_new_version("2.0"));
        icalcomponent_add_property(m_cal.get(), icalproperty_new_prodid("-//Tavonel//Agenda du cabinet//FR"));
        icalcomponent_add_property(m_cal.get(), icalproperty_new_calscale("GREGORIAN"));
        icalcomponent_add_property(m_cal.get(), icalproperty_new_method(ICAL_METHOD_PUBLISH));
        if (!o.nomCalendrier.isEmpty()) {
            icalproperty *nom = icalproperty_new_x(utf8(o.nomCalendrier).constData());
            icalproperty_set_x_name(nom, "X-WR-CALNAME");
            icalcomponent_add_property(m_cal.get(), nom);
        }
    }

    [[nodiscard]] bool nous(const CalendarEvent &e) const { return PraticienDuLibelleNumero(libelle(e)) == m_options.praticien; }

    // The plain event, or a changed occurrence (with the series' UID and its
    // original start).
    void ajouter(const CalendarEvent &e, int uid, const QDateTime &recurrenceId = {})
    {
        icalcomponent *v = evenement(e, uid);
        if (recurrenceId.isValid())
            icalcomponent_add_property(v, icalproperty_new_recurrenceid(heure(recurrenceId, e.IsAllDayEvent())));
    }

    void ajouterSerie(const CalendarEventPtr &maitre)
    {
        const CalendarRecurrencePatternPtr p = maitre->RecurrencePattern();
        if (!p)
            return;
        if (!nous(*maitre)) {
            // A series of the other practitioner: only its occurrences
            // handed over to this one.
            for (const CalendarEventPtr &x : p->Exceptions()) {
                if (!x->RExceptionDeleted() && nous(*x) && x->EventID() != 0)
                    ajouter(*x, x->EventID());
            }
            return;
        }
        const std::optional<QDateTime> premier = NextOccurrenceStart(p, QDateTime(p->StartDate(), QTime(0, 0)));
        const QString regle = RecurrenceRuleText(*p);
        if (!premier || regle.isEmpty())
            return;
        CalendarEventPtr modele = CalendarEvent::CreateOccurrence(maitre, *premier, premier->addSecs(qint64(p->DurationMinutes()) * 60));
        icalcomponent *v = evenement(*modele, maitre->EventID());
        QString fin;
        if (p->EndMethod() == CalendarRecurrencePattern::EndAfterOccurrencesCount)
            fin = QStringLiteral(";COUNT=%1").arg(std::max(p->EndAfterOccurrences(), 1));
        else if (p->EndMethod() == CalendarRecurrencePattern::EndByDate)
            fin = QStringLiteral(";UNTIL=") + p->EndDate().toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("T235959");
        icalproperty *rrule = icalproperty_new_from_string(utf8(QStringLiteral("RRULE:") + regle + fin).constData());
        if (rrule)
            icalcomponent_add_property(v, rrule);
        for (const CalendarEventPtr &x : p->Exceptions()) {
            if (x->RExceptionDeleted() || !nous(*x))
                icalcomponent_add_property(v, icalproperty_new_exdate(heure(x->RExceptionStartTimeOrig(), maitre->IsAllDayEvent())));
            else
                ajouter(*x, maitre->EventID(), x->RExceptionStartTimeOrig());
        }
    }

    [[nodiscard]] QByteArray texte(int *evenements) const
    {
        if (evenements)
            *evenements = icalcomponent_count_components(m_cal.get(), ICAL_VEVENT_COMPONENT);
        char *t = icalcomponent_as_ical_string_r(m_cal.get());
        const QByteArray r(t);
        icalmemory_free_buffer(t);
        return r;
    }

private:
    [[nodiscard]] QString libelle(const CalendarEvent &e) const
    {
        for (const CalendarLabel &l : m_calendrier.LabelList()) {
            if (l.id == e.LabelID())
                return l.name;
        }
        return {};
    }

    icalcomponent *evenement(const CalendarEvent &e, int uid)
    {
        icalcomponent *v = icalcomponent_new_vevent();
        icalcomponent_add_property(v, icalproperty_new_uid(utf8(QStringLiteral("%1@tavonel").arg(uid)).constData()));
        icaltimetype stamp = heure(m_options.horodatage.toUTC());
        stamp.zone = icaltimezone_get_utc_timezone();
        icalcomponent_add_property(v, icalproperty_new_dtstamp(stamp));
        const bool jour = e.IsAllDayEvent();
        icalproperty *debut = icalproperty_new_dtstart(heure(e.StartDateTime(), jour));
        icalproperty *fin = icalproperty_new_dtend(heure(jour && e.EndDateTime().date() <= e.StartDateTime().date()
                                                             ? e.StartDateTime().addDays(1)
                                                             : e.EndDateTime(),
                                                         jour));
        if (jour) {
            icalproperty_add_parameter(debut, icalparameter_new_value(ICAL_VALUE_DATE));
            icalproperty_add_parameter(fin, icalparameter_new_value(ICAL_VALUE_DATE));
        }
        icalcomponent_add_property(v, debut);
        icalcomponent_add_property(v, fin);
        QString type = libelle(e);
        type = type.mid(type.indexOf(u':') + 1).trimmed();
        icalcomponent_add_property(v, icalproperty_new_summary(utf8(ResumeIcal(e, type, m_options.noms)).constData()));
        if (m_options.noms && !e.Location().trimmed().isEmpty())
            icalcomponent_add_property(v, icalproperty_new_location(utf8(e.Location().trimmed()).constData()));
        if (e.IsPrivate())
            icalcomponent_add_property(v, icalproperty_new_class(ICAL_CLASS_CONFIDENTIAL));
        icalcomponent_add_component(m_cal.get(), v);
        return v;
    }

    CalendarDataProvider &m_calendrier;
    const OptionsIcal &m_options;
    Composant m_cal;
};

} // namespace

int PraticienDuLibelleNumero(const QString &nomLibelle)
{
    return nomLibelle.contains(QLatin1String("Praticien 1")) ? 1 : 2;
}

QString ResumeIcal(const CalendarEvent &e, const QString &type, bool noms)
{
    LectureBody lecture;
    const ChampsRdv c = DepaquerBody(e.Body(), &lecture);
    QString titre;
    if (lecture.ancienneForme)
        titre = noms ? e.Subject().simplified() : QString();
    else if (lecture.sansPatient)
        titre = (c.at(ChampRdv::Nom) + u' ' + c.at(ChampRdv::Prenom)).simplified();
    else if (noms)
        titre = (c.at(ChampRdv::Nom) + u' ' + c.at(ChampRdv::Prenom)).simplified();
    else
        titre = (initiales(c.at(ChampRdv::Nom)) + u' ' + initiales(c.at(ChampRdv::Prenom))).simplified();
    if (titre.isEmpty())
        return type;
    return type.isEmpty() ? titre : titre + QStringLiteral(" - ") + type;
}

QByteArray AgendaIcal(CalendarDataProvider &calendrier, const OptionsIcal &options, int *evenements)
{
    Ecriture ecriture(calendrier, options);
    const QDate dernier = options.depuis.addDays(7 * std::max(options.semaines, 1) - 1);
    QSet<int> series;
    for (const CalendarEventPtr &e : calendrier.RetrieveEvents(options.depuis, dernier)) {
        if (e->RecurrenceState() == CalendarEvent::NotRecurring) {
            if (ecriture.nous(*e))
                ecriture.ajouter(*e, e->EventID());
            continue;
        }
        const CalendarRecurrencePatternPtr p = e->RecurrencePattern();
        if (!p || series.contains(p->MasterEventID()))
            continue;
        series.insert(p->MasterEventID());
        if (const CalendarEventPtr maitre = calendrier.GetEvent(p->MasterEventID()))
            ecriture.ajouterSerie(maitre);
    }
    return ecriture.texte(evenements);
}
