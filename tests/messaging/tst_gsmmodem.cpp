#include "messaging/gsmmodem.h"
#include "messaging/operateurs.h"
#include "messaging/serialline.h"
#include "messaging/smstext.h"
#include "modemsimulator.h"
#include "shell/base/cp1252.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace std::chrono_literals;
using Reponse = ModemSimule::Reponse;

namespace {

// Port number under which the tests reach the simulated modem.
constexpr int PortTest = 3;

// The shortened time unit of most tests; the real one is tested once.
constexpr auto UniteTest = 400ms;

} // namespace

class TstGsmModem : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<BancModem> m_banc;

private slots:
    void init() { m_banc = std::make_unique<BancModem>(PortTest, UniteTest); }
    void cleanup() { m_banc.reset(); }

    void portZeroNeSOuvrePas()
    {
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(0), 0);
        QVERIFY(!modem.estConnecte());
        QVERIFY(modem.msComDisconnect());
    }

    void portAbsent()
    {
        qputenv("TAVONEL_MODEM_DEVICE_7", QFile::encodeName(m_banc->dossier.chemin() + QStringLiteral("pas-de-modem")));
        GsmModem modem(GsmModem::Copie::Envoi);
        QElapsedTimer chrono;
        chrono.start();
        QCOMPARE(modem.msComConnect(7), 0);
        QVERIFY(chrono.elapsed() < 2000);
        // A command on a closed port fails at once rather than waiting.
        QVERIFY(!modem.sendIt(QStringLiteral("AT"), QStringLiteral("OK"), QStringLiteral("ERROR"), 2));
        QVERIFY(chrono.elapsed() < 2000);
    }

    void portTenu()
    {
        DEMARRER_MODEM(*m_banc);
        QSerialPort autre(m_banc->modem.peripherique());
        QVERIFY2(autre.open(QIODevice::ReadWrite), qPrintable(autre.errorString()));
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), 0);
        QVERIFY(!modem.ligne().erreur().isEmpty());
        autre.close();
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
    }

    void parametresDeLaLigne()
    {
        DEMARRER_MODEM(*m_banc);
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QProcess stty;
        stty.start(QStringLiteral("stty"), {QStringLiteral("-F"), m_banc->modem.peripherique(), QStringLiteral("-a")});
        QVERIFY2(stty.waitForFinished(5000), "stty ne répond pas");
        const QString reglages = QString::fromLocal8Bit(stty.readAllStandardOutput());
        QVERIFY2(reglages.contains(QLatin1String("speed 19200 baud")), qPrintable(reglages));
        const QStringList mots = reglages.split(QRegularExpression(QStringLiteral("[\\s;]+")));
        for (const char *attendu : {"cs8", "-parenb", "-cstopb", "-crtscts", "-ixon", "-ixoff"})
            QVERIFY2(mots.contains(QLatin1String(attendu)), attendu);
        QVERIFY(modem.msComDisconnect());
        QVERIFY(!modem.estConnecte());
    }

    void peripheriqueParAgendaIni()
    {
        DEMARRER_MODEM(*m_banc);
        m_banc->dossier.ecrire(QStringLiteral("Agenda.ini"),
                          QStringLiteral("[Ports]\nCOM4=") + m_banc->modem.peripherique() + u'\n');
        QCOMPARE(PeripheriqueModem(4), m_banc->modem.peripherique());
        // The environment wins over Agenda.ini.
        qputenv("TAVONEL_MODEM_DEVICE_4", "/dev/null-modem");
        QCOMPARE(PeripheriqueModem(4), QStringLiteral("/dev/null-modem"));
        qunsetenv("TAVONEL_MODEM_DEVICE_4");
        QCOMPARE(PeripheriqueModem(5), QStringLiteral("/dev/ttyUSB4"));
        QCOMPARE(PeripheriqueModem(0), QString());

        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(4), 4);
        QVERIFY(modem.sendIt(QStringLiteral("AT"), QStringLiteral("OK"), QStringLiteral("ERROR"), 2));
    }

    void rechercheDesPorts()
    {
        DEMARRER_MODEM(*m_banc);
        for (int n = 1; n <= 16; ++n) {
            if (n != PortTest)
                qputenv(QStringLiteral("TAVONEL_MODEM_DEVICE_%1").arg(n).toLatin1().constData(),
                        QFile::encodeName(m_banc->dossier.chemin() + QStringLiteral("absent%1").arg(n)));
        }
        // A plain file is no port.
        m_banc->dossier.ecrire(QStringLiteral("fichier"), QStringLiteral("x"));
        qputenv("TAVONEL_MODEM_DEVICE_9", QFile::encodeName(m_banc->dossier.chemin() + QStringLiteral("fichier")));

        QStringList statuts;
        const QList<int> ports = RechercherPorts(true, [&](const QString &s) { statuts << s; });
        QCOMPARE(ports, QList<int>{PortTest});
        QCOMPARE(statuts, (QStringList{QStringLiteral("Recherche des ports Com..."),
                                       QStringLiteral("Rechercher des Ports Com Disponibles..."),
                                       QStringLiteral("Com 3 trouvé"),
                                       QStringLiteral("1 Port(s) COM trouvé(s)")}));
        statuts.clear();
        qputenv("TAVONEL_MODEM_DEVICE_3", QFile::encodeName(m_banc->dossier.chemin() + QStringLiteral("absent3")));
        QVERIFY(RechercherPorts(false, [&](const QString &s) { statuts << s; }).isEmpty());
        QCOMPARE(statuts, (QStringList{QStringLiteral("Rechercher des Ports Com Disponibles..."),
                                       QStringLiteral("0 Port(s) COM trouvé(s)")}));
    }

    void dialogue_data()
    {
        QTest::addColumn<bool>("echo");
        QTest::addColumn<QString>("commande");
        QTest::addColumn<QList<QByteArray>>("morceaux");
        QTest::addColumn<QString>("attendu");
        QTest::addColumn<bool>("resultat");
        QTest::addColumn<QString>("tampon");
        QTest::addColumn<int>("minMs");
        QTest::addColumn<int>("maxMs");

        const int unite = static_cast<int>(UniteTest.count());
        // An answer ends the wait well before the limit of two units.
        const int avantLimite = 2 * unite - 50;
        QTest::newRow("ok") << false << "AT" << QList<QByteArray>{"\r\nOK\r\n"} << "OK" << true
                            << "\r\nOK\r\n" << 0 << avantLimite;
        // The echo of the command is part of the buffer; the wait goes on past it.
        QTest::newRow("echo de CSCS") << true << "AT+CSCS=?"
                                      << QList<QByteArray>{"\r\n+CSCS: (\"IRA\",\"GSM\")\r\n", "\r\nOK\r\n"} << "OK"
                                      << true << "AT+CSCS=?\r\r\n+CSCS: (\"IRA\",\"GSM\")\r\n\r\nOK\r\n" << 150
                                      << avantLimite;
        QTest::newRow("O puis K") << false << "AT" << QList<QByteArray>{"\r\nO", "K\r\n"} << "OK" << true
                                  << "\r\nOK\r\n" << 150 << avantLimite;
        QTest::newRow("erreur") << true << "AT+CSMP=17,167,0,16" << QList<QByteArray>{"\r\nERROR\r\n"} << "OK"
                                << false << "AT+CSMP=17,167,0,16\r\r\nERROR\r\n" << 0 << avantLimite;
        QTest::newRow("invite de CMGS") << true << "AT+CMGS=\"0612345678\"" << QList<QByteArray>{"\r\n> "} << ">"
                                        << true << "AT+CMGS=\"0612345678\"\r\r\n> " << 0 << avantLimite;
        // A ">" anywhere ends any wait with success.
        QTest::newRow("chevron ailleurs") << false << "ATI" << QList<QByteArray>{"\r\nModel <E>\r\n"} << "OK"
                                          << true << "\r\nModel <E>\r\n" << 0 << avantLimite;
        QTest::newRow("attendu avant erreur") << false << "AT" << QList<QByteArray>{"\r\nERROR OK\r\n"} << "OK"
                                              << true << "\r\nERROR OK\r\n" << 0 << avantLimite;
        // Comparison is exact: a lower-case word is no answer.
        QTest::newRow("casse") << false << "AT" << QList<QByteArray>{"\r\nok\r\n"} << "OK" << false << "\r\nok\r\n"
                               << 2 * unite << 2 * unite + 700;
        QTest::newRow("silence") << false << "AT" << QList<QByteArray>{} << "OK" << false << "" << 2 * unite
                                 << 2 * unite + 700;
    }

    void dialogue()
    {
        QFETCH(bool, echo);
        QFETCH(QString, commande);
        QFETCH(QList<QByteArray>, morceaux);
        QFETCH(QString, attendu);
        QFETCH(bool, resultat);
        QFETCH(QString, tampon);
        QFETCH(int, minMs);
        QFETCH(int, maxMs);

        DEMARRER_MODEM(*m_banc);
        m_banc->modem.fixerEcho(echo);
        m_banc->modem.script(commande, Reponse{morceaux, 200});
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);

        QElapsedTimer chrono;
        chrono.start();
        QCOMPARE(modem.sendIt(commande, attendu, QStringLiteral("ERROR"), 2), resultat);
        const qint64 ecoule = chrono.elapsed();
        QVERIFY2(ecoule >= minMs && ecoule <= maxMs, qPrintable(QString::number(ecoule)));
        QCOMPARE(etatModem().CommBuffer, tampon);
        QCOMPARE(etatModem().LastResponse, tampon);
        QVERIFY(etatModem().CommDone);
        QCOMPARE(m_banc->modem.recu(), VersCp1252(commande) + '\r');
    }

    // The program's wait unit is a ten-thousandth of a day; how a wait
    // counts in units is timed above on a shorter one.
    void uniteReelle() { QCOMPARE(GsmModem::DureeUniteNormale, std::chrono::milliseconds(86400 * 1000 / 10000)); }

    void pointeurApresAttente()
    {
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.script(QStringLiteral("AT+CSCA?"), Reponse{});
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QVERIFY(!GsmModem::pointeurOccupe());
        QVERIFY(!modem.sendIt(QStringLiteral("AT+CSCA?"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        // After a time-out the busy pointer stays until the next normal end.
        QVERIFY(GsmModem::pointeurOccupe());
        QVERIFY(modem.sendIt(QStringLiteral("AT"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        QVERIFY(!GsmModem::pointeurOccupe());
        // An error answer is a normal end too.
        m_banc->modem.script(QStringLiteral("AT+X"), ModemSimule::Erreur());
        QVERIFY(!modem.sendIt(QStringLiteral("AT+X"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        QVERIFY(!GsmModem::pointeurOccupe());
    }

    void initialisation()
    {
        DEMARRER_MODEM(*m_banc);
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QVERIFY(modem.InitMobile());
        QCOMPARE(m_banc->modem.commandes(), (QStringList{QStringLiteral("AT"), QStringLiteral("AT+COPS?"),
                                                    QStringLiteral("AT+CSMP=17,167,0,16"), QStringLiteral("AT+CSCS=?"),
                                                    QStringLiteral("AT+CSCS=\"GSM\"")}));
        QCOMPARE(m_banc->modem.recu(), QByteArray("AT\rAT+COPS?\rAT+CSMP=17,167,0,16\rAT+CSCS=?\rAT+CSCS=\"GSM\"\r"));
        // Text mode is taken for granted by the sending copy.
        QVERIFY(!m_banc->modem.commandes().contains(QStringLiteral("AT+CMGF=1")));
        QVERIFY(m_banc->repondeur.appels().isEmpty());
        QVERIFY(!GsmModem::pointeurOccupe());
    }

    void initialisationEchecs_data()
    {
        QTest::addColumn<QString>("commande");
        QTest::addColumn<Reponse>("reponse");
        QTest::addColumn<int>("envoyees");
        QTest::addColumn<QStringList>("boites");
        const QStringList aucune;
        QTest::newRow("pas de reponse a AT") << "AT" << ModemSimule::Silence() << 1
                                             << QStringList{QStringLiteral("Pas de Mobile GSM trouvé")};
        QTest::newRow("erreur a AT") << "AT" << ModemSimule::Erreur() << 1
                                     << QStringList{QStringLiteral("Pas de Mobile GSM trouvé")};
        QTest::newRow("erreur a COPS") << "AT+COPS?" << ModemSimule::Erreur() << 2 << aucune;
        QTest::newRow("parametres refuses") << "AT+CSMP=17,167,0,16" << ModemSimule::Erreur() << 3 << aucune;
        QTest::newRow("sans jeu GSM") << "AT+CSCS=?" << ModemSimule::Texte("+CSCS: (\"IRA\",\"UCS2\")") << 4 << aucune;
        QTest::newRow("jeu GSM refuse") << "AT+CSCS=\"GSM\"" << ModemSimule::Erreur() << 5 << aucune;
    }

    void initialisationEchecs()
    {
        QFETCH(QString, commande);
        QFETCH(Reponse, reponse);
        QFETCH(int, envoyees);
        QFETCH(QStringList, boites);
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.script(commande, reponse);
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QVERIFY(!modem.InitMobile());
        // The initialisation stops at the command that failed.
        QCOMPARE(m_banc->modem.commandes().size(), envoyees);
        QCOMPARE(m_banc->modem.commandes().constLast(), commande);
        QCOMPARE(m_banc->repondeur.textes(), boites);
    }

    void initialisationOperateurTardif()
    {
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.script(QStringLiteral("AT+COPS?"),
                        QList<Reponse>{ModemSimule::Texte("+COPS: 0,0,\"\""), ModemSimule::Texte("+COPS: 0,0,\"\""),
                                       ModemSimule::Texte("+COPS: 0,2,\"20810\",2")});
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QElapsedTimer chrono;
        chrono.start();
        QVERIFY(modem.InitMobile());
        QCOMPARE(m_banc->modem.nombre(QStringLiteral("AT+COPS?")), 3);
        // A second between unanswered rounds.
        QVERIFY2(chrono.elapsed() >= 2000, qPrintable(QString::number(chrono.elapsed())));
    }

    void initialisationSansOperateur()
    {
        DEMARRER_MODEM(*m_banc);
        // Registered to no network: the name stays "Inconnu" for eight rounds,
        // then the initialisation goes on.
        m_banc->modem.script(QStringLiteral("AT+COPS?"), ModemSimule::Texte("+COPS: 0,0,\"\""));
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QElapsedTimer chrono;
        chrono.start();
        QVERIFY(modem.InitMobile());
        QVERIFY2(chrono.elapsed() >= 7000, qPrintable(QString::number(chrono.elapsed())));
        QCOMPARE(m_banc->modem.nombre(QStringLiteral("AT+COPS?")), 8);
        QCOMPARE(m_banc->modem.commandes().value(9), QStringLiteral("AT+CSMP=17,167,0,16"));
    }

    void envoiMessageAccentue()
    {
        DEMARRER_MODEM(*m_banc);
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        const QString message = BuildSMSText(
            QStringLiteral("Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le"),
            QStringLiteral("Dr Noël Françoise"), TexteDateRendezVous(QDateTime(QDate(2026, 8, 3), QTime(9, 5))),
            QStringLiteral("Tarif 25 € - contact@cabinet.fr"));
        QVERIFY(modem.SendSMS(CleanPhoneNumber(QStringLiteral("06.12 34.56.78")), message));

        const QByteArray attendu = QByteArray("AT+CMGS=\"0612345678\"\r")
            + "Le secr\x85tariat du Cabinet m\x85" "dical vous rappelle votre rendez-vous avec le\r"
              "Dr No\x85l Fran\x89oise\r" // ë is not named by the folding: it loses its accent
              "Le lundi 03 aout 2026 \x7F 09H05 \r"
              "Tarif 25 Euro - contact\x80" "cabinet.fr"
              "\x1A\r";
        QCOMPARE(m_banc->modem.recu(), QByteArray(attendu).replace("No\x85l", "Noel"));
        QCOMPARE(m_banc->modem.corps().size(), 1);
    }

    void envoiEchecs_data()
    {
        QTest::addColumn<QString>("reponseCmgs");
        QTest::addColumn<QString>("reponseCorps");
        QTest::addColumn<bool>("resultat");
        QTest::addColumn<int>("corps");
        QTest::newRow("accepte") << "invite" << "ok" << true << 1;
        QTest::newRow("numero refuse") << "erreur" << "ok" << false << 0;
        QTest::newRow("message refuse") << "invite" << "erreur" << false << 1;
    }

    void envoiEchecs()
    {
        QFETCH(QString, reponseCmgs);
        QFETCH(QString, reponseCorps);
        QFETCH(bool, resultat);
        QFETCH(int, corps);
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.fixerInvitesDansCorps(false);
        m_banc->modem.fixerEcho(false);
        m_banc->modem.script(QStringLiteral("AT+CMGS=\"0600000000\""),
                        reponseCmgs == QLatin1String("invite") ? Reponse{{"\r\n> "}} : ModemSimule::Erreur());
        m_banc->modem.scriptCorps(reponseCorps == QLatin1String("ok") ? ModemSimule::Texte("+CMGS: 7") : ModemSimule::Erreur());
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        QCOMPARE(modem.SendSMS(QStringLiteral("0600000000"), QStringLiteral("Bonjour")), resultat);
        QCOMPARE(m_banc->modem.corps().size(), corps);
        if (corps == 0)
            QCOMPARE(m_banc->modem.recu(), QByteArray("AT+CMGS=\"0600000000\"\r"));
    }

    void corpsSansReponseSelonLaCopie_data()
    {
        QTest::addColumn<bool>("diagnostic");
        QTest::addColumn<int>("unites");
        QTest::newRow("envoi") << false << 3;
        QTest::newRow("diagnostic") << true << 2;
    }

    void corpsSansReponseSelonLaCopie()
    {
        QFETCH(bool, diagnostic);
        QFETCH(int, unites);
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.fixerInvitesDansCorps(false);
        m_banc->modem.fixerEcho(false);
        m_banc->modem.scriptCorps(Reponse{});
        GsmModem modem(diagnostic ? GsmModem::Copie::Diagnostic : GsmModem::Copie::Envoi);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        // The body is waited for with the copy's own limit.
        QElapsedTimer chrono;
        QObject::connect(&modem, &GsmModem::journal, &modem, [&](const QString &ligne) {
            if (ligne.contains(QChar(26)))
                chrono.start();
        });
        if (!diagnostic) {
            // The sending copy logs nothing; time from the prompt instead.
            chrono.start();
        }
        QVERIFY(!modem.SendSMS(QStringLiteral("0600000000"), QStringLiteral("Bonjour")));
        const qint64 ecoule = chrono.elapsed();
        const qint64 unite = UniteTest.count();
        QVERIFY2(ecoule >= unites * unite && ecoule < (unites + 1) * unite, qPrintable(QString::number(ecoule)));
        QCOMPARE(m_banc->modem.corps().size(), 1);
    }

    void smsSeul_data()
    {
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("commande");
        QTest::addColumn<Reponse>("reponse");
        QTest::addColumn<QString>("statut");
        QTest::newRow("envoye") << PortTest << QString() << Reponse{} << QStringLiteral("Envoi du SMS : OK");
        QTest::newRow("port absent") << 11 << QString() << Reponse{} << QStringLiteral("Port Com 11 inaccessible");
        QTest::newRow("modem muet") << PortTest << QStringLiteral("AT") << ModemSimule::Silence()
                                    << QStringLiteral("Echec d'accès au Mobile GSM");
        QTest::newRow("numero refuse") << PortTest << QStringLiteral("AT+CMGS=\"0611223344\"") << ModemSimule::Erreur()
                                       << QStringLiteral("Echec de l'envoi du SMS");
    }

    void smsSeul()
    {
        QFETCH(int, port);
        QFETCH(QString, commande);
        QFETCH(Reponse, reponse);
        QFETCH(QString, statut);
        DEMARRER_MODEM(*m_banc);
        qputenv("TAVONEL_MODEM_DEVICE_11", QFile::encodeName(m_banc->dossier.chemin() + QStringLiteral("absent")));
        if (!commande.isEmpty())
            m_banc->modem.script(commande, reponse);
        GsmModem modem(GsmModem::Copie::Envoi);
        QCOMPARE(EnvoyerSMSSeul(modem, port, QStringLiteral("0611223344"), QStringLiteral("Rappel")), statut);
        // The port is open for the one message only.
        QVERIFY(!modem.estConnecte());
        if (statut.endsWith(QLatin1String("OK")))
            QCOMPARE(m_banc->modem.corps(), QList<QByteArray>{QByteArray("Rappel")});
    }

    void diagnostic()
    {
        DEMARRER_MODEM(*m_banc);
        GsmModem modem(GsmModem::Copie::Diagnostic);
        QSignalSpy journal(&modem, &GsmModem::journal);
        QSignalSpy sortie(&modem, &GsmModem::sortie);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        InfosModem infos;
        QVERIFY(modem.getMobileInfo(infos));

        QCOMPARE(m_banc->modem.commandes(),
                 (QStringList{QStringLiteral("AT"), QStringLiteral("ATI"), QStringLiteral("AT+CGMI"),
                              QStringLiteral("AT+COPS?"), QStringLiteral("AT+COPN=?"), QStringLiteral("AT+IPR?"),
                              QStringLiteral("AT+CSCA?"), QStringLiteral("AT+CSDH?"), QStringLiteral("AT+CSMP?"),
                              QStringLiteral("AT+CSMP=17,167,0,16"), QStringLiteral("AT+CSMP?"),
                              QStringLiteral("AT+CSCS=?"), QStringLiteral("AT+CSCS=\"GSM\"")}));
        // What was read is checked where tavonel-admin prints it.
        QVERIFY(infos.bauds.startsWith(QLatin1String("AT+IPR?")));
        QVERIFY(infos.protocoles.contains(QLatin1String("\"GSM\"")));
        QVERIFY(etatModem().ModemHasGSM);

        QStringList lignes;
        for (const QList<QVariant> &args : journal)
            lignes << args.at(0).toString();
        QCOMPARE(lignes.first(), QStringLiteral("Envoi de la commande: AT"));
        QCOMPARE(lignes.filter(QStringLiteral("Envoi de la commande: ")).size(), 13);
        QVERIFY(lignes.contains(QStringLiteral("-Réponse :")));
        QVERIFY(lignes.contains(QStringLiteral("--> AT+CGMI\r\r\nhuawei\r\n\r\nOK\r\n")));
        // The raw answer area is emptied before each command.
        int vides = 0;
        for (const QList<QVariant> &args : sortie)
            vides += args.at(0).toString().isEmpty() ? 1 : 0;
        QCOMPARE(vides, 13);
        // The diagnostic copy leaves the sending copy's last answer alone.
        QVERIFY(etatModem().LastResponse.isEmpty());
    }

    void diagnosticSansModem()
    {
        DEMARRER_MODEM(*m_banc);
        m_banc->modem.fixerMuet(true);
        GsmModem modem(GsmModem::Copie::Diagnostic);
        QSignalSpy deconnexion(&modem, &GsmModem::deconnexionDemandee);
        QCOMPARE(modem.msComConnect(PortTest), PortTest);
        InfosModem infos;
        infos.manufacturer = QStringLiteral("ancien");
        QVERIFY(!modem.getMobileInfo(infos));
        QCOMPARE(m_banc->repondeur.textes(), QStringList{QStringLiteral("Pas de Modem GSM trouvé")});
        QCOMPARE(deconnexion.size(), 1);
        QCOMPARE(m_banc->modem.commandes(), QStringList{QStringLiteral("AT")});
        QVERIFY(infos.manufacturer.isEmpty());
        QVERIFY(!GsmModem::pointeurOccupe());
    }
};

QTEST_GUILESS_MAIN(TstGsmModem)
#include "tst_gsmmodem.moc"
