#include "calendar/calendardataprovider.h"
#include "calendar/openprovider.h"
#include "calendar/reminderengine.h"
#include "shell/base/basesqlite.h"
#include "shell/base/horloge.h"

#include <QDir>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <sqlite3.h>

namespace {

QDateTime le(int jour, int h, int m)
{
    return QDateTime(QDate(2026, 3, jour), QTime(h, m));
}

QList<int> actions(const QSignalSpy &spy)
{
    QList<int> a;
    for (const QList<QVariant> &appel : spy)
        a << appel.at(0).toInt();
    return a;
}

} // namespace

// A workstation: the provider on the shared Events.mdb and its reminder
// watch. Making a new one is what a restart of the program does.
struct Poste
{
    CalendarDataProvider fournisseur;
    ReminderEngine moteur{&fournisseur};
    QSignalSpy spy{&moteur, &ReminderEngine::reminderAction};

    // Kind 2 (Events.mdb) unless told otherwise; kind 1 is the XML data file.
    explicit Poste(const QString &dossier, int genre = CalendarDataProvider::Access)
    {
        OpenProvider(fournisseur, genre,
                     (genre == CalendarDataProvider::Memory ? QStringLiteral("Provider=XML;Data Source='%1/events.xml';")
                                                            : QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='%1/Events.mdb';"))
                         .arg(dossier));
    }
    // The watch switched on, and its first poll run from the event loop.
    void demarrer()
    {
        moteur.setEnabled(true);
        QCoreApplication::processEvents();
    }
    QStringList sujetsActifs() const
    {
        QStringList s;
        for (const Reminder &r : moteur.ActiveReminders())
            s << r.Event->Subject() + QStringLiteral(" ") + r.StartTime.toString(QStringLiteral("dd HH:mm"));
        return s;
    }
};

class tst_reminderengine : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_racine;
    int m_n = 0;

    QString dossier()
    {
        const QString d = m_racine.path() + QStringLiteral("/p%1").arg(++m_n);
        QDir().mkpath(d);
        return d;
    }

    // A 20-minute appointment, or a daily series from that day.
    static CalendarEventPtr ajouter(CalendarDataProvider &p, const QDateTime &debut, int avance, const QString &sujet, bool rappel = true,
                                    bool serie = false)
    {
        CalendarEventPtr e = p.CreateNewEvent(debut, debut.addSecs(20 * 60));
        e->setSubject(sujet);
        e->setIsReminder(rappel);
        e->setReminderMinutesBeforeStart(avance);
        if (serie)
            e->CreateRecurrence()->Options().setRecurrenceType(1);
        return p.AddEvent(e) ? e : CalendarEventPtr();
    }

    static int rappelsEnBase(const QString &d)
    {
        const auto base = BaseSqlite::ouvrir(d + QStringLiteral("/Events.mdb"), BaseSqlite::Mode::Existante);
        QSqlQuery q(base->db());
        q.exec(QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE IsReminder <> 0 AND RecurrenceState = 0"));
        return q.next() ? q.value(0).toInt() : -1;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_racine.isValid()); }
    void cleanup() { Horloge::liberer(); }

    void declenchementAuBonMoment_data()
    {
        QTest::addColumn<int>("genre");
        QTest::addColumn<QDateTime>("maintenant");
        QTest::addColumn<bool>("du");
        for (const int genre : {CalendarDataProvider::Access, CalendarDataProvider::Memory}) {
            const QString g = genre == CalendarDataProvider::Access ? QStringLiteral("mdb ") : QStringLiteral("xml ");
            QTest::newRow(qPrintable(g + "avant le moment")) << genre << le(9, 9, 29) << false;
            QTest::newRow(qPrintable(g + "au moment")) << genre << le(9, 9, 30) << true;
            QTest::newRow(qPrintable(g + "pendant le rendez-vous")) << genre << le(9, 10, 5) << true;
            QTest::newRow(qPrintable(g + "six jours après")) << genre << le(15, 10, 0) << true;
            QTest::newRow(qPrintable(g + "au-delà de la semaine")) << genre << le(16, 10, 0) << false;
        }
    }
    void declenchementAuBonMoment()
    {
        QFETCH(int, genre);
        QFETCH(QDateTime, maintenant);
        QFETCH(bool, du);
        Poste poste(dossier(), genre);
        QVERIFY(ajouter(poste.fournisseur, le(9, 10, 0), 30, QStringLiteral("DUPONT")));
        QVERIFY(ajouter(poste.fournisseur, le(9, 10, 0), 30, QStringLiteral("sans rappel"), false));
        Horloge::fixer(maintenant);
        poste.demarrer();
        QCOMPARE(poste.sujetsActifs(), du ? QStringList{QStringLiteral("DUPONT 09 10:00")} : QStringList{});
        QCOMPARE(actions(poste.spy), du ? QList<int>{3} : QList<int>{});
        if (du) {
            const Reminder r = poste.spy.first().at(1).value<Reminder>();
            QCOMPARE(r.Event->Subject(), QStringLiteral("DUPONT"));
            QCOMPARE(r.MinutesBeforeStart, 30);
        }
        // Polled again, a reminder already active does not fire twice.
        poste.moteur.Poll();
        QCOMPARE(poste.spy.count(), du ? 1 : 0);
    }

    void ordreDeLaListe()
    {
        Poste poste(dossier());
        ajouter(poste.fournisseur, le(9, 11, 0), 60, QStringLiteral("C"));  // 10:00
        ajouter(poste.fournisseur, le(9, 10, 0), 90, QStringLiteral("A"));  // 08:30
        ajouter(poste.fournisseur, le(9, 10, 30), 60, QStringLiteral("B")); // 09:30
        Horloge::fixer(le(9, 10, 15));
        poste.demarrer();
        QCOMPARE(poste.sujetsActifs(), (QStringList{"A 09 10:00", "B 09 10:30", "C 09 11:00"}));
        QCOMPARE(actions(poste.spy), (QList<int>{3, 3, 3}));
        QCOMPARE(poste.spy.at(0).at(1).value<Reminder>().Event->Subject(), QStringLiteral("A"));
        QCOMPARE(poste.spy.at(2).at(1).value<Reminder>().Event->Subject(), QStringLiteral("C"));
    }

    void repousserSurvitAuRedemarrage()
    {
        const QString d = dossier();
        {
            Poste poste(d);
            ajouter(poste.fournisseur, le(9, 10, 0), 30, QStringLiteral("DUPONT"));
            Horloge::fixer(le(9, 9, 31));
            poste.demarrer();
            QCOMPARE(poste.moteur.Count(), 1);
            QVERIFY(poste.moteur.Snooze(0, 10));
            QCOMPARE(actions(poste.spy), (QList<int>{3, 4}));
            QCOMPARE(poste.moteur.Count(), 0);
            Horloge::fixer(le(9, 9, 40));
            poste.moteur.Poll();
            QCOMPARE(poste.moteur.Count(), 0);
        }
        // The program closed and started again: the snooze still holds...
        Horloge::fixer(le(9, 9, 40));
        {
            Poste poste(d);
            poste.demarrer();
            QCOMPARE(poste.moteur.Count(), 0);
        }
        // ...and ends when it should.
        Horloge::fixer(le(9, 9, 41));
        Poste poste(d);
        poste.demarrer();
        QCOMPARE(poste.sujetsActifs(), QStringList{QStringLiteral("DUPONT 09 10:00")});
        QCOMPARE(poste.moteur.ActiveReminders().first().NextReminderTime, le(9, 9, 41));
    }

    void rejeterSurvitAuRedemarrage()
    {
        const QString d = dossier();
        Horloge::fixer(le(9, 10, 0));
        {
            Poste poste(d);
            ajouter(poste.fournisseur, le(9, 10, 0), 30, QStringLiteral("A"));
            ajouter(poste.fournisseur, le(9, 10, 20), 30, QStringLiteral("B"));
            poste.demarrer();
            QCOMPARE(poste.moteur.Count(), 2);
            QVERIFY(poste.moteur.Dismiss(1));
            QCOMPARE(actions(poste.spy), (QList<int>{3, 3, 5}));
            QCOMPARE(poste.spy.last().at(1).value<Reminder>().Event->Subject(), QStringLiteral("B"));
            QCOMPARE(poste.sujetsActifs(), QStringList{QStringLiteral("A 09 10:00")});
        }
        QCOMPARE(rappelsEnBase(d), 1);
        Poste poste(d);
        poste.demarrer();
        QCOMPARE(poste.sujetsActifs(), QStringList{QStringLiteral("A 09 10:00")});
        poste.moteur.DismissAll();
        QCOMPARE(actions(poste.spy), (QList<int>{3, 6}));
        QVERIFY(poste.spy.last().at(1).value<Reminder>().isNull());
        QCOMPARE(poste.moteur.Count(), 0);
        QCOMPARE(rappelsEnBase(d), 0);
    }

    void echuPendantLaFermeture()
    {
        const QString d = dossier();
        {
            Poste poste(d);
            ajouter(poste.fournisseur, le(6, 17, 0), 1440, QStringLiteral("vendredi"));
            ajouter(poste.fournisseur, le(9, 8, 30), 1440, QStringLiteral("lundi"));
        }
        // Nobody ran the program over the weekend.
        Horloge::fixer(le(9, 8, 0));
        Poste poste(d);
        poste.demarrer();
        QCOMPARE(poste.sujetsActifs(), (QStringList{"vendredi 06 17:00", "lundi 09 08:30"}));
    }

    void occurrencesDUneSerie_data()
    {
        QTest::addColumn<int>("genre");
        QTest::newRow("Events.mdb") << int(CalendarDataProvider::Access);
        QTest::newRow("fichier XML") << int(CalendarDataProvider::Memory);
    }
    void occurrencesDUneSerie()
    {
        QFETCH(int, genre);
        const QString d = dossier();
        {
            Poste poste(d, genre);
            QVERIFY(ajouter(poste.fournisseur, le(2, 8, 0), 60, QStringLiteral("kiné"), true, true));
        }
        Horloge::fixer(le(4, 7, 10));
        {
            Poste poste(d, genre);
            poste.moteur.setLookBackDays(1);
            poste.demarrer();
            QCOMPARE(poste.sujetsActifs(), QStringList{QStringLiteral("kiné 04 08:00")});
            QCOMPARE(poste.moteur.ActiveReminders().first().Event->RecurrenceState(), 2);
            QVERIFY(poste.moteur.Dismiss(0));
            poste.moteur.Poll();
            QCOMPARE(poste.moteur.Count(), 0);
        }
        // The next day only that day's occurrence comes; the dismissed one
        // stays dismissed, and the series is unchanged on the calendar.
        Horloge::fixer(le(5, 7, 5));
        Poste poste(d, genre);
        poste.moteur.setLookBackDays(3);
        poste.demarrer();
        QCOMPARE(poste.sujetsActifs(), (QStringList{"kiné 03 08:00", "kiné 05 08:00"}));
        QVERIFY(poste.moteur.Snooze(1, 30));
        Horloge::fixer(le(5, 7, 36));
        poste.moteur.Poll();
        QCOMPARE(poste.sujetsActifs(), (QStringList{"kiné 03 08:00", "kiné 05 08:00"}));
        QCOMPARE(poste.fournisseur.RetrieveEvents(QDate(2026, 3, 3), QDate(2026, 3, 5)).size(), 3);
    }

    void rejeteParUnAutrePoste()
    {
        const QString d = dossier();
        Horloge::fixer(le(9, 10, 0));
        Poste a(d);
        Poste b(d);
        ajouter(a.fournisseur, le(9, 10, 15), 30, QStringLiteral("A"));
        a.demarrer();
        b.demarrer();
        QVERIFY(b.moteur.Dismiss(0));
        a.moteur.Poll();
        QCOMPARE(actions(a.spy), (QList<int>{3, 5}));
        QCOMPARE(a.moteur.Count(), 0);
    }

    // Two senders on one store: a claim goes to one of them, the other
    // neither gets it nor lists it until it is given up or lapses; a
    // dismissed reminder cannot be claimed.
    void reclamations()
    {
        const QString d = dossier();
        Horloge::fixer(le(9, 10, 0));
        Poste a(d);
        Poste b(d);
        b.moteur.setSender(QStringLiteral("poste b"));
        ajouter(a.fournisseur, le(9, 10, 15), 30, QStringLiteral("A"));
        ajouter(a.fournisseur, le(9, 10, 20), 30, QStringLiteral("B"));
        a.demarrer();
        b.demarrer();
        Reminder ra = a.moteur.ActiveReminders().at(0);
        Reminder rb = b.moteur.ActiveReminders().at(0);
        QVERIFY(a.moteur.Claim(ra));
        QVERIFY(!b.moteur.Claim(rb));
        b.moteur.Poll();
        a.moteur.Poll();
        QCOMPARE(b.sujetsActifs(), QStringList{QStringLiteral("B 09 10:20")});
        QCOMPARE(a.moteur.Count(), 2);
        a.moteur.Release(ra);
        b.moteur.Poll();
        QCOMPARE(b.moteur.Count(), 2);
        QVERIFY(a.moteur.Claim(ra));
        Horloge::fixer(le(9, 10, 0).addSecs(ReminderEngine::ClaimLifetimeMinutes * 60 + 60));
        b.moteur.Poll();
        rb = b.moteur.ActiveReminders().at(0);
        QVERIFY(b.moteur.Claim(rb));
        QVERIFY(b.moteur.Dismiss(0));
        b.moteur.Release(rb);
        QVERIFY(!a.moteur.Claim(ra));
    }

    void arretDeLaVeille()
    {
        Horloge::fixer(le(9, 10, 0));
        Poste poste(dossier());
        ajouter(poste.fournisseur, le(9, 10, 15), 30, QStringLiteral("A"));
        poste.demarrer();
        poste.moteur.setEnabled(false);
        QCOMPARE(actions(poste.spy), (QList<int>{3, 2}));
        QCOMPARE(poste.moteur.Count(), 0);
        poste.moteur.Poll();
        QCOMPARE(poste.spy.count(), 2);
    }

    void baseVerrouilleeGardeLaListe()
    {
        const QString d = dossier();
        Horloge::fixer(le(9, 10, 0));
        BaseSqlite::fixerDelaiOccupe(100);
        Poste poste(d);
        BaseSqlite::fixerDelaiOccupe(8000);
        ajouter(poste.fournisseur, le(9, 10, 15), 30, QStringLiteral("A"));
        poste.demarrer();
        QCOMPARE(poste.moteur.Count(), 1);
        // Another workstation holds the file past the wait.
        sqlite3 *autre = nullptr;
        QCOMPARE(sqlite3_open((d + QStringLiteral("/Events.mdb")).toUtf8().constData(), &autre), SQLITE_OK);
        QCOMPARE(sqlite3_exec(autre, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
        poste.moteur.Poll();
        sqlite3_exec(autre, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(autre);
        QCOMPARE(actions(poste.spy), QList<int>{3});
        QCOMPARE(poste.moteur.Count(), 1);
        poste.moteur.Poll();
        QCOMPARE(actions(poste.spy), QList<int>{3});
    }

    void interrogationPeriodique()
    {
        Horloge::fixer(le(9, 9, 0));
        Poste poste(dossier());
        poste.moteur.setInterval(50);
        poste.demarrer();
        QCOMPARE(poste.spy.count(), 0);
        ajouter(poste.fournisseur, le(9, 9, 10), 15, QStringLiteral("nouveau"));
        QTRY_COMPARE_WITH_TIMEOUT(poste.spy.count(), 1, 2000);
    }
};

QTEST_GUILESS_MAIN(tst_reminderengine)
#include "tst_reminderengine.moc"
