#include "appointments/editionrecurrence.h"
#include "calendar/recurrenceexpander.h"
#include "shell/horloge.h"
#include "support/repondeurscripte.h"

#include <QtTest>

using Donnees = QList<int>;

namespace {

const QDate mardi(2026, 3, 3);
const QDate aujourdhui(2026, 2, 20);

Donnees donnees(const CalendarRecurrencePattern &p)
{
    const CalendarRecurrenceOptions &o = p.Options();
    return {o.Data1(), o.Data2(), o.Data3(), o.Data4()};
}

CalendarRecurrencePatternPtr pattern(const Donnees &d)
{
    auto p = CalendarRecurrencePattern::create();
    p->Options().setData(d.value(0), d.value(1), d.value(2), d.value(3));
    return p;
}

// The controls of the page that the values show, in one line.
QString page(const ValeursRecurrence &v)
{
    switch (v.page) {
    case ValeursRecurrence::Journaliere:
        return QStringLiteral("quotidien %1 %2").arg(v.optDailyEveryWorkDay ? "travail" : "n", v.txtDailyEveryNdays);
    case ValeursRecurrence::Hebdomadaire:
        return QStringLiteral("hebdo %1 %2").arg(v.txtWeeklyNWeeks).arg(v.joursCoches);
    case ValeursRecurrence::Mensuelle:
        return v.optMonthlyDay ? QStringLiteral("mensuel jour %1 %2").arg(v.cmbMonthlyDayOfMonth).arg(v.txtMonthlyEveryMonth)
                               : QStringLiteral("mensuel le %1 %2 %3")
                                     .arg(v.cmbMonthlyDay)
                                     .arg(v.cmbMonthlyDayOfWeek)
                                     .arg(v.txtMonthlyOfEveryTheMonths);
    case ValeursRecurrence::Annuelle:
        return v.optYearlyDay ? QStringLiteral("annuel date %1 %2").arg(v.cmbYearlyEveryDate).arg(v.cmbYearlyDate)
                              : QStringLiteral("annuel le %1 %2 %3")
                                    .arg(v.cmdYearlyThePartOfWeek)
                                    .arg(v.cmbYearlyTheDay)
                                    .arg(v.cmbYearlyTheMonth);
    }
    return {};
}

// A master of a daily series starting on Monday 2 March 2026 at 09:00, with
// one moved occurrence per requested exception.
CalendarEventPtr maitreAvecExceptions(int exceptions)
{
    auto maitre = CalendarEvent::create(12);
    maitre->setSubject(QStringLiteral("Martin Paul"));
    maitre->setStartDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    maitre->setEndDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 30)));
    const CalendarRecurrencePatternPtr p = maitre->CreateRecurrence();
    p->setRecurrencePatternID(5);
    for (int i = 0; i < exceptions; ++i) {
        const QDateTime debut(QDate(2026, 3, 4 + i), QTime(9, 0));
        auto e = CalendarEvent::CreateOccurrence(maitre, debut, debut.addSecs(1800));
        e->MarkAsRecurrenceException();
        e->setStartDateTime(debut.addSecs(3600));
        p->SetException(e);
    }
    return maitre;
}

} // namespace

class tst_editionrecurrence : public QObject
{
    Q_OBJECT

private slots:
    void listes()
    {
        const QStringList heures = HeuresDebutRecurrence();
        QCOMPARE(heures.size(), 49);
        QCOMPARE(heures.mid(0, 3), (QStringList{"00:00", "00:30", "01:00"}));
        QCOMPARE(heures.last(), QStringLiteral("24:00"));
        // Each list the day boxes show selects the weekday of the selection.
        const ValeursRecurrence v = ValeursParDefautRecurrence(QDate(2026, 3, 1), aujourdhui);
        QCOMPARE(JoursMasqueRecurrence().at(v.cmbMonthlyDayOfWeek), QStringLiteral("Dimanche"));
        QCOMPARE(JoursMasqueRecurrence().at(ValeursParDefautRecurrence(mardi, aujourdhui).cmbYearlyTheDay),
                 QStringLiteral("Mardi"));
        QCOMPARE(JoursMasqueRecurrence().at(ValeursParDefautRecurrence(QDate(2026, 3, 7), aujourdhui).cmbYearlyTheDay),
                 QStringLiteral("Samedi"));
        QCOMPARE(v.cmbMonthlyDayOfMonth, 0);
        QCOMPARE(v.cmbYearlyDate, 0);
        QCOMPARE(v.ddPatternEndDate, QDate(2026, 2, 25));
        // Nothing chosen in the rank and month lists until the user picks.
        QCOMPARE(v.cmbMonthlyDay, -1);
        QCOMPARE(v.cmbYearlyEveryDate, -1);
        QCOMPARE(v.cmbYearlyTheMonth, -1);
    }

    // Every kind shown in the controls and taken back into a fresh pattern.
    void genresAllerRetour_data()
    {
        QTest::addColumn<Donnees>("options");
        QTest::addColumn<QString>("controles");
        QTest::addColumn<Donnees>("retour");
        QTest::newRow("tous les 3 jours") << Donnees{1, 3, 0, 0} << "quotidien n 3" << Donnees{1, 3, 0, 0};
        QTest::newRow("jours de travail") << Donnees{1, 3, 1, 0} << "quotidien travail 1" << Donnees{1, 1, 1, 0};
        QTest::newRow("mardi et jeudi, 2 semaines") << Donnees{2, 2, 20, 0} << "hebdo 2 20" << Donnees{2, 2, 20, 0};
        QTest::newRow("le 31 tous les 2 mois") << Donnees{3, 2, 31, 0} << "mensuel jour 30 2" << Donnees{3, 2, 31, 0};
        QTest::newRow("dernier vendredi, 3 mois") << Donnees{4, 3, 5, 32} << "mensuel le 4 8 3" << Donnees{4, 3, 5, 32};
        QTest::newRow("premier jour de semaine") << Donnees{4, 1, 1, 62} << "mensuel le 0 1 1" << Donnees{4, 1, 1, 62};
        QTest::newRow("masque hors table") << Donnees{4, 1, 2, 3} << "mensuel le 1 0 1" << Donnees{4, 1, 2, 127};
        QTest::newRow("14 juillet") << Donnees{5, 7, 14, 0} << "annuel date 6 13" << Donnees{5, 7, 14, 0};
        QTest::newRow("second weekend de novembre") << Donnees{6, 2, 65, 11} << "annuel le 1 2 10" << Donnees{6, 2, 65, 11};
        QTest::newRow("date hors des listes") << Donnees{5, 13, 40, 0} << "annuel date -1 -1" << Donnees{5, 0, 0, 0};
    }
    void genresAllerRetour()
    {
        QFETCH(Donnees, options);
        QFETCH(QString, controles);
        QFETCH(Donnees, retour);
        const CalendarRecurrencePatternPtr p = pattern(options);
        p->setStartTime(QTime(14, 30));
        p->setDurationMinutes(45);
        p->setStartDate(mardi);

        ValeursRecurrence v = ValeursParDefautRecurrence(mardi, aujourdhui);
        PatternVersValeurs(*p, v);
        QCOMPARE(page(v), controles);
        QCOMPARE(v.cmbEventStartTime, QStringLiteral("14:30"));
        QCOMPARE(v.cmbEventDuration, QStringLiteral("45 minutes"));
        QCOMPARE(v.txtEventEndTime, QStringLiteral("15:15"));

        const CalendarRecurrencePatternPtr copie = CalendarRecurrencePattern::create();
        QVERIFY(ValeursVersPattern(v, *copie));
        QCOMPARE(donnees(*copie), retour);
        QCOMPARE(copie->StartTime(), QTime(14, 30));
        QCOMPARE(copie->DurationMinutes(), 45);
        QCOMPARE(copie->StartDate(), mardi);
    }

    void etendue_data()
    {
        QTest::addColumn<int>("methode");
        QTest::addColumn<int>("nombre");
        QTest::addColumn<QDate>("fin");
        QTest::addColumn<QString>("texteNombre");
        QTest::addColumn<QDate>("dateAffichee");
        const QDate fin(2026, 6, 30);
        QTest::newRow("sans fin") << 2 << 4 << fin << "10" << QDate(2026, 2, 25);
        QTest::newRow("après 4") << 1 << 4 << fin << "4" << QDate(2026, 2, 25);
        QTest::newRow("le 30 juin") << 0 << 4 << fin << "10" << fin;
    }
    void etendue()
    {
        QFETCH(int, methode);
        QFETCH(int, nombre);
        QFETCH(QDate, fin);
        QFETCH(QString, texteNombre);
        QFETCH(QDate, dateAffichee);
        const CalendarRecurrencePatternPtr p = pattern({1, 1, 0, 0});
        p->setStartDate(mardi);
        p->setEndMethod(methode);
        p->setEndAfterOccurrences(nombre);
        p->setEndDate(fin);
        ValeursRecurrence v = ValeursParDefautRecurrence(mardi, aujourdhui);
        PatternVersValeurs(*p, v);
        QCOMPARE(v.finSerie, methode);
        QCOMPARE(v.txtPatternEndAfter, texteNombre);
        QCOMPARE(v.ddPatternEndDate, dateAffichee);

        const CalendarRecurrencePatternPtr copie = CalendarRecurrencePattern::create();
        copie->setEndAfterOccurrences(0);
        QVERIFY(ValeursVersPattern(v, *copie));
        QCOMPARE(copie->EndMethod(), methode);
        QCOMPARE(copie->StartDate(), mardi);
        if (methode == 1)
            QCOMPARE(copie->EndAfterOccurrences(), nombre);
        if (methode == 0)
            QCOMPARE(copie->EndDate(), fin);
    }

    // Values as the user leaves them, read back into a pattern.
    void saisies_data()
    {
        QTest::addColumn<QString>("debut");
        QTest::addColumn<QString>("duree");
        QTest::addColumn<int>("page");
        QTest::addColumn<bool>("premiereOption");
        QTest::addColumn<QString>("nombre");
        QTest::addColumn<int>("jours");
        QTest::addColumn<bool>("accepte");
        QTest::addColumn<QTime>("heure");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<Donnees>("options");
        const QTime neuf(9, 0);
        QTest::newRow("durée tapée 45") << "09:00" << "45" << 1 << true << "2" << 0 << true << neuf << 45 << Donnees{1, 2, 0, 0};
        QTest::newRow("2 heures font 2 minutes") << "09:00" << "2 heures" << 1 << true << "2" << 0 << true << neuf << 2
                                                 << Donnees{1, 2, 0, 0};
        QTest::newRow("durée de la liste") << "10:30" << "60 minutes (1 Heure)" << 1 << true << "1" << 0 << true << QTime(10, 30)
                                           << 60 << Donnees{1, 1, 0, 0};
        QTest::newRow("24:00 est minuit") << "24:00" << "30" << 1 << true << "1" << 0 << true << QTime(0, 0) << 30
                                          << Donnees{1, 1, 0, 0};
        QTest::newRow("minutes au-delà de 59") << "09:75" << "30" << 1 << true << "1" << 0 << true << QTime(10, 15) << 30
                                               << Donnees{1, 1, 0, 0};
        QTest::newRow("début sans deux-points") << "0930" << "30" << 1 << true << "1" << 0 << false << QTime(7, 7) << 99
                                                << Donnees{2, 4, 8, 0};
        QTest::newRow("jours sans chiffre") << "09:00" << "30" << 1 << true << "abc" << 0 << true << neuf << 30
                                            << Donnees{1, 0, 0, 0};
        QTest::newRow("jours de travail") << "09:00" << "30" << 1 << false << "abc" << 0 << true << neuf << 30
                                          << Donnees{1, 1, 1, 0};
        QTest::newRow("semaine sans case") << "09:00" << "30" << 2 << true << "1" << 0 << true << neuf << 30 << Donnees{2, 1, 0, 0};
        QTest::newRow("semaine du dimanche") << "09:00" << "30" << 2 << true << "3" << 1 << true << neuf << 30
                                             << Donnees{2, 3, 1, 0};
        QTest::newRow("mensuel 0 devient 1") << "09:00" << "30" << 3 << true << "0" << 0 << true << neuf << 30
                                             << Donnees{3, 1, 3, 0};
        QTest::newRow("mensuel le, vide devient 1") << "09:00" << "30" << 3 << false << "" << 0 << true << neuf << 30
                                                    << Donnees{4, 1, 0, 4};
        QTest::newRow("annuel, mois pas choisi") << "09:00" << "30" << 4 << true << "" << 0 << true << neuf << 30
                                                 << Donnees{5, 0, 3, 0};
        QTest::newRow("annuel le, rien choisi") << "09:00" << "30" << 4 << false << "" << 0 << true << neuf << 30
                                                << Donnees{6, 0, 4, 0};
    }
    void saisies()
    {
        QFETCH(QString, debut);
        QFETCH(QString, duree);
        QFETCH(int, page);
        QFETCH(bool, premiereOption);
        QFETCH(QString, nombre);
        QFETCH(int, jours);
        QFETCH(bool, accepte);
        QFETCH(QTime, heure);
        QFETCH(int, minutes);
        QFETCH(Donnees, options);

        ValeursRecurrence v = ValeursParDefautRecurrence(mardi, aujourdhui);
        v.cmbEventStartTime = debut;
        v.cmbEventDuration = duree;
        v.page = ValeursRecurrence::Page(page);
        v.optDailyEveryWorkDay = !premiereOption;
        v.optMonthlyDay = premiereOption;
        v.optYearlyDay = premiereOption;
        v.txtDailyEveryNdays = nombre;
        v.txtWeeklyNWeeks = nombre;
        v.txtMonthlyEveryMonth = nombre;
        v.txtMonthlyOfEveryTheMonths = nombre;
        v.joursCoches = jours;

        // A refused entry leaves the pattern as it was.
        const CalendarRecurrencePatternPtr p = pattern({2, 4, 8, 0});
        p->setStartTime(QTime(7, 7));
        p->setDurationMinutes(99);
        QCOMPARE(ValeursVersPattern(v, *p), accepte);
        QCOMPARE(p->StartTime(), heure);
        QCOMPARE(p->DurationMinutes(), minutes);
        QCOMPARE(donnees(*p), options);
    }

    void heureFin_data()
    {
        QTest::addColumn<QString>("debut");
        QTest::addColumn<QString>("duree");
        QTest::addColumn<QString>("fin");
        QTest::newRow("liste") << "08:30" << "120 minutes (2 Heures)" << "10:30";
        QTest::newRow("passe minuit") << "23:30" << "60 minutes (1 Heure)" << "00:30";
        QTest::newRow("un jour") << "10:00" << "1440 minutes (1 Jour)" << "10:00";
        QTest::newRow("durée sans chiffre") << "10:00" << "une heure" << "10:00";
        QTest::newRow("début incomplet") << "10" << "30" << "";
    }
    void heureFin()
    {
        QFETCH(QString, debut);
        QFETCH(QString, duree);
        QFETCH(QString, fin);
        QCOMPARE(HeureFinRecurrence(debut, duree), fin);
    }

    // What the dialog edits for each state of the record handed in.
    void chargement_data()
    {
        QTest::addColumn<int>("etat");
        QTest::addColumn<bool>("occurrence");
        QTest::addColumn<bool>("nouvelle");
        QTest::newRow("simple") << 0 << false << true;
        QTest::newRow("maître") << 1 << false << false;
        QTest::newRow("occurrence") << 2 << true << false;
        QTest::newRow("exception") << 3 << true << false;
    }
    void chargement()
    {
        QFETCH(int, etat);
        QFETCH(bool, occurrence);
        QFETCH(bool, nouvelle);

        const CalendarEventPtr maitre = maitreAvecExceptions(1);
        const CalendarRecurrencePatternPtr serie = maitre->RecurrencePattern();
        CalendarEventPtr donne;
        switch (etat) {
        case 0:
            donne = CalendarEvent::create(40);
            donne->setStartDateTime(QDateTime(mardi, QTime(16, 15)));
            donne->setEndDateTime(QDateTime(mardi, QTime(17, 5)));
            break;
        case 1:
            donne = maitre->CloneEvent();
            break;
        case 2:
            donne = CalendarEvent::CreateOccurrence(maitre, QDateTime(QDate(2026, 3, 10), QTime(9, 0)),
                                                    QDateTime(QDate(2026, 3, 10), QTime(9, 30)));
            break;
        default:
            donne = serie->Exceptions().constFirst();
            break;
        }
        QCOMPARE(donne->RecurrenceState(), etat);

        const ChargementRecurrence c = ChargerRecurrence(donne);
        QVERIFY(c.event);
        QVERIFY(c.pattern);
        QCOMPARE(c.occurrence, occurrence);
        QCOMPARE(c.nouvelleRecurrence, nouvelle);
        QCOMPARE(c.event->RecurrenceState(), int(CalendarEvent::Master));
        QCOMPARE(c.event->RecurrencePattern(), c.pattern);
        QVERIFY(c.pattern->MasterEvent() == c.event);
        // A master is edited as handed in; anything else through a copy,
        // never the shared master or the record itself.
        QCOMPARE(c.event == donne, etat == 1);
        QVERIFY(c.event != maitre);
        QVERIFY(c.pattern != serie);
        if (etat == 0) {
            QCOMPARE(donne->RecurrenceState(), 0);
            QCOMPARE(c.event->EventID(), 40);
            QCOMPARE(c.pattern->StartTime(), QTime(16, 15));
            QCOMPARE(c.pattern->DurationMinutes(), 50);
            QCOMPARE(c.pattern->StartDate(), mardi);
            QCOMPARE(c.pattern->ExceptionsCount(), 0);
        } else {
            QCOMPARE(c.event->EventID(), 12);
            QCOMPARE(c.pattern->ExceptionsCount(), 1);
        }
    }

    void chargementSansMaitre()
    {
        // An exception whose master nobody holds any more: no series to edit.
        CalendarEventPtr exception;
        CalendarRecurrencePatternPtr serie;
        {
            const CalendarEventPtr maitre = maitreAvecExceptions(1);
            serie = maitre->RecurrencePattern();
            exception = serie->Exceptions().constFirst();
        }
        QVERIFY(!serie->MasterEvent());
        const ChargementRecurrence c = ChargerRecurrence(exception);
        QVERIFY(c.occurrence);
        QVERIFY(!c.event);
    }

    void confirmation_data()
    {
        QTest::addColumn<int>("exceptions");
        QTest::addColumn<int>("reponse");
        QTest::addColumn<bool>("confirme");
        QTest::addColumn<int>("restantes");
        QTest::newRow("sans exception, pas de question") << 0 << 0 << true << 0;
        QTest::newRow("exceptions, OK") << 2 << int(Prompt::Reponse::Ok) << true << 0;
        QTest::newRow("exceptions, Annuler") << 2 << int(Prompt::Reponse::Annuler) << false << 2;
    }
    void confirmation()
    {
        QFETCH(int, exceptions);
        QFETCH(int, reponse);
        QFETCH(bool, confirme);
        QFETCH(int, restantes);
        RepondeurScripte repondeur;
        if (reponse)
            repondeur.repondre(Prompt::Reponse(reponse));

        const CalendarEventPtr maitre = maitreAvecExceptions(exceptions)->CloneEvent();
        const CalendarRecurrencePatternPtr p = maitre->RecurrencePattern()->ClonePattern();
        p->Options().setData(2, 1, 4, 0);
        QCOMPARE(ConfirmerRecurrence(maitre, p), confirme);
        QCOMPARE(p->ExceptionsCount(), restantes);
        // The changed series reaches the master only when confirmed.
        QCOMPARE(maitre->RecurrencePattern() == p, confirme);
        QCOMPARE(repondeur.imprevus(), 0);
        if (!exceptions) {
            QVERIFY(repondeur.appels().isEmpty());
            return;
        }
        QCOMPARE(repondeur.appels().size(), 1);
        const RepondeurScripte::Appel &a = repondeur.appels().constFirst();
        QCOMPARE(a.titre, QStringLiteral("Tavonel"));
        QCOMPARE(a.texte, QStringLiteral("Toutes les exceptions associées à cette récurrence seront perdues. Êtes vous d'accord ? "));
        QCOMPARE(a.boutons, Prompt::Boutons::OkAnnuler);
    }
};

QTEST_GUILESS_MAIN(tst_editionrecurrence)
#include "tst_editionrecurrence.moc"
