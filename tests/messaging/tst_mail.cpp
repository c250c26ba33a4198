#include "messaging/mailreminder.h"
#include "messaging/smtpmail.h"
#include "messaging/smtpsink.h"
#include "shell/base/horloge.h"
#include "support/admintest.h"
#include "support/dossiertest.h"
#include "support/fichierstest.h"

#include <QElapsedTimer>
#include <QLocale>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

const QString kPremier = QStringLiteral("Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le");
const QString kPraticien = QStringLiteral("Docteur Hélène Brunet");
const QString kDate = QStringLiteral("Le lundi 03 août 2026 à 14H30 ");
const QString kDernier = QStringLiteral("Merci de prévenir le secrétariat.\r\nCabinet Médical");

// Undoes quoted-printable: soft breaks and =XX escapes.
QByteArray decoderQuotedPrintable(const QByteArray &texte)
{
    QByteArray sortie;
    for (qsizetype i = 0; i < texte.size(); ++i) {
        const char c = texte.at(i);
        if (c != '=') {
            sortie += c;
            continue;
        }
        if (texte.mid(i + 1, 2) == "\r\n") {
            i += 2;
            continue;
        }
        sortie += static_cast<char>(texte.mid(i + 1, 2).toInt(nullptr, 16));
        i += 2;
    }
    return sortie;
}

// Joins the UTF-8 of the RFC 2047 words of a header value (B encoding only,
// which is what we write), or gives the value as it is.
QString decoderEnTete(const QByteArray &valeur)
{
    static const QRegularExpression mot(QStringLiteral("=\\?UTF-8\\?B\\?([A-Za-z0-9+/=]*)\\?="));
    const QString texte = QString::fromLatin1(valeur);
    if (!texte.contains(QLatin1String("=?")))
        return texte;
    QByteArray octets;
    auto it = mot.globalMatch(texte);
    while (it.hasNext())
        octets += QByteArray::fromBase64(it.next().captured(1).toLatin1());
    return QString::fromUtf8(octets);
}

struct MailRecu
{
    QMap<QByteArray, QByteArray> entetes; // name in lower case -> value, unfolded
    QByteArray corps;
};

MailRecu analyser(const QByteArray &data)
{
    MailRecu m;
    const qsizetype separation = data.indexOf("\r\n\r\n");
    const QByteArray tete = data.left(separation);
    m.corps = data.mid(separation + 4);
    QByteArray nom;
    for (const QByteArray &ligne : tete.split('\n')) {
        const QByteArray l = ligne.endsWith('\r') ? ligne.chopped(1) : ligne;
        if ((l.startsWith(' ') || l.startsWith('\t')) && !nom.isEmpty()) {
            m.entetes[nom] += l;
            continue;
        }
        const qsizetype deuxPoints = l.indexOf(':');
        nom = l.left(deuxPoints).trimmed().toLower();
        m.entetes[nom] = l.mid(deuxPoints + 1).trimmed();
    }
    return m;
}

// A port of 127.0.0.1 on which nothing listens.
quint16 portFerme()
{
    QTcpServer serveur;
    if (!serveur.listen(QHostAddress::LocalHost, 0))
        return 0;
    const quint16 port = serveur.serverPort();
    serveur.close();
    return port;
}

// A reminder from the practice to one patient, through the given server.
QString envoyer(const QString &serveur, const QString &destinataire = QStringLiteral("patient@example.org"),
                const OptionsSmtp &options = {})
{
    return SendMailReminder(QStringLiteral("secretariat@cabinet.example.org"), destinataire, serveur, QStringLiteral("Rappel"),
                            kPremier, kDernier, kDate, kPraticien, options);
}

} // namespace

class TestMail : public QObject
{
    Q_OBJECT

private slots:
    void lireServeur_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("hote");
        QTest::addColumn<int>("port");
        QTest::newRow("name") << "smtp.orange.fr" << "smtp.orange.fr" << 25;
        QTest::newRow("blanks") << "  smtp.free.fr " << "smtp.free.fr" << 25;
        QTest::newRow("port") << "127.0.0.1:2525" << "127.0.0.1" << 2525;
        QTest::newRow("v6 with port") << "[::1]:2526" << "::1" << 2526;
        QTest::newRow("scheme") << "smtp://mail.example.org:587/" << "mail.example.org" << 587;
        QTest::newRow("bad port") << "mail:abc" << "mail" << 25;
        QTest::newRow("port out of range") << "mail:70000" << "mail" << 25;
        QTest::newRow("empty") << "" << "" << 25;
    }

    void lireServeur()
    {
        QFETCH(QString, texte);
        QFETCH(QString, hote);
        QFETCH(int, port);
        const ServeurSmtp s = LireServeurSmtp(texte);
        QCOMPARE(s.hote, hote);
        QCOMPARE(s.port, port);
    }

    void enTete_data()
    {
        QTest::addColumn<QString>("valeur");
        QTest::addColumn<bool>("encode");
        QTest::newRow("ascii") << "Rappel de votre Rendez-Vous" << false;
        QTest::newRow("accents") << "Rappel de Rendez-Vous médical" << true;
        QTest::newRow("long accents") << QString(QStringLiteral("Très long sujet àéèùç ").repeated(8)) << true;
        QTest::newRow("outside the BMP") << "Rendez-vous \U0001F4C5 demain" << true;
        QTest::newRow("line break removed") << "Sujet\r\nBcc: pirate@example.org" << false;
    }

    void enTete()
    {
        QFETCH(QString, valeur);
        QFETCH(bool, encode);
        const QByteArray entete = EncoderEnTete(valeur);
        QString attendu = valeur;
        attendu.replace(QLatin1String("\r\n"), QLatin1String(" "));
        QCOMPARE(entete.startsWith("=?UTF-8?B?"), encode);
        // Never a bare line break: continuation lines start with a blank.
        const QList<QByteArray> lignes = entete.split('\n');
        for (qsizetype i = 0; i < lignes.size(); ++i) {
            QByteArray ligne = lignes.at(i);
            if (i + 1 < lignes.size()) {
                QVERIFY2(ligne.endsWith('\r'), ligne.constData());
                ligne.chop(1);
            }
            if (i > 0)
                QVERIFY2(ligne.startsWith(' '), ligne.constData());
            if (encode)
                QVERIFY2(ligne.trimmed().size() <= 75, ligne.constData());
            for (const char c : ligne)
                QVERIFY(static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7f);
        }
        QCOMPARE(decoderEnTete(entete), attendu);
    }

    void quotedPrintable_data()
    {
        QTest::addColumn<QByteArray>("octets");
        QTest::addColumn<QByteArray>("attendu");
        QTest::newRow("plain") << QByteArray("<b>x</b>") << QByteArray("<b>x</b>");
        QTest::newRow("equals sign") << QByteArray("a=b") << QByteArray("a=3Db");
        QTest::newRow("utf-8") << QStringLiteral("é").toUtf8() << QByteArray("=C3=A9");
        QTest::newRow("blank at line end") << QByteArray("a \r\nb ") << QByteArray("a=20\r\nb=20");
        QTest::newRow("dot at line start") << QByteArray(".\r\n.a") << QByteArray("=2E\r\n=2Ea");
        QTest::newRow("long line") << QByteArray(100, 'x') << QByteArray(75, 'x') + "=\r\n" + QByteArray(25, 'x');
        QTest::newRow("escape not cut by a soft break") << QByteArray(74, 'x') + "=" << QByteArray(74, 'x') + "=\r\n=3D";
    }

    void quotedPrintable()
    {
        QFETCH(QByteArray, octets);
        QFETCH(QByteArray, attendu);
        const QByteArray code = EncoderQuotedPrintable(octets);
        QCOMPARE(code, attendu);
        QCOMPARE(decoderQuotedPrintable(code), octets);
        for (const QByteArray &ligne : code.split('\n'))
            QVERIFY(ligne.size() <= 77);
    }

    void composition()
    {
        MessageMail m;
        m.expediteur = QStringLiteral(" secretariat@cabinet.example.org ");
        m.nomExpediteur = QStringLiteral("Rappel de Rendez-Vous");
        m.destinataire = QStringLiteral("patient@example.org\r\nBcc: pirate@example.org");
        m.sujet = QStringLiteral("Rappel de votre Rendez-Vous");
        m.html = QStringLiteral("<b>Le secr&eacute;tariat</b> ") + QString(200, u'x');
        const QDateTime date(QDate(2026, 8, 3), QTime(9, 5, 7));
        // The date header is in English whatever the program's language.
        QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
        const QByteArray texte = ComposerMessageMail(m, date, QStringLiteral("abc@cabinet.example.org"));
        QLocale::setDefault(QLocale::c());

        const MailRecu recu = analyser(texte);
        QCOMPARE(recu.entetes.value("from"), QByteArray("\"Rappel de Rendez-Vous\" <secretariat@cabinet.example.org>"));
        // A line break in an address cannot add a header.
        QCOMPARE(recu.entetes.value("to"), QByteArray("<patient@example.orgBcc: pirate@example.org>"));
        QVERIFY(!recu.entetes.contains("bcc"));
        QCOMPARE(recu.entetes.value("subject"), QByteArray("Rappel de votre Rendez-Vous"));
        QCOMPARE(recu.entetes.value("message-id"), QByteArray("<abc@cabinet.example.org>"));
        QCOMPARE(recu.entetes.value("mime-version"), QByteArray("1.0"));
        QCOMPARE(recu.entetes.value("content-type"), QByteArray("text/html; charset=UTF-8"));
        QCOMPARE(recu.entetes.value("content-transfer-encoding"), QByteArray("quoted-printable"));
        QCOMPARE(recu.entetes.value("date"), QByteArray("03 Aug 2026 09:05:07 +0200"));
        QCOMPARE(QDateTime::fromString(QString::fromLatin1(recu.entetes.value("date")), Qt::RFC2822Date), date);
        QCOMPARE(QString::fromUtf8(decoderQuotedPrintable(recu.corps)).trimmed(), m.html);

        // A display name beyond ASCII is encoded, not quoted.
        m.nomExpediteur = QStringLiteral("Cabinet Médical");
        const MailRecu accentue = analyser(ComposerMessageMail(m, date, QStringLiteral("id@x")));
        const QByteArray from = accentue.entetes.value("from");
        QVERIFY2(from.startsWith("=?UTF-8?B?") && from.endsWith("?= <secretariat@cabinet.example.org>"), from.constData());
        QCOMPARE(decoderEnTete(from.left(from.indexOf(" <"))), m.nomExpediteur);
    }

    // The whole message: one centred table in Arial; 11 points is size 3,
    // 14 points size 4, 9 points size 2; the last line bold italic.
    void miseEnPage_data()
    {
        QTest::addColumn<QString>("premier");
        QTest::addColumn<QString>("dernier");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("whole message")
            << "Premier" << "Dernier"
            << "<table width=100%><tr><td align=\"center\">"
               "<font face=\"Arial\" size=3>Premier</font><br>"
               "<font face=\"Arial\" size=4>Dr X<br>Le jour</font><br>"
               "<font face=\"Arial\" size=3>Dernier</font><br><br>"
               "<b><i><font face=\"Arial\" size=2>Ne pas r&eacute;pondre : Aucune demande ne pourra "
               "&ecirc;tre trait&eacute;e en r&eacute;ponse &agrave; cet e-mail</font></i></b>"
               "</td></tr></table>";

        QTest::newRow("empty last text: two empty lines")
            << "Premier" << "" << "Le jour</font><br><br><br><b><i><font face=\"Arial\" size=2>Ne pas r&eacute;pondre";
        QTest::newRow("last text of several lines")
            << "Premier" << "Ligne 1\r\nLigne 2\nLigne 3"
            << "<font face=\"Arial\" size=3>Ligne 1<br>Ligne 2<br>Ligne 3</font><br><br><b><i>";
        QTest::newRow("last text starting with a line end")
            << "Premier" << "\r\nMerci" << "Le jour</font><br><br><font face=\"Arial\" size=3>Merci</font>";
        QTest::newRow("accents as entities")
            << "Le secrétariat, Noël, à bientôt" << ""
            << "<font face=\"Arial\" size=3>Le secr&eacute;tariat, No&euml;l, &agrave; bient&ocirc;t</font>";
        QTest::newRow("a diaeresis becomes a superscript TM") << "Bäcker" << "" << "B<sup>TM</sup>cker";
        QTest::newRow("braces and backslash kept") << "a{b}c\\d" << "" << ">a{b}c\\d</font>";
    }

    void miseEnPage()
    {
        QFETCH(QString, premier);
        QFETCH(QString, dernier);
        QFETCH(QString, attendu);
        const QString html = ComposerHtmlRappel(premier, QStringLiteral("Dr X"), QStringLiteral("Le jour"), dernier);
        if (QTest::currentDataTag() == QLatin1String("whole message"))
            QCOMPARE(html, attendu);
        else
            QVERIFY2(html.contains(attendu), qPrintable(html));
    }

    void envoiRappel()
    {
        DossierProgrammeTest dossier;
        QVERIFY(dossier.estValide());
        SmtpSink sink;
        DEMARRER_SINK(sink);
        const QDateTime maintenant(QDate(2026, 7, 31), QTime(10, 15, 0));
        Horloge::Fixee horloge(maintenant);

        const QString resultat = envoyer(sink.adresse());
        QVERIFY2(resultat.isEmpty(), qPrintable(resultat));

        const QList<SmtpSink::Message> messages = sink.messages();
        QCOMPARE(messages.size(), 1);
        const SmtpSink::Message &m = messages.first();
        QCOMPARE(m.mailFrom, QStringLiteral("secretariat@cabinet.example.org"));
        QCOMPARE(m.rcptTo, QStringList{QStringLiteral("patient@example.org")});

        // The headers themselves are checked with the composition.
        const MailRecu recu = analyser(m.data);
        QCOMPARE(recu.entetes.value("to"), QByteArray("<patient@example.org>"));
        QCOMPARE(QDateTime::fromString(QString::fromLatin1(recu.entetes.value("date")), Qt::RFC2822Date), maintenant);
        QVERIFY2(QRegularExpression(QStringLiteral("^<[^@<> ]+@cabinet\\.example\\.org>$"))
                     .match(QString::fromLatin1(recu.entetes.value("message-id")))
                     .hasMatch(),
                 recu.entetes.value("message-id").constData());

        const QString corps = QString::fromUtf8(decoderQuotedPrintable(recu.corps)).trimmed();
        QCOMPARE(corps, ComposerHtmlRappel(kPremier, kPraticien, kDate, kDernier));
        QVERIFY(corps.contains(QLatin1String("Le secr&eacute;tariat du Cabinet m&eacute;dical")));
        QVERIFY(corps.contains(QLatin1String("Docteur H&eacute;l&egrave;ne Brunet")));
        QVERIFY(corps.contains(QLatin1String("ao&ucirc;t 2026 &agrave; 14H30 ")));

        // The working file stays in the program folder.
        QCOMPARE(QString::fromUtf8(lireOctets(dossier.chemin() + QStringLiteral("Html.htm"))), corps);
    }

    void refus_data()
    {
        QTest::addColumn<int>("codeMailFrom");
        QTest::addColumn<int>("codeRcpt");
        QTest::addColumn<int>("codeFin");
        QTest::addColumn<bool>("muet");
        QTest::addColumn<bool>("ferme");
        QTest::addColumn<QString>("motif");

        QTest::newRow("recipient refused") << 250 << 550 << 250 << false << false << "a refusé le message (code 550)";
        QTest::newRow("sender refused") << 553 << 250 << 250 << false << false << "a refusé le message (code 553)";
        QTest::newRow("message refused") << 250 << 250 << 554 << false << false << "a refusé le message (code 554)";
        QTest::newRow("server that never answers") << 250 << 250 << 250 << true << false << "ne répond pas dans le délai";
        QTest::newRow("nothing listening") << 250 << 250 << 250 << false << true << "Connexion impossible";
    }

    void refus()
    {
        QFETCH(int, codeMailFrom);
        QFETCH(int, codeRcpt);
        QFETCH(int, codeFin);
        QFETCH(bool, muet);
        QFETCH(bool, ferme);
        QFETCH(QString, motif);

        DossierProgrammeTest dossier;
        SmtpSink sink;
        sink.setCodeMailFrom(codeMailFrom);
        sink.setCodeRcpt(codeRcpt);
        sink.setCodeFinDonnees(codeFin);
        sink.setMuet(muet);
        DEMARRER_SINK(sink);
        QString serveur = sink.adresse();
        if (ferme) {
            const quint16 port = portFerme();
            QVERIFY2(port != 0, "no free port on 127.0.0.1");
            serveur = QStringLiteral("127.0.0.1:%1").arg(port);
        }

        OptionsSmtp options;
        options.delaiConnexionMs = 2000;
        options.delaiTotalMs = 3000;
        QElapsedTimer chrono;
        chrono.start();
        const QString resultat = envoyer(serveur, QStringLiteral("patient@example.org"), options);
        QVERIFY2(chrono.elapsed() < 10000, qPrintable(QString::number(chrono.elapsed())));
        QVERIFY2(resultat.contains(motif), qPrintable(resultat));
        QVERIFY(sink.messages().isEmpty());
    }

    void sansFichierDeTravail()
    {
        // A program folder that cannot be written: nothing is sent, and no error.
        QTemporaryDir racine;
        QVERIFY(racine.isValid());
        VariableTemporaire programme("TAVONEL_PROGRAM_DIR", (racine.path() + QStringLiteral("/absent/dossier")).toUtf8());
        SmtpSink sink;
        DEMARRER_SINK(sink);
        const QString resultat = envoyer(sink.adresse());
        QCOMPARE(resultat, QString());
        QCOMPARE(sink.connexions(), 0);
    }

    void adressesManquantes()
    {
        DossierProgrammeTest dossier;
        SmtpSink sink;
        DEMARRER_SINK(sink);
        QCOMPARE(envoyer(sink.adresse(), QStringLiteral("  ")), QStringLiteral("L'adresse du destinataire est vide."));
        QCOMPARE(envoyer(QString()), QStringLiteral("Aucun serveur SMTP n'est indiqué."));
        QCOMPARE(sink.connexions(), 0);
    }

    void boucleEvenementsVivante()
    {
        // A slow server: timers of the interface thread keep running meanwhile.
        DossierProgrammeTest dossier;
        SmtpSink sink;
        sink.setDelaiReponseMs(150);
        DEMARRER_SINK(sink);
        int tics = 0;
        QTimer minuterie;
        minuterie.setInterval(20);
        connect(&minuterie, &QTimer::timeout, this, [&tics] { ++tics; });
        minuterie.start();
        QElapsedTimer chrono;
        chrono.start();
        const QString resultat = envoyer(sink.adresse());
        const qint64 duree = chrono.elapsed();
        minuterie.stop();
        QVERIFY2(resultat.isEmpty(), qPrintable(resultat));
        QCOMPARE(sink.messages().size(), 1);
        // Seven answers at 150 ms: about a second, in which a 20 ms timer fires
        // many times unless the thread was blocked.
        QVERIFY2(duree >= 900, qPrintable(QString::number(duree)));
        QVERIFY2(tics >= 10, qPrintable(QStringLiteral("%1 ticks in %2 ms").arg(tics).arg(duree)));
    }

    void commandeTestMail()
    {
        DossierProgrammeTest dossier;
        SmtpSink sink;
        DEMARRER_SINK(sink);

        const auto lancer = [](const QString &serveur, const QString &destinataire) {
            return lancerAdmin({QStringLiteral("test-mail"), QStringLiteral("--smtp"), serveur, QStringLiteral("--from"),
                                QStringLiteral("secretariat@cabinet.example.org"), QStringLiteral("--to"), destinataire});
        };
        SortieAdmin s = lancer(sink.adresse(), QStringLiteral("patient@example.org"));
        QCOMPARE(s.code, 0);
        QCOMPARE(s.texte.trimmed(), QStringLiteral("L'envoi s'est correctement déroulé. Veuillez consulter votre boite "
                                                  "mail pour vérification."));
        QCOMPARE(sink.messages().size(), 1);
        const SmtpSink::Message m = sink.messages().first();
        QCOMPARE(m.rcptTo, QStringList{QStringLiteral("patient@example.org")});
        const QString corps = QString::fromUtf8(decoderQuotedPrintable(analyser(m.data).corps));
        QVERIFY2(corps.contains(QLatin1String("Docteur Xxxxxx YYYYYYYY")), qPrintable(corps));
        QVERIFY2(corps.contains(QLatin1String("&agrave; 18h:15")), qPrintable(corps));

        const quint16 port = portFerme();
        QVERIFY2(port != 0, "no free port on 127.0.0.1");
        s = lancer(QStringLiteral("127.0.0.1:%1").arg(port), QStringLiteral("patient@example.org"));
        QCOMPARE(s.code, 1);
        QVERIFY2(s.erreurs.startsWith(QStringLiteral("L'envoi ne s'est pas correctement déroulé. Veuillez vérifier vos paramètres."))
                     && s.erreurs.contains(QLatin1String("Connexion impossible")),
                 qPrintable(s.erreurs));

        // A test address without "@" is refused before any sending.
        QCOMPARE(lancer(sink.adresse(), QStringLiteral("patient")).code, 2);
        QCOMPARE(sink.connexions(), 1);
    }
};

QTEST_GUILESS_MAIN(TestMail)
#include "tst_mail.moc"
