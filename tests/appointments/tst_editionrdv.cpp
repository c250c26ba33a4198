#include "appointments/editionrdv.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/support.h"
#include "support/configtest.h"
#include "support/repondeurscripte.h"

#include <QProcess>
#include <QSqlQuery>
#include <QtTest>

class tst_editionrdv : public QObject
{
    Q_OBJECT

private:
    ConfigTest m_config;

    static QDateTime dt(const char *texte)
    {
        return QDateTime::fromString(QString::fromLatin1(texte), QStringLiteral("yyyy-MM-dd HH:mm"));
    }

    static QStringList lignesIni()
    {
        QSqlQuery q(ConfigOuverte()->base().db());
        QStringList lignes;
        if (q.exec(QStringLiteral("SELECT Section, Item, Valeur FROM Ini ORDER BY Section")))
            while (q.next())
                lignes << q.value(0).toString() + u'|' + q.value(1).toString() + u'|' + q.value(2).toString();
        return lignes;
    }

private slots:
    void initTestCase() { QVERIFY(m_config.estOuverte()); }

    void datesEtHeures_data()
    {
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("heure");
        QTest::addColumn<bool>("dateValide");
        QTest::addColumn<bool>("heureValide");
        QTest::addColumn<QDateTime>("moment");
        QTest::newRow("jour et heure") << "03/08/2026" << "09:05" << true << true << dt("2026-08-03 09:05");
        QTest::newRow("formes courtes") << "3/8/26" << "9:5" << true << true << dt("2026-08-03 09:05");
        QTest::newRow("secondes") << "03/08/2026" << "23:59:30" << true << true
                                  << QDateTime(QDate(2026, 8, 3), QTime(23, 59, 30));
        // A full date-time in the date control: its time adds to the time.
        QTest::newRow("date avec heure") << "03/08/2026 10:00" << "00:30" << true << true << dt("2026-08-03 10:30");
        QTest::newRow("31 février") << "31/02/2026" << "09:00" << false << true << QDateTime();
        QTest::newRow("heure 24") << "03/08/2026" << "24:00" << true << false << QDateTime();
        QTest::newRow("vides") << "" << "" << false << false << QDateTime();
        QTest::newRow("texte") << "demain" << "midi" << false << false << QDateTime();
    }
    void datesEtHeures()
    {
        QFETCH(QString, date);
        QFETCH(QString, heure);
        QFETCH(bool, dateValide);
        QFETCH(bool, heureValide);
        QFETCH(QDateTime, moment);
        QCOMPARE(IsDateValid(date), dateValide);
        QCOMPARE(IsDateValid(heure), heureValide);
        QCOMPARE(DateFromString(date, heure), moment);
    }

    void listes()
    {
        const QStringList debut = ListeHeuresDebut();
        QCOMPARE(debut.size(), 276);
        QCOMPARE(debut.first() + debut.last(), QStringLiteral("00:0523:00"));
        const QStringList dates = ListeDatesDebut(QDate(2026, 3, 2));
        QCOMPARE(dates.first() + dates.last(), QStringLiteral("23/02/202609/03/2026"));

        const QStringList fin = ListeHeuresFin(QStringLiteral("22:55"));
        QCOMPARE(fin.size(), 24);
        QCOMPARE(fin.first(), QStringLiteral("23:00 (Rdv de 5 Minutes)"));
        QCOMPARE(fin.at(12), QStringLiteral("00:00 (Rdv de 65 Minutes)"));
        QCOMPARE(fin.last(), QStringLiteral("00:55 (Rdv de 120 Minutes)"));
        QVERIFY(ListeHeuresFin(QStringLiteral("midi")).isEmpty());
    }

    // The store keeps an all-day end as exclusive; the editor shows the last
    // day and saves it back.
    void jourEntier_data()
    {
        QTest::addColumn<QDateTime>("debut");
        QTest::addColumn<QDateTime>("fin");
        QTest::addColumn<bool>("jourEntier");
        QTest::addColumn<QString>("dateFinAffichee");
        QTest::newRow("lundi à mardi 0h") << dt("2026-03-02 00:00") << dt("2026-03-03 00:00") << true << "02/03/2026";
        QTest::newRow("trois jours") << dt("2026-03-02 00:00") << dt("2026-03-05 00:00") << true << "04/03/2026";
        QTest::newRow("fin hors minuit") << dt("2026-03-02 00:00") << dt("2026-03-03 12:00") << true << "03/03/2026";
        QTest::newRow("rdv jusqu'à minuit") << dt("2026-03-02 23:00") << dt("2026-03-03 00:00") << false << "03/03/2026";
    }
    void jourEntier()
    {
        QFETCH(QDateTime, debut);
        QFETCH(QDateTime, fin);
        QFETCH(bool, jourEntier);
        QFETCH(QString, dateFinAffichee);
        const DatesAffichees a = AfficherDates(debut, fin, jourEntier);
        QCOMPARE(a.dateFin, dateFinAffichee);
        QCOMPARE(ValidateDates(a), ControleDate::Aucun);
        const DatesLues lues = LireDates(a, jourEntier);
        QCOMPARE(lues.debut, debut);
        QCOMPARE(lues.fin, fin);
    }

    void reservation()
    {
        RepondeurScripte repondeur;
        const QString moi = ValeurReservation();
        QCOMPARE(moi, NomOrdinateur() + QStringLiteral(" - secretariat"));
        QCOMPARE(TexteDateHeureDefaut(dt("2026-03-02 09:30")), QStringLiteral("02/03/2026 09:30:00"));
        QCOMPARE(TexteDateHeureDefaut(dt("2026-03-02 00:00")), QStringLiteral("02/03/2026"));

        // A free slot is taken; taking it again finds this station's own row.
        QCOMPARE(ReserverPlage(dt("2026-03-02 09:30")), std::nullopt);
        QCOMPARE(ReserverPlage(dt("2026-03-02 09:30")), std::optional<QString>(moi));
        // Another station holds the slot at 10:00; one starting 10:05 is not
        // noticed, the guard being the start text.
        EcrireConfig(QStringLiteral("02/03/2026 10:00:00"), QStringLiteral("Réservation"), QStringLiteral("POSTE2 - docteur"));
        QCOMPARE(ReserverPlage(dt("2026-03-02 10:00")), std::optional<QString>(QStringLiteral("POSTE2 - docteur")));
        QCOMPARE(ReserverPlage(dt("2026-03-02 10:05")), std::nullopt);
        QCOMPARE(TextePlageReservee(QStringLiteral("POSTE2 - docteur")),
                 QStringLiteral("Cette plage horaire est déjà réservée par : POSTE2 - docteur  "));
        QCOMPARE(lignesIni().filter(QStringLiteral("|Réservation|")),
                 (QStringList{"02/03/2026 09:30:00|Réservation|" + moi, "02/03/2026 10:00:00|Réservation|POSTE2 - docteur",
                              "02/03/2026 10:05:00|Réservation|" + moi}));
        QCOMPARE(lignesIni().filter(ItemVeilleReservation).size(), 2);
        // A station elsewhere that stopped confirming half an hour ago
        // holds its slot no longer.
        EcrireConfig(QStringLiteral("02/03/2026 10:00:00"), ItemVeilleReservation,
                     ValeurVeille(QStringLiteral("POSTE2"), 42, QStringLiteral("tavonel"), Horloge::maintenant().addSecs(-31 * 60)));
        QCOMPARE(ReserverPlage(dt("2026-03-02 10:00")), std::nullopt);

        // Leaving clears every row of this station and only those.
        EcrireConfig(QStringLiteral("02/03/2026 11:00:00"), QStringLiteral("Réservation"), QStringLiteral("POSTE2 - docteur"));
        LibererReservations();
        QCOMPARE(lignesIni(), QStringList{QStringLiteral("02/03/2026 11:00:00|Réservation|POSTE2 - docteur")});
        QCOMPARE(repondeur.appels().size(), 0);
    }

    // This computer's processes as the rule sees them: this test runs, a
    // finished process does not, nor another program under this number.
    void processusVivant()
    {
        const qint64 moi = QCoreApplication::applicationPid();
        QCOMPARE(ProcessusAgendaVivant(moi, QStringLiteral("tst_editionrdv")), true);
        QCOMPARE(ProcessusAgendaVivant(moi, QStringLiteral("tavonel")), false);
        QProcess fini;
        fini.start(QStringLiteral("true"));
        QVERIFY(fini.waitForStarted(5000));
        const qint64 pid = fini.processId();
        QVERIFY(fini.waitForFinished(5000));
        QCOMPARE(ProcessusAgendaVivant(pid, QStringLiteral("true")), false);
    }

    // Whether a reservation still counts, by its watch row: this computer
    // can ask whether the agenda runs, another only tells its age.
    void reservationAbandonnee_data()
    {
        QTest::addColumn<QString>("poste");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<bool>("vivant");
        QTest::addColumn<bool>("abandonnee");
        QTest::newRow("ici, en marche") << "ICI" << 45 << true << false;
        QTest::newRow("ici, arrêté") << "ici" << 1 << false << true;
        QTest::newRow("ailleurs, 29 min") << "LA-BAS" << 29 << false << false;
        QTest::newRow("ailleurs, 31 min") << "LA-BAS" << 31 << true << true;
        QTest::newRow("veille illisible") << "" << 90 << false << false;
    }
    void reservationAbandonnee()
    {
        QFETCH(QString, poste);
        QFETCH(int, minutes);
        QFETCH(bool, vivant);
        QFETCH(bool, abandonnee);
        static bool s_vivant = false;
        s_vivant = vivant;
        const QDateTime maintenant = dt("2026-03-02 12:00");
        const QString veille = poste.isEmpty() ? QStringLiteral("ICI;x;tavonel")
                                               : ValeurVeille(poste, 42, QStringLiteral("tavonel"), maintenant.addSecs(-60 * minutes));
        QCOMPARE(ReservationAbandonnee(veille, maintenant, QStringLiteral("ICI"), [](qint64, const QString &) { return s_vivant; }),
                 abandonnee);
    }

    void champManquant_data()
    {
        QTest::addColumn<QString>("nom");
        QTest::addColumn<QString>("prenom");
        QTest::addColumn<QString>("naissance");
        QTest::addColumn<int>("champ");
        QTest::newRow("patient complet") << "DUPONT" << "Jean" << "25/03/1970" << -1;
        QTest::newRow("sans nom") << "" << "Jean" << "25/03/1970" << 0;
        QTest::newRow("sans prénom") << "DUPONT" << "" << "25/03/1970" << 1;
        QTest::newRow("naissance vide") << "DUPONT" << "Jean" << "" << 2;
        QTest::newRow("naissance fausse") << "DUPONT" << "Jean" << "31/02/1970" << 2;
        QTest::newRow("sans patient: le libellé suffit") << "Réunion" << "" << "£" << -1;
        QTest::newRow("sans patient ni libellé") << "" << "" << "£" << 0;
    }
    void champManquant()
    {
        QFETCH(QString, nom);
        QFETCH(QString, prenom);
        QFETCH(QString, naissance);
        QFETCH(int, champ);
        ChampsRdv c;
        c[ChampRdv::Nom] = nom;
        c[ChampRdv::Prenom] = prenom;
        c[ChampRdv::DateNaissance] = naissance;
        QCOMPARE(ChampManquant(c), champ);
    }

    // Fields 3, 4 and 13 after a check, with SMS and mail reminders on.
    void validite_data()
    {
        QTest::addColumn<int>("champ");
        QTest::addColumn<QString>("texte");
        QTest::addColumn<bool>("autreBouton");
        QTest::addColumn<bool>("rouge");
        QTest::addColumn<int>("bouton");  // -1 untouched, 0 off, 1 on
        QTest::addColumn<int>("rappel");  // the same for chkReminder
        QTest::newRow("téléphone court") << 3 << "01 02" << false << true << -1 << -1;
        QTest::newRow("téléphone bon") << 3 << "01.02.03.04.05" << false << false << -1 << -1;
        QTest::newRow("portable court, mail actif") << 4 << "+33 6" << true << true << 0 << 1;
        QTest::newRow("portable court, pas de mail") << 4 << "0612" << false << true << 0 << 0;
        QTest::newRow("portable bon") << 4 << "+33 6 12 34 56 78" << false << false << 1 << 1;
        QTest::newRow("portable vide") << 4 << "" << true << false << 0 << -1;
        QTest::newRow("mail sans point") << 13 << "a@b" << true << true << 0 << 1;
        QTest::newRow("mail bon") << 13 << "a@b.fr" << false << false << 1 << 1;
    }
    void validite()
    {
        QFETCH(int, champ);
        QFETCH(QString, texte);
        QFETCH(bool, autreBouton);
        QFETCH(bool, rouge);
        QFETCH(int, bouton);
        QFETCH(int, rappel);
        const AffichageValidite a = ValiditeChamp(champ, texte, true, true, true, autreBouton);
        QCOMPARE(a.rouge, rouge);
        QCOMPARE(a.bouton ? int(*a.bouton) : -1, bouton);
        QCOMPARE(a.rappelActif ? int(*a.rappelActif) : -1, rappel);
    }

    // The reminder of the record against the box: a checked box always
    // rewrites the flag and empties the sound; the minutes change only when
    // the text's leading number differs from them.
    void rappel_data()
    {
        QTest::addColumn<bool>("drapeau");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<bool>("coche");
        QTest::addColumn<QString>("texte");
        QTest::addColumn<bool>("drapeauApres");
        QTest::addColumn<int>("minutesApres");
        QTest::addColumn<bool>("sonVide");
        QTest::newRow("décoché sur rien") << false << 15 << false << "1 semaine" << false << 15 << false;
        QTest::newRow("décoché sur rappel") << true << 15 << false << "1 semaine" << false << 15 << true;
        QTest::newRow("coché, même nombre") << true << 15 << true << "15 minutes" << true << 15 << true;
        QTest::newRow("coché, une semaine") << false << 15 << true << "1 semaine" << true << 10080 << true;
        QTest::newRow("coché, texte inconnu") << false << 15 << true << "3 h" << true << 0 << true;
    }
    void rappel()
    {
        QFETCH(bool, drapeau);
        QFETCH(int, minutes);
        QFETCH(bool, coche);
        QFETCH(QString, texte);
        QFETCH(bool, drapeauApres);
        QFETCH(int, minutesApres);
        QFETCH(bool, sonVide);
        CalendarEventPtr e = CalendarEvent::create();
        e->setIsReminder(drapeau);
        e->setReminderMinutesBeforeStart(minutes);
        e->setReminderSoundFile(QStringLiteral("ding.wav"));
        SaisieRdv s;
        s.dates = AfficherDates(dt("2026-03-02 09:00"), dt("2026-03-02 09:15"), false);
        s.rappel = coche;
        s.dureeRappel = texte;
        LireSaisieDansEvenement(s, *e);
        QCOMPARE(e->IsReminder(), drapeauApres);
        QCOMPARE(e->ReminderMinutesBeforeStart(), minutesApres);
        QCOMPARE(e->ReminderSoundFile().isEmpty(), sonVide);
    }

    // Controls to record and back, then the same controls on a master,
    // whose dates are its pattern's.
    void allerRetour()
    {
        SaisieRdv s;
        s.champs[ChampRdv::Nom] = QStringLiteral("DUPONT");
        s.champs[ChampRdv::NumeroPatient] = QStringLiteral("7");
        s.motif = QStringLiteral("Vaccin");
        s.adressePar = QStringLiteral("Dr Martin");
        s.dates = AfficherDates(dt("2026-03-02 09:00"), dt("2026-03-02 09:20"), false);
        s.labelId = 9;
        s.presence = 0;
        s.scheduleId = 2;
        s.prive = true;
        s.dejaVu = true;
        s.markup = QStringLiteral("  à jeun  ");

        CalendarEventPtr e = CalendarEvent::create();
        e->setScheduleID(5);
        LireSaisieDansEvenement(s, *e);
        QCOMPARE(e->StartDateTime(), dt("2026-03-02 09:00"));
        QCOMPARE(e->EndDateTime(), dt("2026-03-02 09:20"));
        QCOMPARE(e->Location(), QStringLiteral("Vaccin => Dr Martin"));
        QCOMPARE(e->LabelID(), 9);
        QCOMPARE(e->BusyStatus(), 0);
        QCOMPARE(e->ScheduleID(), 2);
        QVERIFY(e->IsPrivate() && e->IsMeeting() && !e->IsAllDayEvent());
        QCOMPARE(e->CustomProperties().GetProperty(EntreeMarkup).toString(), QStringLiteral("à jeun"));

        SaisieRdv lu;
        const LectureSaisie l = LireEvenementDansSaisie(*e, lu);
        QVERIFY(!l.ancienneForme && !l.sansPatient);
        QCOMPARE(lu.champs, s.champs);
        QCOMPARE(lu.adressePar, s.adressePar);
        QCOMPARE(lu.dates.heureFin, s.dates.heureFin);
        QCOMPARE(lu.scheduleId, std::optional<int>(2));
        QCOMPARE(lu.markup, QStringLiteral("à jeun"));

        // No schedule chosen keeps the record's; an empty markup goes away.
        s.scheduleId.reset();
        s.markup = QStringLiteral("   ");
        // A master keeps its dates; the rest is rebuilt from the controls.
        s.motif = QStringLiteral("Rappel");
        s.adressePar.clear();
        s.dates = AfficherDates(dt("2026-04-01 15:00"), dt("2026-04-01 15:30"), false);
        e->CreateRecurrence();
        QCOMPARE(e->RecurrenceState(), int(CalendarEvent::Master));
        LireSaisieDansEvenement(s, *e);
        QCOMPARE(e->StartDateTime(), dt("2026-03-02 09:00"));
        QCOMPARE(e->Location(), QStringLiteral("Rappel"));
        QCOMPARE(e->ScheduleID(), 2);
        QVERIFY(!e->CustomProperties().HasProperty(EntreeMarkup));
    }

    void lectureAncienneFormeEtSansPatient()
    {
        CalendarEventPtr e = CalendarEvent::create();
        e->setBody(QStringLiteral("Rappeler le laboratoire"));
        e->setSubject(QStringLiteral("Laboratoire"));
        SaisieRdv s;
        s.champs[ChampRdv::Nom] = QStringLiteral("gardé");
        LectureSaisie l = LireEvenementDansSaisie(*e, s);
        QVERIFY(l.ancienneForme);
        QCOMPARE(s.champs[ChampRdv::Commentaire], QStringLiteral("Rappeler le laboratoire"));
        QCOMPARE(s.champs[ChampRdv::Nom], QStringLiteral("gardé"));
        QCOMPARE(s.sujet, QStringLiteral("Laboratoire"));

        e->setBody(QStringLiteral("Réunion§§£§§§§§§§§§§§§"));
        SaisieRdv t;
        l = LireEvenementDansSaisie(*e, t);
        QVERIFY(!l.ancienneForme);
        QVERIFY(l.sansPatient);
        QCOMPARE(t.champs[ChampRdv::Nom], QStringLiteral("Réunion"));
        QCOMPARE(t.sujet, QString());
    }

};

QTEST_GUILESS_MAIN(tst_editionrdv)
#include "tst_editionrdv.moc"
