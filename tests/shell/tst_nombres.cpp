#include "shell/base/cp1252.h"
#include "shell/base/jettexte.h"
#include "shell/base/nombres.h"

#include <QtTest>

class tst_nombres : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lireNombre_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<double>("attendu");
        QTest::newRow("entier") << "42" << 42.0;
        QTest::newRow("vide") << "" << 0.0;
        QTest::newRow("lettres") << "abc" << 0.0;
        QTest::newRow("suivi de lettres") << "12abc" << 12.0;
        QTest::newRow("virgule arrete") << "1,5" << 1.0;
        QTest::newRow("point decimal") << "1.5" << 1.5;
        QTest::newRow("blancs devant") << "  7 jours" << 7.0;
        QTest::newRow("blancs dedans") << "1 2 3" << 123.0;
        QTest::newRow("signe moins") << "-3" << -3.0;
        QTest::newRow("signe plus") << "+8" << 8.0;
        QTest::newRow("second signe arrete") << "-3-4" << -3.0;
        QTest::newRow("second point arrete") << "1.2.3" << 1.2;
        QTest::newRow("exposant") << "1e3" << 1000.0;
        QTest::newRow("exposant D") << "2D2" << 200.0;
        QTest::newRow("exposant sans chiffre") << "5e" << 5.0;
        QTest::newRow("hexadecimal") << "&HFFFFFF" << 16777215.0;
        QTest::newRow("hexadecimal minuscule") << "&hff" << 255.0;
        QTest::newRow("hexadecimal mot signe") << "&HFFFFFFFF" << -1.0;
        QTest::newRow("octal") << "&O17" << 15.0;
        QTest::newRow("hexadecimal vide") << "&H" << 0.0;
        QTest::newRow("tiret seul") << "-" << 0.0;
        QTest::newRow("point seul") << "." << 0.0;
        QTest::newRow("numero d'agenda") << "2;Cabinet" << 2.0;
    }

    void lireNombre()
    {
        QFETCH(QString, texte);
        QFETCH(double, attendu);
        QCOMPARE(LireNombre(texte), attendu);
    }

    void arrondi_data()
    {
        QTest::addColumn<double>("valeur");
        QTest::addColumn<qint64>("attendu");
        QTest::newRow("0.5") << 0.5 << qint64(0);
        QTest::newRow("1.5") << 1.5 << qint64(2);
        QTest::newRow("2.5") << 2.5 << qint64(2);
        QTest::newRow("-2.5") << -2.5 << qint64(-2);
        QTest::newRow("2.6") << 2.6 << qint64(3);
    }

    void arrondi()
    {
        QFETCH(double, valeur);
        QFETCH(qint64, attendu);
        QCOMPARE(ArrondiBancaire(valeur), attendu);
    }

    void texteNombre()
    {
        QCOMPARE(TexteNombre(2), QStringLiteral("2"));
        QCOMPARE(TexteNombre(0), QStringLiteral("0"));
        QCOMPARE(TexteNombre(2.5), QStringLiteral("2.5"));
    }

    void cp1252_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QByteArray>("octets");
        QTest::newRow("ascii") << "Bonjour" << QByteArray("Bonjour");
        QTest::newRow("accents") << QString::fromUtf8("éèàçÉ") << QByteArray("\xE9\xE8\xE0\xE7\xC9");
        QTest::newRow("euro et oe") << QString::fromUtf8("€œ") << QByteArray("\x80\x9C");
        QTest::newRow("paragraphe") << QString::fromUtf8("§") << QByteArray("\xA7");
        QTest::newRow("hors code page") << QString::fromUtf8("a→b") << QByteArray("a?b");
        QTest::newRow("emoji") << QString::fromUtf8("x😀y") << QByteArray("x?y");
    }

    void cp1252()
    {
        QFETCH(QString, texte);
        QFETCH(QByteArray, octets);
        QCOMPARE(VersCp1252(texte), octets);
        if (!octets.contains('?'))
            QCOMPARE(DepuisCp1252(octets), texte);
    }

    void jetLike_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("motif");
        QTest::addColumn<bool>("attendu");
        QTest::newRow("prefixe") << "DUPONT" << "DU*" << true;
        QTest::newRow("prefixe faux") << "MARTIN" << "DU*" << false;
        QTest::newRow("sans casse") << "Dupont" << "dup*" << true;
        QTest::newRow("sans accents") << QString::fromUtf8("Élodie") << "elo*" << true;
        QTest::newRow("accent dans le motif") << "HELENE" << QString::fromUtf8("hél*") << true;
        QTest::newRow("point d'interrogation") << "MARTIN" << "MART?N" << true;
        QTest::newRow("un caractere exactement") << "MARTN" << "MART?N" << false;
        QTest::newRow("pourcent litteral") << "100%" << "100%" << true;
        QTest::newRow("pourcent pas joker") << "100 pour" << "100%" << false;
        QTest::newRow("souligne litteral") << "A_B" << "A_B" << true;
        QTest::newRow("souligne pas joker") << "AXB" << "A_B" << false;
        QTest::newRow("etoile au milieu") << "DE LA FONTAINE" << "DE*FONT*" << true;
        QTest::newRow("etoile seule") << "" << "*" << true;
        QTest::newRow("egalite") << "poste1 - secretariat" << "POSTE1 - SECRETARIAT" << true;
        QTest::newRow("plus long que le motif") << "DUPONTS" << "DUPONT" << false;
        QTest::newRow("chiffre") << "A1" << "A#" << true;
        QTest::newRow("chiffre faux") << "AB" << "A#" << false;
        QTest::newRow("ensemble") << "B" << "[A-C]" << true;
        QTest::newRow("ensemble nie") << "B" << "[!A-C]" << false;
        QTest::newRow("apostrophe") << "D'ARTAGNAN" << "D'A*" << true;
        QTest::newRow("ligature") << QString::fromUtf8("Cœur") << "COEUR" << true;
        QTest::newRow("retour sur etoile") << "ABABAC" << "*ABAC" << true;
    }

    void jetLike()
    {
        QFETCH(QString, texte);
        QFETCH(QString, motif);
        QFETCH(bool, attendu);
        QCOMPARE(JetLike(texte, motif), attendu);
    }
};

QTEST_GUILESS_MAIN(tst_nombres)
#include "tst_nombres.moc"
