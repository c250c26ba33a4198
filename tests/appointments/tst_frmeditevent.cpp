#include "patients/basestest.h"

#include "appointments/editionrdv.h"
#include "appointments/frmeditevent.h"
#include "appointments/frmeditrecurrence.h"
#include "calendar/calendardataprovider.h"
#include "messaging/smtpsink.h"
#include "patients/bouclesrecherche.h"
#include "patients/frmsignaletiques.h"
#include "patients/gestiontype.h"
#include "patients/recherchepatient.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/window/frmmain.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/base/support.h"
#include "support/configtest.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <optional>

// The editor on a real agenda: Config.mdb with a rule, Patients.mdb with a
// patient, Events.mdb, all in a temporary program folder, and the main
// window that counts the open dialogs.
class tst_frmeditevent : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DossierProgrammeTest> m_prog;
    std::unique_ptr<Demarrage> m_demarrage;
    std::unique_ptr<frmMain> m_fenetre;
    std::optional<Horloge::Fixee> m_horloge;
    std::optional<RepondeurScripte> m_repondeur;
    ParametresFenetre m_parametres;

    static QDateTime dt(const char *texte)
    {
        return QDateTime::fromString(QString::fromLatin1(texte), QStringLiteral("yyyy-MM-dd HH:mm"));
    }

    // Typing, one key a character (accents and signs included).
    static void taper(QWidget *w, const QString &texte)
    {
        for (QChar c : texte)
            QTest::sendKeyEvent(QTest::Click, w, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }

    static CalendarDataProvider *calendrier() { return appState().Calendrier.get(); }

    static QStringList reservations()
    {
        QSqlQuery q(ConfigOuverte()->base().db());
        QStringList r;
        if (q.exec(QStringLiteral("SELECT Section, Valeur FROM Ini WHERE Item = 'Réservation' ORDER BY Section")))
            while (q.next())
                r << q.value(0).toString() + u'|' + q.value(1).toString();
        return r;
    }

    // The appointments of a day as another station reads them: a second
    // provider on the same Events.mdb.
    QList<CalendarEventPtr> relire(const QDate &jour) const
    {
        CalendarDataProvider autre;
        if (!autre.SetDataProvider(m_demarrage->connexionEvenements()) || !autre.Open())
            return {};
        return autre.RetrieveDayEvents(jour);
    }

    // The search answers with the own base's DUPONT; the own card, opened
    // next, leaves the whole patient in PatientCourant as its save does.
    static ExecuteurDialogue choisirDupont()
    {
        return [](QDialog &dlg) {
            auto *d = qobject_cast<RecherchePatient *>(&dlg);
            if (!d)
                return int(QDialog::Rejected);
            d->show();
            d->Text1->setText(QStringLiteral("dupont"));
            d->Rechercher(2);
            d->OuvrirFiche();
            return d->result();
        };
    }

    // A patient typed in by hand.
    static void remplir(frmEditEvent &d)
    {
        d.txtBody[0]->setText(QStringLiteral("MARTIN"));
        d.txtBody[1]->setText(QStringLiteral("Luc"));
        d.txtBody[2]->setText(QStringLiteral("01/01/1950"));
    }

    std::unique_ptr<frmEditEvent> nouveau(const QDateTime &debut, const QDateTime &fin, bool jourEntier = false)
    {
        auto d = std::make_unique<frmEditEvent>(calendrier(), m_fenetre.get());
        d->NewEvent(debut, fin, jourEntier);
        return d;
    }

private slots:
    void init()
    {
        m_prog = std::make_unique<DossierProgrammeTest>();
        QVERIFY(m_prog->estValide());
        m_repondeur.emplace();
        m_horloge.emplace(dt("2026-03-01 10:00"));
        const QString dossier = m_prog->chemin();
        QString err = CreerBaseTest(dossier, {{QStringLiteral("DUPONT"), QStringLiteral("Jean"), QStringLiteral("1970-03-25"), 7}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        {
            auto base = BaseSqlite::ouvrir(dossier + QStringLiteral("Patients.mdb"), BaseSqlite::Mode::Existante);
            QVERIFY(base);
            QVERIFY(base->executer(QStringLiteral("UPDATE Signaletiques SET Telephone1 = '01 23 45 67 89', Telephone2 = "
                                                  "'06 12 34 56 78', Adresse1 = '3 rue des Lilas', \"Code Postal\" = '69003', "
                                                  "Ville = 'Lyon', \"mèl\" = 'jean.dupont@exemple.fr' WHERE Numero = 7")));
        }
        FixerOuvreurFiche([](FichePatient, QWidget *) {
            qint32 n = appState().PatientCourant.Numero;
            ChargerParNumero(n);
            return true;
        });

        m_demarrage = std::make_unique<Demarrage>(appState(), dossier);
        QVERIFY(!m_demarrage->initialiser(QString()));
        m_parametres = {};
        QVERIFY(!m_demarrage->charger(m_parametres));
        // Monday mornings, practitioner 2, type 1.
        QVERIFY(AjouterRegle(*ConfigOuverte(), RegleDe2026(2, QTime(8, 0), QTime(12, 0), 2, 1, QStringLiteral("Dr Bernard"))) > 0);
        m_fenetre = std::make_unique<frmMain>(*m_demarrage, m_parametres);
        ViderPatientCourant();
    }

    void cleanup()
    {
        m_fenetre.reset();
        FixerOuvreurFiche({});
        FermerConfig();
        appState() = AppState{};
        m_demarrage.reset();
        m_horloge.reset();
        m_repondeur.reset();
        m_prog.reset();
    }

    // A secretary books DUPONT on Monday 9:30: the rule names the
    // practitioner, the slot is held while the dialog is open, the patient
    // comes from the search, and OK stores the packed record.
    void rendezVousDeBoutEnBout()
    {
        ExecuteurInstalle executeur(choisirDupont());
        auto d = nouveau(dt("2026-03-02 09:30"), dt("2026-03-02 09:45"));
        QCOMPARE(d->windowTitle(), QStringLiteral("Nouveau Rendez-vous..."));
        QCOMPARE(d->lblPraticien->text(), QStringLiteral("Dr Bernard"));
        QCOMPARE(d->cmbLabel->currentIndex(), 9);
        QCOMPARE(d->cmbLabel->currentText(), QStringLiteral("Praticien 2:Visite"));
        QCOMPARE(d->cmbStartDate->currentText(), QStringLiteral("02/03/2026"));
        QCOMPARE(d->cmbStartTime->currentText(), QStringLiteral("09:30"));
        QCOMPARE(d->cmbEndTime->currentText(), QStringLiteral("09:45"));
        QCOMPARE(d->cmbEndTime->count(), 24);
        QCOMPARE(d->cmbShowTimeAs->currentText(), QStringLiteral("Non Arrivé"));
        QCOMPARE(d->cmbReminder->currentText(), QStringLiteral("15 minutes"));
        QCOMPARE(d->txtBody[10]->text(), QStringLiteral("01/03/2026 10:00:00"));
        const QString moi = NomOrdinateur() + QStringLiteral(" - secretariat");
        QCOMPARE(reservations(), QStringList{"02/03/2026 09:30:00|" + moi});

        d->show();
        QCOMPARE(m_fenetre->DialoguesOuverts, 1);
        QCOMPARE(d->focusWidget(), d->txtBody[0]);
        QTest::mouseClick(d->Command1, Qt::LeftButton);
        QCOMPARE(d->txtBody[0]->text(), QStringLiteral("DUPONT"));
        QCOMPARE(d->txtBody[2]->text(), QStringLiteral("25/03/1970"));
        QCOMPARE(d->txtBody[4]->text(), QStringLiteral("06 12 34 56 78"));
        QCOMPARE(d->txtBody[11]->text(), QStringLiteral("7"));
        QVERIFY(d->btnView->isEnabled());
        QVERIFY(!d->chkMeeting->isChecked());
        QCOMPARE(d->focusWidget(), d->txtLocation[0]);
        {
            // The patient's own card, whatever the last search ended on; a
            // telephone changed there comes back into the appointment.
            RetourRecherche = 3;
            const OuvreurFiche essai = FixerOuvreurFiche({});
            ExecuteurInstalle carte([](QDialog &dlg) {
                auto &f = dynamic_cast<frmSignaletiques_AG &>(dlg);
                if (f.NouvelleFiche)
                    return int(QDialog::Rejected);
                f.txtFields[13]->setText(QStringLiteral("07 11 22 33 44"));
                f.btn_enregistrer_Click();
                return f.result();
            });
            QTest::mouseClick(d->btnView, Qt::LeftButton);
            FixerOuvreurFiche(essai);
            QCOMPARE(d->txtBody[4]->text(), QStringLiteral("07 11 22 33 44"));
            d->txtLocation[0]->setFocus();
        }
        taper(d->txtLocation[0], QStringLiteral("Contrôle #2 & \"suite\""));
        QCOMPARE(d->txtLocation[0]->text(), QStringLiteral("Contrôle _2 _ _suite_"));
        d->txtLocation[1]->setText(QStringLiteral("Dr Martin"));
        d->txtBody[9]->setText(QStringLiteral("à jeun"));
        // An end picked in the list keeps only its time.
        d->cmbEndTime->setCurrentIndex(5);
        emit d->cmbEndTime->activated(5);
        QCOMPARE(d->cmbEndTime->currentText(), QStringLiteral("10:00"));
        if (qEnvironmentVariableIsSet("TAVONEL_CAPTURES"))
            d->grab().save(qEnvironmentVariable("TAVONEL_CAPTURES") + QStringLiteral("/frmEditEvent.png"));

        QSignalSpy populate(d.get(), &frmEditEvent::Populate);
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        QCOMPARE(populate.count(), 1);
        QCOMPARE(m_fenetre->DialoguesOuverts, 0);
        QCOMPARE(reservations(), QStringList{});
        QCOMPARE(m_repondeur->appels().size(), 0);

        const QList<CalendarEventPtr> jour = relire(QDate(2026, 3, 2));
        QCOMPARE(jour.size(), 1);
        const CalendarEventPtr e = jour.first();
        QCOMPARE(e->Body(), QStringLiteral("DUPONT§Jean§25/03/1970§01 23 45 67 89§07 11 22 33 44§3 rue des Lilas§§69003§Lyon§à jeun§"
                                           "01/03/2026 10:00:00§7§Agenda§jean.dupont@exemple.fr§"));
        QCOMPARE(e->Subject(), QStringLiteral("DUPONT Jean (55 ans)                              01 23 45 67 89 07 11 22 33 44 (Pris le 01/03) "));
        QCOMPARE(e->Location(), QStringLiteral("Contrôle _2 _ _suite_ => Dr Martin"));
        QCOMPARE(e->StartDateTime(), dt("2026-03-02 09:30"));
        QCOMPARE(e->EndDateTime(), dt("2026-03-02 10:00"));
        QCOMPARE(e->LabelID(), 9);
        QCOMPARE(e->BusyStatus(), 1);
        QVERIFY(!e->IsMeeting());

        // Opened again, the record shows as it was written; cancel changes
        // nothing and frees the slot.
        auto m = std::make_unique<frmEditEvent>(calendrier(), m_fenetre.get());
        m->ModifyEvent(e);
        QCOMPARE(m->windowTitle(), QStringLiteral("Rendez-vous : ") + e->Subject());
        QCOMPARE(m->txtBody[0]->text(), QStringLiteral("DUPONT"));
        QCOMPARE(m->txtBody[13]->text(), QStringLiteral("jean.dupont@exemple.fr"));
        QCOMPARE(m->txtLocation[0]->text(), QStringLiteral("Contrôle _2 _ _suite_"));
        QCOMPARE(m->txtLocation[1]->text(), QStringLiteral("Dr Martin"));
        QCOMPARE(m->cmbEndTime->currentText(), QStringLiteral("10:00"));
        QCOMPARE(m->cmbReminder->currentText(), QStringLiteral("15 minutes"));
        QCOMPARE(m->lblPraticien->text(), QStringLiteral("Praticien 2"));
        QVERIFY(m->lblModif->text().startsWith(QStringLiteral("Rendez-vous pris le ")));
        QCOMPARE(appState().PatientCourant.Telephone2, QStringLiteral("07 11 22 33 44"));
        QCOMPARE(reservations(), QStringList{"02/03/2026 09:30:00|" + moi});
        m->show();
        QTest::mouseClick(m->cmdCancel, Qt::LeftButton);
        QCOMPARE(m->result(), int(QDialog::Rejected));
        QCOMPARE(reservations(), QStringList{});
        QCOMPARE(relire(QDate(2026, 3, 2)).first()->Location(), e->Location());

        // The patient has arrived: changed and stored in place.
        auto arrive = std::make_unique<frmEditEvent>(calendrier(), m_fenetre.get());
        arrive->ModifyEvent(e);
        arrive->show();
        arrive->cmbShowTimeAs->setCurrentIndex(0);
        arrive->txtLocation[1]->clear();
        QTest::mouseClick(arrive->cmdOk[0], Qt::LeftButton);
        QCOMPARE(arrive->result(), int(QDialog::Accepted));
        const QList<CalendarEventPtr> apres = relire(QDate(2026, 3, 2));
        QCOMPARE(apres.size(), 1);
        QCOMPARE(apres.first()->EventID(), e->EventID());
        QCOMPARE(apres.first()->BusyStatus(), 0);
        QCOMPARE(apres.first()->Location(), QStringLiteral("Contrôle _2 _ _suite_"));
        QCOMPARE(apres.first()->Body(), e->Body());
        QCOMPARE(m_repondeur->appels().size(), 0);
    }

    // A changed occurrence of a series becomes an exception; the other
    // days keep the series' text.
    void occurrenceModifiee()
    {
        CalendarEventPtr maitre = calendrier()->CreateNewEvent(dt("2026-03-02 09:00"), dt("2026-03-02 09:15"));
        ChampsRdv champs;
        champs[ChampRdv::Nom] = QStringLiteral("KINÉ");
        champs[ChampRdv::Prenom] = QStringLiteral("Paul");
        champs[ChampRdv::DateNaissance] = QStringLiteral("01/01/1980");
        maitre->setBody(PackerBody(champs));
        maitre->setLocation(QStringLiteral("Séance"));
        maitre->CreateRecurrence();
        QVERIFY(calendrier()->AddEvent(maitre));
        const QList<CalendarEventPtr> mardi = calendrier()->RetrieveDayEvents(QDate(2026, 3, 3));
        QCOMPARE(mardi.size(), 1);
        QCOMPARE(mardi.first()->RecurrenceState(), int(CalendarEvent::Occurrence));

        auto d = std::make_unique<frmEditEvent>(calendrier(), m_fenetre.get());
        d->ModifyEvent(mardi.first());
        QCOMPARE(d->evenement()->RecurrenceState(), int(CalendarEvent::Exception));
        QCOMPARE(d->cmbStartDate->currentText(), QStringLiteral("03/03/2026"));
        d->show();
        d->txtLocation[0]->setText(QStringLiteral("Séance annulée"));
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        QCOMPARE(relire(QDate(2026, 3, 3)).first()->Location(), QStringLiteral("Séance annulée"));
        QCOMPARE(relire(QDate(2026, 3, 3)).first()->RecurrenceState(), int(CalendarEvent::Exception));
        QCOMPARE(relire(QDate(2026, 3, 4)).first()->Location(), QStringLiteral("Séance"));

        // The series itself: no date controls, the text of every other day
        // changes, the exception stays.
        auto serie = std::make_unique<frmEditEvent>(calendrier(), m_fenetre.get());
        serie->ModifyEvent(calendrier()->GetEvent(maitre->EventID()));
        serie->show();
        QVERIFY(!serie->cmbStartDate->isVisible() && !serie->chkAllDayEvent->isVisible());
        serie->txtLocation[0]->setText(QStringLiteral("Rééducation"));
        QTest::mouseClick(serie->cmdOk[0], Qt::LeftButton);
        QCOMPARE(serie->result(), int(QDialog::Accepted));
        QCOMPARE(relire(QDate(2026, 3, 4)).first()->Location(), QStringLiteral("Rééducation"));
        QCOMPARE(relire(QDate(2026, 3, 4)).first()->StartDateTime(), dt("2026-03-04 09:00"));
        QCOMPARE(relire(QDate(2026, 3, 3)).first()->Location(), QStringLiteral("Séance annulée"));
        QCOMPARE(m_repondeur->appels().size(), 0);
    }

    // After the recurrence dialog the slot check runs again and meets this
    // station's own row: the slot is told as held and the editor closes.
    void recurrencePuisPlageReservee()
    {
        auto d = nouveau(dt("2026-03-02 10:30"), dt("2026-03-02 10:45"));
        d->show();
        int recurrences = 0;
        ExecuteurInstalle executeur([&recurrences](QDialog &dlg) {
            auto *r = qobject_cast<frmEditRecurrence *>(&dlg);
            if (!r)
                return int(QDialog::Rejected);
            ++recurrences;
            r->show();
            QTest::mouseClick(r->btnOK, Qt::LeftButton);
            return r->result();
        });
        QTest::mouseClick(d->btnRecurrence, Qt::LeftButton);
        QCOMPARE(recurrences, 1);
        QCOMPARE(d->evenement()->RecurrenceState(), int(CalendarEvent::Master));
        QVERIFY(d->plageReservee());
        QCOMPARE(m_repondeur->appels().size(), 1);
        QCOMPARE(m_repondeur->appels().first().titre, QStringLiteral("Plage horaire réservée"));
        QTRY_VERIFY(!d->isVisible());
        QCOMPARE(d->result(), int(QDialog::Rejected));
        QVERIFY(relire(QDate(2026, 3, 2)).isEmpty());
        QCOMPARE(reservations(), QStringList{});
    }

    // A slot held by another dialog, of this station or another one: the
    // message, nothing saved, and the dialog closes itself when shown.
    void plageDejaReservee_data()
    {
        QTest::addColumn<bool>("autrePoste");
        QTest::newRow("même poste, second dialogue") << false;
        QTest::newRow("autre poste") << true;
    }
    void plageDejaReservee()
    {
        QFETCH(bool, autrePoste);
        const QString moi = NomOrdinateur() + QStringLiteral(" - secretariat");
        std::unique_ptr<frmEditEvent> premier;
        QString tenant = moi;
        if (autrePoste) {
            tenant = QStringLiteral("ACCUEIL - docteur");
            EcrireConfig(QStringLiteral("02/03/2026 10:00:00"), QStringLiteral("Réservation"), tenant);
        } else {
            premier = nouveau(dt("2026-03-02 10:00"), dt("2026-03-02 10:15"));
            QVERIFY(!premier->plageReservee());
        }
        auto second = nouveau(dt("2026-03-02 10:00"), dt("2026-03-02 10:15"));
        QVERIFY(second->plageReservee());
        QCOMPARE(m_repondeur->textes(), QStringList{QStringLiteral("Cette plage horaire est déjà réservée par : ") + tenant + "  "});
        QCOMPARE(m_repondeur->appels().first().titre, QStringLiteral("Plage horaire réservée"));
        QCOMPARE(m_repondeur->appels().first().icone, Prompt::Icone::Exclamation);
        // The real modal loop: the dialog leaves by itself.
        QTimer::singleShot(5000, second.get(), [&second] { second->done(99); });
        QCOMPARE(second->exec(), int(QDialog::Rejected));
        QVERIFY(relire(QDate(2026, 3, 2)).isEmpty());
        // Leaving clears all of this station's rows, the first dialog's too.
        QCOMPARE(reservations(), autrePoste ? QStringList{"02/03/2026 10:00:00|" + tenant} : QStringList{});
    }

    // The next free slot of the label's practitioner and type (the rule:
    // Mondays 08:00-12:00), past a booked slot and one another station holds;
    // pressed again it goes on; Easter Monday is skipped and warned of.
    void prochainCreneauLibre()
    {
        CalendarEventPtr pris = calendrier()->CreateNewEvent(dt("2026-03-02 08:00"), dt("2026-03-02 08:15"));
        QVERIFY(calendrier()->AddEvent(pris));
        EcrireConfig(QStringLiteral("02/03/2026 08:15:00"), QStringLiteral("Réservation"), QStringLiteral("ACCUEIL - docteur"));
        auto d = nouveau(dt("2026-03-02 10:00"), dt("2026-03-02 10:15"));
        taper(d->txtBody[0], QStringLiteral("MARTIN"));
        const auto heures = [&d] {
            return QStringList{d->cmbStartDate->currentText(), d->cmbStartTime->currentText(), d->cmbEndTime->currentText()};
        };
        for (const char *attendu : {"02/03/2026 08:20 08:35", "02/03/2026 08:25 08:40"}) {
            QTest::mouseClick(d->btnProchainCreneau, Qt::LeftButton);
            QCOMPARE(heures().join(u' '), QString::fromLatin1(attendu));
        }
        QCOMPARE(d->txtBody[0]->text(), QStringLiteral("MARTIN"));
        const QString moi = NomOrdinateur() + QStringLiteral(" - secretariat");
        QCOMPARE(reservations(), (QStringList{"02/03/2026 08:15:00|ACCUEIL - docteur", "02/03/2026 08:25:00|" + moi}));
        d->cmbStartDate->setEditText(QStringLiteral("06/04/2026"));
        QVERIFY(d->lblFerie->isVisibleTo(d.get()) && d->lblFerie->text().contains(QStringLiteral("Lundi de Pâques")));
        QTest::mouseClick(d->btnProchainCreneau, Qt::LeftButton);
        QCOMPARE(heures().join(u' '), QStringLiteral("13/04/2026 08:00 08:15"));
        QVERIFY(!d->lblFerie->isVisibleTo(d.get()));
        // Practitioner 1 has no rule: told, and the slot stays.
        d->cmbLabel->setCurrentIndex(0);
        QTest::mouseClick(d->btnProchainCreneau, Qt::LeftButton);
        QVERIFY(m_repondeur->textes().last().startsWith(QStringLiteral("Aucun créneau libre de 15 minutes")));
        QCOMPARE(heures().join(u' '), QStringLiteral("13/04/2026 08:00 08:15"));
        QTest::mouseClick(d->cmdCancel, Qt::LeftButton);
        QCOMPARE(relire(QDate(2026, 3, 2)).size(), 1);
        QCOMPARE(relire(QDate(2026, 4, 13)).size(), 0);
    }

    // What stops OK: a beep, the focus on the control, nothing stored.
    void refusDeValider_data()
    {
        QTest::addColumn<QString>("controle");
        QTest::addColumn<QString>("texte");
        QTest::newRow("date de début") << "cmbStartDate" << "31/02/2026";
        QTest::newRow("heure de fin") << "cmbEndTime" << "9h45";
        QTest::newRow("nom vide") << "txtBody(0)" << "";
        QTest::newRow("naissance") << "txtBody(2)" << "hier";
    }
    void refusDeValider()
    {
        QFETCH(QString, controle);
        QFETCH(QString, texte);
        auto d = nouveau(dt("2026-03-02 11:00"), dt("2026-03-02 11:20"));
        d->show();
        remplir(*d);
        QWidget *w = d->findChild<QWidget *>(controle);
        QVERIFY(w);
        if (auto *c = qobject_cast<QComboBox *>(w))
            c->setEditText(texte);
        else
            qobject_cast<QLineEdit *>(w)->setText(texte);
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(m_repondeur->bips(), 1);
        QCOMPARE(m_repondeur->textes(), QStringList{});
        QVERIFY(d->isVisible());
        QVERIFY(w == d->focusWidget() || w->isAncestorOf(d->focusWidget()));
        QVERIFY(relire(QDate(2026, 3, 2)).isEmpty());
    }

    // Another station (a real process) holds Events.mdb past the wait: OK
    // tells it in French and keeps the dialog and its input; once the file
    // is free, OK again stores the appointment once.
    void fichierTenuParUnAutrePoste()
    {
        appState().Calendrier->setReadWait(200);
        auto d = nouveau(dt("2026-03-02 11:00"), dt("2026-03-02 11:20"));
        d->show();
        remplir(*d);
        QProcess tenue;
        tenue.start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"),
                    {QStringLiteral("hold-lock"), m_prog->chemin() + QStringLiteral("Events.mdb"), QStringLiteral("1")});
        QVERIFY2(tenue.waitForReadyRead(10000), "hold-lock n'a pas démarré");
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(m_repondeur->appels().size(), 1);
        QCOMPARE(m_repondeur->appels().first().titre, TitreEchecEnregistrement());
        QVERIFY(m_repondeur->textes().first().startsWith(TexteEchecEnregistrement(QString()).section(u'\n', 0, 0)));
        QVERIFY(d->isVisible());
        QCOMPARE(d->txtBody[0]->text(), QStringLiteral("MARTIN"));
        QVERIFY(tenue.waitForFinished(10000));
        QVERIFY(relire(QDate(2026, 3, 2)).isEmpty());
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(m_repondeur->appels().size(), 1);
        QVERIFY(!d->isVisible());
        QCOMPARE(relire(QDate(2026, 3, 2)).size(), 1);
    }

    // An appointment without a patient: the wording alone, "£" in field 2.
    void sansPatient()
    {
        // No rule at midnight: the chooser is asked, and closed.
        QStringList dialogues;
        ExecuteurInstalle executeur([&dialogues](QDialog &dlg) {
            dialogues << dlg.objectName();
            return int(QDialog::Rejected);
        });
        auto d = nouveau(dt("2026-03-02 00:00"), dt("2026-03-03 00:00"), true);
        QCOMPARE(dialogues, QStringList{QStringLiteral("frmPraticiens")});
        QCOMPARE(d->lblPraticien->text(), QString());
        d->show();
        QVERIFY(!d->cmbStartTime->isVisible());
        QCOMPARE(d->cmbEndDate->currentText(), QStringLiteral("02/03/2026"));
        QCOMPARE(d->cmbShowTimeAs->currentIndex(), 0);
        d->txtBody[2]->setText(QStringLiteral("12/12/1912"));
        QTest::mouseClick(d->SSCheck1, Qt::LeftButton);
        QCOMPARE(d->lblBody[0]->text(), QStringLiteral("Libellé :"));
        QCOMPARE(d->lblBody[1]->text(), QStringLiteral("Complément :"));
        QVERIFY(!d->txtBody[2]->isVisible());
        QCOMPARE(d->txtBody[2]->text(), QStringLiteral("12/12/1912£"));
        QTest::mouseClick(d->SSCheck1, Qt::LeftButton);
        QCOMPARE(d->lblBody[0]->text(), QStringLiteral("Nom :"));
        QCOMPARE(d->txtBody[2]->text(), QStringLiteral("12/12/1912"));
        d->txtBody[2]->clear();
        QTest::mouseClick(d->SSCheck1, Qt::LeftButton);
        taper(d->txtBody[0], QStringLiteral("Congrès"));
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        QCOMPARE(m_repondeur->appels().size(), 0);
        const QList<CalendarEventPtr> jour = relire(QDate(2026, 3, 2));
        QCOMPARE(jour.size(), 1);
        QCOMPARE(jour.first()->Body(), QStringLiteral("Congrès§§£§§§§§§§§01/03/2026 10:00:00§§§§"));
        QVERIFY(jour.first()->IsAllDayEvent());
        QCOMPARE(jour.first()->EndDateTime(), dt("2026-03-03 00:00"));
    }

    // The schedule list is offered only when there is a choice; the key of
    // the schedule, shown or not, goes into the record.
    void planningDuRendezVous_data()
    {
        QTest::addColumn<int>("plannings");
        QTest::newRow("aucun") << 0;
        QTest::newRow("un seul") << 1;
        QTest::newRow("deux") << 2;
    }
    void planningDuRendezVous()
    {
        QFETCH(int, plannings);
        QList<int> cles{0};
        for (int i = 1; i <= plannings; ++i)
            cles.prepend(calendrier()->AddSchedule(QStringLiteral("Salle %1").arg(i)));
        auto d = nouveau(dt("2026-03-02 09:00"), dt("2026-03-02 09:15"));
        d->show();
        QCOMPARE(d->cmbSchedule->isVisible(), plannings > 1);
        QCOMPARE(d->lblSchedule->isVisible(), plannings > 1);
        if (plannings > 1)
            d->cmbSchedule->setCurrentIndex(1);
        remplir(*d);
        QTest::mouseClick(d->cmdOk[0], Qt::LeftButton);
        QCOMPARE(d->result(), int(QDialog::Accepted));
        QCOMPARE(relire(QDate(2026, 3, 2)).first()->ScheduleID(), cles.first());
    }

    // The telephone fields take digits, blanks, "." and "+" only; a number
    // too short is red and keeps the focus; a good one turns the SMS button
    // and the reminder on.
    void telephones()
    {
        appState().RappelsSMS = true;
        auto d = nouveau(dt("2026-03-02 09:00"), dt("2026-03-02 09:15"));
        QCOMPARE(d->cmbReminder->currentText(), QStringLiteral("1 semaine"));
        QVERIFY(!d->chkReminder->isEnabled());
        d->show();
        QApplication::setActiveWindow(d.get());
        d->txtBody[4]->setFocus();
        QTest::keyClicks(d->txtBody[4], QStringLiteral("06a12"));
        QCOMPARE(d->txtBody[4]->text(), QStringLiteral("0612"));
        QCOMPARE(m_repondeur->bips(), 1);
        QTest::keyClick(d->txtBody[4], Qt::Key_Tab);
        QCOMPARE(d->txtBody[4]->palette().color(QPalette::Text), QColor(Qt::red));
        QCOMPARE(m_repondeur->bips(), 2);
        QTRY_COMPARE(d->focusWidget(), d->txtBody[4]);
        QVERIFY(!d->btnSMS->isEnabled());
        QTest::keyClicks(d->txtBody[4], QStringLiteral("345678"));
        QCOMPARE(d->txtBody[4]->palette().color(QPalette::Text), d->palette().color(QPalette::Text));
        QTest::keyClick(d->txtBody[4], Qt::Key_Tab);
        QVERIFY(d->btnSMS->isEnabled());
        QVERIFY(d->chkReminder->isEnabled());


        // Leaving the start time rebuilds the end list from it; the end
        // typed stays. The date combo boxes filter their keys too.
        d->cmbStartTime->setFocus();
        d->cmbStartTime->setEditText(QStringLiteral("10:00"));
        d->cmbStartDate->setFocus();
        QCOMPARE(d->cmbEndTime->itemText(0), QStringLiteral("10:05 (Rdv de 5 Minutes)"));
        QCOMPARE(d->cmbEndTime->currentText(), QStringLiteral("09:15"));
        taper(d->cmbStartDate, QStringLiteral("#"));
        QVERIFY(d->cmbStartDate->currentText().endsWith(u'_'));
        QCOMPARE(m_repondeur->textes(), QStringList{});

        // Two fields too short at once: the first keeps the focus without
        // the second taking it back in turn, and "Annuler" still leaves.
        const int bipsAvant = m_repondeur->bips();
        d->txtBody[4]->setText(QStringLiteral("06"));
        d->txtBody[3]->setText(QStringLiteral("01"));
        d->txtBody[3]->setFocus();
        QTest::keyClick(d->txtBody[3], Qt::Key_Tab);
        QTest::qWait(50);
        QCOMPARE(d->focusWidget(), d->txtBody[3]);
        QCOMPARE(m_repondeur->bips() - bipsAvant, 1);
        QTest::mouseClick(d->cmdCancel, Qt::LeftButton);
        QVERIFY(!d->isVisible());
    }

    // The two single send buttons report in the status line only: not set
    // up, a modem port that does not open, a mail that went out.
    void envoisSimples()
    {
        auto d = nouveau(dt("2026-03-02 09:00"), dt("2026-03-02 09:15"));
        d->show();
        d->txtBody[4]->setText(QStringLiteral("0612345678"));
        d->txtBody[13]->setText(QStringLiteral("jean.dupont@exemple.fr"));
        d->btnSMS->setEnabled(true);
        d->btnMail->setEnabled(true);
        QTest::mouseClick(d->btnSMS, Qt::LeftButton);
        QCOMPARE(d->lblStatus->text(), QStringLiteral("Envoi de SMS non configuré"));
        QTest::mouseClick(d->btnMail, Qt::LeftButton);
        QCOMPARE(d->lblStatus->text(), QStringLiteral("Envoi de mails non configuré"));
        QCOMPARE(m_repondeur->bips(), 2);

        // No modem port set for the agenda (COM "0").
        appState().RappelsSMS = true;
        QTest::mouseClick(d->btnSMS, Qt::LeftButton);
        QCOMPARE(d->lblStatus->text(), QStringLiteral("Port Com 0 inaccessible"));

        SmtpSink serveur;
        QString erreur;
        QVERIFY2(serveur.demarrer(&erreur), qPrintable(erreur));
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("From"), QStringLiteral("cabinet@exemple.fr"));
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("SMTP"), serveur.adresse());
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("Subject"), QStringLiteral("Votre rendez-vous"));
        appState().RappelsMails = true;
        QTest::mouseClick(d->btnMail, Qt::LeftButton);
        QCOMPARE(d->lblStatus->text(), QStringLiteral("Envoi du mail : OK"));
        QCOMPARE(serveur.messages().size(), 1);
        QCOMPARE(serveur.messages().first().rcptTo, QStringList{QStringLiteral("jean.dupont@exemple.fr")});
        QVERIFY(serveur.messages().first().data.contains("lundi 02 mars 2026"));

        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("SMTP"), QStringLiteral("127.0.0.1:1"));
        QTest::mouseClick(d->btnMail, Qt::LeftButton);
        QCOMPARE(d->lblStatus->text(), QStringLiteral("Erreur d'envoi du mail ..."));
        QCOMPARE(m_repondeur->textes(), QStringList{});
        QCOMPARE(m_repondeur->bips(), 2);
    }
};

QTEST_MAIN(tst_frmeditevent)
#include "tst_frmeditevent.moc"
