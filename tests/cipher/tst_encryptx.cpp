#include "cipher/encryptx.h"
#include "shell/base/cp1252.h"
#include "shell/base/nombres.h"
#include "support/fichierstest.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QtEndian>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

namespace {

// The program's key for the launch argument, typed out here on its own.
const QString kCleArgument = QString::fromUtf8("$\xC2\xA7KwrN#BpH274X916");

quint32 motGrand(const QByteArray &o, qsizetype i) { return qFromBigEndian<quint32>(o.constData() + i); }
void poserMotGrand(QByteArray &o, qsizetype i, quint32 m) { qToBigEndian(m, o.data() + i); }
qint32 motPetit(const QByteArray &o, qsizetype i) { return qFromLittleEndian<qint32>(o.constData() + i); }
void poserMotPetit(QByteArray &o, qsizetype i, qint32 valeur) { qToLittleEndian(valeur, o.data() + i); }

// Chaining written out here, on the block functions alone (which the
// published vectors check), to build and read cipher arrays independently of
// EncryptByte and DecryptByte.
QByteArray chainerChiffre(const EnCryptX &bf, QByteArray clair)
{
    quint32 pg = 0, pd = 0;
    for (qsizetype i = 0; i + 8 <= clair.size(); i += 8) {
        quint32 g = motGrand(clair, i) ^ pg;
        quint32 d = motGrand(clair, i + 4) ^ pd;
        bf.encipherBlock(g, d);
        poserMotGrand(clair, i, g);
        poserMotGrand(clair, i + 4, d);
        pg = g;
        pd = d;
    }
    return clair;
}

QByteArray chainerDechiffre(const EnCryptX &bf, QByteArray chiffre)
{
    quint32 pg = 0, pd = 0;
    for (qsizetype i = 0; i + 8 <= chiffre.size(); i += 8) {
        const quint32 cg = motGrand(chiffre, i);
        const quint32 cd = motGrand(chiffre, i + 4);
        quint32 g = cg, d = cd;
        bf.decipherBlock(g, d);
        poserMotGrand(chiffre, i, g ^ pg);
        poserMotGrand(chiffre, i + 4, d ^ pd);
        pg = cg;
        pd = cd;
    }
    return chiffre;
}

QByteArray motif(qsizetype n)
{
    QByteArray o(n, '\0');
    for (qsizetype i = 0; i < n; ++i)
        o[i] = char((i * 37 + 11) & 0xFF);
    return o;
}

} // namespace

class tst_encryptx : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Eric Young's table of Blowfish vectors (binary 8-byte keys).
    void vecteurs_data()
    {
        QTest::addColumn<QByteArray>("cle");
        QTest::addColumn<QByteArray>("clair");
        QTest::addColumn<QByteArray>("chiffre");
        const char *table[][3] = {
            {"0000000000000000", "0000000000000000", "4EF997456198DD78"},
            {"FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF", "51866FD5B85ECB8A"},
            {"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
            {"0123456789ABCDEF", "1111111111111111", "61F9C3802281B096"},
            {"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
            {"7CA110454A1A6E57", "01A1D6D039776742", "59C68245EB05282B"},
            {"0131D9619DC1376E", "5CD54CA83DEF57DA", "B1B8CC0B250F09A0"},
            {"1C587F1C13924FEF", "305532286D6F295A", "55CB3774D13EF201"},
            {"E0FEE0FEF1FEF1FE", "0123456789ABCDEF", "C39E072D9FAC631D"},
            {"0000000000000000", "FFFFFFFFFFFFFFFF", "014933E0CDAFF6E4"},
            {"FFFFFFFFFFFFFFFF", "0000000000000000", "F21E9A77B71C49BC"},
            {"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
        };
        for (const auto &v : table)
            QTest::addRow("%s/%s", v[0], v[1]) << QByteArray(v[0]) << QByteArray(v[1]) << QByteArray(v[2]);
    }

    void vecteurs()
    {
        QFETCH(QByteArray, cle);
        QFETCH(QByteArray, clair);
        QFETCH(QByteArray, chiffre);
        EnCryptX bf;
        bf.setKeyBytes(QByteArray::fromHex(cle));
        const QByteArray c = QByteArray::fromHex(clair);
        quint32 g = motGrand(c, 0), d = motGrand(c, 4);
        bf.encipherBlock(g, d);
        QByteArray obtenu(8, '\0');
        poserMotGrand(obtenu, 0, g);
        poserMotGrand(obtenu, 4, d);
        QCOMPARE(obtenu.toHex().toUpper(), chiffre);
        bf.decipherBlock(g, d);
        QCOMPARE(g, motGrand(c, 0));
        QCOMPARE(d, motGrand(c, 4));

        // The same key given as the text whose Windows-1252 bytes it is.
        const QString texte = DepuisCp1252(QByteArray::fromHex(cle));
        if (VersCp1252(texte) != QByteArray::fromHex(cle))
            return;
        EnCryptX parTexte;
        parTexte.setKey(texte);
        g = motGrand(c, 0), d = motGrand(c, 4);
        parTexte.encipherBlock(g, d);
        poserMotGrand(obtenu, 0, g);
        poserMotGrand(obtenu, 4, d);
        QCOMPARE(obtenu.toHex().toUpper(), chiffre);
    }

    // Key bytes run round cyclically: a key that repeats itself schedules as
    // its period does.
    void cleCyclique_data()
    {
        QTest::addColumn<QByteArray>("courte");
        QTest::addColumn<QByteArray>("longue");
        QTest::newRow("un zero, huit zeros") << QByteArray(1, '\0') << QByteArray(8, '\0');
        QTest::newRow("FF, huit FF") << QByteArray(1, '\xFF') << QByteArray(8, '\xFF');
        QTest::newRow("AB, ABABAB") << QByteArray("AB") << QByteArray("ABABAB");
        QTest::newRow("3 octets, 72 octets") << QByteArray("xyz") << QByteArray("xyz").repeated(24);
    }

    void cleCyclique()
    {
        QFETCH(QByteArray, courte);
        QFETCH(QByteArray, longue);
        EnCryptX a, b;
        a.setKeyBytes(courte);
        b.setKeyBytes(longue);
        quint32 ga = 0x01234567, da = 0x89ABCDEF, gb = ga, db = da;
        a.encipherBlock(ga, da);
        b.encipherBlock(gb, db);
        QCOMPARE(ga, gb);
        QCOMPARE(da, db);
    }

    // An empty key leaves the tables as they are; zero bytes are a real key.
    void cleVideEtCleRedonnee()
    {
        auto bloc = [](auto... cles) {
            EnCryptX bf;
            (bf.setKey(cles), ...);
            quint32 g = 0, d = 0;
            bf.encipherBlock(g, d);
            return std::pair(g, d);
        };
        QCOMPARE(bloc(QString()), bloc());
        QCOMPARE(bloc(QString(8, QChar(0))), std::pair(0x4EF99745u, 0x6198DD78u));
        QVERIFY(bloc() != bloc(QString(8, QChar(0))));
        // The same key again changes nothing; a different second key is
        // scheduled over the first, so it does not start from fresh tables.
        QCOMPARE(bloc(QStringLiteral("Cabinet"), QStringLiteral("Cabinet")), bloc(QStringLiteral("Cabinet")));
        QVERIFY(bloc(QStringLiteral("premiere"), QStringLiteral("seconde")) != bloc(QStringLiteral("seconde")));
    }

    // Total length L + 12 rounded up to 8; L little-endian at offset 8, the
    // data at 12, all under chaining from a zero previous block.
    void disposition_data()
    {
        QTest::addColumn<int>("longueur");
        QTest::addColumn<int>("total");
        for (const auto &[longueur, total] :
             {std::pair{0, 16}, {1, 16}, {4, 16}, {5, 24}, {8, 24}, {12, 24}, {13, 32}, {20, 32}, {21, 40}, {1000, 1016}})
            QTest::addRow("%d", longueur) << longueur << total;
    }

    void disposition()
    {
        QFETCH(int, longueur);
        QFETCH(int, total);
        const QByteArray clair = motif(longueur);
        QByteArray tableau = clair;
        EnCryptX bf;
        bf.EncryptByte(tableau, QStringLiteral("clé du cabinet"));
        QCOMPARE(tableau.size(), qsizetype(total));

        EnCryptX lecteur;
        lecteur.setKey(QStringLiteral("clé du cabinet"));
        const QByteArray dechiffre = chainerDechiffre(lecteur, tableau);
        QCOMPARE(motPetit(dechiffre, 8), qint32(longueur));
        QCOMPARE(dechiffre.mid(12, longueur), clair);

        EnCryptX retour;
        retour.DecryptByte(tableau, QStringLiteral("clé du cabinet"));
        QCOMPARE(tableau, clair);
    }

    void deuxChiffrementsDifferent()
    {
        const QString texte = QStringLiteral("3;Cabinet du Parc");
        EnCryptX bf;
        const QString a = bf.EncryptString(texte, QStringLiteral("k"), true);
        const QString b = bf.EncryptString(texte, QStringLiteral("k"), true);
        const QString c = EnCryptX().EncryptString(texte, QStringLiteral("k"), true);
        QVERIFY(a != b);
        QVERIFY(a != c);
        QCOMPARE(a.size(), b.size());
        for (QString x : {a, b, c}) {
            EnCryptX lecteur;
            QCOMPARE(lecteur.DecryptString(x, QStringLiteral("k"), true), texte);
        }
        // Only the random first block and what it chains into differ: the
        // first block itself differs.
        QVERIFY(a.left(16) != b.left(16));
    }

    void texteVide()
    {
        EnCryptX bf;
        for (const bool hexa : {true, false}) {
            QCOMPARE(bf.EncryptString(QString(), QStringLiteral("k"), hexa), QString());
            QString vide;
            QCOMPARE(bf.DecryptString(vide, QStringLiteral("k"), hexa), QString());
            QCOMPARE(vide, QString());
        }
    }

    void formeHexa()
    {
        const QString texte = QStringLiteral("Rendez-vous à 9 h, salle 2 — Dr Müller, 25 €");
        EnCryptX bf;
        const QString hexa = bf.EncryptString(texte, QStringLiteral("k"), true);
        // 44 bytes in Windows-1252 (the dash and the euro sign are one byte
        // each): 44 + 12 = 56 bytes, already a multiple of 8.
        QCOMPARE(VersCp1252(texte).size(), qsizetype(44));
        QCOMPARE(hexa.size(), qsizetype(112));
        QVERIFY(QRegularExpression(QStringLiteral("^[0-9A-F]+$")).match(hexa).hasMatch());

        const QString octets = bf.EncryptString(texte, QStringLiteral("k"), false);
        QCOMPARE(octets.size(), qsizetype(56));
        for (const QChar c : octets)
            QVERIFY(c.unicode() < 256);
        // The byte string survives the hexadecimal round trip exactly, and
        // DecryptString hands the decoded form back through its argument.
        QString aller = EnCryptX::ToHex(octets);
        EnCryptX lecteur;
        QCOMPARE(lecteur.DecryptString(aller, QStringLiteral("k"), true), texte);
        QCOMPARE(aller, octets);

        // The plain bytes are Windows-1252.
        QByteArray tableau = bf.EncryptString(QString::fromUtf8("\xE2\x82\xAC\xC3\xA9\xC5\x93"), QStringLiteral("k")).toLatin1();
        EnCryptX().DecryptByte(tableau, QStringLiteral("k"));
        QCOMPARE(tableau, QByteArray("\x80\xE9\x9C"));
    }

    // Both ways where the digits are ToHex's own; FromHex alone reads lower
    // case, odd lengths and digits that are no hexadecimal.
    void hexa_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("hexa");
        QTest::addColumn<bool>("allerRetour");
        QTest::newRow("vide") << QString() << QString() << true;
        QTest::newRow("A") << QStringLiteral("A") << QStringLiteral("41") << true;
        QTest::newRow("zero") << QString(QChar(0)) << QStringLiteral("00") << true;
        QTest::newRow("petit, deux chiffres") << QString(QChar(0x0A)) << QStringLiteral("0A") << true;
        QTest::newRow("majuscules") << QString(QChar(0xAB)) + QChar(0xFF) << QStringLiteral("ABFF") << true;
        QTest::newRow("octets 80 a 9F") << QString(QChar(0x80)) + QChar(0x8D) + QChar(0x9F) << QStringLiteral("808D9F") << true;
        QTest::newRow("minuscules") << QString(QChar(0x0A)) + QChar(0xFF) << QStringLiteral("0aff") << false;
        QTest::newRow("impair") << QStringLiteral("A") + QChar(0x04) << QStringLiteral("414") << false;
        QTest::newRow("un chiffre") << QString(QChar(0x0F)) << QStringLiteral("F") << false;
        QTest::newRow("paire non hexa") << QString(QChar(0)) + QStringLiteral("A") << QStringLiteral("ZZ41") << false;
        QTest::newRow("paire a moitie hexa") << QString(QChar(0x04)) << QStringLiteral("4Z") << false;
    }

    void hexa()
    {
        QFETCH(QString, texte);
        QFETCH(QString, hexa);
        QFETCH(bool, allerRetour);
        QCOMPARE(EnCryptX::FromHex(hexa), texte);
        if (allerRetour)
            QCOMPARE(EnCryptX::ToHex(texte), hexa);
    }

    // An extra hexadecimal digit adds a one-digit byte beyond the last whole
    // block: "Bonjour" (7 bytes) makes 24, the extra byte 25, and 25 - 7 = 18
    // is still a valid descriptor.
    void hexaImpair()
    {
        EnCryptX bf;
        const QString hexa = bf.EncryptString(QStringLiteral("Bonjour"), QStringLiteral("k"), true);
        QCOMPARE(hexa.size(), qsizetype(48));
        QString impair = hexa + u'7';
        EnCryptX lecteur;
        QCOMPARE(lecteur.DecryptString(impair, QStringLiteral("k"), true), QStringLiteral("Bonjour"));
        QCOMPARE(impair.size(), qsizetype(25));
        QCOMPARE(impair.at(24), QChar(0x07));
    }

    // T - L must lie in 12 to 19. A refused array comes back deciphered at
    // full length, header included.
    void descripteur_data()
    {
        QTest::addColumn<int>("total");
        QTest::addColumn<int>("longueur");
        QTest::addColumn<bool>("accepte");
        QTest::newRow("32, reste 12") << 32 << 20 << true;
        QTest::newRow("32, reste 19") << 32 << 13 << true;
        QTest::newRow("32, reste 20") << 32 << 12 << false;
        QTest::newRow("32, reste 11") << 32 << 21 << false;
        QTest::newRow("16, reste 16") << 16 << 0 << true;
        QTest::newRow("16, longueur negative") << 16 << -2 << false;
        QTest::newRow("24, longueur enorme") << 24 << 0x7FFFFFFF << false;
        QTest::newRow("40, reste 40") << 40 << 0 << false;
    }

    void descripteur()
    {
        QFETCH(int, total);
        QFETCH(int, longueur);
        QFETCH(bool, accepte);
        QByteArray clair = motif(total);
        poserMotPetit(clair, 8, longueur);
        EnCryptX chiffreur;
        chiffreur.setKey(QStringLiteral("clé"));
        QByteArray tableau = chainerChiffre(chiffreur, clair);

        EnCryptX bf;
        bf.DecryptByte(tableau, QStringLiteral("clé"));
        if (accepte)
            QCOMPARE(tableau, clair.mid(12, longueur));
        else
            QCOMPARE(tableau, clair);
    }

    // Every whole percent, rising, 100 exactly once and last.
    void progression_data()
    {
        QTest::addColumn<int>("longueur");
        QTest::addColumn<QList<int>>("attendu");
        QList<int> tous;
        for (int i = 1; i <= 100; ++i)
            tous << i;
        QTest::newRow("2 blocs") << 4 << QList<int>{50, 100};
        QTest::newRow("4 blocs") << 20 << QList<int>{25, 50, 75, 100};
        QTest::newRow("100 blocs") << 788 << tous;
        // 25002 blocks: the first is under 1 %, so the count starts at 0.
        QTest::newRow("25002 blocs") << 200000 << (QList<int>{0} + tous);
    }

    void progression()
    {
        QFETCH(int, longueur);
        QFETCH(QList<int>, attendu);
        QByteArray tableau = motif(longueur);
        EnCryptX bf;
        QSignalSpy espion(&bf, &EnCryptX::Progress);
        bf.EncryptByte(tableau, QStringLiteral("k"));
        auto vus = [&espion] {
            QList<int> l;
            for (const auto &args : espion)
                l << args.at(0).toInt();
            return l;
        };
        QCOMPARE(vus(), attendu);
        espion.clear();
        bf.DecryptByte(tableau);
        QCOMPARE(vus(), attendu);
        QCOMPARE(tableau, motif(longueur));
    }

    // The work loop lets the event loop run: a timer due at once fires before
    // the work ends.
    void boucleEvenements()
    {
        QByteArray tableau = motif(100000);
        EnCryptX bf;
        bool minuterieVue = false;
        bool vueAvantFin = false;
        QTimer::singleShot(0, this, [&] { minuterieVue = true; });
        connect(&bf, &EnCryptX::Progress, this, [&](int p) {
            if (p == 100)
                vueAvantFin = minuterieVue;
        });
        bf.EncryptByte(tableau, QStringLiteral("k"));
        QVERIFY(vueAvantFin);
    }

    void fichiers()
    {
        QTemporaryDir dossier;
        QVERIFY(dossier.isValid());
        const QString source = dossier.filePath(QStringLiteral("source.txt"));
        const QString chiffre = dossier.filePath(QStringLiteral("chiffre.bin"));
        const QString clair = dossier.filePath(QStringLiteral("clair.txt"));
        const QString absent = dossier.filePath(QStringLiteral("absent.txt"));
        const QByteArray contenu("Liste des rendez-vous du lundi\r\n");
        QVERIFY(ecrireOctets(source, contenu));

        EnCryptX bf;
        QVERIFY(!bf.EncryptFile(absent, chiffre, true, QStringLiteral("k")));
        QVERIFY(!QFileInfo::exists(chiffre));
        QVERIFY(!bf.DecryptFile(absent, clair, true, QStringLiteral("k")));
        QVERIFY(!bf.EncryptFile(dossier.path(), chiffre, true, QStringLiteral("k"))); // a folder is no file

        QVERIFY(bf.EncryptFile(source, chiffre, false, QStringLiteral("k")));
        QCOMPARE(lireOctets(chiffre).size(), qsizetype(48)); // 32 + 12 rounded up
        QCOMPARE(lireOctets(source), contenu);

        // An existing target without the overwrite flag.
        QVERIFY(ecrireOctets(clair, "garde"));
        QVERIFY(!bf.EncryptFile(source, clair, false, QStringLiteral("k")));
        QVERIFY(!bf.DecryptFile(chiffre, clair, false, QStringLiteral("k")));
        QCOMPARE(lireOctets(clair), QByteArray("garde"));

        // EncryptFile replaces a longer target whole.
        const QByteArray long1(500, 'x');
        QVERIFY(ecrireOctets(clair, long1));
        QVERIFY(bf.EncryptFile(source, clair, true, QStringLiteral("k")));
        QCOMPARE(lireOctets(clair).size(), qsizetype(48));

        // DecryptFile writes over the start of a longer target and leaves its
        // tail.
        QByteArray long2 = QByteArray("0123456789").repeated(5);
        QVERIFY(ecrireOctets(clair, long2));
        EnCryptX lecteur;
        QVERIFY(lecteur.DecryptFile(chiffre, clair, true, QStringLiteral("k")));
        QCOMPARE(lireOctets(clair), contenu + long2.mid(contenu.size()));

        // Into a new file: exactly the plain text.
        QFile::remove(clair);
        QVERIFY(EnCryptX().DecryptFile(chiffre, clair, false, QStringLiteral("k")));
        QCOMPARE(lireOctets(clair), contenu);
    }

    void argumentDeLancement_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<qint64>("numero");
        QTest::newRow("2") << QStringLiteral("2") << qint64(2);
        QTest::newRow("avec mots") << QStringLiteral("7;Cabinet du Parc") << qint64(7);
        QTest::newRow("accents") << QStringLiteral("12;Salle d'écho") << qint64(12);
    }

    void argumentDeLancement()
    {
        QFETCH(QString, texte);
        QFETCH(qint64, numero);
        const QString argument = EncoderArgument(texte);
        QVERIFY(QRegularExpression(QStringLiteral("^[0-9A-F]+$")).match(argument).hasMatch());
        QCOMPARE(DecoderArgument(argument), texte);
        QCOMPARE(LireEntier(DecoderArgument(argument)), numero);
        // The argument is the string cipher under the program's key.
        QString viaCle = argument;
        QCOMPARE(EnCryptX().DecryptString(viaCle, kCleArgument, true), texte);
        QCOMPARE(DecoderArgument(EnCryptX().EncryptString(texte, kCleArgument, true)), texte);
    }

    // Rubbish on the command line is never an error: it yields some text.
    void argumentIllisible_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<int>("taille");
        QTest::newRow("vide") << QString() << 0;
        // Pairs that are not hexadecimal read as 0: two blocks of zeros,
        // whose deciphered length word is no valid descriptor.
        QTest::newRow("non hexa") << QStringLiteral("Z").repeated(32) << 16;
        // 12 bytes: one block and a part block, which stays as read; its
        // length word is then 0, and 12 - 0 is a valid descriptor.
        QTest::newRow("bloc et demi") << QStringLiteral("Z").repeated(24) << 0;
        QTest::newRow("un octet") << QStringLiteral("7") << 1;
        QTest::newRow("deux blocs de zeros") << QStringLiteral("00").repeated(16) << 16;
    }

    void argumentIllisible()
    {
        QFETCH(QString, argument);
        QFETCH(int, taille);
        const QString texte = DecoderArgument(argument);
        QCOMPARE(texte.size(), qsizetype(taille));
    }
};

QTEST_GUILESS_MAIN(tst_encryptx)
#include "tst_encryptx.moc"
