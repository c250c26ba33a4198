#include "cipher/encryptx.h"
#include "support/admintest.h"

#include <QRegularExpression>
#include <QtTest>

// tavonel-admin's launcher commands, run as the installer runs them.
class tst_argumentlancement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allerRetour_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("texte");
        QTest::addColumn<int>("chiffres");
        // "2": 1 byte, 16 bytes of cipher; "7;Cabinet du Parc é": 19 bytes, 32.
        QTest::newRow("numero seul") << QStringList{QStringLiteral("2")} << QStringLiteral("2") << 32;
        QTest::newRow("avec mots") << QStringList{QStringLiteral("7"), QStringLiteral("Cabinet"), QStringLiteral("du"),
                                                  QStringLiteral("Parc é")}
                                   << QStringLiteral("7;Cabinet du Parc é") << 64;
    }

    void allerRetour()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, texte);
        QFETCH(int, chiffres);
        const SortieAdmin arg = lancerAdmin(QStringList{QStringLiteral("launch-arg")} + arguments);
        QCOMPARE(arg.code, 0);
        const QString hexa = arg.texte.trimmed();
        QVERIFY(QRegularExpression(QStringLiteral("^[0-9A-F]+$")).match(hexa).hasMatch());
        QCOMPARE(hexa.size(), qsizetype(chiffres));
        QCOMPARE(DecoderArgument(hexa), texte);

        const SortieAdmin clair = lancerAdmin({QStringLiteral("decipher"), hexa});
        QCOMPARE(clair.code, 0);
        QCOMPARE(clair.texte.trimmed(), texte);
    }

    void refus_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("numero non entier") << QStringList{QStringLiteral("launch-arg"), QStringLiteral("abc")};
        QTest::newRow("numero negatif") << QStringList{QStringLiteral("launch-arg"), QStringLiteral("-1")};
        QTest::newRow("decipher sans argument") << QStringList{QStringLiteral("decipher")};
    }

    void refus()
    {
        QFETCH(QStringList, arguments);
        const SortieAdmin s = lancerAdmin(arguments);
        QCOMPARE(s.code, 2);
        QCOMPARE(s.texte.trimmed(), QString());
    }
};

QTEST_GUILESS_MAIN(tst_argumentlancement)
#include "tst_argumentlancement.moc"
