#include "messaging/gsmmodem.h"
#include "messaging/operateurs.h"
#include "shell/appstate.h"
#include "shell/base/cp1252.h"
#include "support/dossiertest.h"
#include "support/fichierstest.h"

#include <QTemporaryDir>
#include <QtTest>

// Reading the modem's answers: operator names, identity, speed, character sets.
class TstModemReponses : public QObject
{
    Q_OBJECT

private slots:
    // One answer read to its text: the operator (+COPS), the maker (+CGMI),
    // the model (ATI), the speed (+IPR).
    void reponses_data()
    {
        QTest::addColumn<QString>("commande");
        QTest::addColumn<QString>("reponse");
        QTest::addColumn<QString>("texte");
        // The delivered list knows the French network codes.
        QTest::newRow("code numerique") << "COPS" << "\r\n+COPS: 0,2,\"20801\",2\r\n\r\nOK\r\n" << "Orange F";
        QTest::newRow("code avec echo") << "COPS" << "AT+COPS?\r\r\n+COPS: 0,2,\"20815\",2\r\n\r\nOK\r\n" << "Free Mobile";
        QTest::newRow("nom alphanumerique") << "COPS" << "\r\n+COPS: 0,0,\"SFR\",2\r\n\r\nOK\r\n" << "SFR";
        QTest::newRow("code inconnu de la liste") << "COPS" << "\r\n+COPS: 0,2,\"99999\"\r\n" << "99999";
        QTest::newRow("vide") << "COPS" << "" << "Inconnu";
        QTest::newRow("guillemets vides") << "COPS" << "\r\n+COPS: 0,0,\"\"\r\n\r\nOK\r\n" << "Inconnu";
        // Without quotes the whole answer is the name, freed of its line ends
        // and of the final OK; "+COPS: 1" alone means no operator.
        QTest::newRow("selection manuelle") << "COPS" << "\r\n+COPS: 1\r\n\r\nOK\r\n" << "Inconnu";
        QTest::newRow("sans guillemets") << "COPS" << "\r\n+COPS: 0\r\n\r\nOK\r\n" << "+COPS: 0";
        QTest::newRow("echo sans guillemets") << "COPS" << "AT+COPS?\r\r\n+COPS: 1\r\n\r\nOK\r\n" << "AT+COPS?\r\r\n+COPS: 1";
        // At most four control characters go from the front.
        QTest::newRow("cinq en tete") << "COPS" << "\r\n\r\n\n+COPS: 1\r\n" << "\n+COPS: 1";
        QTest::newRow("un seul guillemet") << "COPS" << "+COPS: 0,0,\"Bouygues" << "Bouygues";
        QTest::newRow("fabricant, sans echo") << "CGMI" << "\r\nhuawei\r\n\r\nOK\r\n" << "huawei";
        QTest::newRow("fabricant, avec echo") << "CGMI" << "AT+CGMI\r\r\nhuawei\r\n\r\nOK\r\n" << "huawei";
        QTest::newRow("fabricant, fins CR seul") << "CGMI" << "\rWavecom\r\rOK\r" << "Wavecom";
        // Without a carriage return the first line feed cuts, from the front.
        QTest::newRow("fabricant, fins LF") << "CGMI" << "\nWavecom\n\nOK\n" << "";
        QTest::newRow("fabricant, LF apres le texte") << "CGMI" << "Wavecom\nOK" << "Wavecom";
        // Only control characters are trimmed, not blanks.
        QTest::newRow("fabricant, une ligne") << "CGMI" << "Siemens OK" << "Siemens ";
        QTest::newRow("fabricant, vide") << "CGMI" << "" << "";
        // Every line stays, "Manufacturer: " included.
        QTest::newRow("modèle, lignes")
            << "ATI" << "\r\nManufacturer: huawei\r\nModel: E1750\r\n\r\nOK" << "Manufacturer: huawei\r\nModel: E1750";
        QTest::newRow("modèle, OK suivi de fin de ligne") << "ATI" << "ATI\r\r\nModel: E1750\r\n\r\nOK\r\n" << "ATI\r\r\nModel: E1750\r\n\r\nOK";
        QTest::newRow("vitesse, simple") << "IPR" << "+IPR: 115200OK" << "115200 Bauds";
        QTest::newRow("vitesse, lignes") << "IPR" << "\r\n+IPR: 9600\r\n\r\nOK\r\n" << "9600\r\n\r\n\r\n Bauds";
    }

    void reponses()
    {
        QFETCH(QString, commande);
        QFETCH(QString, reponse);
        QFETCH(QString, texte);
        const QMap<QString, QString (*)(const QString &)> lecteurs{
            {"COPS", GetOperatorName}, {"CGMI", getManufacturer}, {"ATI", getDevType}, {"IPR", GetBauds}};
        QCOMPARE(lecteurs.value(commande)(reponse), texte);
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
        QTest::newRow("liste absente") << QString() << "20801" << "20801";
    }

    void listeOperateurs()
    {
        QFETCH(QString, liste);
        QFETCH(QString, entree);
        QFETCH(QString, sortie);
        QTemporaryDir dossier;
        const QString chemin = dossier.filePath(QStringLiteral("Opérateurs.txt"));
        QVERIFY(liste.isNull() || ecrireOctets(chemin, VersCp1252(liste)));
        QCOMPARE(LookupOperator(entree, chemin), sortie);
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
