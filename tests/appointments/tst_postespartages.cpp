#include "patients/schemapatients.h"
#include "shell/base/basesqlite.h"
#include "shell/base/fichierspartages.h"
#include "support/admintest.h"
#include "support/fichierstest.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

// Several workstations as real processes of tavonel-admin on one folder:
// each starts as the window does (stores created when missing) and books
// appointments through the calendar and its copy into Patients.mdb.
class tst_postespartages : public QObject
{
    Q_OBJECT

    static int compter(const QString &fichier, const QString &sql)
    {
        // Read-write, as a station opens it: a killed writer's journal is
        // rolled back by the next one that reads, which a read-only
        // connection cannot do.
        auto base = BaseSqlite::ouvrir(fichier, BaseSqlite::Mode::Existante);
        QSqlQuery q(base ? base->db() : QSqlDatabase());
        return base && q.exec(sql) && q.next() ? q.value(0).toInt() : -1;
    }

    // Starts the stations together; each must end with nothing lost.
    static void lancerPostes(const QString &dossier, int postes, int rendezVous)
    {
        QList<QProcess *> liste;
        for (int k = 1; k <= postes; ++k) {
            auto *p = new QProcess;
            p->start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"),
                     {QStringLiteral("book-test"), dossier, QString::number(rendezVous), QString::number(k)});
            liste << p;
        }
        for (QProcess *p : liste) {
            QVERIFY2(p->waitForFinished(50000), "un poste n'a pas fini");
            const QString sortie = QString::fromUtf8(p->readAllStandardOutput() + p->readAllStandardError());
            QVERIFY2(p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0, qPrintable(sortie));
            QVERIFY2(sortie.contains(QStringLiteral(" 0 perdus, 0 copies en attente")), qPrintable(sortie));
        }
        qDeleteAll(liste);
    }

private slots:
    void initTestCase() { QVERIFY2(QFileInfo(qEnvironmentVariable("TAVONEL_ADMIN_EXE")).isExecutable(), "tavonel-admin absent"); }

    // A new file never replaces one that another station put in place.
    void installationSansEcraser()
    {
        QTemporaryDir tmp;
        const QString nous = tmp.filePath(QStringLiteral(".Config.mdb.tmp-1"));
        const QString cible = tmp.filePath(QStringLiteral("Config.mdb"));
        QVERIFY(ecrireOctets(nous, "nous") && ecrireOctets(cible, "eux"));
        QCOMPARE(InstallerSansEcraser(nous, cible), Installation::DejaLa);
        QVERIFY(QFile::exists(nous));
        QCOMPARE(lireOctets(cible), QByteArray("eux"));
        QVERIFY(QFile::remove(cible));
        QCOMPARE(InstallerSansEcraser(nous, cible), Installation::Posee);
        QVERIFY(!QFile::exists(nous));
        QCOMPARE(lireOctets(cible), QByteArray("nous"));
    }

    // First starts together on an empty folder under the usual mask: one
    // set of stores, every appointment once with its copy, nothing for
    // others to read, no temporary file left.
    void premiersDemarrages_data()
    {
        QTest::addColumn<int>("postes");
        QTest::addColumn<int>("rendezVous");
        QTest::newRow("2 postes") << 2 << 40;
        QTest::newRow("4 postes") << 4 << 25;
    }
    void premiersDemarrages()
    {
        QFETCH(int, postes);
        QFETCH(int, rendezVous);
        QTemporaryDir tmp;
        const QString d = tmp.path() + u'/';
        const mode_t avant = ::umask(022);
        lancerPostes(d, postes, rendezVous);
        ::umask(avant);
        if (QTest::currentTestFailed())
            return;
        const int total = postes * rendezVous;
        const QString events = d + QStringLiteral("Events.mdb");
        QCOMPARE(compter(events, QStringLiteral("SELECT count(*) FROM CalendarEvents")), total);
        QCOMPARE(compter(events, QStringLiteral("SELECT count(DISTINCT Subject) FROM CalendarEvents")), total);
        QCOMPARE(compter(CheminPatientsMdb(d), QStringLiteral("SELECT count(DISTINCT ID) FROM Events")), total);
        for (const QString &nom : QDir(d).entryList(QDir::Files | QDir::Hidden)) {
            QVERIFY2(!nom.contains(QStringLiteral(".tmp-")), qPrintable(nom));
            struct stat st = {};
            QVERIFY(::stat(QFile::encodeName(d + nom).constData(), &st) == 0);
            QCOMPARE(st.st_mode & 0777, mode_t(0660));
        }
        const SortieAdmin c = lancerAdmin({QStringLiteral("store-check"), d});
        QVERIFY2(c.code == 0, qPrintable(c.texte + c.erreurs));
    }

    // Another station holds Events.mdb past the busy wait while this one
    // books: each refused booking is told in French and tried again, none
    // is lost.
    void fichierTenu()
    {
        QTemporaryDir tmp;
        const QString d = tmp.path() + u'/';
        lancerPostes(d, 1, 0);
        QProcess poste;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("TAVONEL_BUSY_TIMEOUT"), QStringLiteral("300"));
        poste.setProcessEnvironment(env);
        poste.start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"),
                    {QStringLiteral("book-test"), d, QStringLiteral("8"), QStringLiteral("2"), QStringLiteral("400")});
        QTest::qWait(500);
        QProcess tenue;
        tenue.start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"),
                    {QStringLiteral("hold-lock"), d + QStringLiteral("Events.mdb"), QStringLiteral("2")});
        QVERIFY(poste.waitForFinished(40000) && tenue.waitForFinished(10000));
        const QString erreurs = QString::fromUtf8(poste.readAllStandardError());
        QVERIFY2(tenue.exitCode() == 0, tenue.readAllStandardError().constData());
        QVERIFY2(poste.exitCode() == 0, qPrintable(erreurs));
        QVERIFY2(erreurs.contains(QStringLiteral("n'a pas pu être enregistré")), qPrintable(erreurs));
        QCOMPARE(compter(d + QStringLiteral("Events.mdb"), QStringLiteral("SELECT count(*) FROM CalendarEvents")), 8);
    }

    // A read-only Events.mdb: every try is told in French, nothing is
    // written, and the station does not claim the appointment booked. Run as
    // an ordinary account (root writes whatever the mode).
    void magasinEnLectureSeule()
    {
        QTemporaryDir tmp;
        const QString d = tmp.path() + u'/';
        lancerPostes(d, 1, 2);
        QVERIFY(QFile::setPermissions(d, QFileDevice::Permissions(0x7777)));
        for (const QString &nom : QDir(d).entryList(QDir::Files))
            QVERIFY(::chmod(QFile::encodeName(d + nom).constData(), nom == QLatin1String("Events.mdb") ? 0444 : 0666) == 0);
        QStringList commande{qEnvironmentVariable("TAVONEL_ADMIN_EXE"), QStringLiteral("book-test"), d, QStringLiteral("1"),
                             QStringLiteral("2")};
        if (::geteuid() == 0)
            commande = QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups")} + commande;
        QProcess poste;
        poste.start(::geteuid() == 0 ? QStringLiteral("setpriv") : commande.takeFirst(), commande);
        QVERIFY2(poste.waitForFinished(40000), "le poste n'a pas fini");
        const QString erreurs = QString::fromUtf8(poste.readAllStandardError());
        QCOMPARE(poste.exitCode(), 1);
        QVERIFY2(erreurs.contains(QStringLiteral("n'a pas pu être enregistré")) && erreurs.contains(QStringLiteral("readonly")),
                 qPrintable(erreurs));
        QVERIFY(QString::fromUtf8(poste.readAllStandardOutput()).contains(QStringLiteral("0 rendez-vous enregistrés")));
        QCOMPARE(compter(d + QStringLiteral("Events.mdb"), QStringLiteral("SELECT count(*) FROM CalendarEvents")), 2);
    }

    // Stations killed in mid-booking: the stores stay whole, nothing is
    // booked twice, and the copies that a killed station could not write
    // are written by the next start.
    void postesTues()
    {
        QTemporaryDir tmp;
        const QString d = tmp.path() + u'/';
        lancerPostes(d, 1, 0);
        const QString events = d + QStringLiteral("Events.mdb");
        for (int i = 0; i < 6; ++i) {
            const int avant = compter(events, QStringLiteral("SELECT count(*) FROM CalendarEvents"));
            QProcess p;
            p.start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"),
                    {QStringLiteral("book-test"), d, QStringLiteral("100000"), QString::number(10 + i)});
            QVERIFY(p.waitForStarted(10000));
            // Killed once it books, at a moment that differs each time.
            QTRY_VERIFY_WITH_TIMEOUT(compter(events, QStringLiteral("SELECT count(*) FROM CalendarEvents")) > avant, 20000);
            QTest::qWait(20 * i);
            p.kill();
            QVERIFY(p.waitForFinished(10000));
        }
        const int rendezVous = compter(events, QStringLiteral("SELECT count(*) FROM CalendarEvents"));
        QVERIFY(rendezVous > 0);
        QCOMPARE(compter(events, QStringLiteral("SELECT count(DISTINCT Subject) FROM CalendarEvents")), rendezVous);
        lancerPostes(d, 1, 0);
        const SortieAdmin c = lancerAdmin({QStringLiteral("store-check"), d});
        QVERIFY2(c.code == 0, qPrintable(c.texte + c.erreurs));
    }

    // Copies missing or naming no appointment are found, then repaired.
    void copiesOrphelinesEtManquantes()
    {
        QTemporaryDir tmp;
        const QString d = tmp.path() + u'/';
        lancerPostes(d, 1, 4);
        {
            auto base = BaseSqlite::ouvrir(CheminPatientsMdb(d), BaseSqlite::Mode::Existante);
            QVERIFY(base && base->executer(QStringLiteral("DELETE FROM Events WHERE ID = 2")));
            QVERIFY(base->executer(QStringLiteral("INSERT INTO Events (ID, Numero) VALUES (999, 5)")));
        }
        const SortieAdmin avant = lancerAdmin({QStringLiteral("store-check"), d});
        QCOMPARE(avant.code, 1);
        QVERIFY2(avant.texte.contains(QStringLiteral("1 rendez-vous sans copie dans Patients.mdb (2)")), qPrintable(avant.texte));
        QVERIFY2(avant.texte.contains(QStringLiteral("1 copies orphelines dans Patients.mdb (999)")), qPrintable(avant.texte));
        QCOMPARE(lancerAdmin({QStringLiteral("store-check"), d, QStringLiteral("--repair")}).code, 0);
        QCOMPARE(lancerAdmin({QStringLiteral("store-check"), d}).code, 0);
    }
};

QTEST_GUILESS_MAIN(tst_postespartages)
#include "tst_postespartages.moc"
