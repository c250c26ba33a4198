#include "messaging/gsmmodem.h"
#include "messaging/operateurs.h"
#include "shell/appstate.h"
#include "shell/base/cp1252.h"
#include "support/dossiertest.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// Reading the modem's answers: operator names, identity, speed, character sets.
class TstModemReponses : public QObject
{
    Q_OBJECT

private slots:
    void operateur_data()
    {
        QTest::addColumn<QString>("reponse");
        QTest::addColumn<QString>("nom");
        // The delivered list knows the French network codes.
        QTest::newRow("code numerique") << "\r\n+COPS: 0,2,\"20801\",2\r\n\r\nOK\r\n" << "Orange F";
        QTest::newRow("code avec echo") << "AT+COPS?\r\r\n+COPS: 0,2,\"20815\",2\r\n\r\nOK\r\n" << "Free Mobile";
        QTest::newRow("nom alphanumerique") << "\r\n+COPS: 0,0,\"SFR\",2\r\n\r\nOK\r\n" << "SFR";
        QTest::newRow("code inconnu de la liste") << "\r\n+COPS: 0,2,\"99999\"\r\n" << "99999";
        QTest::newRow("vide") << "" << "Inconnu";
        QTest::newRow("guillemets vides") << "\r\n+COPS: 0,0,\"\"\r\n\r\nOK\r\n" << "Inconnu";
        // Without quotes the whole answer is the name, freed of its line ends
        // and of the final OK; "+COPS: 1" alone means no operator.
        QTest::newRow("selection manuelle") << "\r\n+COPS: 1\r\n\r\nOK\r\n" << "Inconnu";
        QTest::newRow("sans guillemets") << "\r\n+COPS: 0\r\n\r\nOK\r\n" << "+COPS: 0";
        QTest::newRow("echo sans guillemets") << "AT+COPS?\r\r\n+COPS: 1\r\n\r\nOK\r\n" << "AT+COPS?\r\r\n+COPS: 1";
        // At most four control characters go from the front.
        QTest::newRow("cinq en tete") << "\r\n\r\n\n+COPS: 1\r\n" << "\n+COPS: 1";
        QTest::newRow("un seul guillemet") << "+COPS: 0,0,\"Bouygues" << "Bouygues";
    }

    void operateur()
    {
        QFETCH(QString, reponse);
        QFETCH(QString, nom);
        QCOMPARE(GetOperatorName(reponse), nom);
    }

    void listeOperateurs_data()
    {
        QTest::addColumn<QString>("liste");
        QTest::addColumn<QString>("entree");
        QTest::addColumn<QString>("sortie");
        const QString liste = QStringLiteral("20801; Orange F\r\n20810; SFR; France\r\n20810; SFR bis\n"
                                             "Opérateur; Réseau privé\r\n\r\n");
        QTest::newRow("trouve") << liste << "20801" << "Orange F";
        QTest::newRow("derniere l'emporte") << liste << "20810" << "SFR bis";
        QTest::newRow("valeur numerique") << liste << "020801" << "Orange F";
        QTest::newRow("chiffres en tete") << liste << "20801xyz" << "Orange F";
        QTest::newRow("absent") << liste << "20820" << "20820";
        // A name that is no number is worth 0: it matches lines that do not
        // begin with a number, and keeps the rest of the line.
        QTest::newRow("nom") << liste << "Orange" << "Réseau privé";
        QTest::newRow("champs suivants gardes") << "20810; SFR; France\r\n" << "20810" << "SFR; France";
        QTest::newRow("vide") << "20801; Orange F\r\n" << "" << "";
    }

    void listeOperateurs()
    {
        QFETCH(QString, liste);
        QFETCH(QString, entree);
        QFETCH(QString, sortie);
        QTemporaryDir dossier;
        QVERIFY(dossier.isValid());
        QFile f(dossier.filePath(QStringLiteral("Opérateurs.txt")));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(VersCp1252(liste));
        f.close();
        QCOMPARE(LookupOperator(entree, f.fileName()), sortie);
    }

    void listeAbsente()
    {
        QTemporaryDir dossier;
        QCOMPARE(LookupOperator(QStringLiteral("20801"), dossier.filePath(QStringLiteral("absent.txt"))),
                 QStringLiteral("20801"));
    }

    void fabricant_data()
    {
        QTest::addColumn<QString>("reponse");
        QTest::addColumn<QString>("texte");
        QTest::newRow("sans echo") << "\r\nhuawei\r\n\r\nOK\r\n" << "huawei";
        QTest::newRow("avec echo") << "AT+CGMI\r\r\nhuawei\r\n\r\nOK\r\n" << "huawei";
        QTest::newRow("fins CR seul") << "\rWavecom\r\rOK\r" << "Wavecom";
        // Without a carriage return the first line feed cuts, from the front.
        QTest::newRow("fins LF") << "\nWavecom\n\nOK\n" << "";
        QTest::newRow("LF apres le texte") << "Wavecom\nOK" << "Wavecom";
        // Only control characters are trimmed, not blanks.
        QTest::newRow("une ligne") << "Siemens OK" << "Siemens ";
        QTest::newRow("vide") << "" << "";
    }

    void fabricant()
    {
        QFETCH(QString, reponse);
        QFETCH(QString, texte);
        QCOMPARE(getManufacturer(reponse), texte);
    }

    void typeAppareil_data()
    {
        QTest::addColumn<QString>("reponse");
        QTest::addColumn<QString>("texte");
        // Every line stays, "Manufacturer: " included.
        QTest::newRow("lignes") << "\r\nManufacturer: huawei\r\nModel: E1750\r\n\r\nOK" << "Manufacturer: huawei\r\nModel: E1750";
        QTest::newRow("OK suivi de fin de ligne") << "ATI\r\r\nModel: E1750\r\n\r\nOK\r\n" << "ATI\r\r\nModel: E1750\r\n\r\nOK";
    }

    void typeAppareil()
    {
        QFETCH(QString, reponse);
        QFETCH(QString, texte);
        QCOMPARE(getDevType(reponse), texte);
    }

    void bauds_data()
    {
        QTest::addColumn<QString>("reponse");
        QTest::addColumn<QString>("texte");
        QTest::newRow("simple") << "+IPR: 115200OK" << "115200 Bauds";
        QTest::newRow("lignes") << "\r\n+IPR: 9600\r\n\r\nOK\r\n" << "9600\r\n\r\n\r\n Bauds";
    }

    void bauds()
    {
        QFETCH(QString, reponse);
        QFETCH(QString, texte);
        QCOMPARE(GetBauds(reponse), texte);
    }

    void protocoles_data()
    {
        QTest::addColumn<QString>("reponse");
        QTest::addColumn<QString>("texte");
        QTest::addColumn<bool>("gsm");
        QTest::newRow("avec GSM") << "\r\n+CSCS: (\"IRA\",\"GSM\",\"UCS2\")\r\n\r\nOK\r\n" << "\"IRA\",\"GSM\",\"UCS2\"" << true;
        QTest::newRow("sans GSM") << "\r\n+CSCS: (\"IRA\",\"UCS2\")\r\n\r\nOK\r\n" << "\"IRA\",\"UCS2\"" << false;
        QTest::newRow("vide") << "" << "" << false;
    }

    void protocoles()
    {
        QFETCH(QString, reponse);
        QFETCH(QString, texte);
        QFETCH(bool, gsm);
        bool trouve = !gsm;
        QCOMPARE(GetProtocles(reponse, &trouve), texte);
        QCOMPARE(trouve, gsm);
    }

    void portConfigure_data()
    {
        QTest::addColumn<QString>("agendaIni");
        QTest::addColumn<int>("port");
        QTest::newRow("sans fichier") << QString() << 0;
        QTest::newRow("sans cle") << "[Cabinet Martin]\nAutre=1\n" << 0;
        QTest::newRow("port 3") << "[Cabinet Martin]\nCOM=3\n" << 3;
        QTest::newRow("casse de la section") << "[cabinet martin]\ncom=12\n" << 12;
        QTest::newRow("chiffres en tete") << "[Cabinet Martin]\nCOM=4 (USB)\n" << 4;
        QTest::newRow("texte") << "[Cabinet Martin]\nCOM=COM4\n" << 0;
        QTest::newRow("autre agenda") << "[Agenda]\nCOM=5\n" << 0;
    }

    void portConfigure()
    {
        QFETCH(QString, agendaIni);
        QFETCH(int, port);
        DossierProgrammeTest dossier;
        QVERIFY(dossier.estValide());
        if (!agendaIni.isNull())
            dossier.ecrire(QStringLiteral("Agenda.ini"), agendaIni);
        const QString avant = appState().AgendaName;
        appState().AgendaName = QStringLiteral("Cabinet Martin");
        const int lu = PortModem();
        appState().AgendaName = avant;
        QCOMPARE(lu, port);
    }
};

QTEST_GUILESS_MAIN(TstModemReponses)
#include "tst_modemreponses.moc"
