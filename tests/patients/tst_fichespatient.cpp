// The two patient cards, driven through their controls on real bases: the
// own card (new patient, existing patient, two stations), the linked card
// with its mirror in the own base, and the field rules they stand on.

#include "patients/basestest.h"
#include "patients/bouclesrecherche.h"
#include "patients/fichepatient.h"
#include "patients/frmsignaletiques.h"
#include "patients/gestiontype.h"
#include "patients/recherchepatient.h"
#include "shell/appstate.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>

#include <optional>

namespace {

void saisir(QLineEdit *champ, const QString &texte)
{
    champ->setFocus();
    champ->selectAll();
    // Accented letters as a French keyboard sends them: a key of no code
    // with its text.
    for (const QChar c : texte)
        QTest::sendKeyEvent(QTest::Click, champ, c.unicode() < 128 ? QTest::asciiToKey(c.toLatin1()) : Qt::Key_unknown,
                            QString(c), Qt::NoModifier);
    QTest::keyClick(champ, Qt::Key_Tab);
}

// One value of a base, by statement.
QVariant valeur(const QString &base, const QString &sql)
{
    auto b = BaseSqlite::ouvrir(base, BaseSqlite::Mode::Lecture);
    QSqlQuery q(b->db());
    return q.exec(sql) && q.next() ? q.value(0) : QVariant(QStringLiteral("<aucune ligne>"));
}

template<typename Fiche>
void ouvrir(Fiche &f)
{
    QVERIFY(f.charger());
    f.show();
    QApplication::setActiveWindow(&f);
}

} // namespace

class tst_fichespatient : public QObject
{
    Q_OBJECT

    std::optional<DossierProgrammeTest> m_prog;
    std::optional<Horloge::Fixee> m_horloge;
    QString m_agenda;

    [[nodiscard]] QVariant agenda(const QString &sql) const { return valeur(m_agenda, sql); }

private slots:
    void init()
    {
        m_prog.emplace();
        m_horloge.emplace(QDateTime(QDate(2026, 3, 10), QTime(10, 0)));
        appState() = AppState{};
        appState().CheminBaseAgenda = m_prog->chemin();
        const QString err = CreerBaseTest(m_prog->chemin(), {{QStringLiteral("MARTIN"), QStringLiteral("Paul"), QStringLiteral("1980-05-01"), 3}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        m_agenda = CheminPatientsMdb(m_prog->chemin());
        ViderPatientCourant();
        RetourRecherche = 0;
    }

    void cleanup()
    {
        appState() = AppState{};
        m_horloge.reset();
        m_prog.reset();
    }

    void regles_data()
    {
        QTest::addColumn<QString>("regle");
        QTest::addColumn<QString>("entree");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("prénom composé") << "prenom" << "jean-pierre marie" << "Jean-Pierre Marie";
        QTest::newRow("prénom en capitales") << "prenom" << "ANNE-LISE" << "ANNE-LISE";
        QTest::newRow("naissance courte") << "naissance" << "15/03/85__" << "Valide 15/03/1985";
        QTest::newRow("naissance 2 chiffres 2000") << "naissance" << "01/02/05__" << "Valide 01/02/2005";
        QTest::newRow("naissance future") << "naissance" << "11/03/2026" << "Future 11/03/2026";
        QTest::newRow("naissance erronée") << "naissance" << "31/02/1990" << "Erronee 31/02/1990";
        QTest::newRow("masque vide") << "naissance" << "__/__/____" << "Vide __/__/____";
        QTest::newRow("bloc court") << "amc" << "A|B|§reste" << "A,B,";
        QTest::newRow("bloc sans barre") << "amc" << "AB§" << "";
        QTest::newRow("bloc sans fin") << "amc" << "A|B|" << "";
        QTest::newRow("barre tapée décale") << "amc" << "A|x|B|§" << "A,x,B,";
    }

    void regles()
    {
        QFETCH(QString, regle);
        QFETCH(QString, entree);
        QFETCH(QString, attendu);
        if (regle == QLatin1String("prenom")) {
            QCOMPARE(PrenomCapitalise(entree), attendu);
        } else if (regle == QLatin1String("naissance")) {
            const ControleNaissance c = ControlerNaissance(entree, QDate(2026, 3, 10));
            static const char *const etats[] = {"Vide", "Erronee", "Future", "Valide"};
            QCOMPARE(QString::fromLatin1(etats[int(c.etat)]) + u' ' + c.texte, attendu);
        } else {
            QCOMPARE(GetAMC(entree).join(u','), attendu);
            BlocAMC bloc;
            bloc[0] = QStringLiteral("A");
            bloc[18] = QStringLiteral("Z");
            QCOMPARE(GetAMC(StockerAMC(bloc)).size(), NombreValeursAMC);
            QCOMPARE(GetAMC(StockerAMC(bloc)).at(18), QStringLiteral("Z"));
        }
    }

    // A new patient made on the own card, a double refused, then the card
    // opened again on him with his appointments and his note.
    void ficheAgenda()
    {
        RepondeurScripte repondeur;
        RetourRecherche = 3;
        {
            frmSignaletiques_AG f;
            ouvrir(f);
            QCOMPARE(f.windowTitle(), QStringLiteral("Signalétique"));
            QVERIFY(!f.Vitale2->isVisible());
            QVERIFY(f.Option4->isChecked());
            QCOMPARE(f.numero(), 4); // highest Numero 3 + 1, above the next counter 2
            saisir(f.txtFields[0], QStringLiteral("dupont"));
            saisir(f.txtFields[1], QStringLiteral("jean-clément"));
            saisir(f.DN, QStringLiteral("01012030"));
            QCOMPARE(repondeur.textes(), QStringList{QStringLiteral("Date de naissance dans le futur !!")});
            saisir(f.DN, QStringLiteral("150385"));
            QCOMPARE(f.DN->displayText(), QStringLiteral("15/03/1985"));
            QCOMPARE(f.lblAge->text(), QStringLiteral("40 ans"));
            QVERIFY(f.SSTab1->isTabEnabled(3));
            f.Text3->setFocus();
            QTest::keyClick(f.Text3, 'f');
            QVERIFY(f.Option3[0]->isChecked() && f.txtFields[3]->isVisible());
            saisir(f.txtFields[13], QStringLiteral("06 12 34 56 78"));
            saisir(f.txtFields[32], QStringLiteral("jp@exemple.fr"));
            QTest::mouseClick(f.Option2, Qt::LeftButton);
            QCOMPARE(f.texte2->displayText(), QStringLiteral("10/03/2026"));
            f.HighEdit->setPlainText(QStringLiteral("Allergie pénicilline"));
            QTest::mouseClick(f.btn_enregistrer, Qt::LeftButton);
            QCOMPARE(f.result(), int(QDialog::Accepted));
        }
        const PatientCourantRecord &p = appState().PatientCourant;
        QCOMPARE(p.Numero, 4);
        QCOMPARE(p.Telephone2, QStringLiteral("06 12 34 56 78"));
        QCOMPARE(p.Identifiant, QStringLiteral("Agenda00000004"));
        QCOMPARE(agenda(QStringLiteral("SELECT Nom || '|' || Prenom || '|' || \"Date de Naissance\" || '|' || Sexe || '|' || "
                                       "Base || '|' || Sesam_Divers || '|' || Contrat || '|' || Date_Contrat "
                                       "FROM Signaletiques WHERE Numero = 4")).toString(),
                 QStringLiteral("DUPONT|Jean-Clément|1985-03-15|0|Agenda|MOI-MEME@|-1|2026-03-10"));
        QCOMPARE(agenda(QStringLiteral("SELECT Txt FROM Notes WHERE Numero = 4")).toString(), QStringLiteral("Allergie pénicilline"));

        // The same identity, case aside (accented letters too), is refused;
        // the card keeps its input.
        repondeur.effacer();
        {
            frmSignaletiques_AG f;
            ouvrir(f);
            saisir(f.txtFields[0], QStringLiteral("Dupont"));
            saisir(f.txtFields[1], QStringLiteral("JEAN-CLÉMENT"));
            saisir(f.DN, QStringLiteral("15031985"));
            QTest::mouseClick(f.btn_enregistrer, Qt::LeftButton);
            QVERIFY(f.isVisible());
            QCOMPARE(f.txtFields[0]->text(), QStringLiteral("DUPONT"));
            QCOMPARE(repondeur.textes().size(), 1);
            QVERIFY(repondeur.textes().first().startsWith(QStringLiteral("Cette fiche ne peut être crée : vérifiez votre saisie\n")));
        }
        QCOMPARE(agenda(QStringLiteral("SELECT COUNT(*) FROM Signaletiques")).toInt(), 2);

        // Opened again: summary panel, appointments, note; a phone changed.
        auto base = BaseSqlite::ouvrir(m_agenda, BaseSqlite::Mode::Existante);
        QVERIFY(base->executer(QStringLiteral("INSERT INTO Events VALUES (4, '2026-03-12', '10:30:00', 'Dr Vasseur', "
                                              "'2026-03-10 09:00:00', 'Vaccin', 91, '2026-03-10 09:00:00')")));
        base.reset();
        RetourRecherche = 2;
        ViderPatientCourant();
        appState().PatientCourant.Numero = 4;
        frmSignaletiques_AG f;
        ouvrir(f);
        QVERIFY(f.Vitale2->isVisible());
        QCOMPARE(f.lblResume[0]->text(), QStringLiteral("DUPONT"));
        QCOMPARE(f.lblDossier->text(), QStringLiteral("No dossier : 000000004"));
        QVERIFY(f.Option2->isChecked());
        QCOMPARE(f.DataRDV->rowCount(), 1);
        QCOMPARE(f.DataRDV->item(0, 3)->text(), QStringLiteral("Vaccin"));
        QCOMPARE(f.HighEdit->toPlainText(), QStringLiteral("Allergie pénicilline"));
        QCOMPARE(appState().PatientCourant.Mel, QStringLiteral("jp@exemple.fr"));
        QTest::mouseDClick(f.lblResume[0], Qt::LeftButton);
        QVERIFY(!f.Vitale2->isVisible());
        saisir(f.txtFields[13], QStringLiteral("07 00 00 00 01"));
        QTest::mouseClick(f.btn_enregistrer, Qt::LeftButton);
        QCOMPARE(f.result(), int(QDialog::Accepted));
        QCOMPARE(agenda(QStringLiteral("SELECT Telephone2 FROM Signaletiques WHERE Numero = 4")).toString(), QStringLiteral("07 00 00 00 01"));
        QCOMPARE(repondeur.textes().size(), 1);
    }

    // Two stations open a new card at once: both keep number 4; the second
    // save fails on it and the next try takes number 5.
    void deuxPostes()
    {
        RepondeurScripte repondeur;
        RetourRecherche = 3;
        frmSignaletiques_AG a;
        frmSignaletiques_AG b;
        ouvrir(a);
        ouvrir(b);
        QCOMPARE(a.numero(), b.numero());
        for (auto *f : {&a, &b}) {
            f->txtFields[0]->setText(f == &a ? QStringLiteral("ALPHA") : QStringLiteral("BETA"));
            f->txtFields[1]->setText(QStringLiteral("Jo"));
            f->DN->setText(QStringLiteral("01/01/2001"));
        }
        QTest::mouseClick(a.btn_enregistrer, Qt::LeftButton);
        QTest::mouseClick(b.btn_enregistrer, Qt::LeftButton);
        QVERIFY(b.isVisible());
        QCOMPARE(repondeur.textes().size(), 1);
        QCOMPARE(b.numero(), 5);
        QTest::mouseClick(b.btn_enregistrer, Qt::LeftButton);
        QCOMPARE(b.result(), int(QDialog::Accepted));
        QCOMPARE(agenda(QStringLiteral("SELECT group_concat(Nom || Numero, ',') FROM (SELECT * FROM Signaletiques ORDER BY Numero)")).toString(),
                 QStringLiteral("MARTIN3,ALPHA4,BETA5"));
    }

    // A patient of a linked base, picked in the editor's search and saved
    // on the linked card: one mirror in the own base, whose number the
    // appointment gets, and Agenda written back.
    void ficheLiee()
    {
        RepondeurScripte repondeur;
        const QString dossierLie = m_prog->chemin() + QStringLiteral("lie/");
        QString err = CreerBaseTest(dossierLie, {{QStringLiteral("O'BRIEN"), QStringLiteral("Anne"), QStringLiteral("1975-02-10"), 3, QStringLiteral("Cab1")}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        const QString lie = CheminPatientsMdb(dossierLie);
        BlocAMC bloc;
        bloc[0] = QStringLiteral("12345678");
        bloc[1] = QStringLiteral("A-998");
        {
            auto base = BaseSqlite::ouvrir(lie, BaseSqlite::Mode::Existante);
            QSqlQuery q(base->db());
            q.prepare(QStringLiteral("UPDATE Signaletiques SET Telephone1 = '01 40 00 00 00', \"mèl\" = 'anne@exemple.fr', Photo = ?"));
            q.addBindValue(StockerAMC(bloc));
            QVERIFY(q.exec());
        }
        appState().Path[1] = lie;
        appState().Identity[1] = QStringLiteral("Cab1");

        QStringList vus;
        ExecuteurInstalle executeur([&](QDialog &dlg) {
            vus << dlg.objectName();
            if (auto *r = qobject_cast<RecherchePatient *>(&dlg)) {
                r->show();
                r->Text1->setText(QStringLiteral("o'b"));
                r->Rechercher(1);
                r->OuvrirFiche();
                return r->result();
            }
            auto &f = static_cast<frmSignaletiques2_AG &>(dlg);
            f.show();
            f.SSTab1->setCurrentIndex(1);
            if (f.txtFields[50]->text() != bloc[0] || f.SSTab2->currentIndex() != 0 || f.lblCarte[0]->text() != QStringLiteral("Carte non lue"))
                return int(QDialog::Rejected);
            f.txtFields[13]->setText(QStringLiteral("06 98 76 54 32"));
            QTest::mouseClick(f.btn_enregistrer, Qt::LeftButton);
            return f.result();
        });
        QVERIFY(BoucleRecherchePatientEditeur());
        QCOMPARE(vus.last(), QStringLiteral("frmSignaletiques2_AG"));
        const PatientCourantRecord &p = appState().PatientCourant;
        QCOMPARE(p.Numero, 4); // the own base's number, not the linked 3
        QCOMPARE(p.Telephone1 + u'|' + p.Mel, QStringLiteral("01 40 00 00 00|anne@exemple.fr"));
        const QString miroir = QStringLiteral("SELECT COUNT(*) || '|' || group_concat(Numero) || '|' || group_concat(Telephone2) || '|' || "
                                              "group_concat(Telephone1) || '|' || group_concat(Base) FROM Signaletiques WHERE Nom = 'O''BRIEN'");
        QCOMPARE(agenda(miroir).toString(), QStringLiteral("1|4|06 98 76 54 32|01 40 00 00 00|Agenda"));
        QCOMPARE(valeur(lie, QStringLiteral("SELECT Agenda FROM Signaletiques")).toInt(), 4);
        QVERIFY(valeur(lie, QStringLiteral("SELECT Photo FROM Signaletiques")).toString().startsWith(QStringLiteral("12345678|A-998|")));

        // Saved again with a telephone emptied: still one mirror, which keeps it.
        // A changed birth date gives a new mirror, and Agenda follows it.
        for (const QString &naissance : {QStringLiteral("10/02/1975"), QStringLiteral("11/02/1975")}) {
            appState().PatientCourant.Numero = 3;
            appState().PatientCourant.Base = QStringLiteral("Cab1");
            frmSignaletiques2_AG f;
            ouvrir(f);
            f.txtFields[12]->clear();
            f.DN->setText(naissance);
            f.sortieNaissance();
            QTest::mouseClick(f.btn_enregistrer, Qt::LeftButton);
            QCOMPARE(f.result(), int(QDialog::Accepted));
        }
        QCOMPARE(agenda(miroir).toString(), QStringLiteral("2|4,5|06 98 76 54 32,06 98 76 54 32|01 40 00 00 00|Agenda,Agenda"));
        QCOMPARE(valeur(lie, QStringLiteral("SELECT Agenda FROM Signaletiques")).toInt(), 5);

        // The linked base gone at the save: the card's message, the card
        // stays open, nothing new in the own base.
        appState().PatientCourant.Numero = 3;
        frmSignaletiques2_AG f;
        ouvrir(f);
        QVERIFY(QFile::remove(lie));
        QTest::mouseClick(f.btn_enregistrer, Qt::LeftButton);
        QVERIFY(f.isVisible());
        QCOMPARE(repondeur.textes(), QStringList{QStringLiteral("Une erreur est survenue à la sauvegarde du signalétique.\n"
                                                                "Vérifiez votre saisie (notamment la validité des dates).")});
        QCOMPARE(agenda(QStringLiteral("SELECT COUNT(*) FROM Signaletiques")).toInt(), 3);
    }
};

QTEST_MAIN(tst_fichespatient)
#include "tst_fichespatient.moc"
