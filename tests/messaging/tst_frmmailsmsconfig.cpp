// The messaging settings dialog driven through its controls on a real
// Config.mdb and Agenda.ini: the test mail against a local SMTP sink, the
// modem test against a scripted modem on a pseudo-terminal, and the save.

#include "messaging/frmmailsmsconfig.h"
#include "modemsimulator.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/profilini.h"
#include "smtpsink.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTcpServer>
#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

class tst_frmmailsmsconfig : public QObject
{
    Q_OBJECT

    std::unique_ptr<BancModem> m_banc;
    std::unique_ptr<Horloge::Fixee> m_horloge;

    template <typename T>
    static T *ctl(const frmMailSMSConfig &f, const char *nom)
    {
        T *w = f.findChild<T *>(QLatin1String(nom));
        if (!w)
            qFatal("control %s missing", nom);
        return w;
    }
    static void clic(const frmMailSMSConfig &f, const char *nom) { QTest::mouseClick(ctl<QPushButton>(f, nom), Qt::LeftButton); }

private slots:
    void init()
    {
        m_horloge = std::make_unique<Horloge::Fixee>(QDateTime(QDate(2026, 8, 3), QTime(10, 0)));
        m_banc = std::make_unique<BancModem>(3, 300ms);
        const QString d = m_banc->dossier.chemin();
        QVERIFY(CreerBaseConfig(d) && OuvrirConfig(d + QStringLiteral("Config.mdb")));
        appState().AgendaName = QStringLiteral("Cabinet");
        m_banc->dossier.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Cabinet]\nCOM=3\n"));
        EcrireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QStringLiteral("Docteur Hervé Brunet"));
        // No port but the simulated one, whatever this machine has plugged in.
        for (int n = 1; n <= 16; ++n)
            qputenv(QStringLiteral("TAVONEL_MODEM_DEVICE_%1").arg(n).toLatin1().constData(), QByteArray("/absent"));
    }
    void cleanup()
    {
        FermerConfig();
        m_banc.reset();
        m_horloge.reset();
    }

    void mailTest_data()
    {
        QTest::addColumn<QString>("adresse");
        QTest::addColumn<QString>("serveur"); // "sink", "fermé" or the text typed
        QTest::addColumn<int>("codeRcpt");
        QTest::addColumn<QString>("focus");   // after a beep
        QTest::addColumn<QString>("boite");
        const QString ok = QStringLiteral("L'envoi s'est correctement déroulé. Veuillez consulter votre boite mail pour vérification.");
        const QString echec = QStringLiteral("L'envoi ne s'est pas correctement déroulé. Veuillez vérifier vos paramètres.");
        QTest::newRow("adresse sans @") << "patient.example.org" << "sink" << 250 << "Text1(4)" << "";
        QTest::newRow("serveur vide") << "patient@example.org" << "" << 250 << "Combo1" << "";
        QTest::newRow("envoyé") << "patient@example.org" << "sink" << 250 << "" << ok;
        QTest::newRow("destinataire refusé") << "patient@example.org" << "sink" << 550 << "" << echec;
        QTest::newRow("serveur absent") << "patient@example.org" << "fermé" << 250 << "" << echec;
    }
    void mailTest()
    {
        QFETCH(QString, adresse);
        QFETCH(QString, serveur);
        QFETCH(int, codeRcpt);
        QFETCH(QString, focus);
        QFETCH(QString, boite);
        SmtpSink sink;
        sink.setCodeRcpt(codeRcpt);
        DEMARRER_SINK(sink);
        if (serveur == QLatin1String("sink")) {
            serveur = sink.adresse();
        } else if (serveur == QLatin1String("fermé")) {
            QTcpServer libre;
            QVERIFY(libre.listen(QHostAddress::LocalHost));
            serveur = QStringLiteral("127.0.0.1:%1").arg(libre.serverPort());
        }
        frmMailSMSConfig f;
        f.show();
        QVERIFY(QTest::qWaitForWindowActive(&f));
        ctl<QLineEdit>(f, "Text1(0)")->setText(QStringLiteral("secretariat@cabinet.example"));
        ctl<QComboBox>(f, "Combo1")->setEditText(serveur);
        ctl<QLineEdit>(f, "Text1(4)")->setText(adresse);
        clic(f, "Btn_Mail");

        RepondeurScripte &r = m_banc->repondeur;
        QCOMPARE(r.bips(), focus.isEmpty() ? 0 : 1);
        if (!focus.isEmpty())
            QCOMPARE(QApplication::focusWidget()->objectName(), focus);
        QCOMPARE(r.appels().size(), boite.isEmpty() ? r.bips() : 1);
        if (!boite.isEmpty()) {
            QCOMPARE(r.appels().first().titre, QStringLiteral("Test"));
            QVERIFY2(r.appels().first().texte.startsWith(boite), qPrintable(r.appels().first().texte));
        }
        QVERIFY(!QGuiApplication::overrideCursor());
        QCOMPARE(sink.messages().size(), boite.startsWith(QLatin1String("L'envoi s'est")) ? 1 : 0);
        if (!sink.messages().isEmpty()) {
            const SmtpSink::Message m = sink.messages().first();
            QCOMPARE(m.mailFrom, QStringLiteral("secretariat@cabinet.example"));
            QCOMPARE(m.rcptTo, QStringList{adresse});
            const QByteArray texte = QByteArray(m.data).replace("=\r\n", "");
            QVERIFY(texte.contains("Subject: Rappel de votre Rendez-Vous\r\n"));
            const qsizetype praticien = texte.indexOf("Docteur Herv&eacute; Brunet");
            QVERIFY2(praticien > 0 && texte.indexOf("03 ao&ucirc;t 2026 &agrave; 18h:15") > praticien, texte.constData());
        }
    }

    void modemEtEnregistrement()
    {
        DEMARRER_MODEM(*m_banc);
        // Port 1 leads to the same modem: the list offers 1 and 3, the key picks 3.
        qputenv("TAVONEL_MODEM_DEVICE_1", QFile::encodeName(m_banc->modem.peripherique()));
        RepondeurScripte &r = m_banc->repondeur;
        frmMailSMSConfig f;
        f.show();
        auto *ports = ctl<QComboBox>(f, "cmbPorts");
        QCOMPARE(ports->count(), 2);
        QCOMPARE(ports->currentText(), QStringLiteral("3"));
        QCOMPARE(ctl<QLabel>(f, "Label2(3)")->text(), QStringLiteral("Docteur Hervé Brunet"));
        QCOMPARE(ctl<QLabel>(f, "Label2(4)")->text(), QStringLiteral("Le lundi 03 août 2026 à 18h:15"));
        auto *longueur = ctl<QLabel>(f, "lblLongueur");
        const int avant = longueur->text().toInt();
        ctl<QPlainTextEdit>(f, "Text2(1)")->setPlainText(QString(151 - avant, u'x'));
        QCOMPARE(longueur->text().toInt(), 151);
        QVERIFY(longueur->font().bold());

        // A modem that stays silent: the box, the port closed again, the arrow back.
        m_banc->modem.fixerMuet(true);
        clic(f, "cmdConnect");
        QCOMPARE(r.textes(), QStringList{QStringLiteral("Pas de Modem GSM trouvé")});
        QCOMPARE(ctl<QPushButton>(f, "cmdConnect")->text(), QStringLiteral("&Connecter"));
        QCOMPARE(ctl<QLabel>(f, "lblStatus")->text(), QStringLiteral("Déconnecté du Port COM3"));
        QVERIFY(!QGuiApplication::overrideCursor());

        m_banc->modem.fixerMuet(false);
        clic(f, "cmdConnect");
        QCOMPARE(ctl<QLabel>(f, "lblManufacturer")->text(), QStringLiteral("huawei"));
        QCOMPARE(ctl<QLabel>(f, "lblStatus")->text(),
                 QStringLiteral("...Connecté au port COM3 : Le modem possède la fonction GSM-SMS."));
        QVERIFY(ctl<QWidget>(f, "Frame5")->isEnabled());
        if (qEnvironmentVariableIsSet("TAVONEL_CAPTURES")) {
            ctl<QTabWidget>(f, "SSTab1")->setCurrentIndex(1);
            f.grab().save(qEnvironmentVariable("TAVONEL_CAPTURES") + QStringLiteral("/config-rappels.png"));
        }
        ctl<QPlainTextEdit>(f, "Text2(0)")->setPlainText(QStringLiteral("Rappel été"));
        ctl<QPlainTextEdit>(f, "Text2(1)")->setPlainText(QStringLiteral("Fin"));
        ctl<QLineEdit>(f, "Text3")->setText(QStringLiteral("06 12 34 56 78"));
        clic(f, "cmdSend");
        QCOMPARE(ctl<QLabel>(f, "lblStatus")->text(), QStringLiteral("Envoi effectué."));
        QVERIFY(m_banc->modem.commandes().contains(QStringLiteral("AT+CMGS=\"06 12 34 56 78\"")));
        QCOMPARE(m_banc->modem.corps().value(0), QByteArray("Rappel \x85t\x85\rDocteur Herv\x85 Brunet\rLe lundi 03 aout 2026 \x7F 18h:15\rFin"));
        clic(f, "cmdConnect");
        QCOMPARE(ctl<QLabel>(f, "lblStatus")->text(), QStringLiteral("Déconnecté du Port COM3"));
        QVERIFY(ctl<QListWidget>(f, "List1")->count() == 0 && ctl<QLabel>(f, "lblManufacturer")->text().isEmpty());
        QVERIFY(!ctl<QWidget>(f, "Frame5")->isEnabled());

        // Agenda.ini refuses the port: the dialog stays open with what was typed.
        ctl<QLineEdit>(f, "Text1(0)")->setText(QStringLiteral("secretariat@cabinet.example"));
        ctl<QComboBox>(f, "Combo1")->setEditText(QStringLiteral("smtp.free.fr"));
        ctl<QPlainTextEdit>(f, "Text1(3)")->setPlainText(QStringLiteral("Ligne 1\nLigne 2"));
        const QString ini = m_banc->dossier.chemin() + QStringLiteral("Agenda.ini");
        QVERIFY(QFile::remove(ini) && QDir().mkdir(ini));
        clic(f, "Btn_Valider");
        QVERIFY(f.isVisible());
        QVERIFY2(r.textes().last().contains(QLatin1String("Agenda.ini")), qPrintable(r.textes().last()));
        QCOMPARE(ctl<QLineEdit>(f, "Text1(0)")->text(), QStringLiteral("secretariat@cabinet.example"));
        QVERIFY(QDir().rmdir(ini));
        clic(f, "Btn_Valider");
        QCOMPARE(f.result(), int(QDialog::Accepted));
        const QList<QStringList> cles{
            {"Mails", "From", "secretariat@cabinet.example"}, {"Mails", "SMTP", "smtp.free.fr"},
            {"Mails", "Last", "Ligne 1\r\nLigne 2"},          {"Mails", "Subject", "Rappel de votre Rendez-Vous"},
            {"SMS", "First", "Rappel été"},                  {"SMS", "SMSTest", "06 12 34 56 78"}};
        for (const QStringList &c : cles)
            QCOMPARE(LireConfig(c[0], c[1], QStringLiteral("<absent>")), c[2]);
        QCOMPARE(LireIni(QStringLiteral("Cabinet"), QStringLiteral("COM"), QString(), ini), QStringLiteral("3"));
    }
};

QTEST_MAIN(tst_frmmailsmsconfig)
#include "tst_frmmailsmsconfig.moc"
