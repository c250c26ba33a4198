// The practice settings dialog driven through its controls on a real
// Config.mdb and Agenda.ini: hours, practitioners, types and colour
// families, the patient base links, and the rule tab with the rule dialog.

#include "patients/basestest.h"
#include "rules/frmregles.h"
#include "rules/frmsettings.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/joursferies.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QtTest>

#include <functional>

class tst_frmsettings : public QObject
{
    Q_OBJECT

private slots:
    void deBoutEnBout()
    {
        DossierProgrammeTest prog;
        const QString d = prog.chemin();
        QVERIFY(CreerBaseConfig(d));
        QVERIFY(OuvrirConfig(d + QStringLiteral("Config.mdb")));
        AppState &etat = appState();
        etat = AppState{};
        InitTables(etat);
        etat.AgendaName = QStringLiteral("Agenda");
        const QString lie = d + QStringLiteral("lie/");
        const QString err = CreerBaseTest(lie, {{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("1970-01-01"), 1,
                                                 QStringLiteral("CAB7")}});
        QVERIFY2(err.isEmpty(), qPrintable(err));

        RepondeurScripte repondeur;
        // Each rule dialog is filled by the step queued for it.
        QList<std::function<void(frmRegles &)>> regles;
        ExecuteurInstalle executeur([&](QDialog &dlg) {
            if (auto *r = qobject_cast<frmRegles *>(&dlg)) {
                regles.takeFirst()(*r);
            } else if (auto *c = qobject_cast<frmChangeDate *>(&dlg)) {
                c->mebDateFinRegle[0]->setText(QStringLiteral("31/12/2026"));
                c->mebDateFinRegle[1]->setText(QStringLiteral("30/06/2027"));
                c->cmdOk_Click();
            }
            return dlg.result();
        });

        frmSettings f;
        f.show();
        f.txtPraticien[0]->setText(QStringLiteral("Dr Vasseur"));
        f.txtPraticien[1]->setText(QStringLiteral("Dr Carré"));
        f.Combo1[0]->setCurrentIndex(2);
        emit f.Combo1[0]->activated(2); // "Bleu"
        QCOMPARE(CouleurBouton(f.PicColor1[4]), etat.Nuancier[4 * 6 + 1]);
        f.txtType[2]->clear();
        f.cbOuverture->setCurrentText(QStringLiteral("07:30:00"));
        f.cmbRDVMn->setCurrentIndex(f.cmbRDVMn->findData(QStringLiteral("20")));
        f.chkFeriesAlsaceMoselle->setChecked(true);

        // A folder without a patient base is refused; one with it gives
        // its identifier.
        repondeur.repondreDossier(d);
        repondeur.repondreDossier(lie);
        QTest::mouseClick(f.DBpathDialog[1], Qt::LeftButton);
        QVERIFY(f.DBPath[1]->text().isEmpty());
        QTest::mouseClick(f.DBpathDialog[1], Qt::LeftButton);
        QCOMPARE(f.DBIdentity[1]->text(), QStringLiteral("CAB7"));

        // The rule tab: no day chosen, then a rule added on Monday, a second
        // try stopped on its date and cancelled, a duplicate, a deletion.
        QTest::mouseClick(f.btnAjouterRegle, Qt::LeftButton);
        f.optDay[2]->setChecked(true);
        regles << [](frmRegles &r) {
            QVERIFY(r.optDay[2]->isChecked());
            r.Combo1->setCurrentIndex(2);
            r.MaskEdBox1->setText(QStringLiteral("01/01/2026"));
            r.MaskEdBox3->setText(QStringLiteral("31/12/2026"));
            r.MaskEdBox2->setText(QStringLiteral("0800"));
            r.MaskEdBox4->setText(QStringLiteral("1200"));
            r.Combo2->setCurrentIndex(1);
            r.Combo3->setCurrentIndex(0);
            emit r.Combo3->activated(0);
            r.cmdOk_Click();
        };
        regles << [](frmRegles &r) {
            QCOMPARE(r.Combo2->currentText(), QStringLiteral("Dr Carré"));
            r.MaskEdBox3->setText(QStringLiteral("31/13/2026"));
            r.cmdOk_Click();
            QCOMPARE(r.result(), int(QDialog::Rejected)); // not accepted
            r.reject();
        };
        regles << [](frmRegles &r) { r.cmdOk_Click(); };
        QTest::mouseClick(f.btnAjouterRegle, Qt::LeftButton);
        QCOMPARE(f.grdRegles->rowCount(), 1);
        QCOMPARE(f.grdRegles->item(0, 4)->text(), QStringLiteral("Toutes"));
        QCOMPARE(f.grdRegles->item(0, 5)->text(), QStringLiteral("Dr Carré"));
        QTest::mouseClick(f.btnEditerRegle, Qt::LeftButton);
        QTest::mouseClick(f.btnDupliquerRegle, Qt::LeftButton);
        QCOMPARE(f.grdRegles->rowCount(), 2);
        repondeur.repondre(Prompt::Reponse::Oui);
        QTest::mouseClick(f.btnSupprimerRegle, Qt::LeftButton);
        QCOMPARE(f.grdRegles->rowCount(), 1);
        QTest::mouseClick(f.Command1, Qt::LeftButton);
        QCOMPARE(f.grdRegles->item(0, 1)->text(), QStringLiteral("30/06/2027"));
        QCOMPARE(repondeur.textes(),
                 (QStringList{QStringLiteral("Le dossier choisi ne contient pas de base de patients (Patients.mdb) :\n") + d,
                              QStringLiteral("Veuillez sélectionner un jour"), QStringLiteral("Veuillez entrer une date valide"),
                              QStringLiteral("Êtes-vous sur de vouloir supprimer la règle sélectionnée ? ")}));

        QTest::mouseClick(f.cmdOk, Qt::LeftButton);
        QCOMPARE(f.result(), int(QDialog::Accepted));
        // The rule holds at once: Monday 2 March 2026 at 9:00.
        const RegleMatch m = GetRegleForDate(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
        QCOMPARE(m.Praticien + u'|' + QString::number(m.PraticienNumero), QStringLiteral("Dr Carré|2"));
        QCOMPARE(LireConfig(QStringLiteral("Praticien1"), QStringLiteral("Initiales"), QString()), QStringLiteral("P1"));
        QCOMPARE(LireConfig(QStringLiteral("RDVType3"), QStringLiteral("Type"), QString()), QStringLiteral("RDV Type 3"));
        QCOMPARE(LireConfig(QStringLiteral("RDVType5"), QStringLiteral("Couleur1"), QString()), QString::number(etat.Nuancier[25]));
        QCOMPARE(LireConfig(QStringLiteral("Ouverture"), QStringLiteral("Debut"), QString()), QStringLiteral("07:30:00"));
        QCOMPARE(LireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QString()), QStringLiteral("20"));
        QCOMPARE(LireConfig(QStringLiteral("JoursFeries"), QStringLiteral("AlsaceMoselle"), QString()) + NomJourFerie(QDate(2026, 12, 26)),
                 QStringLiteral("1Saint-Étienne"));
        FixerFeriesAlsaceMoselle(false);
        QCOMPARE(LireIni(QStringLiteral("Agenda"), QStringLiteral("Identity1"), QString(), d + QStringLiteral("Agenda.ini")),
                 QStringLiteral("CAB7"));
        QCOMPARE(f.libelles().size(), 18);
        QCOMPARE(f.libelles().at(10).name, QStringLiteral("Praticien 2 : RDV Type 3"));
        FermerConfig();
        etat = AppState{};
    }
};

QTEST_MAIN(tst_frmsettings)
#include "tst_frmsettings.moc"
