#include "calendar/calendardataprovider.h"
#include "calendar/reminderengine.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/base/horloge.h"
#include "shell/base/registre.h"
#include "support/dossiertest.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

// The start-up attaches the agenda's Events.mdb and switches the reminder
// watch on or off; the shut-down closes both.
class tst_demarragecalendrier : public QObject
{
    Q_OBJECT

private:
    static void remettreAZero()
    {
        FermerConfig();
        appState() = AppState{};
    }

private Q_SLOTS:
    void init() { remettreAZero(); }
    void cleanup()
    {
        remettreAZero();
        Horloge::liberer();
    }

    void storeEtRappels_data()
    {
        QTest::addColumn<QString>("interrupteur");
        QTest::addColumn<bool>("actif");
        QTest::newRow("rappels en marche") << TexteBooleen(true) << true;
        QTest::newRow("rappels arrêtés") << TexteBooleen(false) << false;
        QTest::newRow("clé absente") << QString() << false;
    }
    void storeEtRappels()
    {
        QFETCH(QString, interrupteur);
        QFETCH(bool, actif);
        DossierProgrammeTest prog;
        if (!interrupteur.isEmpty())
            prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda]\nRemindersManEnabled=") + interrupteur + u'\n');
        AppState &etat = appState();
        Demarrage d(etat, prog.chemin());
        QCOMPARE(d.initialiser(QString()), std::nullopt);
        ParametresFenetre p;
        QCOMPARE(d.charger(p), std::nullopt);

        QVERIFY2(etat.Calendrier && etat.Calendrier->IsOpen(), "Events.mdb n'est pas attaché");
        QCOMPARE(etat.TypeFournisseur, 2);
        QVERIFY(EstFichierSqlite(prog.chemin() + QStringLiteral("Events.mdb")));
        QCOMPARE(etat.Calendrier->LabelList().size(), 18);
        QCOMPARE(etat.Calendrier->LabelList().at(16).name, QStringLiteral("Praticien 1: VU"));
        QVERIFY(etat.MoteurRappels);
        QCOMPARE(etat.MoteurRappels->isEnabled(), actif);

        // An appointment whose reminder is due fires once the loop runs.
        Horloge::fixer(QDateTime(QDate(2026, 3, 9), QTime(8, 50)));
        CalendarEventPtr e = etat.Calendrier->CreateNewEvent(QDateTime(QDate(2026, 3, 9), QTime(9, 0)),
                                                           QDateTime(QDate(2026, 3, 9), QTime(9, 15)));
        e->setIsReminder(true);
        e->setReminderMinutesBeforeStart(15);
        QVERIFY(etat.Calendrier->AddEvent(e));
        QSignalSpy spy(etat.MoteurRappels.get(), &ReminderEngine::reminderAction);
        etat.MoteurRappels->Poll();
        QCOMPARE(spy.count(), actif ? 1 : 0);

        d.arreter(actif);
        QVERIFY(!etat.Calendrier->IsOpen());
        QVERIFY(!etat.MoteurRappels->isEnabled());
    }
};

QTEST_GUILESS_MAIN(tst_demarragecalendrier)
#include "tst_demarragecalendrier.moc"
