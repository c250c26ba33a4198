#include "patients/cartes.h"
#include "patients/codespostaux.h"
#include "support/dossiertest.h"

#include <QDir>
#include <QFile>
#include <QtTest>

class tst_codespostaux : public QObject
{
    Q_OBJECT

private slots:
    // Over the list delivered with the program (an empty program folder sends
    // FichierSysteme to the source tree's copy).
    void chercher_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<int>("issue");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("nombre");
        QTest::addColumn<QString>("premiere");
        QTest::addColumn<QString>("penultieme"); // town order, not code order
        QTest::addColumn<QString>("ville"); // of the first line, read back

        using I = AideCodePostal::Issue;
        const QString dep = QStringLiteral("Veuillez saisir au moins le département");
        QTest::newRow("Paris, par ville puis code") << "75" << int(I::Liste) << QString() << 22 << "75001   PARIS" << "75016   PARIS 16" << "PARIS";
        QTest::newRow("un code, trois villes") << "13520" << int(I::Liste) << QString() << 3 << "13520   LE PARADOU" << "13520   LES BAUX-DE-PROVENCE" << "LE PARADOU";
        QTest::newRow("Corse 2A") << "2A" << int(I::Departement) << dep << 0 << "" << "" << "";
        QTest::newRow("un chiffre") << "1" << int(I::Departement) << dep << 0 << "" << "" << "";
        QTest::newRow("inconnu") << "00000" << int(I::Inconnu) << "Code postal non connu" << 0 << "" << "" << "";
    }
    void chercher()
    {
        QFETCH(QString, texte);
        QFETCH(QString, premiere);
        QFETCH(QString, ville);
        DossierProgrammeTest dossier;
        const AideCodePostal a = ChercherCodePostal(texte);
        QTEST(int(a.issue), "issue");
        QTEST(a.message, "message");
        QTEST(int(a.lignes.size()), "nombre");
        if (a.lignes.isEmpty())
            return;
        QCOMPARE(a.lignes.first(), premiere);
        QTEST(a.lignes.at(a.lignes.size() - 2), "penultieme");
        const CodeVille cv = LireLigneCodePostal(premiere);
        QCOMPARE(cv.code, premiere.left(5));
        QCOMPARE(cv.ville, ville);
    }

    void lireLigne_data()
    {
        QTest::addColumn<QString>("ligne");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("ville");
        QTest::newRow("code seul") << " 75001  " << "75001" << "";
        QTest::newRow("8e caractère sauté") << "123456789 X " << "1234567" << "9 X";
    }
    void lireLigne()
    {
        QFETCH(QString, ligne);
        const CodeVille cv = LireLigneCodePostal(ligne);
        QTEST(cv.code, "code");
        QTEST(cv.ville, "ville");
    }

    void pageCarte()
    {
        DossierProgrammeTest dossier;
        QVERIFY(QDir(dossier.chemin()).mkdir(QStringLiteral("System")));
        QVERIFY(ecrireOctets(dossier.chemin() + QStringLiteral("System/Maps.htm"),
                             "<p>------ADRESSE------</p><a href=\"?q=------ADRESSE------\">é</a>"));

        const PageCarte incomplete = EcrirePageCarte({QStringLiteral("3 rue Haute"), {}, QStringLiteral("75001"), QStringLiteral("  ")});
        QCOMPARE(int(incomplete.issue), int(PageCarte::Issue::AdresseIncomplete));
        QCOMPARE(incomplete.message, QStringLiteral("Veuillez saisir une adresse complète (Adresse, code postal et ville)"));

        const QString chemin = dossier.chemin() + QStringLiteral("~maps.htm");
        QVERIFY(!QFile::exists(chemin));

        const PageCarte p = EcrirePageCarte({QStringLiteral("3 rue <B> & fils"), {}, QStringLiteral("75001"), QStringLiteral("PARIS")});
        QCOMPARE(int(p.issue), int(PageCarte::Issue::Ecrite));
        QCOMPARE(p.chemin, chemin);
        const QByteArray a = "3 rue &lt;B&gt; &amp; fils  75001 PARIS ";
        QCOMPARE(lireOctets(chemin), "<p>" + a + "</p><a href=\"?q=" + a + "\">é</a>");
        QCOMPARE(QFile::permissions(chemin) & (QFileDevice::ReadOther | QFileDevice::WriteOther), QFileDevice::Permissions());

        SupprimerPageCarte();
        QVERIFY(!QFile::exists(chemin));
    }
};

QTEST_GUILESS_MAIN(tst_codespostaux)
#include "tst_codespostaux.moc"
