#include "shell/base/cp1252.h"
#include "shell/base/profilini.h"
#include "support/dossiertest.h"
#include "support/fichierstest.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class tst_profilini : public QObject
{
    Q_OBJECT

private:
    static QString ecrireFichier(const QTemporaryDir &dir, const QByteArray &octets)
    {
        const QString chemin = dir.filePath(QStringLiteral("test.ini"));
        return ecrireOctets(chemin, octets) ? chemin : QString();
    }

private Q_SLOTS:
    void lecture_data()
    {
        QTest::addColumn<QByteArray>("contenu");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("cle");
        QTest::addColumn<QString>("defaut");
        QTest::addColumn<QString>("attendu");

        const QByteArray base = "[Agenda2]\r\nPathDB2=D:\\Agendas\\Cabinet\\\r\nAgendaName2=Cabinet\r\n"
                                "[Sauvegarge]\r\nCheminLog = C:\\Logs \r\nVide=\r\n"
                                "[Cabinet [Dr] = 2]\r\nSMS=Oui\r\n";
        QTest::newRow("cle simple") << base << "Agenda2" << "AgendaName2" << "x" << "Cabinet";
        QTest::newRow("section sans casse") << base << "agenda2" << "AGENDANAME2" << "x" << "Cabinet";
        QTest::newRow("blancs autour") << base << "Sauvegarge" << "CheminLog" << "" << "C:\\Logs";
        QTest::newRow("valeur vide gardee") << base << "Sauvegarge" << "Vide" << "defaut" << "";
        QTest::newRow("cle absente") << base << "Sauvegarge" << "Absente" << "defaut" << "defaut";
        QTest::newRow("section absente") << base << "Rien" << "SMS" << "Non" << "Non";
        QTest::newRow("crochets et egal dans la section") << base << "Cabinet [Dr] = 2" << "SMS" << "Non" << "Oui";
        QTest::newRow("defaut sans blancs finaux") << base << "Rien" << "x" << "abc  " << "abc";
        QTest::newRow("guillemets otes") << QByteArray("[S]\r\nk=\"a b\"\r\n") << "S" << "k" << "" << "a b";
        QTest::newRow("guillemet seul garde") << QByteArray("[S]\r\nk=\"a b\r\n") << "S" << "k" << "" << "\"a b";
        QTest::newRow("fins de ligne unix") << QByteArray("[S]\nk=v\n") << "S" << "k" << "" << "v";
        QTest::newRow("premiere section gagne") << QByteArray("[S]\r\nk=1\r\n[s]\r\nk=2\r\n") << "S" << "k" << "" << "1";
        QTest::newRow("cle d'une autre section") << QByteArray("[A]\r\nk=1\r\n[B]\r\nj=2\r\n") << "B" << "k" << "d" << "d";
        QTest::newRow("commentaire ignore") << QByteArray("[S]\r\n;k=1\r\nk=2\r\n") << "S" << "k" << "" << "2";
        QTest::newRow("windows-1252") << QByteArray("[Cabinet m\xE9" "dical]\r\nNom=Dr B\xE9zier\r\n")
                                      << QString::fromUtf8("Cabinet médical") << "Nom" << "" << QString::fromUtf8("Dr Bézier");
        QTest::newRow("section accentuee sans casse") << QByteArray("[\xC9QUIPE]\r\nk=v\r\n") << QString::fromUtf8("équipe") << "k" << ""
                                                   << "v";
        QTest::newRow("fichier absent") << QByteArray() << "S" << "k" << "d" << "d";
        QTest::newRow("egal dans la valeur") << QByteArray("[S]\r\nDSN=a=b;c=d\r\n") << "S" << "DSN" << "" << "a=b;c=d";
    }

    void lecture()
    {
        QFETCH(QByteArray, contenu);
        QFETCH(QString, section);
        QFETCH(QString, cle);
        QFETCH(QString, defaut);
        QFETCH(QString, attendu);
        QTemporaryDir dir;
        const QString chemin = contenu.isNull() ? dir.filePath(QStringLiteral("absent.ini")) : ecrireFichier(dir, contenu);
        QCOMPARE(LireIni(section, cle, defaut, chemin), attendu);
    }

    void valeursCoupeesA254()
    {
        QTemporaryDir dir;
        const QByteArray longue(300, 'x');
        const QString chemin = ecrireFichier(dir, "[S]\r\nk=" + longue + "\r\n");
        QCOMPARE(LireIni(QStringLiteral("S"), QStringLiteral("k"), QString(), chemin).size(), 254);
        QCOMPARE(LireIni(QStringLiteral("S"), QStringLiteral("absente"), QString(300, u'y'), chemin).size(), 254);
    }

    void ecriture_data()
    {
        QTest::addColumn<QByteArray>("avant");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("cle");
        QTest::addColumn<QString>("valeur");
        QTest::addColumn<QByteArray>("apres");

        QTest::newRow("fichier absent") << QByteArray() << "Agenda" << "SMS" << "Oui" << QByteArray("[Agenda]\r\nSMS=Oui\r\n");
        QTest::newRow("cle remplacee en place, orthographe gardee")
            << QByteArray("[Agenda]\r\nsms=Non\r\nMAILS=Non\r\n") << "AGENDA" << "SMS" << "Oui"
            << QByteArray("[Agenda]\r\nsms=Oui\r\nMAILS=Non\r\n");
        QTest::newRow("cle ajoutee en fin de section")
            << QByteArray("[A]\r\nk=1\r\n\r\n[B]\r\nj=2\r\n") << "A" << "n" << "3" << QByteArray("[A]\r\nk=1\r\nn=3\r\n\r\n[B]\r\nj=2\r\n");
        QTest::newRow("section ajoutee en fin") << QByteArray("[A]\r\nk=1\r\n") << "Cabinet [Dr] = 2" << "SMS" << "Non"
                                             << QByteArray("[A]\r\nk=1\r\n\r\n[Cabinet [Dr] = 2]\r\nSMS=Non\r\n");
        QTest::newRow("valeur vide") << QByteArray("[A]\r\nk=1\r\n") << "A" << "k" << "" << QByteArray("[A]\r\nk=\r\n");
        QTest::newRow("windows-1252 sur disque") << QByteArray() << QString::fromUtf8("Médecin") << "Nom" << QString::fromUtf8("Dr Bézier")
                                                 << QByteArray("[M\xE9" "decin]\r\nNom=Dr B\xE9zier\r\n");
        QTest::newRow("autres lignes intactes") << QByteArray("; entete\r\n[A]\r\n; note\r\nk=1\r\n") << "A" << "k" << "2"
                                                << QByteArray("; entete\r\n[A]\r\n; note\r\nk=2\r\n");
    }

    void ecriture()
    {
        QFETCH(QByteArray, avant);
        QFETCH(QString, section);
        QFETCH(QString, cle);
        QFETCH(QString, valeur);
        QFETCH(QByteArray, apres);
        QTemporaryDir dir;
        const QString chemin = dir.filePath(QStringLiteral("test.ini"));
        if (!avant.isNull())
            ecrireFichier(dir, avant);
        EcrireIni(section, cle, valeur, chemin);
        QCOMPARE(lireOctets(chemin), apres);
    }

    void agendaIniDansLeDossierProgramme()
    {
        DossierProgrammeTest programme;
        QVERIFY(programme.estValide());
        EcrireAgendaIni(QStringLiteral("Cabinet = 2"), QStringLiteral("MAILS"), QStringLiteral("Oui"));
        QVERIFY(QFile::exists(programme.chemin() + QStringLiteral("Agenda.ini")));
        QCOMPARE(LireAgendaIni(QStringLiteral("cabinet = 2"), QStringLiteral("mails"), QStringLiteral("Non")), QStringLiteral("Oui"));
    }
};

QTEST_GUILESS_MAIN(tst_profilini)
#include "tst_profilini.moc"
