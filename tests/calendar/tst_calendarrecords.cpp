#include "calendar/calendarevent.h"
#include "calendar/calendarrecurrenceoptions.h"
#include "calendar/calendarrecurrencepattern.h"
#include "calendar/customproperties.h"

#include <QtTest>

#include <array>

namespace {

void fixerChamps(CalendarRecurrenceOptions &o, int type, const QList<int> &c)
{
    o.setRecurrenceType(type);
    switch (type) {
    case 1: o.setIntervalDays(c[0]); o.setEveryWeekDay(c[1] != 0); break;
    case 2: o.setIntervalWeeks(c[0]); o.setDayOfWeekMask(c[1]); break;
    case 3: o.setIntervalMonths(c[0]); o.setDayOfMonth(c[1]); break;
    case 4: o.setIntervalMonthsNth(c[0]); o.setWhichDay(c[1]); o.setWhichDayMask(c[2]); break;
    case 5: o.setMonthOfYear(c[0]); o.setDayOfMonthYearly(c[1]); break;
    case 6: o.setWhichDayYearly(c[0]); o.setWhichDayMaskYearly(c[1]); o.setMonthOfYearNth(c[2]); break;
    }
}

QList<int> lireChamps(const CalendarRecurrenceOptions &o)
{
    switch (o.RecurrenceType()) {
    case 1: return {o.IntervalDays(), o.EveryWeekDay() ? 1 : 0};
    case 2: return {o.IntervalWeeks(), o.DayOfWeekMask()};
    case 3: return {o.IntervalMonths(), o.DayOfMonth()};
    case 4: return {o.IntervalMonthsNth(), o.WhichDay(), o.WhichDayMask()};
    case 5: return {o.MonthOfYear(), o.DayOfMonthYearly()};
    case 6: return {o.WhichDayYearly(), o.WhichDayMaskYearly(), o.MonthOfYearNth()};
    }
    return {};
}

} // namespace

class tst_calendarrecords : public QObject
{
    Q_OBJECT

private slots:
    // The list's masks both ways; out of the list, an index gives no mask
    // and a mask not in the list (high bits ignored) gives the first entry.
    void masqueDesJours_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("masque");
        const std::array<int, 10> masques{127, 62, 65, 1, 2, 4, 8, 16, 32, 64};
        for (int i = 0; i < 10; ++i)
            QTest::addRow("index %d", i) << i << masques[size_t(i)];
        QTest::newRow("below the list") << -1 << 0;
        QTest::newRow("beyond the list") << 10 << 0;
    }

    void masqueDesJours()
    {
        QFETCH(int, index);
        QFETCH(int, masque);
        QCOMPARE(index2WhichDayMask(index), masque);
        if (index >= 0 && index < 10)
            QCOMPARE(WhichDayMask2index(masque), index);
    }

    void masqueHorsListe()
    {
        QCOMPARE(WhichDayMask2index(3), 0);
        QCOMPARE(WhichDayMask2index(0), 0);
        QCOMPARE(WhichDayMask2index(128 | 2), 4);
        QCOMPARE(WhichDayMask2index(255), 0);
    }

    // Each row sets the fields of one type to values far from the defaults, packs
    // them, and reads the four integers back into fresh options in two orders.
    void optionsParQuatreEntiers_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QList<int>>("champs");

        QTest::newRow("daily every 9 days") << 1 << QList<int>{9, 0};
        QTest::newRow("daily every weekday") << 1 << QList<int>{1, 1};
        QTest::newRow("weekly") << 2 << QList<int>{3, 2 | 8 | 64};
        QTest::newRow("weekly with no day") << 2 << QList<int>{1, 0};
        QTest::newRow("monthly day") << 3 << QList<int>{4, 31};
        QTest::newRow("monthly nth") << 4 << QList<int>{2, 5, 65};
        QTest::newRow("yearly date") << 5 << QList<int>{2, 29};
        QTest::newRow("yearly nth") << 6 << QList<int>{4, 32, 11};
        QTest::newRow("extreme values") << 4 << QList<int>{2147483647, -2147483647 - 1, -1};
    }


    void optionsParQuatreEntiers()
    {
        QFETCH(int, type);
        QFETCH(QList<int>, champs);

        CalendarRecurrenceOptions source;
        // Fields of another type first: they must not leak into the packed form.
        fixerChamps(source, type == 1 ? 2 : 1, {5, 5});
        fixerChamps(source, type, champs);
        const std::array<qint32, 4> data{source.Data1(), source.Data2(), source.Data3(), source.Data4()};
        QCOMPARE(data[0], type);

        CalendarRecurrenceOptions dansLOrdre;
        dansLOrdre.setData1(data[0]);
        dansLOrdre.setData2(data[1]);
        dansLOrdre.setData3(data[2]);
        dansLOrdre.setData4(data[3]);
        QCOMPARE(dansLOrdre.RecurrenceType(), type);
        QCOMPARE(lireChamps(dansLOrdre), champs);

        // A store may hand the type last, after options of another type.
        CalendarRecurrenceOptions typeALaFin;
        fixerChamps(typeALaFin, type == 6 ? 5 : 6, {7, 7, 7});
        typeALaFin.setData4(data[3]);
        typeALaFin.setData3(data[2]);
        typeALaFin.setData2(data[1]);
        typeALaFin.setData1(data[0]);
        QCOMPARE(lireChamps(typeALaFin), champs);
        QCOMPARE(typeALaFin.Data2(), data[1]);
        QCOMPARE(typeALaFin.Data3(), data[2]);
        QCOMPARE(typeALaFin.Data4(), data[3]);
    }

    void sacAllerRetour_data()
    {
        QTest::addColumn<QString>("nom");
        QTest::addColumn<QVariant>("valeur");

        QTest::newRow("plain") << "xtpMarkupText" << QVariant(QStringLiteral("<b>Rappel</b> : à jeun"));
        QTest::newRow("accents") << "Catégorie" << QVariant(QStringLiteral("Élève œuvre ç € « »"));
        QTest::newRow("markup characters") << "a<&>\"'b" << QVariant(QStringLiteral("<&>\"' ]]> &amp;"));
        QTest::newRow("line feeds") << "notes" << QVariant(QStringLiteral("ligne 1\nligne 2\n"));
        QTest::newRow("carriage returns") << "notes" << QVariant(QStringLiteral("ligne 1\r\nligne 2\r"));
        QTest::newRow("tabs and outer blanks") << " nom " << QVariant(QStringLiteral("\t  valeur  \t"));
        QTest::newRow("empty value") << "vide" << QVariant(QString());
        QTest::newRow("control characters") << "ctl" << QVariant(QStringLiteral("a\x01" "b\x1f" "c"));
        QTest::newRow("name with a line feed") << "deux\nlignes" << QVariant(QStringLiteral("x"));
        QTest::newRow("outside the basic plane") << "emoji" << QVariant(QStringLiteral("😀 𝄞"));
        QTest::newRow("lone surrogate") << "brisé" << QVariant(QString(QChar(0xD800)) + QStringLiteral("x"));
        QTest::newRow("integer") << "n" << QVariant(-42);
        QTest::newRow("boolean") << "b" << QVariant(true);
        QTest::newRow("date-time") << "quand" << QVariant(QDateTime(QDate(2026, 3, 29), QTime(2, 30, 5)));
        QTest::newRow("date") << "jour" << QVariant(QDate(2024, 2, 29));
    }

    void sacAllerRetour()
    {
        QFETCH(QString, nom);
        QFETCH(QVariant, valeur);

        CustomProperties sac;
        sac.SetProperty(QStringLiteral("avant"), QStringLiteral("1"));
        sac.SetProperty(nom, valeur);
        sac.SetProperty(QStringLiteral("après"), QString());

        const QString texte = sac.SaveToString();
        QVERIFY(texte.startsWith(u'<'));
        CustomProperties relu;
        QVERIFY2(relu.LoadFromString(texte), qPrintable(texte));
        QCOMPARE(relu.Names(), (QStringList{QStringLiteral("avant"), nom, QStringLiteral("après")}));
        QCOMPARE(relu.GetProperty(nom).typeId(), valeur.typeId());
        QCOMPARE(relu.GetProperty(nom), valeur);
        QCOMPARE(relu.GetProperty(QStringLiteral("après")).toString(), QString());
        QCOMPARE(relu.SaveToString(), texte);
    }

    void sacGardeLOrdreEtRemplaceSurPlace()
    {
        CustomProperties sac;
        sac.SetProperty(QStringLiteral("c"), 1);
        sac.SetProperty(QStringLiteral("a"), 2);
        sac.SetProperty(QStringLiteral("b"), 3);
        sac.SetProperty(QStringLiteral("a"), QStringLiteral("deux"));
        QCOMPARE(sac.Names(), (QStringList{"c", "a", "b"}));
        QCOMPARE(sac.GetProperty(QStringLiteral("a")).toString(), QStringLiteral("deux"));
        QVERIFY(!sac.HasProperty(QStringLiteral("A")));
        QVERIFY(!sac.GetProperty(QStringLiteral("A")).isValid());

        QVERIFY(sac.RemoveProperty(QStringLiteral("c")));
        QVERIFY(!sac.RemoveProperty(QStringLiteral("c")));
        QCOMPARE(sac.Names(), (QStringList{"a", "b"}));

        CustomProperties relu;
        relu.SetProperty(QStringLiteral("ancien"), 1);
        QVERIFY(relu.LoadFromString(sac.SaveToString()));
        QCOMPARE(relu, sac);
    }

    void sacSansEntreesDeTransfert()
    {
        CustomProperties sac;
        sac.SetProperty(CustomProperties::RecurrenceStateEntry, 1);
        sac.SetProperty(CustomProperties::RecurrencePatternIDEntry, 12);
        QCOMPARE(sac.SaveToString(), QString());

        sac.SetProperty(QStringLiteral("xtpMarkupText"), QStringLiteral("x"));
        const QString texte = sac.SaveToString();
        QVERIFY(!texte.contains(QStringLiteral("process_")));
        CustomProperties relu;
        QVERIFY(relu.LoadFromString(texte));
        QCOMPARE(relu.Names(), QStringList{"xtpMarkupText"});

        QCOMPARE(sac.TakeTransferEntry(CustomProperties::RecurrencePatternIDEntry), std::optional<int>(12));
        QCOMPARE(sac.TakeTransferEntry(CustomProperties::RecurrencePatternIDEntry), std::nullopt);
        sac.SetProperty(CustomProperties::RecurrenceStateEntry, QStringLiteral("pas un nombre"));
        QCOMPARE(sac.TakeTransferEntry(CustomProperties::RecurrenceStateEntry), std::nullopt);
        QCOMPARE(sac.Names(), QStringList{"xtpMarkupText"});
    }

    void sacTexteIlLisible_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<bool>("lu");
        QTest::addColumn<int>("entrees");

        QTest::newRow("empty") << "" << true << 0;
        QTest::newRow("blanks") << "  \n" << true << 0;
        QTest::newRow("not xml") << "Rappel: oui" << false << 0;
        QTest::newRow("other root") << "<Autre><Property Name=\"a\">1</Property></Autre>" << false << 0;
        QTest::newRow("cut short") << "<CustomProperties><Property Name=\"a\">1</Property><Prop" << false << 0;
        QTest::newRow("unknown element skipped")
            << "<CustomProperties><Icon/><Property Name=\"a\">1</Property></CustomProperties>" << true << 1;
    }

    void sacTexteIlLisible()
    {
        QFETCH(QString, texte);
        QFETCH(bool, lu);
        QFETCH(int, entrees);

        CustomProperties sac;
        sac.SetProperty(QStringLiteral("ancien"), 1);
        QCOMPARE(sac.LoadFromString(texte), lu);
        QCOMPARE(sac.Count(), entrees);
    }

    void icones_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QList<int>>("ids");
        QTest::addColumn<QString>("reecrit");

        QTest::newRow("empty") << "" << QList<int>{} << "";
        QTest::newRow("list") << "3,1,-2" << QList<int>{3, 1, -2} << "3,1,-2";
        QTest::newRow("blanks and holes") << " 4 ,,5" << QList<int>{4, 5} << "4,5";
        QTest::newRow("not numbers skipped") << "a,7,8x" << QList<int>{7} << "7";
    }

    void icones()
    {
        QFETCH(QString, texte);
        QFETCH(QList<int>, ids);
        QFETCH(QString, reecrit);

        CustomIcons icones;
        icones.Add(99);
        icones.LoadFromString(texte);
        QCOMPARE(icones.Ids(), ids);
        QCOMPARE(icones.SaveToString(), reecrit);
    }

    void creationEtRetraitDeLaRecurrence()
    {
        auto event = CalendarEvent::create(15);
        event->setStartDateTime(QDateTime(QDate(2026, 3, 2), QTime(10, 15)));
        event->setEndDateTime(QDateTime(QDate(2026, 3, 2), QTime(11, 0)));
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::NotRecurring));
        QVERIFY(!event->RecurrencePattern());

        const CalendarRecurrencePatternPtr pattern = event->CreateRecurrence();
        QVERIFY(pattern);
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::Master));
        QCOMPARE(event->RecurrencePattern(), pattern);
        QCOMPARE(pattern->MasterEvent(), event);
        QCOMPARE(pattern->MasterEventID(), 15);
        QCOMPARE(pattern->StartDate(), QDate(2026, 3, 2));
        QCOMPARE(pattern->StartTime(), QTime(10, 15));
        QCOMPARE(pattern->DurationMinutes(), 45);
        QCOMPARE(event->CreateRecurrence(), pattern);

        // The store gives the master its key after the pattern was made.
        event->setEventID(16);
        QCOMPARE(pattern->MasterEventID(), 16);

        // A pattern changed on the side and stored back.
        auto autre = CalendarRecurrencePattern::create(8);
        autre->setStartDate(QDate(2026, 4, 6));
        autre->setStartTime(QTime(14, 0));
        autre->setDurationMinutes(20);
        event->UpdateRecurrence(autre);
        QCOMPARE(event->RecurrencePattern(), autre);
        QCOMPARE(autre->MasterEvent(), event);
        QCOMPARE(autre->MasterEventID(), 16);

        event->RemoveRecurrence();
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::NotRecurring));
        QVERIFY(!event->RecurrencePattern());
        QVERIFY(!autre->MasterEvent());
        QCOMPARE(event->StartDateTime(), QDateTime(QDate(2026, 4, 6), QTime(14, 0)));
        QCOMPARE(event->EndDateTime(), QDateTime(QDate(2026, 4, 6), QTime(14, 20)));
    }

    void copieIndependante()
    {
        auto master = CalendarEvent::create(5);
        master->setSubject(QStringLiteral("Durand Marie"));
        master->setStartDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
        master->setEndDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 30)));
        master->setCreationTime(QDateTime(QDate(2026, 1, 1), QTime(8, 0)));
        master->CustomProperties().SetProperty(QStringLiteral("k"), QStringLiteral("v"));
        master->CustomIcons().Add(2);
        const CalendarRecurrencePatternPtr pattern = master->CreateRecurrence();
        pattern->setRecurrencePatternID(4);
        auto exception = CalendarEvent::create(50);
        exception->MarkAsRecurrenceException();
        exception->setRExceptionStartTimeOrig(QDateTime(QDate(2026, 3, 3), QTime(9, 0)));
        pattern->SetException(exception);

        const CalendarEventPtr copie = master->CloneEvent();
        QVERIFY(copie != master);
        QCOMPARE(copie->EventID(), 5);
        QCOMPARE(copie->Subject(), master->Subject());
        QCOMPARE(copie->CreationTime(), master->CreationTime());
        QCOMPARE(copie->RecurrenceState(), int(CalendarEvent::Master));
        const CalendarRecurrencePatternPtr patternCopie = copie->RecurrencePattern();
        QVERIFY(patternCopie && patternCopie != pattern);
        QCOMPARE(patternCopie->RecurrencePatternID(), 4);
        QCOMPARE(patternCopie->MasterEvent(), copie);
        QCOMPARE(patternCopie->ExceptionsCount(), 1);
        QVERIFY(patternCopie->Exceptions().first() != exception);

        copie->setSubject(QStringLiteral("autre"));
        copie->CustomProperties().SetProperty(QStringLiteral("k"), QStringLiteral("changé"));
        copie->CustomIcons().Add(3);
        patternCopie->Options().setRecurrenceType(CalendarRecurrenceOptions::Weekly);
        patternCopie->RemoveAllExceptions();
        QCOMPARE(patternCopie->ExceptionsCount(), 0);

        QCOMPARE(master->Subject(), QStringLiteral("Durand Marie"));
        QCOMPARE(master->CustomProperties().GetProperty(QStringLiteral("k")).toString(), QStringLiteral("v"));
        QCOMPARE(master->CustomIcons().Ids(), QList<int>{2});
        QCOMPARE(pattern->Options().RecurrenceType(), int(CalendarRecurrenceOptions::Daily));
        QCOMPARE(pattern->ExceptionsCount(), 1);
        QCOMPARE(pattern->MasterEvent(), master);

        // A plain event's copy has no series either.
        auto simple = CalendarEvent::create(1);
        QVERIFY(!simple->CloneEvent()->RecurrencePattern());
    }

    void exceptionsDeLaSerie()
    {
        auto master = CalendarEvent::create(5);
        const CalendarRecurrencePatternPtr pattern = master->CreateRecurrence();
        const QDateTime mardi(QDate(2026, 3, 3), QTime(9, 0));

        auto premiere = CalendarEvent::create(60);
        premiere->setRExceptionStartTimeOrig(mardi);
        pattern->SetException(premiere);
        QCOMPARE(premiere->RecurrenceState(), int(CalendarEvent::Exception));
        QCOMPARE(premiere->RecurrencePattern(), pattern);

        // A second exception of the same occurrence takes the place of the first.
        auto seconde = CalendarEvent::create(61);
        seconde->setRExceptionStartTimeOrig(mardi);
        pattern->SetException(seconde);
        QCOMPARE(pattern->ExceptionsCount(), 1);
        QCOMPARE(pattern->FindException(mardi), seconde);
        pattern->SetException(seconde);
        QCOMPARE(pattern->ExceptionsCount(), 1);

        auto autre = CalendarEvent::create(62);
        autre->setRExceptionStartTimeOrig(mardi.addDays(1));
        pattern->SetException(autre);
        QCOMPARE(pattern->ExceptionsCount(), 2);
        QVERIFY(!pattern->FindException(mardi.addDays(2)));

        pattern->RemoveAllExceptions();
        QCOMPARE(pattern->ExceptionsCount(), 0);
    }

    void pasDeCycleDeReferences()
    {
        QWeakPointer<CalendarEvent> masterFaible;
        QWeakPointer<CalendarRecurrencePattern> patternFaible;
        QWeakPointer<CalendarEvent> exceptionFaible;
        CalendarEventPtr occurrence;
        {
            auto master = CalendarEvent::create(5);
            master->setStartDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
            master->setEndDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 30)));
            const CalendarRecurrencePatternPtr pattern = master->CreateRecurrence();
            auto exception = CalendarEvent::create(6);
            exception->setRExceptionStartTimeOrig(QDateTime(QDate(2026, 3, 3), QTime(9, 0)));
            pattern->SetException(exception);
            occurrence = CalendarEvent::CreateOccurrence(master, QDateTime(QDate(2026, 3, 4), QTime(9, 0)),
                                                         QDateTime(QDate(2026, 3, 4), QTime(9, 30)));
            masterFaible = master;
            patternFaible = pattern;
            exceptionFaible = exception;
        }
        // An occurrence still on show keeps its series alive...
        QVERIFY(masterFaible && patternFaible && exceptionFaible);
        QCOMPARE(occurrence->RecurrencePattern()->MasterEvent(), masterFaible.toStrongRef());
        // ...and once it is gone, so is the whole series.
        occurrence.reset();
        QVERIFY(!masterFaible);
        QVERIFY(!patternFaible);
        QVERIFY(!exceptionFaible);
    }

    // The creation and change times a store hands over as wall-clock times read
    // as the local times they stand for, on the record and on its copies, and a
    // time set afterwards wins.
    void heuresDifferees_data()
    {
        QTest::addColumn<QDate>("jour");
        QTest::addColumn<QTime>("heure");
        QTest::newRow("hiver") << QDate(2026, 1, 15) << QTime(9, 30);
        QTest::newRow("été") << QDate(2026, 7, 1) << QTime(23, 59, 59);
        QTest::newRow("nuit du passage à l'heure d'hiver") << QDate(2026, 10, 25) << QTime(2, 30);
        QTest::newRow("minuit") << QDate(2026, 3, 29) << QTime(0, 0);
    }

    void heuresDifferees()
    {
        QFETCH(QDate, jour);
        QFETCH(QTime, heure);
        const CalendarEventPtr e = CalendarEvent::create(5);
        e->setCreationTimeWallClock(jour, heure);
        e->setLastModificationTimeWallClock(jour.addDays(1), heure);
        const CalendarEventPtr copie = e->CloneEvent();
        QCOMPARE(e->CreationTime(), QDateTime(jour, heure));
        QCOMPARE(e->CreationTime().timeSpec(), Qt::LocalTime);
        QCOMPARE(copie->CreationTime(), QDateTime(jour, heure));
        QCOMPARE(copie->LastModificationTime(), QDateTime(jour.addDays(1), heure));
        copie->setLastModificationTimeWallClock(jour, heure);
        copie->setLastModificationTime(QDateTime(QDate(2030, 1, 1), QTime(8, 0)));
        QCOMPARE(copie->LastModificationTime(), QDateTime(QDate(2030, 1, 1), QTime(8, 0)));
        QCOMPARE(e->LastModificationTime(), QDateTime(jour.addDays(1), heure));
    }
};

QTEST_GUILESS_MAIN(tst_calendarrecords)
#include "tst_calendarrecords.moc"
