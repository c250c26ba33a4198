#include "basestest.h"

#include "support/admintest.h"
#include "support/dossiertest.h"

#include <QtTest>

// tavonel-admin search-patients, run as support runs it, over the program
// folder's own base and the linked bases of its Agenda.ini.
class tst_rechercheadmin : public QObject
{
    Q_OBJECT

    static QStringList lignes(const SortieAdmin &s) { return s.texte.split(u'\n', Qt::SkipEmptyParts); }

private slots:
    void recherche()
    {
        DossierProgrammeTest prog;
        QVERIFY2(prog.estValide(), "no temporary folder");
        QString err = CreerBaseTest(prog.chemin(), {{QStringLiteral("Lefèvre"), QStringLiteral("Zoé"), QStringLiteral("1985-02-01"), 4}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        err = CreerBaseTest(prog.chemin() + QStringLiteral("cab1/"),
                            {{QStringLiteral("LEFEVRE"), QStringLiteral("Zoé"), QStringLiteral("1985-02-01"), 12, QStringLiteral("CAB1"), 4,
                              QStringLiteral("2025-06-30")},
                             {QStringLiteral("Leclerc"), QStringLiteral("Jean"), QStringLiteral("1950-01-01"), 13, QStringLiteral("CAB1")}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        prog.ecrire(QStringLiteral("Agenda.ini"),
                    QStringLiteral("[Agenda]\nPath1=%1cab1/Patients.mdb\nIdentity1=CAB1\n").arg(prog.chemin()));

        SortieAdmin s = lancerAdmin({QStringLiteral("search-patients"), QStringLiteral("agenda"), QStringLiteral("lefe")});
        QCOMPARE(s.code, 0);
        QCOMPARE(lignes(s), (QStringList{QStringLiteral("Agenda\tLefèvre\tZoé\t01/02/1985\t\t4\t"), QStringLiteral("1 patients")}));

        s = lancerAdmin({QStringLiteral("search-patients"), QStringLiteral("linked"), QStringLiteral("le"), QStringLiteral("z")});
        QCOMPARE(s.code, 0);
        QCOMPARE(lignes(s), (QStringList{QStringLiteral("CAB1\tLEFEVRE\tZoé\t01/02/1985\t30/06/2025\t12\t4"), QStringLiteral("1 patients")}));

        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda]\nPath1=%1absente/Patients.mdb\n").arg(prog.chemin()));
        s = lancerAdmin({QStringLiteral("search-patients"), QStringLiteral("linked"), QStringLiteral("le")});
        QCOMPARE(s.code, 1);
        QVERIFY2(s.erreurs.startsWith(QStringLiteral("Erreur 14 lors de la recherche d'une fiche\n")), qPrintable(s.erreurs));

        s = lancerAdmin({QStringLiteral("search-patients"), QStringLiteral("ailleurs"), QStringLiteral("le")});
        QCOMPARE(s.code, 2);
    }
};

QTEST_GUILESS_MAIN(tst_rechercheadmin)
#include "tst_rechercheadmin.moc"
