#include "messaging/diagnosticmodem.h"
#include "messaging/gsmmodem.h"
#include "messaging/smstext.h"
#include "modemsimulator.h"
#include "shell/base/cp1252.h"
#include "support/admintest.h"

#include <QtTest>

#include <memory>

using namespace std::chrono_literals;
using Reponse = ModemSimule::Reponse;

namespace {

constexpr int PortTest = 2;

} // namespace

// The modem checks of the settings window and of tavonel-admin.
class TstDiagnosticModem : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<BancModem> m_banc;

private slots:
    void init() { m_banc = std::make_unique<BancModem>(PortTest, 300ms); }
    void cleanup() { m_banc.reset(); }

    void smsTest_data()
    {
        QTest::addColumn<Reponse>("reponseCmgf");
        QTest::addColumn<Reponse>("reponseCorps");
        QTest::addColumn<bool>("resultat");
        QTest::addColumn<QStringList>("statuts");
        QTest::addColumn<QStringList>("boites");

        const QString encours = QStringLiteral("Envoi en cours au 06 12 34 56 78...");
        const QString echec = QStringLiteral("Une erreur s'est produite lors de l'envoi du message...");
        QTest::newRow("envoye") << ModemSimule::Ok() << ModemSimule::Texte("+CMGS: 3") << true
                                << QStringList{QStringLiteral("Envoi du Message... "), encours,
                                               QStringLiteral("Envoi effectué.")}
                                << QStringList{};
        QTest::newRow("mode texte refuse")
            << ModemSimule::Erreur() << ModemSimule::Texte("+CMGS: 3") << false
            << QStringList{QStringLiteral("Envoi du Message... "),
                           QStringLiteral("Une erreur s'est produite lors de la configuration du Modem...")}
            << QStringList{};
        QTest::newRow("message refuse") << ModemSimule::Ok() << ModemSimule::Erreur() << false
                                        << QStringList{QStringLiteral("Envoi du Message... "), encours, echec}
                                        << QStringList{echec};
    }

    void smsTest()
    {
        QFETCH(Reponse, reponseCmgf);
        QFETCH(Reponse, reponseCorps);
        QFETCH(bool, resultat);
        QFETCH(QStringList, statuts);
        QFETCH(QStringList, boites);
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.fixerInvitesDansCorps(false);
        m_banc->modem.script(QStringLiteral("AT+CMGF=1"), reponseCmgf);
        m_banc->modem.scriptCorps(reponseCorps);
        GsmModem modem(GsmModem::Copie::Diagnostic);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);

        // Longer than a reminder may be: the test message is not cut.
        const QString first(170, u'a');
        QStringList vus;
        QCOMPARE(EnvoyerSMSTest(modem, first, QStringLiteral("Docteur Hervé"), QStringLiteral("Le lundi à 18h:15"),
                                QStringLiteral("Fin"), QStringLiteral("06 12 34 56 78"),
                                [&](const QString &s) { vus << s; }),
                 resultat);
        QCOMPARE(vus, statuts);
        QCOMPARE(m_banc->repondeur.textes(), boites);
        QCOMPARE(m_banc->modem.commandes().value(0), QStringLiteral("AT+CMGF=1"));
        if (statuts.size() > 2) {
            // The number goes as typed.
            QCOMPARE(m_banc->modem.commandes().value(1), QStringLiteral("AT+CMGS=\"06 12 34 56 78\""));
            QCOMPARE(m_banc->modem.corps().value(0),
                     QByteArray(170, 'a') + "\rDocteur Herv\x85\rLe lundi \x7F 18h:15\rFin");
        } else {
            QCOMPARE(m_banc->modem.commandes().size(), 1);
        }
    }

    void statutConnexion()
    {
        QCOMPARE(StatutConnexion(3, true), QStringLiteral("...Connecté au port COM3 : Le modem possède la fonction GSM-SMS."));
        QCOMPARE(StatutConnexion(12, false),
                 QStringLiteral("...Connecté au port COM12 : Le modem ne possède PAS la fonction GSM-SMS."));
    }

    void commandeAdmin_data()
    {
        QTest::addColumn<QByteArray>("jeux");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("modeTexte");
        QTest::newRow("GSM") << QByteArray("+CSCS: (\"IRA\",\"GSM\",\"UCS2\")") << 0
                             << QStringLiteral("Mode texte GSM : disponible");
        QTest::newRow("sans GSM") << QByteArray("+CSCS: (\"IRA\",\"UCS2\")") << 1
                                  << QStringLiteral("Mode texte GSM : non disponible");
    }

    void commandeAdmin()
    {
        QFETCH(QByteArray, jeux);
        QFETCH(int, code);
        QFETCH(QString, modeTexte);
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.script(QStringLiteral("AT+CSCS=?"), ModemSimule::Texte(jeux));
        const SortieAdmin s = lancerAdmin({QStringLiteral("modem-check"), QString::number(PortTest)});
        QVERIFY2(s.code == code, qPrintable(s.texte + s.erreurs));
        const QStringList lignes = s.texte.split(u'\n');
        QVERIFY2(lignes.contains(QStringLiteral("Fabricant : huawei")), qPrintable(s.texte));
        QVERIFY2(lignes.contains(QStringLiteral("Opérateur : Orange F")), qPrintable(s.texte));
        QVERIFY2(lignes.contains(modeTexte), qPrintable(s.texte));
        QVERIFY2(s.texte.contains(QLatin1String("Vitesse : ")) && s.texte.contains(QLatin1String("115200")),
                 qPrintable(s.texte));
        QVERIFY2(lignes.contains(QStringLiteral("Type : ATI | Manufacturer: huawei | Model: E1750 | Revision: "
                                                "11.126.16.00.00 | OK")),
                 qPrintable(s.texte));
        QCOMPARE(m_banc->modem.commandes().size(), 13);
        if (code != 0)
            QVERIFY2(s.erreurs.contains(QStringLiteral("ne possède PAS la fonction GSM-SMS")), qPrintable(s.erreurs));
    }

    void commandeAdminSansPort()
    {
        qputenv("TAVONEL_MODEM_DEVICE_2", QFile::encodeName(m_banc->dossier.chemin() + QStringLiteral("absent")));
        QElapsedTimer chrono;
        chrono.start();
        const SortieAdmin absent = lancerAdmin({QStringLiteral("modem-check"), QString::number(PortTest)});
        QCOMPARE(absent.code, 1);
        QVERIFY2(absent.erreurs.contains(QStringLiteral("Désolé, connexion impossible.")), qPrintable(absent.erreurs));
        QVERIFY(chrono.elapsed() < 10000);

        const SortieAdmin mauvais = lancerAdmin({QStringLiteral("modem-check"), QStringLiteral("COM")});
        QCOMPARE(mauvais.code, 2);
        QVERIFY(mauvais.erreurs.contains(QStringLiteral("numéro de port attendu")));
    }
};

QTEST_GUILESS_MAIN(TstDiagnosticModem)
#include "tst_diagnosticmodem.moc"
