#include "calendar/calendardataprovider.h"
#include "calendar/controlestore.h"
#include "calendar/openprovider.h"
#include "calendar/recurrenceexpander.h"
#include "calendar/sqlitecalendarstore.h"
#include "shell/base/basesqlite.h"
#include "shell/base/horloge.h"
#include "support/fichierstest.h"
#include "support/repondeurscripte.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <sqlite3.h>

#include <chrono>
#include <functional>
#include <thread>

using Options = std::function<void(CalendarRecurrenceOptions &)>;
Q_DECLARE_METATYPE(Options)

namespace {

QString connexionMdb(const QString &dossier)
{
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + dossier + QStringLiteral("/Events.mdb';");
}

// Counts rows with a connection of its own, as another program would.
int compter(const QString &fichier, const QString &sql)
{
    const auto base = BaseSqlite::ouvrir(fichier, BaseSqlite::Mode::Existante);
    if (!base)
        return -1;
    QSqlQuery q(base->db());
    if (!q.exec(sql) || !q.next())
        return -1;
    return q.value(0).toInt();
}

QStringList debuts(const QList<CalendarEventPtr> &evenements)
{
    QStringList s;
    for (const CalendarEventPtr &e : evenements)
        s << e->StartDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
    return s;
}

} // namespace

class tst_calendarstore : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dossier;
    Horloge::Fixee m_horloge{QDateTime(QDate(2026, 2, 20), QTime(11, 0))};

    // A fresh folder per test, with a provider open on its Events.mdb.
    QString nouveauDossier()
    {
        static int n = 0;
        const QString d = m_dossier.path() + QStringLiteral("/t%1").arg(++n);
        QDir().mkpath(d);
        return d;
    }

    static std::unique_ptr<CalendarDataProvider> ouvrir(const QString &dossier)
    {
        auto p = std::make_unique<CalendarDataProvider>();
        if (!OpenProvider(*p, CalendarDataProvider::Access, connexionMdb(dossier)))
            return nullptr;
        return p;
    }

    static CalendarEventPtr rendezVous(CalendarDataProvider &p, const QDateTime &debut, int minutes, const QString &sujet)
    {
        CalendarEventPtr e = p.CreateNewEvent(debut, debut.addSecs(minutes * 60));
        e->setSubject(sujet);
        return e;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(m_dossier.isValid(), "dossier temporaire");
        BaseSqlite::fixerDelaiOccupe(5000);
    }

    void evenementAllerRetour()
    {
        const QString d = nouveauDossier();
        auto p = ouvrir(d);
        QVERIFY2(p, "Events.mdb ne s'ouvre pas");
        CalendarEventPtr e = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(9, 15)), 20, QStringLiteral("DUPONT Jean"));
        e->setLocation(QString::fromUtf8("Contrôle « annuel »"));
        e->setBody(QString::fromUtf8("ligne 1\r\nligne 2§<&>§"));
        e->setIsMeeting(true);
        e->setIsPrivate(true);
        e->setLabelID(9);
        e->setBusyStatus(1);
        e->setImportanceLevel(2);
        e->setIsReminder(true);
        e->setReminderMinutesBeforeStart(1440);
        e->setReminderSoundFile(QStringLiteral("C:\\Sons\\bip.wav"));
        e->CustomProperties().SetProperty(QStringLiteral("xtpMarkupText"), QStringLiteral("<b>x</b>"));
        e->CustomIcons().Add(4);
        e->setScheduleID(3);
        QSignalSpy ajoute(p.get(), &CalendarDataProvider::eventAdded);
        QVERIFY(p->AddEvent(e));
        QCOMPARE(ajoute.count(), 1);
        QVERIFY(e->EventID() > 0);

        auto autre = ouvrir(d);
        const CalendarEventPtr lu = autre->GetEvent(e->EventID());
        QVERIFY(lu);
        // Every field set above, read by another connection.
        auto champs = [](const CalendarEventPtr &x) {
            return QVariantList{x->Subject(), x->Location(), x->Body(), x->IsMeeting(), x->IsPrivate(), x->LabelID(),
                                x->BusyStatus(), x->ImportanceLevel(), x->StartDateTime(), x->EndDateTime(), x->IsReminder(),
                                x->ReminderMinutesBeforeStart(), x->ReminderSoundFile(),
                                x->CustomProperties().GetProperty(QStringLiteral("xtpMarkupText")).toString(),
                                x->CustomIcons().SaveToString(), x->ScheduleID(), x->RecurrenceState()};
        };
        QCOMPARE(champs(lu), champs(e));
        QCOMPARE(lu->CreationTime(), Horloge::maintenant());
        // The transfer entries are taken over, never left in the bag.
        QVERIFY(!lu->CustomProperties().HasProperty(QStringLiteral("process_RecurrenceState")));
        QCOMPARE(compter(d + QStringLiteral("/Events.mdb"), QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE instr(CustomPropertiesXMLData, 'process_') > 0")), 0);
    }

    void joursTouches_data()
    {
        QTest::addColumn<QDate>("jour");
        QTest::addColumn<QStringList>("sujets");
        QTest::newRow("veille") << QDate(2026, 3, 1) << QStringList{QStringLiteral("absence")};
        QTest::newRow("jour même") << QDate(2026, 3, 2) << QStringList{QStringLiteral("absence"), QStringLiteral("matin"), QStringLiteral("nuit")};
        QTest::newRow("lendemain") << QDate(2026, 3, 3) << QStringList{QStringLiteral("absence"), QStringLiteral("nuit")};
        QTest::newRow("après") << QDate(2026, 3, 20) << QStringList{};
    }
    void joursTouches()
    {
        QFETCH(QDate, jour);
        QFETCH(QStringList, sujets);
        auto p = ouvrir(nouveauDossier());
        QVERIFY(p);
        // Short rows, one across midnight, and a long one over two weeks.
        QVERIFY(p->AddEvent(rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(9, 0)), 30, QStringLiteral("matin"))));
        QVERIFY(p->AddEvent(rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(23, 0)), 120, QStringLiteral("nuit"))));
        CalendarEventPtr absence = rendezVous(*p, QDateTime(QDate(2026, 2, 23), QTime(0, 0)), 14 * 1440, QStringLiteral("absence"));
        absence->setIsAllDayEvent(true);
        QVERIFY(p->AddEvent(absence));
        QStringList lus;
        for (const CalendarEventPtr &e : p->RetrieveDayEvents(jour))
            lus << e->Subject();
        QCOMPARE(lus, sujets);
    }

    void series_data()
    {
        QTest::addColumn<QDate>("premierJour");
        QTest::addColumn<int>("methode");
        QTest::addColumn<QDate>("finPar");
        QTest::addColumn<int>("nombre");
        QTest::addColumn<Options>("options");
        QTest::addColumn<QStringList>("jours");

        QTest::newRow("tous les 2 jours, 4 fois")
            << QDate(2026, 3, 2) << 1 << QDate() << 4 << Options([](CalendarRecurrenceOptions &o) { o.setRecurrenceType(1);
                   o.setIntervalDays(2);
               })
            << QStringList{"2026-03-02", "2026-03-04", "2026-03-06", "2026-03-08"};
        QTest::newRow("jours ouvrés jusqu'au 10")
            << QDate(2026, 3, 5) << 0 << QDate(2026, 3, 10) << 0 << Options([](CalendarRecurrenceOptions &o) { o.setRecurrenceType(1);
                   o.setEveryWeekDay(true);
               })
            << QStringList{"2026-03-05", "2026-03-06", "2026-03-09", "2026-03-10"};
        QTest::newRow("2e mardi jusqu'au 30 avril")
            << QDate(2026, 1, 1) << 0 << QDate(2026, 4, 30) << 0 << Options([](CalendarRecurrenceOptions &o) { o.setRecurrenceType(4);
                   o.setIntervalMonthsNth(1);
                   o.setWhichDay(2);
                   o.setWhichDayMask(CalendarRecurrenceOptions::Tuesday);
               })
            << QStringList{"2026-01-13", "2026-02-10", "2026-03-10", "2026-04-14"};
        QTest::newRow("dernier vendredi de mai, sans fin")
            << QDate(2026, 1, 1) << 2 << QDate() << 0 << Options([](CalendarRecurrenceOptions &o) { o.setRecurrenceType(6);
                   o.setWhichDayYearly(CalendarRecurrenceOptions::LastWhichDay);
                   o.setWhichDayMaskYearly(CalendarRecurrenceOptions::Friday);
                   o.setMonthOfYearNth(5);
               })
            << QStringList{"2026-05-29", "2027-05-28", "2028-05-26"};
    }
    void series()
    {
        QFETCH(QDate, premierJour);
        QFETCH(int, methode);
        QFETCH(QDate, finPar);
        QFETCH(int, nombre);
        QFETCH(Options, options);
        QFETCH(QStringList, jours);

        const QString d = nouveauDossier();
        const QString fichier = d + QStringLiteral("/Events.mdb");
        auto p = ouvrir(d);
        QVERIFY(p);
        CalendarEventPtr maitre = rendezVous(*p, QDateTime(premierJour, QTime(10, 30)), 45, QStringLiteral("série"));
        maitre->setIsReminder(true);
        CalendarRecurrencePatternPtr motif = maitre->CreateRecurrence();
        QVERIFY(motif);
        options(motif->Options());
        motif->setEndMethod(methode);
        if (finPar.isValid())
            motif->setEndDate(finPar);
        if (nombre > 0)
            motif->setEndAfterOccurrences(nombre);
        QVERIFY(p->AddEvent(maitre));
        QVERIFY(maitre->EventID() > 0);
        QVERIFY(motif->RecurrencePatternID() > 0);

        // The rows hold each other: master -> pattern, pattern -> master.
        QCOMPARE(compter(fichier, QStringLiteral("SELECT RecurrencePatternID FROM CalendarEvents WHERE RecurrenceState = 1")),
                 motif->RecurrencePatternID());
        QCOMPARE(compter(fichier, QStringLiteral("SELECT MasterEventID FROM CalendarRecurrencePatterns")), maitre->EventID());

        // Another workstation reads the series back on the right days.
        auto autre = ouvrir(d);
        QStringList attendus;
        for (const QString &j : jours)
            attendus << j + QStringLiteral(" 10:30");
        const QList<CalendarEventPtr> lus = autre->RetrieveEvents(QDate(2026, 1, 1), QDate(2028, 12, 31));
        QCOMPARE(debuts(lus), attendus);
        for (const CalendarEventPtr &o : lus) {
            QCOMPARE(o->RecurrenceState(), 2);
            QCOMPARE(o->EndDateTime(), o->StartDateTime().addSecs(45 * 60));
        }
        // The master row spans the series: found on its last day too.
        QCOMPARE(debuts(autre->RetrieveDayEvents(QDate::fromString(jours.last(), Qt::ISODate))), QStringList{attendus.last()});

        // One occurrence moved, one deleted: two exception rows, and the
        // series reads with them.
        CalendarEventPtr deplacee = lus.at(1);
        deplacee->setStartDateTime(deplacee->StartDateTime().addSecs(3600));
        deplacee->setEndDateTime(deplacee->EndDateTime().addSecs(3600));
        QVERIFY(autre->ChangeEvent(deplacee));
        QVERIFY(autre->DeleteEvent(lus.at(2)));
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 3")), 2);
        QStringList apres = attendus;
        apres[1] = jours.at(1) + QStringLiteral(" 11:30");
        apres.removeAt(2);
        const QList<CalendarEventPtr> relus = p->RetrieveEvents(QDate(2026, 1, 1), QDate(2028, 12, 31));
        QCOMPARE(debuts(relus), apres);
        QCOMPARE(relus.at(1)->RecurrenceState(), 3);

        // The whole series goes: no row left.
        const CalendarEventPtr m = p->GetEvent(maitre->EventID());
        QVERIFY(m);
        QCOMPARE(m->RecurrencePattern()->ExceptionsCount(), 2);
        QVERIFY(p->DeleteEvent(m));
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarEvents")), 0);
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarRecurrencePatterns")), 0);
    }

    void uneSeuleExceptionParOccurrence()
    {
        const QString d = nouveauDossier();
        const QString fichier = d + QStringLiteral("/Events.mdb");
        auto p = ouvrir(d);
        CalendarEventPtr maitre = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(8, 0)), 30, QStringLiteral("kiné"));
        maitre->CreateRecurrence()->Options().setRecurrenceType(1);
        QVERIFY(p->AddEvent(maitre));
        QSignalSpy change(p.get(), &CalendarDataProvider::eventChanged);
        for (int fois = 0; fois < 3; ++fois) {
            // Each station reads the day again and changes the same occurrence.
            const QList<CalendarEventPtr> jour = p->RetrieveDayEvents(QDate(2026, 3, 4));
            QCOMPARE(jour.size(), 1);
            jour.first()->setSubject(QStringLiteral("kiné %1").arg(fois));
            QVERIFY(p->ChangeEvent(jour.first()));
        }
        QCOMPARE(change.count(), 3);
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 3")), 1);
        QCOMPARE(p->RetrieveDayEvents(QDate(2026, 3, 4)).first()->Subject(), QStringLiteral("kiné 2"));
        QCOMPARE(p->RetrieveDayEvents(QDate(2026, 3, 5)).first()->Subject(), QStringLiteral("kiné"));
    }

    void serieRedevenueSimple()
    {
        const QString d = nouveauDossier();
        const QString fichier = d + QStringLiteral("/Events.mdb");
        auto p = ouvrir(d);
        CalendarEventPtr maitre = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(8, 0)), 30, QStringLiteral("x"));
        maitre->CreateRecurrence();
        QVERIFY(p->AddEvent(maitre));
        const QList<CalendarEventPtr> jour = p->RetrieveDayEvents(QDate(2026, 3, 3));
        QVERIFY(p->DeleteEvent(jour.first()));
        const CalendarEventPtr m = p->GetEvent(maitre->EventID());
        m->RemoveRecurrence();
        QVERIFY(p->ChangeEvent(m));
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarRecurrencePatterns")), 0);
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarEvents")), 1);
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 0 AND RecurrencePatternID = 0 AND EndDateTime = '2026-03-02 08:30:00'")), 1);
        QCOMPARE(debuts(p->RetrieveEvents(QDate(2026, 3, 1), QDate(2026, 3, 31))), QStringList{QStringLiteral("2026-03-02 08:00")});
    }

    void deuxPostesSurLeMemeFichier()
    {
        const QString d = nouveauDossier();
        auto a = ouvrir(d);
        auto b = ouvrir(d);
        QVERIFY(a && b);
        const QDate jour(2026, 3, 9);
        QCOMPARE(b->RetrieveDayEvents(jour).size(), 0);
        CalendarEventPtr e = rendezVous(*a, QDateTime(jour, QTime(14, 0)), 15, QStringLiteral("MARTIN Paul"));
        QVERIFY(a->AddEvent(e));
        const QList<CalendarEventPtr> vus = b->RetrieveDayEvents(jour);
        QCOMPARE(vus.size(), 1);
        vus.first()->setBusyStatus(0);
        vus.first()->setSubject(QStringLiteral("MARTIN Paul (arrivé)"));
        QVERIFY(b->ChangeEvent(vus.first()));
        QCOMPARE(a->RetrieveDayEvents(jour).first()->Subject(), QStringLiteral("MARTIN Paul (arrivé)"));
        QSignalSpy supprime(a.get(), &CalendarDataProvider::eventDeleted);
        QVERIFY(a->DeleteEvent(e));
        QCOMPARE(supprime.count(), 1);
        QCOMPARE(supprime.first().first().value<CalendarEventPtr>(), e);
        QCOMPARE(b->RetrieveDayEvents(jour).size(), 0);
    }

    void fichierVerrouilleAttendu()
    {
        const QString d = nouveauDossier();
        const QString fichier = d + QStringLiteral("/Events.mdb");
        auto p = ouvrir(d);
        QVERIFY(p);
        // Another workstation holds the file for a moment.
        sqlite3 *autre = nullptr;
        QCOMPARE(sqlite3_open(fichier.toUtf8().constData(), &autre), SQLITE_OK);
        QCOMPARE(sqlite3_exec(autre, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
        std::thread liberer([autre] {
            std::this_thread::sleep_for(std::chrono::milliseconds(600));
            sqlite3_exec(autre, "COMMIT", nullptr, nullptr, nullptr);
        });
        QElapsedTimer t;
        t.start();
        const bool ok = p->AddEvent(rendezVous(*p, QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 15, QStringLiteral("attente")));
        const qint64 attente = t.elapsed();
        liberer.join();
        sqlite3_close(autre);
        QVERIFY2(ok, "l'écriture a échoué au lieu d'attendre");
        QVERIFY2(attente >= 400, qPrintable(QStringLiteral("attendu %1 ms").arg(attente)));
        QCOMPARE(p->RetrieveDayEvents(QDate(2026, 3, 9)).size(), 1);
    }

    void fichierIllisibleMisDeCote()
    {
        const QString d = nouveauDossier();
        const QString fichier = d + QStringLiteral("/Events.mdb");
        QVERIFY(ecrireOctets(fichier, QByteArray("Standard Jet DB\0 pas une base SQLite", 36)));
        auto p = ouvrir(d);
        QVERIFY2(p, "la base n'a pas été recréée");
        auto *store = static_cast<SqliteCalendarStore *>(p->store());
        QVERIFY(store->keptAsidePath().startsWith(fichier + QStringLiteral(".illisible-")));
        QCOMPARE(lireOctets(store->keptAsidePath()), QByteArray("Standard Jet DB\0 pas une base SQLite", 36));
        QVERIFY(EstFichierSqlite(fichier));
        QVERIFY(p->AddEvent(rendezVous(*p, QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 15, QStringLiteral("neuf"))));
        QCOMPARE(compter(fichier, QStringLiteral("SELECT count(*) FROM CalendarEvents")), 1);

        // A good file is never put aside.
        auto q = ouvrir(d);
        QVERIFY(static_cast<SqliteCalendarStore *>(q->store())->keptAsidePath().isEmpty());
        QCOMPARE(QDir(d).entryList({QStringLiteral("Events.mdb*")}, QDir::Files).size(), 2);
    }

    void plansSansBalayage_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("parametres");
        QTest::newRow("jours") << SqliteCalendarStore::rangeStatement() << 5;
        QTest::newRow("rappels bornés") << SqliteCalendarStore::upcomingStatement(true) << 5;
        QTest::newRow("rappels") << SqliteCalendarStore::upcomingStatement(false) << 3;
    }
    void plansSansBalayage()
    {
        QFETCH(QString, sql);
        QFETCH(int, parametres);
        auto p = ouvrir(nouveauDossier());
        QVERIFY(p);
        auto *store = static_cast<SqliteCalendarStore *>(p->store());
        QSqlQuery q(store->base()->db());
        QVERIFY(q.prepare(QStringLiteral("EXPLAIN QUERY PLAN ") + sql));
        for (int i = 0; i < parametres; ++i)
            q.addBindValue(QStringLiteral("2026-03-02 00:00:00"));
        QVERIFY2(q.exec(), qPrintable(q.lastError().text()));
        QStringList plan;
        while (q.next())
            plan << q.value(3).toString();
        QVERIFY(!plan.isEmpty());
        for (const QString &etape : plan)
            QVERIFY2(!etape.startsWith(QLatin1String("SCAN CalendarEvents")), qPrintable(plan.join(QStringLiteral(" | "))));
    }

    void magasinXml()
    {
        const QString d = nouveauDossier();
        const QString connexion = QStringLiteral("Provider=XML;Data Source='") + d + QStringLiteral("/events.xml';Encoding=iso-8859-1;");
        const QString texte = QString::fromUtf8("a<b>&c\r\nd\te « é » \x01 fin");
        int id = 0;
        {
            CalendarDataProvider p;
            QVERIFY(OpenProvider(p, CalendarDataProvider::Memory, connexion));
            CalendarEventPtr e = rendezVous(p, QDateTime(QDate(2026, 3, 2), QTime(9, 0)), 30, texte);
            e->setBody(texte);
            QVERIFY(p.AddEvent(e));
            id = e->EventID();
            CalendarEventPtr maitre = rendezVous(p, QDateTime(QDate(2026, 3, 2), QTime(14, 0)), 60, QStringLiteral("série"));
            CalendarRecurrencePatternPtr motif = maitre->CreateRecurrence();
            motif->Options().setRecurrenceType(2);
            motif->Options().setDayOfWeekMask(CalendarRecurrenceOptions::Monday | CalendarRecurrenceOptions::Wednesday);
            motif->setEndMethod(1);
            motif->setEndAfterOccurrences(4);
            QVERIFY(p.AddEvent(maitre));
            QVERIFY(p.DeleteEvent(p.RetrieveDayEvents(QDate(2026, 3, 4)).last()));
            // Saved when the store closes.
        }
        QVERIFY(QFile::exists(d + QStringLiteral("/events.xml")));
        CalendarDataProvider relu;
        QVERIFY(OpenProvider(relu, CalendarDataProvider::Memory, connexion));
        const CalendarEventPtr e = relu.GetEvent(id);
        QVERIFY(e);
        QCOMPARE(e->Subject(), texte);
        QCOMPARE(e->Body(), texte);
        QCOMPARE(debuts(relu.RetrieveEvents(QDate(2026, 3, 1), QDate(2026, 3, 31))),
                 (QStringList{"2026-03-02 09:00", "2026-03-02 14:00", "2026-03-09 14:00", "2026-03-11 14:00"}));
    }

    // The schedules live in the store's file: another workstation reads the
    // same list and keys at once, a removed key is never given again, and a
    // series counts once among the appointments that name a schedule.
    void planningsDansLeFichier_data()
    {
        QTest::addColumn<int>("genre");
        QTest::newRow("Events.mdb") << int(CalendarDataProvider::Access);
        QTest::newRow("XML") << int(CalendarDataProvider::Memory);
    }
    void planningsDansLeFichier()
    {
        QFETCH(int, genre);
        const QString d = nouveauDossier();
        const QString connexion = genre == CalendarDataProvider::Access ? connexionMdb(d)
                                                                        : QStringLiteral("Provider=XML;Data Source='%1/a.xml';").arg(d);
        auto p = std::make_unique<CalendarDataProvider>();
        QVERIFY(OpenProvider(*p, genre, connexion));
        const int martin = p->AddSchedule(QStringLiteral("Dr Martin"));
        const int salle = p->AddSchedule(QStringLiteral("Salle 2"));
        QVERIFY(martin > 0 && salle > martin);
        CalendarDataProvider autre;
        QVERIFY(OpenProvider(autre, genre, connexion));
        QCOMPARE(autre.Schedules(), (QList<CalendarSchedule>{{martin, "Dr Martin"}, {salle, "Salle 2"}}));

        CalendarEventPtr seul = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(9, 0)), 30, QStringLiteral("seul"));
        seul->setScheduleID(martin);
        CalendarEventPtr serie = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(10, 0)), 30, QStringLiteral("série"));
        serie->setScheduleID(martin);
        serie->CreateRecurrence();
        QVERIFY(p->AddEvent(seul) && p->AddEvent(serie));
        const QList<CalendarEventPtr> mardi = p->RetrieveDayEvents(QDate(2026, 3, 3));
        mardi.first()->setSubject(QStringLiteral("changée"));
        QVERIFY(p->ChangeEvent(mardi.first()));
        const QList<CalendarEventPtr> mercredi = p->RetrieveDayEvents(QDate(2026, 3, 4));
        mercredi.first()->setScheduleID(salle);
        QVERIFY(p->ChangeEvent(mercredi.first()));
        QCOMPARE(p->CountScheduleEvents(martin), 2);
        QCOMPARE(p->CountScheduleEvents(salle), 1);

        QVERIFY(p->RenameSchedule(martin, QStringLiteral("Dr Martin-Roux")));
        QVERIFY(p->RemoveSchedule(salle));
        QVERIFY(!p->RenameSchedule(salle, QStringLiteral("revenue")));
        const int secretariat = p->AddSchedule(QStringLiteral("Secrétariat"));
        QVERIFY(secretariat > salle);
        p.reset();
        CalendarDataProvider relu;
        QVERIFY(OpenProvider(relu, genre, connexion));
        QCOMPARE(relu.Schedules(), (QList<CalendarSchedule>{{martin, "Dr Martin-Roux"}, {secretariat, "Secrétariat"}}));
    }

    void rappelsAVenir_data()
    {
        QTest::addColumn<QString>("connexion");
        QTest::addColumn<bool>("borne");
        QTest::addColumn<QStringList>("sujets");
        const QStringList sansBorne{QStringLiteral("A"), QStringLiteral("C"), QStringLiteral("D")};
        const QStringList avecBorne{QStringLiteral("A"), QStringLiteral("D")};
        QTest::newRow("mdb") << "Provider=Microsoft.Jet.OLEDB.4.0;Data Source='%1/Events.mdb';" << false << sansBorne;
        QTest::newRow("mdb depuis") << "Provider=Microsoft.Jet.OLEDB.4.0;Data Source='%1/Events.mdb';" << true << avecBorne;
        QTest::newRow("xml") << "Provider=XML;Data Source='%1/events.xml';" << false << sansBorne;
        QTest::newRow("xml depuis") << "Provider=XML;Data Source='%1/events.xml';" << true << avecBorne;
    }
    void rappelsAVenir()
    {
        QFETCH(QString, connexion);
        QFETCH(bool, borne);
        QFETCH(QStringList, sujets);
        const QString d = nouveauDossier();
        CalendarDataProvider p;
        QVERIFY(p.SetDataProvider(connexion.arg(d)) && (p.Open() || p.Create()));
        auto ajouter = [&](const QDateTime &debut, bool rappel, int avance, const QString &sujet) {
            CalendarEventPtr e = rendezVous(p, debut, 20, sujet);
            e->setIsReminder(rappel);
            e->setReminderMinutesBeforeStart(avance);
            return e;
        };
        QVERIFY(p.AddEvent(ajouter(QDateTime(QDate(2026, 3, 9), QTime(10, 0)), true, 30, QStringLiteral("A"))));
        QVERIFY(p.AddEvent(ajouter(QDateTime(QDate(2026, 3, 9), QTime(10, 0)), false, 30, QStringLiteral("B"))));
        QVERIFY(p.AddEvent(ajouter(QDateTime(QDate(2026, 1, 5), QTime(10, 0)), true, 30, QStringLiteral("C"))));
        // A series without reminder, one occurrence of which has one.
        CalendarEventPtr d1 = ajouter(QDateTime(QDate(2026, 3, 2), QTime(8, 0)), false, 60, QStringLiteral("D"));
        d1->CreateRecurrence();
        QVERIFY(p.AddEvent(d1));
        CalendarEventPtr occ = p.RetrieveDayEvents(QDate(2026, 3, 9)).first();
        QCOMPARE(occ->Subject(), QStringLiteral("D"));
        occ->setIsReminder(true);
        QVERIFY(p.ChangeEvent(occ));
        // A series under reminder that has not begun.
        CalendarEventPtr e1 = ajouter(QDateTime(QDate(2026, 3, 20), QTime(8, 0)), true, 60, QStringLiteral("E"));
        e1->CreateRecurrence();
        QVERIFY(p.AddEvent(e1));

        const QDateTime depuis = borne ? QDateTime(QDate(2026, 3, 8), QTime(0, 0)) : QDateTime();
        QList<CalendarEventPtr> lignes;
        p.store()->DoGetUpcomingEvents(QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 45, lignes, depuis);
        QStringList lus;
        for (const CalendarEventPtr &e : lignes)
            lus << e->Subject();
        lus.sort();
        QCOMPARE(lus, sujets);
    }

    // The Outlook kind cannot be had here: the user is told.
    void outlookIndisponible()
    {
        auto p = ouvrir(nouveauDossier());
        QVERIFY(p->AddEvent(rendezVous(*p, QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 15, QStringLiteral("reste"))));
        RepondeurScripte repondeur;
        QVERIFY(!OpenProvider(*p, 3, QStringLiteral("Provider=Custom;DSN=Calendar_SQLServer")));
        QCOMPARE(repondeur.textes(), QStringList{TexteMapiIndisponible()});
        // The book in place stays attached.
        QCOMPARE(p->RetrieveDayEvents(QDate(2026, 3, 9)).size(), 1);
    }

    // The week read maps its rows itself; on rows written by another program
    // (numbers as text or with decimals, other date forms, odd flags) it must
    // read what the record mapping reads, and skip what it skips.
    void lectureDirecteCommeLaCorrespondance_data()
    {
        QTest::addColumn<QString>("colonne");
        QTest::addColumn<QString>("valeur");
        QTest::addColumn<bool>("lue");
        QTest::newRow("ordinaire") << "Subject" << "'MARTIN Paul'" << true;
        QTest::newRow("lieu") << "Location" << "'Cabinet'" << true;
        QTest::newRow("nombre en texte") << "LabelID" << "' 7'" << true;
        QTest::newRow("nombre décimal") << "LabelID" << "2.5" << true;
        QTest::newRow("mot pour un nombre") << "LabelID" << "'bleu'" << false;
        QTest::newRow("dépassement") << "BusyStatus" << "5000000000" << false;
        QTest::newRow("drapeau -1") << "IsReminder" << "-1" << true;
        QTest::newRow("drapeau 2") << "IsMeeting" << "2" << true;
        QTest::newRow("sujet nombre") << "Subject" << "X'41'" << true;
        QTest::newRow("fin avec T") << "EndDateTime" << "'2026-03-09T10:15:00'" << true;
        QTest::newRow("fin sans secondes") << "EndDateTime" << "'2026-03-09 10:15'" << true;
        QTest::newRow("création date zéro") << "CreationTime" << "'1899-12-30 00:00:00'" << true;
        QTest::newRow("création illisible") << "CreationTime" << "'hier'" << true;
        QTest::newRow("propriétés") << "CustomPropertiesXMLData"
            << "'<CustomProperties><Property Name=\"Patient\" Type=\"8\" Value=\"12\"/></CustomProperties>'" << true;
        QTest::newRow("icônes") << "CustomIconsIDs" << "'3, 5,x'" << true;
    }
    void lectureDirecteCommeLaCorrespondance()
    {
        QFETCH(QString, colonne);
        QFETCH(QString, valeur);
        QFETCH(bool, lue);
        const QString d = nouveauDossier();
        auto p = ouvrir(d);
        QVERIFY(p);
        {
            const auto base = BaseSqlite::ouvrir(d + QStringLiteral("/Events.mdb"), BaseSqlite::Mode::Existante);
            QString erreur;
            QVERIFY2(base->executer(QStringLiteral("INSERT INTO CalendarEvents (Subject, StartDateTime, EndDateTime, CreationTime) "
                                                   "VALUES ('x', '2026-03-09 10:00:00', '2026-03-09 10:15:00', '2026-01-02 03:04:05')"),
                                    &erreur),
                     qPrintable(erreur));
            QVERIFY2(base->executer(QStringLiteral("UPDATE CalendarEvents SET %1 = %2").arg(colonne, valeur), &erreur),
                     qPrintable(erreur));
        }
        auto decrire = [](const CalendarEventPtr &e) {
            if (!e)
                return QStringLiteral("(ignorée)");
            QStringList champs{QString::number(e->EventID()), e->Subject(), e->Location(), e->Body(),
                               QString::number(e->IsMeeting()), QString::number(e->IsPrivate()), QString::number(e->LabelID()),
                               QString::number(e->BusyStatus()), QString::number(e->ImportanceLevel()),
                               e->StartDateTime().toString(Qt::ISODate), e->EndDateTime().toString(Qt::ISODate),
                               QString::number(e->IsAllDayEvent()), QString::number(e->IsReminder()),
                               QString::number(e->ReminderMinutesBeforeStart()), e->ReminderSoundFile(),
                               e->CustomProperties().SaveToString(), e->CustomIcons().SaveToString(),
                               QString::number(e->ScheduleID()), e->CreationTime().toString(Qt::ISODate),
                               e->LastModificationTime().toString(Qt::ISODate),
                               e->CustomProperties().GetProperty(CustomProperties::RecurrenceStateEntry).toString(),
                               e->CustomProperties().GetProperty(CustomProperties::RecurrencePatternIDEntry).toString()};
            return champs.join(u'|');
        };
        QList<CalendarEventPtr> rangees;
        p->store()->DoRetrieveRangeEvents(QDate(2026, 3, 9), QDate(2026, 3, 13), rangees);
        QVERIFY(!p->store()->LastReadFailed());
        QCOMPARE(rangees.size(), lue ? 1 : 0);

        // The same row through the general database layer and the record mapping.
        auto *store = static_cast<SqliteCalendarStore *>(p->store());
        QSqlQuery q(store->base()->db());
        QVERIFY(q.exec(QStringLiteral("SELECT * FROM CalendarEvents")));
        QueryCursor rs(&q);
        QVERIFY(!rs.atEnd());
        CalendarEventPtr attendue = store->helper().CreateEventFromRS(rs);
        if (attendue) {
            try {
                attendue->setCreationTime(RecordValue::dateTime(rs.field(QStringLiteral("CreationTime"))));
                attendue->setLastModificationTime(RecordValue::dateTime(rs.field(QStringLiteral("LastModificationTime"))));
            } catch (const FieldError &) {
            }
        }
        QCOMPARE(decrire(rangees.value(0)), decrire(attendue));
    }

    // Series read with the week: each comes with its exceptions, as the
    // pattern read by its key does.
    void seriesDeLaSemaineAvecExceptions()
    {
        auto p = ouvrir(nouveauDossier());
        QVERIFY(p);
        QList<int> cles;
        for (int s = 0; s < 3; ++s) {
            CalendarEventPtr m = rendezVous(*p, QDateTime(QDate(2026, 3, 2 + s), QTime(8 + s, 0)), 30, QStringLiteral("SÉRIE %1").arg(s));
            CalendarRecurrencePatternPtr motif = m->CreateRecurrence();
            motif->Options().setRecurrenceType(2);
            motif->Options().setIntervalWeeks(1);
            motif->Options().setDayOfWeekMask(2 | 8 | 32);
            // One series of each end.
            motif->setEndMethod(s);
            if (s == 0)
                motif->setEndDate(QDate(2026, 6, 30));
            else if (s == 1)
                motif->setEndAfterOccurrences(12);
            QVERIFY(p->AddEvent(m));
            for (int k = 0; k < s; ++k) {
                const QList<CalendarEventPtr> occ = ExpandOccurrences(m, QDate(2026, 3, 9), QDate(2026, 3, 13));
                QVERIFY(occ.size() > k);
                occ.at(k)->setStartDateTime(occ.at(k)->StartDateTime().addSecs(1800));
                occ.at(k)->setEndDateTime(occ.at(k)->EndDateTime().addSecs(1800));
                QVERIFY(p->ChangeEvent(occ.at(k)));
            }
            cles << motif->RecurrencePatternID();
        }
        const QHash<int, CalendarRecurrencePatternPtr> lus = p->store()->DoReadRPatterns(cles);
        QCOMPARE(lus.size(), 3);
        for (const int cle : std::as_const(cles)) {
            const CalendarRecurrencePatternPtr un = p->store()->DoReadRPattern(cle);
            QVERIFY(un);
            QVERIFY(lus.value(cle));
            auto exceptions = [](const CalendarRecurrencePatternPtr &motif) {
                QStringList s;
                for (const CalendarEventPtr &e : motif->Exceptions())
                    s << QString::number(e->EventID()) + e->StartDateTime().toString(Qt::ISODate)
                             + e->RExceptionStartTimeOrig().toString(Qt::ISODate);
                s.sort();
                return s;
            };
            QCOMPARE(exceptions(lus.value(cle)), exceptions(un));
            auto decrireMotif = [](const CalendarRecurrencePatternPtr &m) {
                return QVariantList{m->MasterEventID(), m->StartDate(), m->StartTime(), m->DurationMinutes(), m->EndMethod(),
                                    m->EndDate(), m->EndAfterOccurrences(), m->Options().Data1(), m->Options().Data2(),
                                    m->Options().Data3(), m->CustomProperties().SaveToString()};
            };
            QCOMPARE(decrireMotif(lus.value(cle)), decrireMotif(un));
        }
        // Read twice in a row: the kept statements leave nothing behind.
        QCOMPARE(p->store()->DoReadRPatterns(cles).size(), 3);
        QCOMPARE(p->RetrieveEvents(QDate(2026, 3, 9), QDate(2026, 3, 13)).size(), 9);
    }

    void xmlIllisibleMisDeCote()
    {
        const QString d = nouveauDossier();
        const QString fichier = d + QStringLiteral("/events.xml");
        QVERIFY(ecrireOctets(fichier, "<pas un calendrier"));
        CalendarDataProvider p;
        QVERIFY(OpenProvider(p, CalendarDataProvider::Memory, QStringLiteral("Provider=XML;Data Source='") + fichier + QStringLiteral("';")));
        QVERIFY(p.AddEvent(rendezVous(p, QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 15, QStringLiteral("neuf"))));
        p.Close();
        const QStringList fichiers = QDir(d).entryList({QStringLiteral("events.xml*")}, QDir::Files);
        QCOMPARE(fichiers.size(), 2);
        CalendarDataProvider relu;
        QVERIFY(OpenProvider(relu, CalendarDataProvider::Memory, QStringLiteral("Provider=XML;Data Source='") + fichier + QStringLiteral("';")));
        QCOMPARE(relu.RetrieveDayEvents(QDate(2026, 3, 9)).size(), 1);
    }

    void controleDesInvariants_data()
    {
        QTest::addColumn<QString>("alteration");
        QTest::addColumn<QStringList>("problemes");
        QTest::newRow("saine") << QString() << QStringList{};
        QTest::newRow("série perdue") << "DELETE FROM CalendarRecurrencePatterns"
            << QStringList{"la série du rendez-vous maître 2 est introuvable", "l'exception 3 désigne une série introuvable"};
        QTest::newRow("maître perdu") << "DELETE FROM CalendarEvents WHERE RecurrenceState = 1"
                                      << QStringList{"la série 1 n'a pas de rendez-vous maître qui la désigne"};
        QTest::newRow("occurrence enregistrée")
            << "UPDATE CalendarEvents SET RecurrenceState = 2 WHERE EventID = 1"
            << QStringList{"le rendez-vous 1 a un état de récurrence inconnu (une occurrence n'est jamais enregistrée)"};
        QTest::newRow("simple rattaché") << "UPDATE CalendarEvents SET RecurrencePatternID = 1 WHERE EventID = 1"
                                         << QStringList{"le rendez-vous simple 1 désigne une série"};
        QTest::newRow("série d'un autre") << "UPDATE CalendarRecurrencePatterns SET MasterEventID = 1"
                                          << QStringList{"la série du rendez-vous maître 2 désigne un autre maître",
                                                         "la série 1 n'a pas de rendez-vous maître qui la désigne"};
        QTest::newRow("fin avant début") << "UPDATE CalendarEvents SET EndDateTime = '2000-01-01 00:00:00' WHERE EventID = 1"
                                         << QStringList{"le rendez-vous 1 finit avant de commencer"};
    }
    void controleDesInvariants()
    {
        QFETCH(QString, alteration);
        QFETCH(QStringList, problemes);
        const QString d = nouveauDossier();
        {
            auto p = ouvrir(d);
            QVERIFY(p->AddEvent(rendezVous(*p, QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 15, QStringLiteral("simple"))));
            CalendarEventPtr maitre = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(8, 0)), 30, QStringLiteral("série"));
            maitre->CreateRecurrence();
            QVERIFY(p->AddEvent(maitre));
            QVERIFY(p->DeleteEvent(p->RetrieveDayEvents(QDate(2026, 3, 3)).first()));
        }
        if (!alteration.isEmpty()) {
            const auto base = BaseSqlite::ouvrir(d + QStringLiteral("/Events.mdb"), BaseSqlite::Mode::Existante);
            QVERIFY(base && base->executer(alteration));
        }
        const ControleStore c = ControlerStore(d);
        QVERIFY2(c.ouvert, qPrintable(c.erreur));
        QCOMPARE(c.problemes, problemes);
        QCOMPARE(c.sain(), problemes.isEmpty());
        if (alteration.isEmpty())
            QCOMPARE((QList<int>{c.evenements, c.simples, c.maitres, c.exceptions, c.supprimees, c.series}), (QList<int>{3, 1, 1, 1, 1, 1}));
    }

    void controleSansFichier()
    {
        const QString d = nouveauDossier();
        const ControleStore c = ControlerStore(d);
        QVERIFY(!c.ouvert);
        QVERIFY(c.erreur.contains(QStringLiteral("introuvable")));
        QVERIFY(!QFile::exists(d + QStringLiteral("/Events.mdb")));
    }
};

QTEST_GUILESS_MAIN(tst_calendarstore)
#include "tst_calendarstore.moc"
