#include "patients/frm_ouvrirbase_ag.h"
#include "patients/frmzek_ag2.h"
#include "patients/liaisons.h"
#include "shell/appstate.h"
#include "shell/base/cp1252.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "support/dossiertest.h"
#include "support/fichierstest.h"
#include "support/repondeurscripte.h"

#include <QDir>
#include <QFile>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

class tst_liaisons : public QObject
{
    Q_OBJECT

private:
    static void ecrire(const QString &chemin, const QString &texte)
    {
        QFile f(chemin);
        QVERIFY2(f.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(chemin));
        f.write(VersCp1252(QString(texte).replace(u'\n', QStringLiteral("\r\n"))));
    }

    static void zek(const QString &dossier, const QString &nom, const QString &titre, const QString &nomMedecin,
                    const QString &prenom, const QString &base = QString(), const QString &identifiant = QString())
    {
        QString t = QStringLiteral("[Medecin]\nTitre=%1\nNom=%2\nPrenom=%3\n").arg(titre, nomMedecin, prenom);
        if (!base.isNull() || !identifiant.isNull()) {
            t += QStringLiteral("[Base]\n");
            if (!base.isNull())
                t += QStringLiteral("Patients=%1\n").arg(base);
            if (!identifiant.isNull())
                t += QStringLiteral("IdentifiantBase=%1\nIdentifiant=AUTRE\n").arg(identifiant);
        }
        ecrire(dossier + nom, t);
    }

    // A profile folder holding Kelmoreg.reg that points at `dossierConfig`.
    struct Profils
    {
        QTemporaryDir dir;
        VariableTemporaire variable{"TAVONEL_DOSSIER_PROFILS", dir.path().toLocal8Bit()};
        explicit Profils(const QString &dossierConfig)
        {
            ecrire(dir.path() + QStringLiteral("/Kelmoreg.reg"),
                   QStringLiteral("[Brenwick.32]\nPath=%1\n").arg(dossierConfig));
        }
    };

private slots:
    void init()
    {
        appState() = AppState{};
        appState().AgendaName = QStringLiteral("Agenda");
        ChoixBase.clear();
        ChoixBaseValide = false;
    }

    void dossierConfig()
    {
        Profils profils(QStringLiteral("/srv/brenwick/config"));
        QCOMPARE(DossierProfilsSysteme(), profils.dir.path() + u'/');
        QCOMPARE(LireDossierConfig(), QStringLiteral("/srv/brenwick/config"));
    }

    void lignesUtilisateurs_data()
    {
        QTest::addColumn<QStringList>("fichiers");
        QTest::addColumn<QStringList>("lignes");
        QTest::newRow("nom court complété") << QStringList{"dupont.zek"} << QStringList{"dupont   : Dr DUPONT Jean"};
        QTest::newRow("nom long coupé") << QStringList{"secretariat.zek"} << QStringList{"secretar : Dr DUPONT Jean"};
        QTest::newRow("coupé au premier point") << QStringList{"a.b.zek"} << QStringList{"a        : Dr DUPONT Jean"};
        QTest::newRow("ordre des noms, autres fichiers ignorés")
            << QStringList{"b.zek", "A.ZEK", "c.ini", "c.zek.bak"} << QStringList{"A        : Dr DUPONT Jean", "b        : Dr DUPONT Jean"};
    }
    void lignesUtilisateurs()
    {
        QFETCH(QStringList, fichiers);
        QFETCH(QStringList, lignes);
        QTemporaryDir dir;
        for (const QString &f : fichiers)
            zek(dir.path() + u'/', f, "Dr", "DUPONT", "Jean");
        QStringList trouvees;
        for (const UtilisateurZek &u : UtilisateursZek(dir.path()))
            trouvees << u.ligne;
        QCOMPARE(trouvees, lignes);
    }

    void utilisateurSansMedecin()
    {
        QTemporaryDir dir;
        ecrire(dir.path() + QStringLiteral("/vide.zek"), QStringLiteral("[Base]\nPatients=/x\n"));
        const QList<UtilisateurZek> l = UtilisateursZek(dir.path());
        QCOMPARE(l.size(), 1);
        QCOMPARE(l.first().ligne, QStringLiteral("vide     :   "));
        QCOMPARE(l.first().fichier, QStringLiteral("vide.zek"));
    }

    void auPlusCentUnUtilisateurs()
    {
        QTemporaryDir dir;
        for (int i = 0; i < 103; ++i)
            zek(dir.path() + u'/', QStringLiteral("u%1.zek").arg(i, 3, 10, QLatin1Char('0')), {}, {}, {});
        const QList<UtilisateurZek> l = UtilisateursZek(dir.path());
        QCOMPARE(l.size(), 101);
        QCOMPARE(l.last().fichier, QStringLiteral("u100.zek"));
    }

    void lireLiaisonZek_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("identifiant");
        QTest::addColumn<QString>("path");
        QTest::newRow("complet") << "/srv/cab" << "CAB1" << "/srv/cab/Patients.mdb";
        QTest::newRow("séparateur déjà là") << "/srv/cab/" << "CAB1" << "/srv/cab/Patients.mdb";
        QTest::newRow("sans dossier") << QString() << "CAB2" << "";
        QTest::newRow("sans identifiant") << "/srv/cab" << QString() << "/srv/cab/Patients.mdb";
    }
    void lireLiaisonZek()
    {
        QFETCH(QString, base);
        QFETCH(QString, identifiant);
        QFETCH(QString, path);
        QTemporaryDir dir;
        zek(dir.path() + u'/', "u.zek", {}, {}, {}, base, identifiant);
        const LiaisonZek l = LireLiaisonZek(dir.path() + QStringLiteral("/u.zek"));
        QCOMPARE(l.path, path);
        // The link dialog reads IdentifiantBase, not Identifiant.
        QCOMPARE(l.identity, identifiant.isNull() ? QString() : identifiant);
    }

    void choixSansFichier()
    {
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        DossierConfig = dir.path();
        ChoixBaseValide = true;
        frm_OuvrirBase_AG f;
        QVERIFY(!f.charger());
        QCOMPARE(repondeur.textes(), QStringList{QStringLiteral("Aucune base n'a été trouvée.")});
        QCOMPARE(repondeur.appels().first().titre, QStringLiteral("Brenwick"));
        QCOMPARE(repondeur.appels().first().icone, Prompt::Icone::Information);
        QVERIFY(!ChoixBaseValide);
    }

    void choixDUnUtilisateur_data()
    {
        QTest::addColumn<QString>("commande");
        QTest::addColumn<int>("ligne");
        QTest::addColumn<QString>("choix");
        QTest::addColumn<bool>("valide");
        QTest::newRow("OK sur la première") << "ok" << 0 << "a.zek" << true;
        QTest::newRow("OK sur la deuxième") << "ok" << 1 << "b.zek" << true;
        QTest::newRow("Entrée dans la liste") << "entree" << 1 << "b.zek" << true;
        QTest::newRow("double clic") << "double" << 1 << "b.zek" << true;
        QTest::newRow("Retour") << "retour" << 1 << "<avant>" << false;
        QTest::newRow("sans utilisateur") << "alert" << 1 << "" << true;
    }
    void choixDUnUtilisateur()
    {
        QFETCH(QString, commande);
        QFETCH(int, ligne);
        QFETCH(QString, choix);
        QFETCH(bool, valide);
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        zek(dir.path() + u'/', "a.zek", "Dr", "A", "Aa");
        zek(dir.path() + u'/', "b.zek", "Pr", "B", "Bb");
        DossierConfig = dir.path();
        ChoixBase = QStringLiteral("<avant>");
        frm_OuvrirBase_AG f;
        QCOMPARE(f.windowTitle(), QStringLiteral("Choisir un fichier de configuration d'Brenwick"));
        QVERIFY(f.charger());
        f.show();
        QVERIFY(QFontInfo(f.List1->font()).fixedPitch());
        QCOMPARE(f.List1->count(), 2);
        QCOMPARE(f.List1->item(1)->text(), QStringLiteral("b        : Pr B Bb"));
        QCOMPARE(f.List1->currentRow(), 0);
        QCOMPARE(f.lblFichier->text(), dir.path() + QStringLiteral("/a.zek"));
        QVERIFY(f.List_Base->isHidden());
        QCOMPARE(f.btn_Annuler->text(), QStringLiteral("Retour"));
        QCOMPARE(f.Alert->text(), QStringLiteral("&Lancer Brenwick sans choisir d'utilisateur"));
        QTest::mouseClick(f.List1->viewport(), Qt::LeftButton, {}, f.List1->visualItemRect(f.List1->item(ligne)).center());
        QCOMPARE(f.lblFichier->text(), dir.path() + u'/' + (ligne ? QStringLiteral("b.zek") : QStringLiteral("a.zek")));
        if (commande == QLatin1String("ok"))
            QTest::mouseClick(f.Btn_Ok, Qt::LeftButton);
        else if (commande == QLatin1String("entree"))
            QTest::keyClick(f.List1, Qt::Key_Return);
        else if (commande == QLatin1String("double"))
            emit f.List1->itemDoubleClicked(f.List1->item(ligne));
        else if (commande == QLatin1String("retour"))
            QTest::mouseClick(f.btn_Annuler, Qt::LeftButton);
        else
            QTest::mouseClick(f.Alert, Qt::LeftButton);
        QVERIFY(!f.isVisible());
        const QString attendu = choix.endsWith(QLatin1String(".zek")) ? dir.path() + u'/' + choix : choix;
        QCOMPARE(ChoixBase, attendu);
        QCOMPARE(ChoixBaseValide, valide);
        QCOMPARE(repondeur.appels().size(), 0);
    }

    void liaisonsOuvertureEtValidation()
    {
        DossierProgrammeTest prog;
        RepondeurScripte repondeur;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda]\nPath1=/srv/cab1/Patients.mdb\nIdentity1=CAB1\n"
                                                                 "Zek1=/cfg/a.zek\nAutre=garde\n"));
        QTemporaryDir config;
        zek(config.path() + u'/', "a.zek", "Dr", "A", "Aa", "/srv/cab3", "CAB3");
        zek(config.path() + u'/', "b.zek", "Dr", "B", "Bb");
        Profils profils(config.path());

        frmZek_AG2 f;
        // Path, identity and configuration file shown for one slot.
        auto emplacement = [&f](int i) { return QStringList{f.DBPath[i]->text(), f.DBIdentity[i]->text(), f.TextZek[i]->text()}; };
        QCOMPARE(f.windowTitle(), QStringLiteral("Liaison avec Brenwick"));
        QCOMPARE(emplacement(1), (QStringList{"/srv/cab1/Patients.mdb", "CAB1", "/cfg/a.zek"}));
        QCOMPARE(f.DBPath[2]->text(), QString());
        QStringList libelles;
        for (QLabel *l : f.findChildren<QLabel *>())
            libelles << l->text();
        QVERIFY(libelles.contains(QStringLiteral("Base Principale (dans cette configuration, une base d'agenda doit être trouvée)  :")));
        QVERIFY(libelles.contains(QStringLiteral("Base Secondaire 3 :")));

        // The chooser, driven: first row 0 for slot 3, then "Retour" for
        // slot 2, then row 1 (no Base section) for slot 4.
        QList<std::function<void(frm_OuvrirBase_AG &)>> actions = {
            [](frm_OuvrirBase_AG &c) { QTest::mouseClick(c.Btn_Ok, Qt::LeftButton); },
            [](frm_OuvrirBase_AG &c) { QTest::mouseClick(c.btn_Annuler, Qt::LeftButton); },
            [](frm_OuvrirBase_AG &c) {
                c.List1->setCurrentRow(1);
                QTest::mouseClick(c.Btn_Ok, Qt::LeftButton);
            },
            [](frm_OuvrirBase_AG &c) { QTest::mouseClick(c.Alert, Qt::LeftButton); },
        };
        ExecuteurInstalle executeur([&](QDialog &d) {
            auto *c = qobject_cast<frm_OuvrirBase_AG *>(&d);
            if (!c || actions.isEmpty())
                return int(QDialog::Rejected);
            c->show();
            actions.takeFirst()(*c);
            return c->result();
        });
        QTest::mouseClick(f.DBpathDialog[3], Qt::LeftButton);
        QCOMPARE(emplacement(3), (QStringList{"/srv/cab3/Patients.mdb", "CAB3", config.path() + "/a.zek"}));
        f.DBPath[2]->setText(QStringLiteral("garde"));
        QTest::mouseClick(f.DBpathDialog[2], Qt::LeftButton);
        QCOMPARE(f.DBPath[2]->text(), QStringLiteral("garde"));
        QTest::mouseClick(f.DBpathDialog[4], Qt::LeftButton);
        QCOMPARE(emplacement(4), (QStringList{"", "", config.path() + "/b.zek"}));
        // "No user" empties the first slot.
        QTest::mouseClick(f.DBpathDialog[1], Qt::LeftButton);
        QCOMPARE(emplacement(1), (QStringList{"", "", ""}));
        QVERIFY(actions.isEmpty());

        QTest::mouseClick(f.btnValider, Qt::LeftButton);
        QCOMPARE(f.result(), int(QDialog::Accepted));
        const AppState &etat = appState();
        QCOMPARE(etat.Path[1], QString());
        QCOMPARE(etat.Path[2], QStringLiteral("garde"));
        QCOMPARE(etat.Path[3], QStringLiteral("/srv/cab3/Patients.mdb"));
        QCOMPARE(etat.Identity[3], QStringLiteral("CAB3"));
        QCOMPARE(etat.Zek[4], config.path() + QStringLiteral("/b.zek"));
        const QString ini = prog.chemin() + QStringLiteral("Agenda.ini");
        QCOMPARE(LireIni(QStringLiteral("Agenda"), QStringLiteral("Identity3"), QStringLiteral("?"), ini), QStringLiteral("CAB3"));
        QCOMPARE(LireIni(QStringLiteral("Agenda"), QStringLiteral("Autre"), QStringLiteral("?"), ini), QStringLiteral("garde"));
        // The new keys come in the order of writing.
        const QString texte = DepuisCp1252(lireOctets(ini));
        QStringList cles;
        for (const QString &l : texte.split(QRegularExpression(QStringLiteral("\r?\n")))) {
            const QString cle = l.section(u'=', 0, 0);
            if (l.contains(u'=') && cle != QLatin1String("Autre"))
                cles << cle;
        }
        QCOMPARE(cles, (QStringList{"Path1", "Identity1", "Zek1", "Path2", "Path3", "Path4", "Identity2", "Identity3", "Identity4",
                                    "Zek2", "Zek3", "Zek4"}));
        QCOMPARE(repondeur.appels().size(), 0);
    }

    void annulerNeChangeRien()
    {
        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda]\nPath1=/a/Patients.mdb\n"));
        const QByteArray avant = lireOctets(prog.chemin() + QStringLiteral("Agenda.ini"));
        frmZek_AG2 f;
        f.DBPath[1]->setText(QStringLiteral("/b/Patients.mdb"));
        QTest::mouseClick(f.btnAnnuler, Qt::LeftButton);
        QCOMPARE(f.result(), int(QDialog::Rejected));
        QCOMPARE(lireOctets(prog.chemin() + QStringLiteral("Agenda.ini")), avant);
        QCOMPARE(appState().Path[1], QString());
    }

    void lireLiaisons()
    {
        DossierProgrammeTest prog;
        QString t = QStringLiteral("[Autre]\nPath1=non\n[agenda]\n");
        for (int i = 1; i <= 4; ++i)
            t += QStringLiteral("path%1=P%1\nIDENTITY%1=I%1\nZek%1=Z%1\n").arg(i);
        prog.ecrire(QStringLiteral("Agenda.ini"), t);
        LireLiaisons(appState());
        for (int i = 1; i <= 4; ++i) {
            QCOMPARE(appState().Path[i], QStringLiteral("P%1").arg(i));
            QCOMPARE(appState().Identity[i], QStringLiteral("I%1").arg(i));
            QCOMPARE(appState().Zek[i], QStringLiteral("Z%1").arg(i));
        }
    }

};

QTEST_MAIN(tst_liaisons)
#include "tst_liaisons.moc"
