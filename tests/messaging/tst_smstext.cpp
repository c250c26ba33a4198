#include "messaging/smstext.h"
#include "shell/base/cp1252.h"

#include <QtTest>

class TstSmsText : public QObject
{
    Q_OBJECT

private slots:
    void pliage_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QByteArray>("octets");

        QTest::newRow("vide") << QString() << QByteArray();
        QTest::newRow("sans accent") << "Bonjour 12:30" << QByteArray("Bonjour 12:30");
        // The letters of the modem's own alphabet, then the accents it lacks.
        QTest::newRow("alphabet du modem") << "çÇàäéùè£$@" << QByteArray("\x89\x89\x7F{\x85\x86\x84\x81\x82\x80");
        QTest::newRow("accents otes") << "üûâëêöôÂÄÊËÉÏÎÖÔÛÜïî" << QByteArray("uuaeeooAAEEEIIOOUUii");
        QTest::newRow("euro") << "10 €" << QByteArray("10 Euro");
        // Letters the table does not name keep their own Windows-1252 byte.
        QTest::newRow("hors table") << "ÀÈÙòñ" << QByteArray("\xC0\xC8\xD9\xF2\xF1");
        QTest::newRow("date") << "Le 3 août à 9H05" << QByteArray("Le 3 aout \x7F 9H05");
        QTest::newRow("ete") << "été" << QByteArray("\x85t\x85");
        QTest::newRow("Ete") << "Été" << QByteArray("Et\x85");
        QTest::newRow("fin de ligne") << "a\rb" << QByteArray("a\rb");
    }

    void pliage()
    {
        QFETCH(QString, texte);
        QFETCH(QByteArray, octets);
        const QString plie = FoldSMSText(texte);
        QCOMPARE(VersCp1252(plie), octets);
        // One character of the folded text is one byte of the message.
        QCOMPARE(plie.size(), octets.size());
    }

    void pliageLongueurJamaisMoindre()
    {
        QString tout;
        for (char16_t c = 0x20; c < 0x180; ++c)
            tout += QChar(c);
        tout += QStringLiteral("€");
        QVERIFY(FoldSMSText(tout).size() >= tout.size());
    }

    void ligneDate_data()
    {
        QTest::addColumn<QDateTime>("debut");
        QTest::addColumn<QString>("ligne");
        QTest::newRow("matin") << QDateTime(QDate(2026, 8, 3), QTime(9, 5)) << "Le lundi 03 août 2026 à 09H05 ";
        QTest::newRow("soir") << QDateTime(QDate(2026, 12, 20), QTime(18, 15)) << "Le dimanche 20 décembre 2026 à 18H15 ";
        QTest::newRow("fevrier") << QDateTime(QDate(2027, 2, 11), QTime(0, 0)) << "Le jeudi 11 février 2027 à 00H00 ";
    }

    void ligneDate()
    {
        QFETCH(QDateTime, debut);
        QFETCH(QString, ligne);
        QCOMPARE(TexteDateRendezVous(debut), ligne);
    }

    void message_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("praticien");
        QTest::addColumn<QString>("ligneDate");
        QTest::addColumn<QString>("last");
        QTest::addColumn<QByteArray>("octets");

        QTest::newRow("court") << "Rappel" << "Dr Hébert"
            << "Le lundi 03 août 2026 à 09H05 " << QString() << QByteArray("Rappel\rDr H\x85" "bert\rLe lundi 03 aout 2026 \x7F 09H05 \r");
        QTest::newRow("adresse dans last") << "A" << "B" << "C" << "cabinet@exemple.fr" << QByteArray("A\rB\rC\rcabinet\x80" "exemple.fr");

        // 159 folded characters go whole; 160 lose the last one.
        const QString base(151, u'x');
        QTest::newRow("159") << base << "ab" << "cd" << "é" << (QByteArray(151, 'x') + "\rab\rcd\r\x85");
        QTest::newRow("160") << base << "ab" << "cd" << "éz" << (QByteArray(151, 'x') + "\rab\rcd\r\x85");
        // The cut is on the folded text: "€" counts four.
        QTest::newRow("euro apres pliage") << base << "ab" << "cd" << "€" << (QByteArray(151, 'x') + "\rab\rcd\rE");
    }

    void message()
    {
        QFETCH(QString, first);
        QFETCH(QString, praticien);
        QFETCH(QString, ligneDate);
        QFETCH(QString, last);
        QFETCH(QByteArray, octets);
        const QString m = BuildSMSText(first, praticien, ligneDate, last);
        QCOMPARE(VersCp1252(m), octets);
        QVERIFY(m.size() <= 159);
    }

    void numero_data()
    {
        QTest::addColumn<QString>("numero");
        QTest::addColumn<QString>("propre");
        QTest::newRow("blancs") << "06 12 34 56 78" << "0612345678";
        QTest::newRow("points et blancs") << "06.12 34.56.78" << "0612345678";
        QTest::newRow("lettres gardees") << "06 AB.12" << "06AB12";
        QTest::newRow("indicatif garde") << "+33 6 12" << "+33612";
        QTest::newRow("tiret garde") << "06-12" << "06-12";
        QTest::newRow("vide") << QString() << QString();
    }

    void numero()
    {
        QFETCH(QString, numero);
        QFETCH(QString, propre);
        QCOMPARE(CleanPhoneNumber(numero), propre);
    }

    void longueur_data()
    {
        QTest::addColumn<int>("tailleFirst");
        QTest::addColumn<QString>("last");
        QTest::addColumn<int>("longueur");
        QTest::addColumn<bool>("alerte");
        // The sample lines "Docteur X" (9) and "Le 1 à 18h:15" (13) count before
        // any folding.
        QTest::newRow("court") << 10 << QString() << 32 << false;
        QTest::newRow("150 juste") << 128 << QString() << 150 << false;
        QTest::newRow("151") << 128 << "é" << 151 << true;
        QTest::newRow("euro compte un") << 128 << "€" << 151 << true;
    }

    void longueur()
    {
        QFETCH(int, tailleFirst);
        QFETCH(QString, last);
        QFETCH(int, longueur);
        QFETCH(bool, alerte);
        const LongueurIndication l = LongueurMessage(QString(tailleFirst, u'a'), QStringLiteral("Docteur X"),
                                                     QStringLiteral("Le 1 à 18h:15"), last);
        QCOMPARE(l.longueur, longueur);
        QCOMPARE(l.alerte, alerte);
        QCOMPARE(l.couleur, alerte ? 192u : 0u);
    }
};

QTEST_GUILESS_MAIN(TstSmsText)
#include "tst_smstext.moc"
