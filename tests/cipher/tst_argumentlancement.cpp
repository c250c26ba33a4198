#include "cipher/encryptx.h"

#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace {

struct Sortie
{
    int code = -1;
    QString texte;
};

Sortie lancer(const QStringList &arguments)
{
    QProcess p;
    p.start(QStringLiteral(TAVONEL_ADMIN_EXE), arguments);
    Sortie s;
    if (!p.waitForFinished(30000) || p.exitStatus() != QProcess::NormalExit)
        return s;
    s.code = p.exitCode();
    s.texte = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    return s;
}

} // namespace

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
        const Sortie arg = lancer(QStringList{QStringLiteral("launch-arg")} + arguments);
        QCOMPARE(arg.code, 0);
        QVERIFY(QRegularExpression(QStringLiteral("^[0-9A-F]+$")).match(arg.texte).hasMatch());
        QCOMPARE(arg.texte.size(), qsizetype(chiffres));
        QCOMPARE(DecoderArgument(arg.texte), texte);

        const Sortie clair = lancer({QStringLiteral("decipher"), arg.texte});
        QCOMPARE(clair.code, 0);
        QCOMPARE(clair.texte, texte);
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
        const Sortie s = lancer(arguments);
        QCOMPARE(s.code, 2);
        QCOMPARE(s.texte, QString());
    }
};

QTEST_GUILESS_MAIN(tst_argumentlancement)
#include "tst_argumentlancement.moc"
