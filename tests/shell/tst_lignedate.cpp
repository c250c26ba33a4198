#include "shell/regleslignedate.h"

#include <QtTest>

class tst_lignedate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ligneDate_data()
    {
        QTest::addColumn<QList<QDate>>("jours");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("un jour") << QList<QDate>{QDate(2026, 11, 23)} << QStringLiteral("Semaine 48 : lundi 23 novembre 2026");
        QTest::newRow("jour à un chiffre, accent") << QList<QDate>{QDate(2026, 8, 3)} << QStringLiteral("Semaine 32 : lundi 3 août 2026");
        QTest::newRow("semaine de travail")
            << QList<QDate>{QDate(2026, 11, 23), QDate(2026, 11, 24), QDate(2026, 11, 25), QDate(2026, 11, 26), QDate(2026, 11, 27)}
            << QStringLiteral("Semaine 48 : lundi 23 novembre 2026 - vendredi 27 novembre 2026");
        QTest::newRow("semaine sur deux années")
            << QList<QDate>{QDate(2026, 12, 28), QDate(2026, 12, 29), QDate(2026, 12, 30), QDate(2026, 12, 31), QDate(2027, 1, 1)}
            << QStringLiteral("Semaine 53 : lundi 28 décembre 2026 - vendredi 1 janvier 2027");
        QTest::newRow("1er janvier en semaine 53") << QList<QDate>{QDate(2027, 1, 1)} << QStringLiteral("Semaine 53 : vendredi 1 janvier 2027");
        QTest::newRow("semaine commençant un dimanche")
            << QList<QDate>{QDate(2025, 12, 28), QDate(2026, 1, 3)}
            << QStringLiteral("Semaine 52 : dimanche 28 décembre 2025 - samedi 3 janvier 2026");
    }

    void ligneDate()
    {
        QFETCH(QList<QDate>, jours);
        QFETCH(QString, attendu);
        const auto texte = TexteLigneDate(jours);
        QVERIFY(texte.has_value());
        QCOMPARE(*texte, attendu);
    }

    void ligneDateSansJour() { QVERIFY(!TexteLigneDate({}).has_value()); }

    void glisserRecurrent_data()
    {
        QTest::addColumn<bool>("interrupteur");
        QTest::addColumn<int>("operation");
        QTest::addColumn<int>("etat");
        QTest::addColumn<bool>("refuse");
        for (int op = 1; op <= 4; ++op) {
            QTest::addRow("op %d, série", op) << true << op << 2 << true;
            QTest::addRow("op %d, simple", op) << true << op << 0 << false;
        }
        QTest::newRow("maître") << true << 1 << 1 << true;
        QTest::newRow("exception") << true << 3 << 3 << true;
        QTest::newRow("interrupteur éteint") << false << 1 << 2 << false;
        QTest::newRow("suppression clavier") << true << 12 << 2 << false;
        QTest::newRow("création") << true << 14 << 2 << false;
        QTest::newRow("sans rendez-vous") << true << 1 << -1 << false;
    }

    void glisserRecurrent()
    {
        QFETCH(bool, interrupteur);
        QFETCH(int, operation);
        QFETCH(int, etat);
        QFETCH(bool, refuse);
        QCOMPARE(RefuserGlisserRecurrent(interrupteur, operation, etat), refuse);
    }

    void creationWeekEnd_data()
    {
        QTest::addColumn<bool>("interrupteur");
        QTest::addColumn<int>("operation");
        QTest::addColumn<QDateTime>("debut");
        QTest::addColumn<QDateTime>("fin");
        QTest::addColumn<bool>("journee");
        QTest::addColumn<bool>("refuse");
        auto t = [](int j, int h, int m = 0) { return QDateTime(QDate(2026, 11, j), QTime(h, m)); };
        // 23 November 2026 is a Monday, 28 a Saturday, 29 a Sunday.
        QTest::newRow("lundi matin") << true << 14 << t(23, 9) << t(23, 9, 30) << false << false;
        QTest::newRow("vendredi") << true << 14 << t(27, 9) << t(27, 10) << false << false;
        QTest::newRow("samedi") << true << 14 << t(28, 9) << t(28, 10) << false << true;
        QTest::newRow("dimanche") << true << 14 << t(29, 9) << t(29, 10) << false << true;
        QTest::newRow("vendredi à samedi") << true << 14 << t(27, 23) << t(28, 1) << false << true;
        QTest::newRow("vendredi jusqu'à minuit") << true << 14 << t(27, 23, 30) << t(28, 0) << false << true;
        QTest::newRow("journée du vendredi") << true << 14 << t(27, 0) << t(28, 0) << true << false;
        QTest::newRow("journées jeudi-vendredi") << true << 14 << t(26, 0) << t(28, 0) << true << false;
        QTest::newRow("journées vendredi-samedi") << true << 14 << t(27, 0) << t(29, 0) << true << true;
        QTest::newRow("lundi à vendredi") << true << 14 << t(23, 8) << t(27, 8) << false << false;
        QTest::newRow("bornes inversées") << true << 14 << t(28, 1) << t(27, 23) << false << true;
        QTest::newRow("interrupteur éteint") << false << 14 << t(28, 9) << t(28, 10) << false << false;
        QTest::newRow("autre opération") << true << 1 << t(28, 9) << t(28, 10) << false << false;
        QTest::newRow("sans sélection") << true << 14 << QDateTime() << QDateTime() << false << false;
    }

    void creationWeekEnd()
    {
        QFETCH(bool, interrupteur);
        QFETCH(int, operation);
        QFETCH(QDateTime, debut);
        QFETCH(QDateTime, fin);
        QFETCH(bool, journee);
        QFETCH(bool, refuse);
        QCOMPARE(RefuserCreationWeekEnd(interrupteur, operation, debut, fin, journee), refuse);
    }
};

QTEST_GUILESS_MAIN(tst_lignedate)
#include "tst_lignedate.moc"
