#include "shell/appstate.h"
#include "shell/base/horloge.h"
#include "shell/journal.h"
#include "support/fichierstest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace {

CalendarEventPtr rendezVous(bool dejaVenu, bool prive)
{
    CalendarEventPtr e = CalendarEvent::create(7);
    e->setStartDateTime(QDateTime(QDate(2026, 12, 31), QTime(9, 5, 0)));
    e->setSubject(QStringLiteral("DUPONT Marie"));
    e->setLocation(QStringLiteral("Vaccin => Dr Roux"));
    e->setIsMeeting(dejaVenu);
    e->setIsPrivate(prive);
    return e;
}

} // namespace

class tst_journal : public QObject
{
    Q_OBJECT

private slots:
    void init() { Horloge::fixer(QDateTime(QDate(2027, 1, 1), QTime(0, 0, 30))); }
    void cleanup()
    {
        Horloge::liberer();
        appState() = AppState{};
    }

    void ligne_data()
    {
        QTest::addColumn<QString>("agenda");
        QTest::addColumn<int>("action");
        QTest::addColumn<bool>("dejaVenu");
        QTest::addColumn<bool>("prive");
        QTest::addColumn<QString>("attendu");
        const QString fin = QStringLiteral("DUPONT Marie | Vaccin => Dr Roux | ");
        QTest::newRow("nouveau, nom court complété à 30")
            << "Dr" << 0 << false << false
            << QStringLiteral("Dr                             | 31/12/2026 09:05:00 | Nouveau      |           |       | ") + fin;
        QTest::newRow("modification, déjà venu et privé")
            << "Cabinet" << 1 << true << true
            << QStringLiteral("Cabinet                        | 31/12/2026 09:05:00 | Modification | Déjà venu | Privé | ") + fin;
        QTest::newRow("effacement, nom de 40 coupé à 30")
            << "Cabinet médical des Pentes-Croix-Rousse" << 2 << false << true
            << QStringLiteral("Cabinet médical des Pentes-Cro | 31/12/2026 09:05:00 | Effacement   |           | Privé | ") + fin;
        QTest::newRow("action inconnue: champ vide")
            << "A" << 5 << true << false
            << QStringLiteral("A                              | 31/12/2026 09:05:00 |  | Déjà venu |       | ") + fin;
    }

    void ligne()
    {
        QFETCH(QString, agenda);
        QFETCH(int, action);
        QFETCH(bool, dejaVenu);
        QFETCH(bool, prive);
        QFETCH(QString, attendu);
        QCOMPARE(LigneJournal(agenda, *rendezVous(dejaVenu, prive), static_cast<qint16>(action)), attendu);
    }

    // The day of writing names the folder and the file, whatever the date of
    // the appointment; lines are appended in Windows-1252 with CRLF.
    void fichierDuJour()
    {
        QTemporaryDir dir;
        appState().CheminLog = dir.path() + QStringLiteral("/journal");
        appState().AgendaName = QStringLiteral("Agenda des Pentes");
        // Patient names: the file is for the practice's group, whatever the
        // session's mask.
        const mode_t masque = ::umask(022);
        EcrireJournal(rendezVous(true, true), JournalNouveau);
        ::umask(masque);
        EcrireJournal(rendezVous(false, false), JournalEffacement);
        EcrireJournal(CalendarEventPtr(), JournalNouveau); // nothing

        const QString chemin = dir.path() + QStringLiteral("/journal/2027/20270101_0.txt");
        const QByteArray octets = lireOctets(chemin);
        const QList<QByteArray> lignes = octets.split('\n');
        QCOMPARE(lignes.size(), 3);
        QVERIFY(lignes.at(0).startsWith("Agenda des Pentes              | 31/12/2026 09:05:00 | Nouveau      | D\xe9j\xe0 venu | Priv\xe9 | "));
        QVERIFY(lignes.at(0).endsWith(" | \r"));
        QVERIFY(lignes.at(1).contains("| Effacement   |           |       | DUPONT Marie | "));
        QVERIFY(lignes.at(2).isEmpty());
        QCOMPARE(QDir(dir.path() + QStringLiteral("/journal/2027")).entryList(QDir::Files), QStringList{QStringLiteral("20270101_0.txt")});
        struct stat st = {};
        QVERIFY(::stat(QFile::encodeName(chemin).constData(), &st) == 0);
        QCOMPARE(st.st_mode & 0777, mode_t(0660));
    }

    // A file held by another workstation sends the line to the next number;
    // the next call tries number 0 again.
    void fichierVerrouille()
    {
        QTemporaryDir dir;
        const QString dossier = dir.path() + QStringLiteral("/2027/");
        QVERIFY(QDir().mkpath(dossier));
        QFile autre(dossier + NomFichierJournal(QDate(2027, 1, 1), 0));
        QVERIFY(autre.open(QIODevice::WriteOnly | QIODevice::Append));
        QString ecrit;
        {
            VerrouJournal verrou(autre.handle());
            QVERIFY(verrou.obtenu());
            ecrit = EcrireJournal(dir.path(), QStringLiteral("A"), *rendezVous(false, false), JournalNouveau);
            QCOMPARE(QFileInfo(ecrit).fileName(), QStringLiteral("20270101_1.txt"));
        }
        ecrit = EcrireJournal(dir.path(), QStringLiteral("A"), *rendezVous(false, false), JournalModification);
        QCOMPARE(QFileInfo(ecrit).fileName(), QStringLiteral("20270101_0.txt"));
        QVERIFY(lireOctets(ecrit).contains("Modification"));
        QVERIFY(!lireOctets(dossier + QStringLiteral("20270101_1.txt")).contains("Modification"));
    }

    void sansJournal_data()
    {
        QTest::addColumn<bool>("cheminVide");
        QTest::newRow("CheminLog vide") << true;
        QTest::newRow("CheminLog inaccessible") << false;
    }

    // Nothing written, nothing thrown, nothing shown.
    void sansJournal()
    {
        QFETCH(bool, cheminVide);
        QTemporaryDir dir;
        // An empty path must not be taken as the working folder.
        const QString avant = QDir::currentPath();
        QDir::setCurrent(dir.path());
        QString chemin;
        if (!cheminVide) {
            // A plain file where the folder should be: no folder can be made.
            chemin = dir.path() + QStringLiteral("/fichier");
            QVERIFY(ecrireOctets(chemin, {}));
        }
        QCOMPARE(EcrireJournal(chemin, QStringLiteral("A"), *rendezVous(false, false), JournalNouveau), QString());
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 cheminVide ? QStringList() : QStringList{QStringLiteral("fichier")});
        QDir::setCurrent(avant);
    }
};

QTEST_GUILESS_MAIN(tst_journal)
#include "tst_journal.moc"
