#include "appointments/frmeditevent.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "cipher/encryptx.h"
#include "messaging/envoirappels.h"
#include "messaging/frmreminders.h"
#include "messaging/rappels.h"
#include "modemsimulator.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/demarrage.h"
#include "shell/window/frmmain.h"
#include "smtpsink.h"
#include "support/admintest.h"

#include <QComboBox>
#include <QDirIterator>
#include <QSqlQuery>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

using namespace std::chrono_literals;

namespace {

// Monday 23 November 2026, 10:00.
const QDateTime Maintenant(QDate(2026, 11, 23), QTime(10, 0));

// The program started on a fresh folder with the reminder watch on, and its
// main window; the modem bench brings the folder and the scripted answerer.
struct Poste
{
    Horloge::Fixee horloge{Maintenant};
    BancModem banc{3, 300ms};
    Demarrage demarrage{appState(), banc.dossier.chemin()};
    ParametresFenetre parametres;
    std::unique_ptr<frmMain> f;
    QList<QPair<CalendarEventPtr, QWidget *>> editeurs;
    ExecuteurInstalle executeur{[this](QDialog &d) {
        if (auto *e = qobject_cast<frmEditEvent *>(&d))
            editeurs.append({e->evenement(), d.parentWidget()});
        return int(QDialog::Rejected);
    }};

    explicit Poste(const QString &canaux)
    {
        banc.dossier.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda]\nRemindersManEnabled=Vrai\nCOM=3\n") + canaux);
        QVERIFY(!demarrage.initialiser(QString()));
        QVERIFY(!demarrage.charger(parametres));
    }
    ~Poste()
    {
        if (f)
            f->close();
    }
    // An appointment under reminder; the body as given.
    void ajouter(const QString &sujet, const QString &body, const QTime &debut, int avance) const
    {
        CalendarDataProvider &p = *appState().Calendrier;
        const CalendarEventPtr e = p.CreateNewEvent(QDateTime(Maintenant.date(), debut), QDateTime(Maintenant.date(), debut.addSecs(1200)));
        e->setSubject(sujet);
        e->setBody(body);
        e->setIsReminder(true);
        e->setReminderMinutesBeforeStart(avance);
        QVERIFY(p.AddEvent(e));
    }
    // The window is made now, the engine's first poll runs next.
    template <typename F> F *ouvrir(const char *nom)
    {
        f = std::make_unique<frmMain>(demarrage, parametres);
        QCoreApplication::processEvents();
        return f->findChild<F *>(QLatin1String(nom));
    }
    static QStringList actifs()
    {
        QStringList s;
        for (const Reminder &r : appState().MoteurRappels->ActiveReminders())
            s << r.Event->Subject();
        return s;
    }
};

QString patient(const QString &portable, const QString &mel)
{
    ChampsRdv c;
    c[ChampRdv::Nom] = QStringLiteral("PATIENT");
    c[ChampRdv::Portable] = portable;
    c[ChampRdv::Mel] = mel;
    return PackerBody(c);
}

// The numbers the modem was asked to send to, and the mail recipients.
QStringList numerosSms(const QStringList &commandes)
{
    QStringList numeros;
    for (const QString &c : commandes)
        if (c.startsWith(QLatin1String("AT+CMGS=")))
            numeros << c.mid(9).chopped(1);
    return numeros;
}

QStringList destinataires(const SmtpSink &sink)
{
    QStringList d;
    for (const SmtpSink::Message &m : sink.messages())
        d << m.rcptTo;
    return d;
}

QStringList lignes(const QTreeWidget *liste)
{
    QStringList l;
    for (int i = 0; i < liste->topLevelItemCount(); ++i)
        l << liste->topLevelItem(i)->text(0) + u'|' + liste->topLevelItem(i)->text(1);
    return l;
}

} // namespace

class tst_rappels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        FermerConfig();
        appState() = AppState{};
    }

    void regles_data()
    {
        QTest::addColumn<QString>("regle");
        QTest::addColumn<QString>("entree");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("aucun rappel") << "titre" << "0" << "0 Rappel";
        QTest::newRow("un rappel") << "titre" << "1" << "1 Rappel";
        QTest::newRow("deux rappels") << "titre" << "2" << "2 Rappels";
        QTest::newRow("29 minutes") << "echeance" << "10:31" << "29 minutes";
        QTest::newRow("45 minutes") << "echeance" << "10:47" << "1 heure";
        QTest::newRow("90 minutes, pair") << "echeance" << "11:32" << "2 heures";
        QTest::newRow("quatre jours") << "echeance" << "+4j" << "1 semaine";
        QTest::newRow("90 minutes de retard") << "echeance" << "08:32" << "2 heures de retard";
        QTest::newRow("à l'instant") << "echeance" << "10:02" << "0 minute de retard";
        QTest::newRow("secondes ignorées") << "echeance" << "10:02:59" << "0 minute de retard";
        QTest::newRow("minute franchie") << "echeance" << "10:03:00" << "1 minute";
        QTest::newRow("5 minutes") << "repos" << "5 minutes" << "5";
        QTest::newRow("2 heures") << "repos" << "  2 heures " << "120";
        QTest::newRow("1.5 h") << "repos" << "1.5 h" << "90";
        QTest::newRow("1 jour lu en minutes") << "repos" << "1 jour" << "1";
        QTest::newRow("2 jours lu en minutes") << "repos" << "2 jours" << "2";
        QTest::newRow("1 semaine lu en minutes") << "repos" << "1 semaine" << "1";
        QTest::newRow("0.5 jour") << "repos" << "0.5 jour" << "0";
        QTest::newRow("anglais") << "repos" << "2d" << "2880";
        QTest::newRow("sans unité") << "repos" << "90" << "0";
        QTest::newRow("vide") << "repos" << "" << "0";
        QTest::newRow("unité seule") << "repos" << "h" << "0";
        QTest::newRow("avance nulle") << "avance" << "0" << "5 minutes";
        QTest::newRow("avance d'un jour") << "avance" << "1440" << "1 jour";
        QTest::newRow("avance de 12 heures") << "avance" << "720" << "12 heures";
        QTest::newRow("début") << "debut" << "2026-11-23T10:30:00" << "RDV à :  23/11/2026 10:30:00";
        QTest::newRow("début à minuit") << "debut" << "2026-11-24T00:00:00" << "RDV à :  24/11/2026";
    }
    void regles()
    {
        QFETCH(QString, regle);
        QFETCH(QString, entree);
        QFETCH(QString, attendu);
        // The clock reads 10:02:30.
        const QDateTime maintenant = Maintenant.addSecs(150);
        QString obtenu;
        if (regle == QLatin1String("titre"))
            obtenu = TitreRappels(entree.toInt());
        else if (regle == QLatin1String("echeance"))
            obtenu = TexteEcheance(MinutesAvantDebut(
                maintenant, entree.startsWith(u'+') ? maintenant.addDays(4)
                                                    : QDateTime(Maintenant.date(), QTime::fromString(entree, entree.size() > 5 ? "HH:mm:ss" : "HH:mm"))));
        else if (regle == QLatin1String("repos"))
            obtenu = QString::number(MinutesRepos(entree));
        else if (regle == QLatin1String("avance"))
            obtenu = TexteRepos(entree.toInt());
        else
            obtenu = TexteDebutRappel(QDateTime::fromString(entree, Qt::ISODate));
        QCOMPARE(obtenu, attendu);
    }

    // The plain window: the deferred opening under a dialog, the list, snooze
    // with the list's own text, opening, dismissal, the menu.
    void fenetreSimple()
    {
        Poste p{QString()};
        p.ajouter(QStringLiteral("P"), patient({}, {}), QTime(10, 0), 1440);
        p.ajouter(QStringLiteral("Q"), patient({}, {}), QTime(8, 30), 0);
        p.f = std::make_unique<frmMain>(p.demarrage, p.parametres);
        p.f->DialoguesOuverts = 1;
        QCoreApplication::processEvents();
        QVERIFY(p.f->timerRMDForm->isActive());
        QVERIFY(!p.f->findChild<frmReminderSMS *>());
        p.f->DialoguesOuverts = 0;
        QVERIFY(QMetaObject::invokeMethod(p.f->timerRMDForm, "timeout"));
        auto *w = p.f->findChild<frmReminders *>(QStringLiteral("frmReminders"));
        QVERIFY(w && w->isVisible() && !w->isModal());
        QCOMPARE(w->windowTitle(), QStringLiteral("2 Rappels"));
        QCOMPARE(lignes(w->ctrlReminders), (QStringList{"P|0 minute de retard", "Q|2 heures de retard"}));
        QCOMPARE(w->txtDescription1->text(), QStringLiteral("P"));
        QCOMPARE(w->cmbSnooze->currentText(), QStringLiteral("1 jour"));

        // "1 jour" puts it off by one minute.
        QTest::mouseClick(w->btnSnooze, Qt::LeftButton);
        QCOMPARE(Poste::actifs(), QStringList{"Q"});
        QCOMPARE(w->windowTitle(), QStringLiteral("1 Rappel"));
        Horloge::fixer(Maintenant.addSecs(60));
        appState().MoteurRappels->Poll();
        QCOMPARE(lignes(w->ctrlReminders), (QStringList{"Q|2 heures de retard", "P|1 minute de retard"}));

        const QRect ligne = w->ctrlReminders->visualItemRect(w->ctrlReminders->topLevelItem(1));
        QTest::mouseClick(w->ctrlReminders->viewport(), Qt::LeftButton, {}, ligne.center());
        QCOMPARE(w->txtDescription2->text(), QStringLiteral("RDV à :  23/11/2026 10:00:00"));
        QTest::mouseClick(w->btnOpenItem, Qt::LeftButton);
        QCOMPARE(p.editeurs.size(), 1);
        QCOMPARE(p.editeurs.first().first->Subject(), QStringLiteral("P"));
        QCOMPARE(p.editeurs.first().second, w);
        QTest::mouseClick(w->btnDismiss, Qt::LeftButton);
        QCOMPARE(Poste::actifs(), QStringList{"Q"});
        QTest::mouseClick(w->btnDismissAll, Qt::LeftButton);
        QCOMPARE(w->windowTitle(), QStringLiteral("0 Rappel"));
        QCOMPARE(w->txtDescription2->text(), QStringLiteral("Pas de Rappel à afficher."));
        QVERIFY(!w->btnSnooze->isEnabled() && !w->btnDismissAll->isEnabled());
        QTest::mouseClick(w->btnCancel, Qt::LeftButton);
        QVERIFY(!w->isVisible());
        p.f->mnuReminders->trigger();
        QVERIFY(w->isVisible());
        // Dismissed for good: a new start finds nothing due.
        appState().MoteurRappels->Poll();
        QVERIFY(Poste::actifs().isEmpty());
        QVERIFY(p.banc.repondeur.appels().isEmpty());
    }

    // The batch through the send button, with the real modem dialogue over
    // a pseudo-terminal and the mails to a local SMTP server.
    void envoi_data()
    {
        QTest::addColumn<QString>("modem");
        QTest::addColumn<bool>("refus");
        QTest::addColumn<QString>("rdv");
        QTest::addColumn<QString>("pris"); // claimed meanwhile by another sender
        QTest::addColumn<QString>("statut");
        QTest::addColumn<QStringList>("restants");
        QTest::addColumn<QStringList>("sms");
        QTest::addColumn<QStringList>("mails");
        QTest::addColumn<QStringList>("boites");
        const QString envoi = QStringLiteral("Êtes-vous sur de vouloir envoyer tous les rappels ? ");
        QTest::newRow("un SMS refusé") << "ok" << false << "ABE" << "" << "Envois Mails OK / Erreur SMS RdV :2;" << QStringList{"B"}
            << QStringList{"0612345678", "0600000002"} << QStringList{"a@example.org", "e@example.org"} << QStringList{envoi};
        // The old record's copy into the patient file tells that it cannot
        // follow the dismissal.
        QTest::newRow("sans modem") << "absent" << false << "ADE" << "" << "Envois Mails OK / Envois SMS OK" << QStringList{}
                                    << QStringList{} << QStringList{"a@example.org", "e@example.org"}
                                    << QStringList{envoi, "Le rendez-vous est bien enregistré dans l'agenda, mais sa copie"};
        QTest::newRow("modem muet") << "muet" << false << "AE" << "" << "Envois Mails OK / Envois SMS OK" << QStringList{}
            << QStringList{} << QStringList{"a@example.org", "e@example.org"} << QStringList{envoi, "Pas de Mobile GSM trouvé"};
        QTest::newRow("serveur qui refuse") << "absent" << true << "ACB" << "" << "Erreur Mail RdV :1;2; / Envois SMS OK"
                                            << QStringList{"A", "C"} << QStringList{} << QStringList{} << QStringList{envoi};
        // Listed here, but sent by another station: neither sent nor
        // dismissed here.
        QTest::newRow("pris par un autre poste") << "ok" << false << "AB" << "B" << "Envois Mails OK / Envois SMS OK"
            << QStringList{"B"} << QStringList{"0612345678"} << QStringList{"a@example.org"} << QStringList{envoi};
    }
    void envoi()
    {
        QFETCH(QString, modem);
        QFETCH(bool, refus);
        QFETCH(QString, rdv);
        QFETCH(QString, pris);
        QFETCH(QString, statut);
        QFETCH(QStringList, restants);
        QFETCH(QStringList, sms);
        QFETCH(QStringList, mails);
        QFETCH(QStringList, boites);

        SmtpSink sink;
        if (refus)
            sink.setCodeRcpt(550);
        DEMARRER_SINK(sink);
        Poste p(QStringLiteral("SMS=Oui\nMAILS=Non\n"));
        if (modem == QLatin1String("absent")) {
            qputenv("TAVONEL_MODEM_DEVICE_3", QFile::encodeName(p.banc.dossier.chemin() + QStringLiteral("pas-de-modem")));
        } else {
            DEMARRER_MODEM(p.banc);
            p.banc.modem.fixerMuet(modem == QLatin1String("muet"));
            p.banc.modem.script(QStringLiteral("AT+CMGS=\"0600000002\""), ModemSimule::Erreur());
            // The modem's acceptance comes in two pieces.
            p.banc.modem.scriptCorps({{"\r\n+CMGS: 7\r\n\r\nO", "K\r\n"}, 100});
        }
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("SMTP"), sink.adresse());
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("From"), QStringLiteral("cabinet@example.org"));
        EcrireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QStringLiteral("Dr Aubert"));
        EcrireConfig(QStringLiteral("Praticien2"), QStringLiteral("Nom"), QStringLiteral("Dr Durand"));
        const QMap<QChar, QString> bodies{
            {u'A', patient(QStringLiteral("06.12 34.56.78"), QStringLiteral("a@example.org"))},
            {u'B', patient(QStringLiteral("0600000002"), QStringLiteral("b@example"))},
            {u'C', QStringLiteral("C§c§§§0633333333§§§§§§0§§")},
            {u'D', QStringLiteral("note d'un ancien rendez-vous")},
            {u'E', patient(QStringLiteral("061234567"), QStringLiteral("e@example.org"))}};
        for (qsizetype i = 0; i < rdv.size(); ++i)
            p.ajouter(rdv.at(i), bodies.value(rdv.at(i)), QTime(10, 30 + 10 * int(i)), 60);

        auto *w = p.ouvrir<frmReminderSMS>("frmReminderSMS");
        QVERIFY(w && w->isVisible());
        QCOMPARE(w->ctrlReminders->topLevelItemCount(), int(rdv.size()));
        ReminderEngine autre(appState().Calendrier.get());
        autre.setSender(QStringLiteral("autre poste"));
        autre.setEnabled(true);
        QVERIFY(autre.Poll());
        for (Reminder r : autre.ActiveReminders()) {
            if (pris.contains(r.Event->Subject()))
                QVERIFY(autre.Claim(r));
        }
        QElapsedTimer chrono;
        int battements = 0;
        QTimer pouls;
        connect(&pouls, &QTimer::timeout, [&] { ++battements; });
        pouls.start(50);
        chrono.start();
        p.banc.repondeur.repondre(Prompt::Reponse::Oui);
        QTest::mouseClick(w->Btn_Ok, Qt::LeftButton);
        // The button returns at once and the list is left alone meanwhile.
        QVERIFY(w->BatchRunning());
        QVERIFY(!w->Btn_Ok->isEnabled() && !w->btnDismiss->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(!w->BatchRunning(), 60000);
        QVERIFY(w->ProgressBar1->isVisible());
        QCOMPARE(w->ProgressBar1->maximum(), int(rdv.size()));
        QCOMPARE(w->ProgressBar1->value(), int(rdv.size()));
        QVERIFY2(battements >= chrono.elapsed() / 150, qPrintable(QStringLiteral("%1 ticks in %2 ms").arg(battements).arg(chrono.elapsed())));

        QCOMPARE(w->lblStatus->text(), statut);
        QCOMPARE(Poste::actifs(), restants);
        QCOMPARE(w->windowTitle(), TitreRappels(int(restants.size())));
        QCOMPARE(w->ctrlReminders->topLevelItemCount(), int(restants.size()));
        QCOMPARE(numerosSms(p.banc.modem.commandes()), sms);
        if (!sms.isEmpty())
            QVERIFY(p.banc.modem.corps().first().contains("Dr Durand\r"));
        QCOMPARE(destinataires(sink), mails);
        QStringList vues = p.banc.repondeur.textes();
        for (qsizetype i = 0; i < vues.size(); ++i)
            vues[i].truncate(boites.value(i, vues[i]).size());
        QCOMPARE(vues, boites);
        QCOMPARE(w->lblStatus->toolTip().isEmpty(), statut.count(u';') == 0);

        if (restants.isEmpty())
            return;
        // Dismissing all asks first; snoozing puts off every reminder and
        // closes the window.
        p.banc.repondeur.repondre(Prompt::Reponse::Non);
        QTest::mouseClick(w->btnDismissAll, Qt::LeftButton);
        QCOMPARE(Poste::actifs(), restants);
        p.banc.repondeur.repondre(Prompt::Reponse::Oui);
        QTest::mouseClick(w->btnSnooze, Qt::LeftButton);
        QCOMPARE(p.banc.repondeur.textes().last(), QStringLiteral("Êtes-vous sur de vouloir repousser tous les rappels de 1 heure? "));
        QVERIFY(Poste::actifs().isEmpty());
        QVERIFY(!w->isVisible());
    }

    // The unattended run of tavonel-admin, two started together and then a
    // third: each reminder goes out once, the one another station holds is
    // left alone, and the journal keeps each run's status line.
    void sansFenetre()
    {
        SmtpSink sink;
        DEMARRER_SINK(sink);
        BancModem banc{3, 300ms};
        DEMARRER_MODEM(banc);
        const QString d = banc.dossier.chemin();
        banc.dossier.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda1]\nPathDB1=%1\nAgendaName1=Cabinet\n[Cabinet]\n"
                                                                        "SMS=Oui\nCOM=3\n[Sauvegarge]\nCheminLog=%1journal\n").arg(d));
        {
            Demarrage demarrage(appState(), d);
            ParametresFenetre parametres;
            QVERIFY(!demarrage.initialiser(EncoderArgument(QStringLiteral("1"))));
            QVERIFY(!demarrage.charger(parametres));
            EcrireConfig(QStringLiteral("Mails"), QStringLiteral("SMTP"), sink.adresse());
            EcrireConfig(QStringLiteral("Mails"), QStringLiteral("From"), QStringLiteral("cabinet@example.org"));
            CalendarDataProvider &p = *appState().Calendrier;
            // The run keeps the real clock: tomorrow with two days' notice is
            // due whatever the day.
            const QDateTime demain = QDateTime::currentDateTime().addDays(1);
            const QStringList patients{patient(QStringLiteral("0611111111"), QStringLiteral("a@example.org")),
                                       patient(QStringLiteral("0622222222"), {}), patient({}, QStringLiteral("c@example.org")),
                                       patient(QStringLiteral("0644444444"), QStringLiteral("d@example.org"))};
            for (qsizetype i = 0; i < patients.size(); ++i) {
                const CalendarEventPtr e = p.CreateNewEvent(demain.addSecs(i * 900), demain.addSecs(i * 900 + 600));
                e->setSubject(QString(QChar(char16_t(u'A' + i))));
                e->setBody(patients.at(i));
                e->setIsReminder(true);
                e->setReminderMinutesBeforeStart(2880);
                QVERIFY(p.AddEvent(e));
            }
            ReminderEngine autre(&p);
            autre.setSender(QStringLiteral("autre-poste:1"));
            autre.setEnabled(true);
            QVERIFY(autre.Poll() && autre.Count() == 4);
            Reminder r = autre.ActiveReminders().at(3);
            QVERIFY(autre.Claim(r));
            p.Close();
            FermerConfig();
        }
        const QStringList arguments{QStringLiteral("rappels"), d, QStringLiteral("--agenda"), QStringLiteral("1")};
        QProcess p1;
        QProcess p2;
        for (QProcess *p : {&p1, &p2})
            p->start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"), arguments);
        QTRY_VERIFY_WITH_TIMEOUT(p1.state() == QProcess::NotRunning && p2.state() == QProcess::NotRunning, 120000);
        const SortieAdmin troisieme = lancerAdmin(arguments);
        QStringList sorties{QString::fromUtf8(p1.readAllStandardOutput() + p1.readAllStandardError()),
                            QString::fromUtf8(p2.readAllStandardOutput() + p2.readAllStandardError()), troisieme.texte + troisieme.erreurs};
        std::sort(sorties.begin(), sorties.end());
        const QString rien = QStringLiteral("Pas de rappel à effectuer ! \nRappels dus : 0, laissés à un autre poste : 0\n");
        QCOMPARE(sorties, (QStringList{QStringLiteral("Envois Mails OK / Envois SMS OK\nRappels dus : 3, laissés à un autre poste : 0\n"),
                                       rien, rien}));
        QCOMPARE(p1.exitCode() + p2.exitCode() + troisieme.code, 0);

        QCOMPARE(numerosSms(banc.modem.commandes()), (QStringList{"0611111111", "0622222222"}));
        QCOMPARE(destinataires(sink), (QStringList{"a@example.org", "c@example.org"}));
        const auto base = BaseSqlite::ouvrir(d + QStringLiteral("Events.mdb"), BaseSqlite::Mode::Lecture);
        QSqlQuery q(base->db());
        QVERIFY(q.exec(QStringLiteral("SELECT group_concat(Subject) FROM CalendarEvents WHERE IsReminder <> 0")) && q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("D"));
        QStringList statuts;
        for (QDirIterator it(d + QStringLiteral("journal"), QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
            QFile f(it.next());
            QVERIFY(f.open(QIODevice::ReadOnly));
            for (const QString &ligne : QString::fromLatin1(f.readAll()).split(QStringLiteral("\r\n"))) {
                if (ligne.contains(QLatin1String(" | Rappels      | ")))
                    statuts << ligne.section(QStringLiteral(" | "), 3, 3);
            }
        }
        statuts.sort();
        QCOMPARE(statuts, (QStringList{"Envois Mails OK / Envois SMS OK", "Pas de rappel à effectuer ! ", "Pas de rappel à effectuer ! "}));
    }
};

QTEST_MAIN(tst_rappels)
#include "tst_rappels.moc"
