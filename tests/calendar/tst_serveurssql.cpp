#include "calendar/calendardataprovider.h"
#include "calendar/choixstore.h"
#include "calendar/mariadbcalendarstore.h"
#include "calendar/openprovider.h"
#include "shell/base/horloge.h"
#include "support/repondeurscripte.h"
#include "support/serveurmariadb.h"

#include <QProcess>
#include <QSet>
#include <QtTest>

// The calendar on a real MariaDB server: the SQL Server store (its row-set
// writes), the MySQL store (its statements, sent as written) and the MariaDB
// store, each through the same calendar layer as the file stores.
namespace {

ServeurMariaDb *g_serveur = nullptr;

// Kinds 4 (SQL Server) and 5 (MySQL) by their data source name, 6 (MariaDB) by its parameters.
std::unique_ptr<CalendarDataProvider> ouvrir(int genre)
{
    auto p = std::make_unique<CalendarDataProvider>();
    const QString connexion = genre == 4   ? QStringLiteral("Provider=Custom;DSN=Calendar_SQLServer")
                              : genre == 5 ? QStringLiteral("Provider=Custom;DSN=Calendar_MySQL")
                                           : MarqueMariaDb + g_serveur->parametresMariaDb();
    if (!OpenProvider(*p, genre, connexion) || !p->IsOpen())
        return nullptr;
    return p;
}

CalendarEventPtr rendezVous(CalendarDataProvider &p, const QDateTime &debut, int minutes, const QString &sujet)
{
    CalendarEventPtr e = p.CreateNewEvent(debut, debut.addSecs(minutes * 60));
    e->setSubject(sujet);
    return e;
}

QStringList debuts(const QList<CalendarEventPtr> &evenements)
{
    QStringList s;
    for (const CalendarEventPtr &e : evenements)
        s << e->StartDateTime().toString(QStringLiteral("MM-dd HH:mm ")) + e->Subject();
    return s;
}

// The child of the two-station test: books n appointments and prints their keys.
int reserver(int genre, const QString &parametres, int n, const QString &poste)
{
    CalendarDataProvider p;
    if (!OpenProvider(p, genre, MarqueMariaDb + parametres) || !p.IsOpen())
        return 2;
    QTextStream out(stdout);
    for (int i = 0; i < n; ++i) {
        CalendarEventPtr e = rendezVous(p, QDateTime(QDate(2026, 3, 2), QTime(8, 0)).addSecs(i * 900), 15, poste);
        if (!p.AddEvent(e))
            return 3;
        out << e->EventID() << '\n';
    }
    return 0;
}

} // namespace

class tst_serveurssql : public QObject
{
    Q_OBJECT

private:
    Horloge::Fixee m_horloge{QDateTime(QDate(2026, 2, 20), QTime(11, 0))};
    std::unique_ptr<ServeurMariaDb> m_serveur;

    int compter(const QString &base, const QString &sql)
    {
        QProcess p;
        p.start(QStringLiteral("mariadb"), {QStringLiteral("--no-defaults"), QStringLiteral("-uroot"), QStringLiteral("-N"),
                                            QStringLiteral("--socket=") + m_serveur->socket(), base, QStringLiteral("-e"), sql});
        p.waitForFinished(30000);
        bool ok = false;
        const int n = p.readAllStandardOutput().trimmed().toInt(&ok);
        return ok ? n : -1;
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_serveur = std::make_unique<ServeurMariaDb>();
        // No server, no test: this fails, it never skips.
        QVERIFY2(m_serveur->demarre(), qPrintable(m_serveur->erreur()));
        g_serveur = m_serveur.get();
    }

    void init()
    {
        QVERIFY(m_serveur->executer(QStringLiteral("Calendar"),
                                    QStringLiteral("TRUNCATE CalendarEvents; TRUNCATE CalendarRecurrencePatterns")));
        QVERIFY(m_serveur->executer(QStringLiteral("Calendar6"),
                                    QStringLiteral("DROP TABLE IF EXISTS CalendarEvents, CalendarRecurrencePatterns, CalendarSchedules")));
    }

    void rendezVousReserveChangeSupprime_data()
    {
        QTest::addColumn<int>("genre");
        QTest::addColumn<QString>("base");
        QTest::addColumn<bool>("changementAccepte");
        QTest::newRow("SQL Server") << 4 << "Calendar" << true;
        // Its update statement lacks a comma: the server refuses every change.
        QTest::newRow("MySQL") << 5 << "Calendar" << false;
        QTest::newRow("MariaDB") << 6 << "Calendar6" << true;
    }
    void rendezVousReserveChangeSupprime()
    {
        QFETCH(int, genre);
        QFETCH(QString, base);
        QFETCH(bool, changementAccepte);
        auto p = ouvrir(genre);
        QVERIFY(p);
        CalendarEventPtr e = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(9, 15)), 20, QStringLiteral("DUPONT \"Jean\" l'aîné \\"));
        e->setBody(QStringLiteral("ligne 1\r\nligne 2§<&>§"));
        e->setLabelID(9);
        e->setIsReminder(true);
        e->setReminderMinutesBeforeStart(1440);
        e->CustomProperties().SetProperty(QStringLiteral("xtpMarkupText"), QStringLiteral("<b>x</b>"));
        e->CustomIcons().Add(4);
        e->setScheduleID(3);
        QVERIFY(p->AddEvent(e));
        // The first row of an empty table has the key the server gave it.
        QCOMPARE(e->EventID(), 1);

        auto autre = ouvrir(genre);
        auto champs = [](const CalendarEventPtr &x) {
            return QVariantList{x->Subject(), x->Body(), x->LabelID(), x->StartDateTime(), x->EndDateTime(), x->IsReminder(),
                                x->ReminderMinutesBeforeStart(),
                                x->CustomProperties().GetProperty(QStringLiteral("xtpMarkupText")).toString(),
                                x->CustomIcons().SaveToString(), x->ScheduleID()};
        };
        const QList<CalendarEventPtr> jour = autre->RetrieveDayEvents(QDate(2026, 3, 2));
        QCOMPARE(jour.size(), 1);
        QCOMPARE(champs(jour.first()), champs(e));
        QVERIFY(autre->RetrieveDayEvents(QDate(2026, 3, 3)).isEmpty());

        CalendarEventPtr change = autre->GetEvent(e->EventID());
        QVERIFY(change);
        change->setSubject(QStringLiteral("DURAND"));
        QCOMPARE(autre->ChangeEvent(change), changementAccepte);
        // The editor tells the server's words.
        QCOMPARE(autre->store()->LastErrorText().contains(QLatin1String("SQL syntax")), !changementAccepte);
        QCOMPARE(p->GetEvent(e->EventID())->Subject(), changementAccepte ? QStringLiteral("DURAND") : e->Subject());

        QVERIFY(p->DeleteEvent(p->GetEvent(e->EventID())));
        QVERIFY(autre->RetrieveDayEvents(QDate(2026, 3, 2)).isEmpty());
        QCOMPARE(compter(base, QStringLiteral("SELECT COUNT(*) FROM CalendarEvents")), 0);
    }

    void serieAvecExceptions_data()
    {
        QTest::addColumn<int>("genre");
        QTest::addColumn<QString>("base");
        QTest::newRow("SQL Server") << 4 << "Calendar";
        QTest::newRow("MariaDB") << 6 << "Calendar6";
    }
    void serieAvecExceptions()
    {
        QFETCH(int, genre);
        QFETCH(QString, base);
        auto p = ouvrir(genre);
        QVERIFY(p);
        // Every day from Monday 2 March, five times.
        CalendarEventPtr maitre = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(10, 30)), 45, QStringLiteral("kiné"));
        CalendarRecurrencePatternPtr motif = maitre->CreateRecurrence();
        motif->Options().setRecurrenceType(1);
        motif->setEndMethod(1);
        motif->setEndAfterOccurrences(5);
        QVERIFY(p->AddEvent(maitre));
        QVERIFY(motif->RecurrencePatternID() > 0);

        auto autre = ouvrir(genre);
        const QList<CalendarEventPtr> lus = autre->RetrieveEvents(QDate(2026, 3, 1), QDate(2026, 3, 31));
        QCOMPARE(lus.size(), 5);
        // Found on its last day alone: the master row spans the series.
        QCOMPARE(debuts(autre->RetrieveDayEvents(QDate(2026, 3, 6))), QStringList{QStringLiteral("03-06 10:30 kiné")});

        CalendarEventPtr deplacee = lus.at(1);
        deplacee->setStartDateTime(deplacee->StartDateTime().addSecs(3600));
        deplacee->setEndDateTime(deplacee->EndDateTime().addSecs(3600));
        QVERIFY(autre->ChangeEvent(deplacee));
        QVERIFY(autre->DeleteEvent(lus.at(2)));
        QCOMPARE(compter(base, QStringLiteral("SELECT COUNT(*) FROM CalendarEvents WHERE RecurrenceState = 3")), 2);
        QCOMPARE(debuts(p->RetrieveEvents(QDate(2026, 3, 1), QDate(2026, 3, 31))),
                 (QStringList{"03-02 10:30 kiné", "03-03 11:30 kiné", "03-05 10:30 kiné", "03-06 10:30 kiné"}));

        const CalendarEventPtr m = p->GetEvent(maitre->EventID());
        QVERIFY(m && m->RecurrencePattern());
        QCOMPARE(m->RecurrencePattern()->ExceptionsCount(), 2);
        QVERIFY(p->DeleteEvent(m));
        QCOMPARE(compter(base, QStringLiteral("SELECT COUNT(*) FROM CalendarEvents")), 0);
        QCOMPARE(compter(base, QStringLiteral("SELECT COUNT(*) FROM CalendarRecurrencePatterns")), 0);
    }

    void serieRefuseeParMySql()
    {
        // The master's row is written, then its update naming the pattern is
        // refused: the booking answers failure, so the user is told.
        auto p = ouvrir(5);
        QVERIFY(p);
        CalendarEventPtr maitre = rendezVous(*p, QDateTime(QDate(2026, 3, 2), QTime(10, 30)), 45, QStringLiteral("kiné"));
        maitre->CreateRecurrence()->Options().setRecurrenceType(1);
        QVERIFY(!p->AddEvent(maitre));
        // Its pattern update works.
        QCOMPARE(compter(QStringLiteral("Calendar"), QStringLiteral("SELECT COUNT(*) FROM CalendarRecurrencePatterns")), 1);
    }

    void rappelsAVenir_data()
    {
        QTest::addColumn<int>("genre");
        QTest::addColumn<bool>("borne");
        QTest::addColumn<QStringList>("sujets");
        // No lower bound in the MySQL statement: reminders of the past come too.
        QTest::newRow("MySQL") << 5 << false << QStringList{"A", "C"};
        QTest::newRow("MariaDB") << 6 << false << QStringList{"A", "C"};
        QTest::newRow("MariaDB depuis") << 6 << true << QStringList{"A"};
    }
    void rappelsAVenir()
    {
        QFETCH(int, genre);
        QFETCH(bool, borne);
        QFETCH(QStringList, sujets);
        auto p = ouvrir(genre);
        QVERIFY(p);
        const struct { QDate jour; bool rappel; const char *sujet; } lignes[] = {
            {QDate(2026, 3, 9), true, "A"}, {QDate(2026, 3, 9), false, "B"}, {QDate(2026, 1, 5), true, "C"}, {QDate(2026, 3, 10), true, "D"}};
        for (const auto &l : lignes) {
            CalendarEventPtr e = rendezVous(*p, QDateTime(l.jour, QTime(10, 0)), 20, QString::fromLatin1(l.sujet));
            e->setIsReminder(l.rappel);
            e->setReminderMinutesBeforeStart(30);
            QVERIFY(p->AddEvent(e));
        }
        QList<CalendarEventPtr> lus;
        p->store()->DoGetUpcomingEvents(QDateTime(QDate(2026, 3, 9), QTime(9, 0)), 45, lus,
                                        borne ? QDateTime(QDate(2026, 3, 8), QTime(0, 0)) : QDateTime());
        QStringList recus;
        for (const CalendarEventPtr &e : lus)
            recus << e->Subject();
        recus.sort();
        QCOMPARE(recus, sujets);
    }

    void serveurIntrouvable_data()
    {
        QTest::addColumn<int>("genre");
        QTest::addColumn<QString>("chaine");
        QTest::addColumn<QString>("debut");
        QTest::newRow("SQL Server") << 4 << "Provider=Custom;DSN=Calendar_Nulle_Part" << "Cannot open SQL Server DB: ";
        QTest::newRow("MySQL") << 5 << "Provider=Custom;DSN=Calendar_Nulle_Part" << "Cannot open SQL Server DB[";
        QTest::newRow("MySQL trop court") << 5 << "DSN=x" << "Cannot open SQL Server DBcha";
        QTest::newRow("MariaDB") << 6 << "Provider=MariaDB;Server=127.0.0.1;Port=1;Database=Calendar6;User=agenda"
                                 << "Impossible d'ouvrir la base MariaDB";
    }
    void serveurIntrouvable()
    {
        QFETCH(int, genre);
        QFETCH(QString, chaine);
        QFETCH(QString, debut);
        RepondeurScripte repondeur;
        CalendarDataProvider p;
        QVERIFY(OpenProvider(p, genre, chaine));
        QCOMPARE(repondeur.textes().size(), 1);
        QVERIFY2(repondeur.textes().first().startsWith(debut), qPrintable(repondeur.textes().first()));
        // Then an empty book, with no further word.
        QVERIFY(p.RetrieveEvents(QDate(2026, 3, 2), QDate(2026, 3, 6)).isEmpty());
        QVERIFY(!p.AddEvent(rendezVous(p, QDateTime(QDate(2026, 3, 2), QTime(9, 0)), 15, QStringLiteral("x"))));
        QCOMPARE(repondeur.textes().size(), 1);
    }

    void changementDeBaseFermeLaConnexion()
    {
        const QString agenda = QStringLiteral("SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE USER = 'agenda'");
        QCOMPARE(compter(QStringLiteral("Calendar"), agenda), 0);
        auto p = ouvrir(4);
        QVERIFY(p);
        QCOMPARE(compter(QStringLiteral("Calendar"), agenda), 1);
        QTemporaryDir dossier;
        QVERIFY(OpenProvider(*p, 2, QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + dossier.path()
                                        + QStringLiteral("/Events.mdb';")));
        QVERIFY(p->IsOpen());
        QTRY_COMPARE(compter(QStringLiteral("Calendar"), agenda), 0);
    }

    void deuxPostesEnMemeTemps()
    {
        // The tables exist before the two stations start together.
        QVERIFY(ouvrir(6));
        const int n = 150;
        QList<QProcess *> postes;
        for (const char *nom : {"poste1", "poste2"}) {
            auto *p = new QProcess(this);
            p->start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--reserver"), QStringLiteral("6"), m_serveur->parametresMariaDb(), QString::number(n),
                      QString::fromLatin1(nom)});
            postes << p;
        }
        QSet<int> cles;
        int lues = 0;
        for (QProcess *p : postes) {
            QVERIFY(p->waitForFinished(120000));
            QCOMPARE(p->exitCode(), 0);
            for (const QByteArray &l : p->readAllStandardOutput().split('\n')) {
                if (!l.isEmpty()) {
                    cles.insert(l.toInt());
                    ++lues;
                }
            }
        }
        // Nothing lost, no key given twice.
        QCOMPARE(lues, 2 * n);
        QCOMPARE(cles.size(), 2 * n);
        QCOMPARE(compter(QStringLiteral("Calendar6"), QStringLiteral("SELECT COUNT(DISTINCT EventID) FROM CalendarEvents")), 2 * n);
        auto p = ouvrir(6);
        QCOMPARE(p->RetrieveEvents(QDate(2026, 3, 2), QDate(2026, 3, 6)).size(), 2 * n);
    }

    void utilisateurSansDroitDeCreation()
    {
        QVERIFY(ouvrir(6));
        // The practice's administrator made the tables; the stations' user
        // has the rights on the rows only.
        QVERIFY2(m_serveur->executer(QStringLiteral("Calendar6"),
                                     QStringLiteral("CREATE USER IF NOT EXISTS 'poste'@'127.0.0.1' IDENTIFIED BY 'poste';"
                                                    " GRANT SELECT, INSERT, UPDATE, DELETE ON Calendar6.* TO 'poste'@'127.0.0.1'")),
                 qPrintable(m_serveur->erreur()));
        QString parametres = m_serveur->parametresMariaDb();
        parametres.replace(QStringLiteral("User=agenda;Password=agenda"), QStringLiteral("User=poste;Password=poste"));
        RepondeurScripte repondeur;
        CalendarDataProvider p;
        QVERIFY(OpenProvider(p, 6, MarqueMariaDb + parametres));
        QVERIFY(p.IsOpen());
        QVERIFY(p.AddEvent(rendezVous(p, QDateTime(QDate(2026, 3, 2), QTime(9, 0)), 15, QStringLiteral("x"))));
        QCOMPARE(repondeur.textes(), QStringList());
    }

    void lectureDeLaSemaineParLesIndex()
    {
        QVERIFY(ouvrir(6));
        // The week of Monday 2 March: the values in the statement's order.
        QString sql = MariaDbCalendarStore::rangeStatement();
        for (const char *v : {"'2026-03-01'", "'2026-03-07'", "'2026-03-02'", "'2026-03-02'", "'2026-03-07'"})
            sql.replace(sql.indexOf(QLatin1Char('?')), 1, QString::fromLatin1(v));
        QProcess p;
        p.start(QStringLiteral("mariadb"),
                {QStringLiteral("--no-defaults"), QStringLiteral("-uroot"), QStringLiteral("--socket=") + m_serveur->socket(),
                 QStringLiteral("Calendar6"), QStringLiteral("-e"),
                 QStringLiteral("EXPLAIN ") + sql});
        QVERIFY(p.waitForFinished(30000));
        const QString plan = QString::fromLocal8Bit(p.readAllStandardOutput());
        QVERIFY2(plan.contains(QLatin1String("idx_events_debut")) && plan.contains(QLatin1String("idx_events_longs")), qPrintable(plan));
        QVERIFY2(!plan.contains(QLatin1String("\tALL\t")), qPrintable(plan));
    }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 6 && qstrcmp(argv[1], "--reserver") == 0)
        return reserver(atoi(argv[2]), QString::fromLocal8Bit(argv[3]), atoi(argv[4]), QString::fromLocal8Bit(argv[5]));
    tst_serveurssql t;
    return QTest::qExec(&t, argc, argv);
}

#include "tst_serveurssql.moc"
