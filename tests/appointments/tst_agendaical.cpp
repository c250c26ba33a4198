#include "appointments/agendaical.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "cipher/encryptx.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "support/admintest.h"
#include "support/dossiertest.h"

#include <libical/ical.h>

#include <QProcess>
#include <QtTest>

namespace {

const QDate Lundi(2026, 11, 23);

CalendarEventPtr rdv(CalendarDataProvider &p, const QDateTime &debut, int minutes, int libelle, const QString &nom,
                     const QString &prenom, bool patient = true)
{
    ChampsRdv c;
    c[ChampRdv::Nom] = nom;
    c[ChampRdv::Prenom] = prenom;
    c[ChampRdv::DateNaissance] = patient ? QStringLiteral("01/02/1960") : QString(MarqueSansPatient);
    const CalendarEventPtr e = p.CreateNewEvent(debut, debut.addSecs(minutes * 60));
    e->setBody(PackerBody(c));
    e->setSubject(nom);
    e->setLocation(QStringLiteral("Contrôle tension"));
    e->setLabelID(libelle);
    return e;
}

} // namespace

// The agenda of practitioner 1 as the phone gets it, read back by libical and
// by Debian's icalendar with recurring_ical_events: the same appointments as
// the agenda shows, series included, with or without the patients' names.
class tst_agendaical : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void telephone_data()
    {
        QTest::addColumn<bool>("noms");
        QTest::addColumn<QString>("dupont");
        QTest::newRow("initiales") << false << "D. J. M. - Consultation";
        QTest::newRow("noms") << true << "DUPONT Jean-Marc - Consultation";
    }
    void telephone()
    {
        QFETCH(bool, noms);
        QFETCH(QString, dupont);
        DossierProgrammeTest dossier;
        const QString d = dossier.chemin();
        dossier.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda1]\nPathDB1=%1\nAgendaName1=Cabinet\n").arg(d));
        QStringList attendu;
        {
            Demarrage demarrage(appState(), d);
            ParametresFenetre parametres;
            QVERIFY(!demarrage.initialiser(EncoderArgument(QStringLiteral("1"))));
            QVERIFY(!demarrage.charger(parametres));
            EcrireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QStringLiteral("Dr Aubert"));
            CalendarDataProvider &p = *appState().Calendrier;
            QVERIFY(p.AddEvent(rdv(p, QDateTime(Lundi, QTime(9, 0)), 20, 0, "DUPONT", "Jean-Marc")));
            QVERIFY(p.AddEvent(rdv(p, QDateTime(Lundi, QTime(9, 30)), 20, 8, "AUTRE", "Patient")));
            // Four Tuesdays at 10:00; the second moved to 11:00, the third deleted.
            CalendarEventPtr serie = rdv(p, QDateTime(Lundi.addDays(1), QTime(10, 0)), 30, 1, "MARTIN", "Léa");
            const CalendarRecurrencePatternPtr hebdo = serie->CreateRecurrence();
            hebdo->Options().setRecurrenceType(CalendarRecurrenceOptions::Weekly);
            hebdo->Options().setDayOfWeekMask(CalendarRecurrenceOptions::Tuesday);
            hebdo->setEndMethod(CalendarRecurrencePattern::EndAfterOccurrencesCount);
            hebdo->setEndAfterOccurrences(4);
            QVERIFY(p.AddEvent(serie));
            CalendarEventPtr deplacee = p.RetrieveDayEvents(QDate(2026, 12, 1)).value(0);
            QVERIFY(deplacee && deplacee->RecurrenceState() == CalendarEvent::Occurrence);
            deplacee->setStartDateTime(QDateTime(QDate(2026, 12, 1), QTime(11, 0)));
            deplacee->setEndDateTime(QDateTime(QDate(2026, 12, 1), QTime(11, 30)));
            QVERIFY(p.ChangeEvent(deplacee));
            QVERIFY(p.DeleteEvent(p.RetrieveDayEvents(QDate(2026, 12, 8)).value(0)));
            // Every 31st, from October: the 30th in November.
            CalendarEventPtr mois = rdv(p, QDateTime(QDate(2026, 10, 31), QTime(18, 0)), 60, 0, "Réunion", "du cabinet", false);
            const CalendarRecurrencePatternPtr mensuel = mois->CreateRecurrence();
            mensuel->Options().setRecurrenceType(CalendarRecurrenceOptions::Monthly);
            mensuel->Options().setDayOfMonth(31);
            QVERIFY(p.AddEvent(mois));
            CalendarEventPtr absent = rdv(p, QDateTime(Lundi.addDays(4), QTime(0, 0)), 1440, 7, "Congé", "", false);
            absent->setIsAllDayEvent(true);
            QVERIFY(p.AddEvent(absent));

            for (const CalendarEventPtr &e : p.RetrieveEvents(Lundi, Lundi.addDays(20))) {
                const QString libelle = p.LabelList().value(e->LabelID()).name;
                if (PraticienDuLibelleNumero(libelle) == 1)
                    attendu << (e->IsAllDayEvent() ? e->StartDateTime().date().toString(Qt::ISODate)
                                                   : e->StartDateTime().toString(Qt::ISODate))
                                   + u'|' + ResumeIcal(*e, libelle.mid(libelle.indexOf(u':') + 1).trimmed(), noms);
            }
            attendu.sort();
            p.Close();
            FermerConfig();
        }
        QCOMPARE(attendu.size(), 5);
        QVERIFY(attendu.contains(QStringLiteral("2026-11-23T09:00:00|") + dupont));
        QVERIFY(attendu.contains(QStringLiteral("2026-11-30T18:00:00|Réunion du cabinet - Consultation")));

        const QString fichier = d + QStringLiteral("telephone.ics");
        QStringList arguments{"ical", d, "--agenda", "1", "--praticien", "1", "--semaines", "3", "--depuis", "2026-11-23",
                              "--sortie", fichier};
        if (noms)
            arguments << QStringLiteral("--noms");
        const SortieAdmin s = lancerAdmin(arguments);
        QVERIFY2(s.code == 0, qPrintable(s.erreurs));
        QCOMPARE(s.texte, fichier + QStringLiteral(" : 5 événements pour Dr Aubert.\n"));
        const QByteArray texte = lireOctets(fichier);
        QCOMPARE(texte.contains("DUPONT") || texte.contains("Contr"), noms);

        // libical: the whole file parses, without a single error mark.
        icalcomponent *lu = icalparser_parse_string(texte.constData());
        QVERIFY(lu && icalcomponent_isa(lu) == ICAL_VCALENDAR_COMPONENT);
        QCOMPARE(icalcomponent_count_components(lu, ICAL_VEVENT_COMPONENT), 5);
        int erreurs = 0;
        for (icalcomponent *v = icalcomponent_get_first_component(lu, ICAL_VEVENT_COMPONENT); v;
             v = icalcomponent_get_next_component(lu, ICAL_VEVENT_COMPONENT))
            erreurs += icalcomponent_count_errors(v);
        icalcomponent_free(lu);
        QCOMPARE(erreurs, 0);

        // Another reader expands the series as a phone does.
        QProcess lecteur;
        lecteur.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(TAVONEL_LIRE_ICAL), fichier, "2026-11-23", "2026-12-14"});
        QVERIFY2(lecteur.waitForFinished(60000) && lecteur.exitCode() == 0, lecteur.readAllStandardError().constData());
        QCOMPARE(QString::fromUtf8(lecteur.readAllStandardOutput()).trimmed().split(u'\n'), attendu);
    }
};

QTEST_GUILESS_MAIN(tst_agendaical)
#include "tst_agendaical.moc"
