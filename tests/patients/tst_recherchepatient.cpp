#include "basestest.h"

#include "patients/bouclesrecherche.h"
#include "patients/gestiontype.h"
#include "patients/recherchepatient.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/window/frmmain.h"
#include "shell/base/modal.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

class tst_recherchepatient : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_agenda;
    QString m_cab1;

    void etatDeBase()
    {
        AppState &etat = appState();
        etat.CheminBaseAgenda = m_agenda;
        etat.Path = {};
        etat.Path[1] = m_cab1;
        ViderPatientCourant();
        RetourRecherche = 0;
    }

    static std::unique_ptr<RecherchePatient> dialogue(bool rendezVous)
    {
        std::unique_ptr<RecherchePatient> d(rendezVous ? static_cast<RecherchePatient *>(new Recherche_patient_AG)
                                                       : new Recherche_patient_Agenda);
        d->show();
        return d;
    }

    template<typename T>
    static T *controle(QWidget *d, const char *nom)
    {
        return d->findChild<T *>(QString::fromLatin1(nom));
    }

    static int ligneCourante(RecherchePatient *d) { return d->DBGrid1->currentIndex().row(); }

    // After a search: grid, count and "open" shown, "open" the default
    // button, the grid focused, and the message line.
    static QVariantList resultats(RecherchePatient *d)
    {
        return {d->DBGrid1->isVisible(), d->lb->isVisible(), d->Btn_Ouvrir_Fiche->isVisible(), d->Btn_Ouvrir_Fiche->isDefault(),
                d->focusWidget() == d->DBGrid1, d->LabelMessage->text()};
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_dir.isValid(), "no temporary folder");
        m_agenda = m_dir.path() + QStringLiteral("/agenda/");
        QString err = CreerBaseTest(m_agenda, {{"DUPONT", "Jean", "1970-03-25", 7}, {"Dupond", "Anne", "1981-02-03", 3},
                                               {"Durand", "Élodie", "1990-05-06", 9}, {"Dutrou", "Zéro", "1990-05-06", 0},
                                               {"Martin", "Luc", "1950-01-01", 11}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        err = CreerBaseTest(m_dir.path() + QStringLiteral("/cab1/"), {{"DUPONT", "Jean", "1970-03-25", 41, "CAB1", 7, "2025-06-30"}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        m_cab1 = m_dir.path() + QStringLiteral("/cab1/Patients.mdb");
    }

    void init() { etatDeBase(); }

    void presentation_data()
    {
        QTest::addColumn<bool>("rendezVous");
        QTest::addColumn<QString>("titre");
        QTest::addColumn<QString>("boutonParDefaut");
        QTest::newRow("AG") << true << "Recherche d'un patient" << "Btn_Rechercher(1)";
        QTest::newRow("Agenda") << false << "Base patients de l'AGENDA : gestion des fiches" << "Btn_Rechercher(2)";
    }
    void presentation()
    {
        QFETCH(bool, rendezVous);
        QFETCH(QString, titre);
        QFETCH(QString, boutonParDefaut);
        auto d = dialogue(rendezVous);
        QCOMPARE(d->windowTitle(), titre);
        const QList<std::pair<const char *, QString>> boutons = {
            {"Btn_Rechercher(1)", QStringLiteral("Rechercher dans Brenwick")},
            {"Btn_Rechercher(2)", QStringLiteral("Rechercher dans la base Agenda")},
            {"Btn_Ouvrir_Fiche", QStringLiteral("Ouvrir la fiche du patient sélectionné")},
            {"Btn_Lire_carte", QStringLiteral("Choisir le patient en cours")},
            {"Btn_Creer_Patient", QStringLiteral("Créer la fiche d'un nouveau patient")},
            {"Btn_Abandon", QStringLiteral("Abandon")},
        };
        for (const auto &[nom, texte] : boutons) {
            auto *b = controle<QPushButton>(d.get(), nom);
            QVERIFY2(b, nom);
            QCOMPARE(b->text(), texte);
            QCOMPARE(b->isDefault(), boutonParDefaut == QLatin1String(nom));
        }
        auto *grille = controle<QTableView>(d.get(), "DBGrid1");
        QVERIFY(grille);
        QVERIFY(!grille->isVisible());
        QStringList entetes;
        for (int c = 0; c < grille->model()->columnCount(); ++c)
            entetes << grille->model()->headerData(c, Qt::Horizontal).toString();
        QCOMPARE(entetes, (QStringList{"Base", "Nom", "Prénom", "Date de Naissance", "Dernière Consultation", "Numéro de fiche",
                                       "N° Agenda"}));
        QVERIFY(!d->Btn_Ouvrir_Fiche->isVisible());
    }

    void rechercheEtComptage_data()
    {
        QTest::addColumn<bool>("rendezVous");
        QTest::addColumn<QString>("touche");
        QTest::addColumn<QString>("nom");
        QTest::addColumn<int>("retour");
        QTest::addColumn<QString>("compte");
        QTest::addColumn<QString>("premier");
        QTest::newRow("AG, F2, base propre") << true << "F2" << "du" << 2 << "4 patients" << "Dupond";
        QTest::newRow("Agenda, F2, un seul") << false << "F2" << "mar" << 2 << "1 patients" << "Martin";
        QTest::newRow("AG, F1, base liée") << true << "F1" << "dup" << 1 << "1 patients" << "DUPONT";
        QTest::newRow("Agenda, F1, base liée") << false << "F1" << "" << 1 << "1 patients" << "DUPONT";
    }
    void rechercheEtComptage()
    {
        QFETCH(bool, rendezVous);
        QFETCH(QString, touche);
        QFETCH(QString, nom);
        QFETCH(int, retour);
        QFETCH(QString, compte);
        QFETCH(QString, premier);
        RepondeurScripte repondeur;
        auto d = dialogue(rendezVous);
        d->Text1->setText(nom);
        QTest::keyClick(d->Text1, touche == QLatin1String("F1") ? Qt::Key_F1 : Qt::Key_F2);
        QCOMPARE(RetourRecherche, retour);
        QCOMPARE(resultats(d.get()), (QVariantList{true, true, true, true, true, QString()}));
        QCOMPARE(d->lb->text(), compte);
        QVERIFY(!d->Btn_Rechercher[1]->isDefault() && !d->Btn_Rechercher[2]->isDefault());
        QCOMPARE(d->DBGrid1->model()->index(0, 1).data().toString(), premier);
        QCOMPARE(repondeur.appels().size(), 0);
    }

    void rienTrouve_data()
    {
        QTest::addColumn<bool>("rendezVous");
        QTest::newRow("AG") << true;
        QTest::newRow("Agenda") << false;
    }
    void rienTrouve()
    {
        QFETCH(bool, rendezVous);
        RepondeurScripte repondeur;
        auto d = dialogue(rendezVous);
        d->Text1->setText(QStringLiteral("du"));
        d->Rechercher(2);
        QVERIFY(d->DBGrid1->isVisible());
        d->Text1->setText(QStringLiteral("zz"));
        d->Rechercher(2);
        QCOMPARE(resultats(d.get()), (QVariantList{false, false, false, false, false, "Aucun patient ne correspond à cette sélection"}));
        QCOMPARE(d->focusWidget(), d->Text1);
        QVERIFY(d->Btn_Rechercher[rendezVous ? 1 : 2]->isDefault());
        // Taking a row of an empty result only beeps.
        d->OuvrirFiche();
        QCOMPARE(repondeur.bips(), 1);
        QCOMPARE(d->result(), int(QDialog::Rejected));
        QVERIFY(d->isVisible());
    }

    void liaisonAbsente_data()
    {
        QTest::addColumn<bool>("rendezVous");
        QTest::addColumn<QStringList>("textes");
        QTest::addColumn<QString>("message");
        QTest::newRow("AG") << true << QStringList{"La configuration de la liason avec Brenwick n'est pas faite !"} << "";
        QTest::newRow("Agenda") << false << QStringList{} << "Aucun patient ne correspond à cette sélection";
    }
    void liaisonAbsente()
    {
        QFETCH(bool, rendezVous);
        QFETCH(QStringList, textes);
        QFETCH(QString, message);
        RepondeurScripte repondeur;
        appState().Path[1].clear();
        appState().Path[2] = m_cab1;
        auto d = dialogue(rendezVous);
        QTest::keyClick(d->Text1, Qt::Key_F1);
        QCOMPARE(repondeur.textes(), textes);
        if (!textes.isEmpty()) {
            QCOMPARE(repondeur.appels().first().titre, QStringLiteral("Erreur..."));
            QCOMPARE(repondeur.appels().first().icone, Prompt::Icone::Critique);
        }
        QCOMPARE(d->LabelMessage->text(), message);
        QVERIFY(!d->DBGrid1->isVisible());
    }

    // A linked base out of reach: the AG dialog tells the error and runs the
    // search again while the user asks for it; the other tells it once.
    // Either way the dialog stays usable.
    void erreurDeRecherche_data()
    {
        QTest::addColumn<bool>("rendezVous");
        QTest::addColumn<int>("reessais");
        QTest::addColumn<int>("boites");
        QTest::newRow("AG, abandon de suite") << true << 0 << 1;
        QTest::newRow("AG, deux essais de plus") << true << 2 << 3;
        QTest::newRow("Agenda") << false << 0 << 1;
    }
    void erreurDeRecherche()
    {
        QFETCH(bool, rendezVous);
        QFETCH(int, reessais);
        QFETCH(int, boites);
        RepondeurScripte repondeur;
        for (int i = 0; i < reessais; ++i)
            repondeur.repondre(Prompt::Reponse::Reessayer);
        if (rendezVous)
            repondeur.repondre(Prompt::Reponse::Annuler);
        appState().Path[2] = m_dir.path() + QStringLiteral("/absente/Patients.mdb");
        auto d = dialogue(rendezVous);
        d->Rechercher(1);
        QCOMPARE(repondeur.appels().size(), boites);
        for (const RepondeurScripte::Appel &a : repondeur.appels()) {
            QVERIFY2(a.texte.startsWith(QStringLiteral("Erreur 14 lors de la recherche d'une fiche\n")), qPrintable(a.texte));
            QVERIFY2(a.texte.contains(QStringLiteral("introuvable")), qPrintable(a.texte));
            QCOMPARE(a.icone, Prompt::Icone::Critique);
        }
        QCOMPARE(repondeur.imprevus(), 0);
        QVERIFY(!d->DBGrid1->isVisible());
        QVERIFY(d->isVisible());
        // Still usable: the own base is searched.
        d->Text1->setText(QStringLiteral("mar"));
        d->Rechercher(2);
        QCOMPARE(d->lb->text(), QStringLiteral("1 patients"));
    }

    void prendreUneLigne_data()
    {
        QTest::addColumn<bool>("rendezVous");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("nom");
        QTest::addColumn<int>("numero");
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("telephone");
        QTest::newRow("AG, base propre: le reste est vidé") << true << 2 << "dupont" << 7 << "Agenda" << "";
        QTest::newRow("AG, base liée") << true << 1 << "dupont" << 41 << "CAB1" << "";
        QTest::newRow("Agenda: le reste demeure") << false << 2 << "dupont" << 7 << "Agenda" << "0102030405";
    }
    void prendreUneLigne()
    {
        QFETCH(bool, rendezVous);
        QFETCH(int, index);
        QFETCH(QString, nom);
        QFETCH(int, numero);
        QFETCH(QString, base);
        QFETCH(QString, telephone);
        RepondeurScripte repondeur;
        PatientCourantRecord &p = appState().PatientCourant;
        p.Telephone1 = QStringLiteral("0102030405");
        p.Numero = 99;
        auto d = dialogue(rendezVous);
        d->Text1->setText(nom);
        d->Rechercher(index);
        QVERIFY(d->DBGrid1->isVisible());
        const QPoint point = d->DBGrid1->visualRect(d->DBGrid1->model()->index(0, 1)).center();
        QTest::mouseClick(d->DBGrid1->viewport(), Qt::LeftButton, {}, point);
        QTest::mouseDClick(d->DBGrid1->viewport(), Qt::LeftButton, {}, point);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        QCOMPARE(RetourRecherche, index);
        QCOMPARE((QStringList{p.Nom, p.Prenom, p.DateNaissance, QString::number(p.Numero), p.Base, p.Telephone1}),
                 (QStringList{"DUPONT", "Jean", "25/03/1970", QString::number(numero), base, telephone}));
        QCOMPARE(repondeur.appels().size(), 0);
    }

    // A base locked by another station when the row is taken: the error is
    // told, the step is run again on demand, and the dialog stays usable.
    void ligneVerrouilleeALaPrise()
    {
        const QString d = m_dir.path() + QStringLiteral("/pages/");
        QList<PatientTest> p;
        for (int i = 1; i <= 120; ++i)
            p.append({QStringLiteral("PAGE%1").arg(i, 3, 10, QLatin1Char('0')), QStringLiteral("P"), QStringLiteral("1970-01-01"), i,
                      QStringLiteral("PG")});
        const QString err = CreerBaseTest(d, p);
        QVERIFY2(err.isEmpty(), qPrintable(err));
        appState().Path[1] = d + QStringLiteral("Patients.mdb");
        BaseSqlite::fixerDelaiOccupe(200);
        RepondeurScripte repondeur;
        repondeur.repondre(Prompt::Reponse::Reessayer);
        repondeur.repondre(Prompt::Reponse::Annuler);
        auto dlg = dialogue(true);
        dlg->Text1->setText(QStringLiteral("page"));
        dlg->Rechercher(1);
        QCOMPARE(dlg->lb->text(), QStringLiteral("120 patients"));
        dlg->DBGrid1->setCurrentIndex(dlg->modele()->index(110, 1));
        {
            auto verrou = BaseSqlite::ouvrir(d + QStringLiteral("Patients.mdb"), BaseSqlite::Mode::Existante);
            QVERIFY(verrou);
            QVERIFY(verrou->executer(QStringLiteral("BEGIN EXCLUSIVE")));
            dlg->OuvrirFiche();
            QCOMPARE(repondeur.appels().size(), 2);
            QCOMPARE(repondeur.appels().first().texte, QStringLiteral("Erreur 5 lors de l'ouverture de la fiche"));
            QVERIFY(dlg->isVisible());
            QVERIFY(verrou->executer(QStringLiteral("ROLLBACK")));
        }
        dlg->OuvrirFiche();
        BaseSqlite::fixerDelaiOccupe(8000);
        QCOMPARE(dlg->result(), int(QDialog::Accepted));
        QCOMPARE(appState().PatientCourant.Nom, QStringLiteral("PAGE111"));
        QCOMPARE(appState().PatientCourant.Numero, 111);
        QCOMPARE(appState().PatientCourant.Base, QStringLiteral("PG"));
        QCOMPARE(repondeur.imprevus(), 0);
    }

    void commandes_data()
    {
        QTest::addColumn<QString>("recherche"); // typed and searched in the own base first
        QTest::addColumn<QString>("commande");
        QTest::addColumn<int>("numeroAvant");
        QTest::addColumn<int>("retour");
        QTest::addColumn<bool>("ferme");
        QTest::addColumn<int>("numeroApres");
        QTest::addColumn<QString>("message");
        QTest::newRow("abandon") << "" << "Btn_Abandon" << 5 << 0 << true << 0 << "";
        QTest::newRow("échap") << "" << "Escape" << 5 << 0 << true << 0 << "";
        QTest::newRow("case de fermeture") << "" << "close" << 5 << 0 << true << 0 << "";
        QTest::newRow("créer") << "" << "Btn_Creer_Patient" << 5 << 3 << true << 5 << "";
        QTest::newRow("F11") << "" << "F11" << 0 << 3 << true << 0 << "";
        QTest::newRow("patient en cours") << "" << "Btn_Lire_carte" << 5 << 4 << true << 5 << "";
        QTest::newRow("pas de patient en cours") << "" << "Btn_Lire_carte" << 0 << -1 << false << 0
                                                 << "Il n'y a pas de patient sélectionné actuellement";
        QTest::newRow("ligne sans numéro") << "dut" << "Btn_Ouvrir_Fiche" << 0 << 2 << false << 0 << "Veuillez sélectionner un patient";
    }
    void commandes()
    {
        QFETCH(QString, recherche);
        QFETCH(QString, commande);
        QFETCH(int, numeroAvant);
        QFETCH(int, retour);
        QFETCH(bool, ferme);
        QFETCH(int, numeroApres);
        QFETCH(QString, message);
        RepondeurScripte repondeur;
        appState().PatientCourant.Numero = numeroAvant;
        RetourRecherche = -1;
        auto d = dialogue(true);
        if (!recherche.isEmpty()) {
            d->Text1->setText(recherche);
            d->Rechercher(2);
            QCOMPARE(d->lb->text(), QStringLiteral("1 patients"));
        }
        if (commande == QLatin1String("F11"))
            QTest::keyClick(d->Text2, Qt::Key_F11);
        else if (commande == QLatin1String("Escape"))
            QTest::keyClick(d->Text1, Qt::Key_Escape);
        else if (commande == QLatin1String("close"))
            d->close();
        else
            QTest::mouseClick(controle<QPushButton>(d.get(), commande.toLatin1().constData()), Qt::LeftButton);
        QCOMPARE(RetourRecherche, retour);
        QCOMPARE(d->isVisible(), !ferme);
        QCOMPARE(appState().PatientCourant.Numero, numeroApres);
        QCOMPARE(repondeur.textes(), message.isEmpty() ? QStringList{} : QStringList{message});
        if (commande == QLatin1String("Btn_Lire_carte") && !message.isEmpty()) {
            QCOMPARE(repondeur.appels().first().titre, QStringLiteral("Tavonel"));
            QCOMPARE(repondeur.appels().first().icone, Prompt::Icone::Exclamation);
        }
    }

    void flechesDuClavier()
    {
        RepondeurScripte repondeur;
        auto d = dialogue(false);
        d->Text1->setText(QStringLiteral("du"));
        QTest::keyClick(d->Text1, Qt::Key_F2);
        QCOMPARE(d->lb->text(), QStringLiteral("4 patients"));
        QCOMPARE(ligneCourante(d.get()), 0);
        QTest::keyClick(d->DBGrid1, Qt::Key_Up);
        QCOMPARE(ligneCourante(d.get()), 0);
        QTest::keyClick(d->DBGrid1, Qt::Key_Down);
        QTest::keyClick(d->Text2, Qt::Key_Down);
        QCOMPARE(ligneCourante(d.get()), 2);
        for (int i = 0; i < 5; ++i)
            QTest::keyClick(d->DBGrid1, Qt::Key_Down);
        QCOMPARE(ligneCourante(d.get()), 3);
        QTest::keyClick(d->DBGrid1, Qt::Key_Up);
        QCOMPARE(ligneCourante(d.get()), 2);
        // Enter takes the row: Btn_Ouvrir_Fiche is the default button.
        QTest::keyClick(d->DBGrid1, Qt::Key_Return);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        QCOMPARE(appState().PatientCourant.Nom, QStringLiteral("Durand"));
    }

    void dateDeNaissance_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<int>("raison");
        QTest::addColumn<bool>("message");
        const int tab = Qt::TabFocusReason;
        QTest::newRow("vide") << "" << tab << false;
        QTest::newRow("valide") << "25/03/1970" << tab << false;
        QTest::newRow("année courte") << "1/2/85" << tab << false;
        QTest::newRow("31 février") << "31/02/1970" << tab << true;
        QTest::newRow("texte") << "hier" << tab << true;
        QTest::newRow("blancs seuls") << "   " << tab << true;
        QTest::newRow("clic ailleurs") << "hier" << int(Qt::MouseFocusReason) << true;
        // The field is not left when the user goes to another window.
        QTest::newRow("autre fenêtre") << "hier" << int(Qt::ActiveWindowFocusReason) << false;
        QTest::newRow("menu") << "hier" << int(Qt::PopupFocusReason) << false;
    }
    void dateDeNaissance()
    {
        QFETCH(QString, texte);
        QFETCH(int, raison);
        QFETCH(bool, message);
        RepondeurScripte repondeur;
        auto d = dialogue(true);
        d->Text3->setText(texte);
        QFocusEvent sortie(QEvent::FocusOut, static_cast<Qt::FocusReason>(raison));
        QApplication::sendEvent(d->Text3, &sortie);
        if (message) {
            QCOMPARE(repondeur.textes(), QStringList{QStringLiteral("Veuillez vérifier la date de naissance saisie.")});
            QCOMPARE(repondeur.appels().first().titre, QStringLiteral("Erreur de saisie"));
            QCOMPARE(repondeur.appels().first().icone, Prompt::Icone::Exclamation);
        } else {
            QCOMPARE(repondeur.appels().size(), 0);
        }
        // The date never narrows the search.
        d->Text1->setText(QStringLiteral("du"));
        d->Rechercher(2);
        QCOMPARE(d->lb->text(), QStringLiteral("4 patients"));
    }

    // The loops, with a script for each dialog that the loop shows.
    void boucles_data()
    {
        QTest::addColumn<bool>("editeur");
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<bool>("choisi");
        QTest::addColumn<int>("retourFinal");
        QTest::addColumn<int>("numeroFinal");
        QTest::addColumn<QStringList>("fiches");
        QTest::newRow("éditeur: ligne de la base propre") << true << QStringList{"F2:dupont:prendre"} << true << 2 << 7
                                                          << QStringList{"agenda"};
        QTest::newRow("éditeur: ligne liée") << true << QStringList{"F1:dupont:prendre"} << true << 1 << 41 << QStringList{"liee"};
        QTest::newRow("éditeur: abandon") << true << QStringList{"abandon"} << false << 0 << 0 << QStringList{};
        QTest::newRow("éditeur: nouveau annulé puis abandon") << true << QStringList{"creer", "abandon"} << false << 0 << 0
                                                               << QStringList{"agenda"};
        QTest::newRow("principale: ligne liée, pas de fiche") << false << QStringList{"F1:dupont:prendre"} << false << 0 << 41
                                                              << QStringList{};
        QTest::newRow("principale: base propre") << false << QStringList{"F2:martin:prendre"} << false << 0 << 11 << QStringList{"agenda"};
        QTest::newRow("principale: nouveau annulé puis abandon") << false << QStringList{"creer", "abandon"} << false << 0 << 0
                                                                  << QStringList{"agenda"};
    }
    void boucles()
    {
        QFETCH(bool, editeur);
        QFETCH(QStringList, script);
        QFETCH(bool, choisi);
        QFETCH(int, retourFinal);
        QFETCH(int, numeroFinal);
        QFETCH(QStringList, fiches);
        RepondeurScripte repondeur;
        QStringList dialogues;
        QStringList ouvertes;
        const OuvreurFiche ancien = FixerOuvreurFiche([&ouvertes](FichePatient f, QWidget *) {
            ouvertes << (f == FichePatient::Liee ? QStringLiteral("liee") : QStringLiteral("agenda"));
            return false;
        });
        ExecuteurInstalle executeur([&](QDialog &dlg) {
            dialogues << dlg.objectName();
            auto *d = qobject_cast<RecherchePatient *>(&dlg);
            if (!d || script.isEmpty())
                return int(QDialog::Rejected);
            d->show();
            const QStringList pas = script.takeFirst().split(u':');
            if (pas[0] == QLatin1String("abandon")) {
                d->Abandon();
            } else if (pas[0] == QLatin1String("creer")) {
                d->CreerPatient();
            } else {
                d->Text1->setText(pas[1]);
                QTest::keyClick(d->Text1, pas[0] == QLatin1String("F1") ? Qt::Key_F1 : Qt::Key_F2);
                d->OuvrirFiche();
            }
            return d->result();
        });
        bool resultat = false;
        if (editeur)
            resultat = BoucleRecherchePatientEditeur();
        else
            BoucleRecherchePatientPrincipale();
        FixerOuvreurFiche(ancien);
        QVERIFY2(script.isEmpty(), "the loop stopped before the script's end");
        QCOMPARE(resultat, choisi);
        QCOMPARE(RetourRecherche, retourFinal);
        QCOMPARE(appState().PatientCourant.Numero, numeroFinal);
        QCOMPARE(ouvertes, fiches);
        for (const QString &n : dialogues)
            QCOMPARE(n, editeur ? QStringLiteral("Recherche_patient_AG") : QStringLiteral("Recherche_patient_Agenda"));
        QCOMPARE(repondeur.appels().size(), 0);
    }

    // The main window counts the open search dialog, and its caption
    // follows the current patient.
    void fenetrePrincipale()
    {
        DossierProgrammeTest prog;
        RepondeurScripte repondeur;
        const AppState sauve = appState();
        Demarrage demarrage(appState(), prog.chemin());
        QVERIFY(!demarrage.initialiser(QString()));
        ParametresFenetre p;
        QVERIFY(!demarrage.charger(p));
        etatDeBase();
        {
            frmMain f(demarrage, p);
            auto *legende = f.findChild<QLabel *>(QStringLiteral("lblPatient"));
            QVERIFY(legende);
            int pendant = -1;
            ExecuteurInstalle executeur([&](QDialog &dlg) {
                auto *d = qobject_cast<RecherchePatient *>(&dlg);
                d->show();
                pendant = f.DialoguesOuverts;
                d->Abandon();
                return d->result();
            });
            qint32 n = 7;
            ChargerParNumero(n);
            QCOMPARE(legende->text(), QStringLiteral("Jean DUPONT"));
            BoucleRecherchePatientPrincipale(&f);
            QCOMPARE(pendant, 1);
            QCOMPARE(f.DialoguesOuverts, 0);
            QCOMPARE(legende->text(), QString());
        }
        FermerConfig();
        appState() = sauve;
    }
};

QTEST_MAIN(tst_recherchepatient)
#include "tst_recherchepatient.moc"
