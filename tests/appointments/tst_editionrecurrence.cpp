#include "appointments/editionrecurrence.h"

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

} // namespace

class tst_editionrecurrence : public QObject
{
    Q_OBJECT

private slots:
    void listesParDefaut()
    {
        // The weekday lists follow the selection, Sunday and Saturday at both
        // ends of the week; rank and month lists wait for the user.
        const ValeursRecurrence dimanche = ValeursParDefautRecurrence(QDate(2026, 3, 1), aujourdhui);
        const ValeursRecurrence samedi = ValeursParDefautRecurrence(QDate(2026, 3, 7), aujourdhui);
        QCOMPARE(JoursMasqueRecurrence().at(dimanche.cmbMonthlyDayOfWeek), QStringLiteral("Dimanche"));
        QCOMPARE(JoursMasqueRecurrence().at(samedi.cmbYearlyTheDay), QStringLiteral("Samedi"));
        QCOMPARE(samedi.cmbMonthlyDayOfMonth, 6);
        QCOMPARE(QList<int>({samedi.cmbMonthlyDay, samedi.cmbYearlyEveryDate, samedi.cmbYearlyTheMonth}), QList<int>({-1, -1, -1}));
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
        QCOMPARE(v.finSerie, int(CalendarRecurrencePattern::NoEnd));
        QCOMPARE(v.txtPatternEndAfter, QStringLiteral("10"));
        QCOMPARE(v.ddPatternEndDate, aujourdhui.addDays(5));

        const CalendarRecurrencePatternPtr copie = CalendarRecurrencePattern::create();
        QVERIFY(ValeursVersPattern(v, *copie));
        QCOMPARE(donnees(*copie), retour);
        QCOMPARE(copie->StartTime(), QTime(14, 30));
        QCOMPARE(copie->DurationMinutes(), 45);
        QCOMPARE(copie->StartDate(), mardi);
        QCOMPARE(copie->EndMethod(), int(CalendarRecurrencePattern::NoEnd));
    }

    void etendue_data()
    {
        QTest::addColumn<int>("methode");
        QTest::addColumn<QString>("texteNombre");
        QTest::addColumn<QDate>("dateAffichee");
        QTest::newRow("après 4") << 1 << "4" << aujourdhui.addDays(5);
        QTest::newRow("le 30 juin") << 0 << "10" << QDate(2026, 6, 30);
    }
    void etendue()
    {
        QFETCH(int, methode);
        QFETCH(QString, texteNombre);
        QFETCH(QDate, dateAffichee);
        const CalendarRecurrencePatternPtr p = pattern({1, 1, 0, 0});
        p->setEndMethod(methode);
        p->setEndAfterOccurrences(4);
        p->setEndDate(QDate(2026, 6, 30));
        ValeursRecurrence v = ValeursParDefautRecurrence(mardi, aujourdhui);
        PatternVersValeurs(*p, v);
        QCOMPARE(v.finSerie, methode);
        QCOMPARE(v.txtPatternEndAfter, texteNombre);
        QCOMPARE(v.ddPatternEndDate, dateAffichee);

        const CalendarRecurrencePatternPtr copie = CalendarRecurrencePattern::create();
        QVERIFY(ValeursVersPattern(v, *copie));
        QCOMPARE(copie->EndMethod(), methode);
        QCOMPARE(methode == 1 ? copie->EndAfterOccurrences() : 4, 4);
        QCOMPARE(methode == 0 ? copie->EndDate() : dateAffichee, dateAffichee);
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
        QTest::addColumn<QTime>("heure");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<Donnees>("options");
        const QTime neuf(9, 0);
        QTest::newRow("durée tapée 45") << "09:00" << "45" << 1 << true << "2" << 0 << neuf << 45 << Donnees{1, 2, 0, 0};
        QTest::newRow("2 heures font 2 minutes") << "09:00" << "2 heures" << 1 << true << "2" << 0 << neuf << 2
                                                 << Donnees{1, 2, 0, 0};
        QTest::newRow("24:00 est minuit") << "24:00" << "30" << 1 << true << "1" << 0 << QTime(0, 0) << 30
                                          << Donnees{1, 1, 0, 0};
        QTest::newRow("minutes au-delà de 59") << "09:75" << "30" << 1 << true << "1" << 0 << QTime(10, 15) << 30
                                               << Donnees{1, 1, 0, 0};
        QTest::newRow("début sans deux-points") << "0930" << "30" << 1 << true << "1" << 0 << QTime(7, 7) << 99
                                                << Donnees{2, 4, 8, 0};
        QTest::newRow("jours sans chiffre") << "09:00" << "30" << 1 << true << "abc" << 0 << neuf << 30
                                            << Donnees{1, 0, 0, 0};
        QTest::newRow("jours de travail") << "09:00" << "30" << 1 << false << "abc" << 0 << neuf << 30
                                          << Donnees{1, 1, 1, 0};
        QTest::newRow("semaine sans case") << "09:00" << "30" << 2 << true << "1" << 0 << neuf << 30 << Donnees{2, 1, 0, 0};
        QTest::newRow("semaine du dimanche") << "09:00" << "30" << 2 << true << "3" << 1 << neuf << 30
                                             << Donnees{2, 3, 1, 0};
        QTest::newRow("mensuel 0 devient 1") << "09:00" << "30" << 3 << true << "0" << 0 << neuf << 30
                                             << Donnees{3, 1, 3, 0};
        QTest::newRow("mensuel le, vide devient 1") << "09:00" << "30" << 3 << false << "" << 0 << neuf << 30
                                                    << Donnees{4, 1, 0, 4};
        QTest::newRow("annuel, mois pas choisi") << "09:00" << "30" << 4 << true << "" << 0 << neuf << 30
                                                 << Donnees{5, 0, 3, 0};
        QTest::newRow("annuel le, rien choisi") << "09:00" << "30" << 4 << false << "" << 0 << neuf << 30
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

        // A start that is no time is refused, the pattern left as it was.
        const CalendarRecurrencePatternPtr p = pattern({2, 4, 8, 0});
        p->setStartTime(QTime(7, 7));
        p->setDurationMinutes(99);
        QCOMPARE(ValeursVersPattern(v, *p), heure != QTime(7, 7));
        QCOMPARE(p->StartTime(), heure);
        QCOMPARE(p->DurationMinutes(), minutes);
        QCOMPARE(donnees(*p), options);
    }
};

QTEST_GUILESS_MAIN(tst_editionrecurrence)
#include "tst_editionrecurrence.moc"
