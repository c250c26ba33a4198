#include "calendar/frmresourcesmanager.h"
#include "shell/base/basesqlite.h"
#include "shell/base/modal.h"
#include "support/postetest.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

#include <functional>

// The hidden resources manager of the main window, on the Events.mdb of a
// fresh program folder: its schedule buttons change the store itself.
class tst_frmresourcesmanager : public QObject
{
    Q_OBJECT

private slots:
    void planningsDeLaBase()
    {
        // A store held by another workstation is given up quickly.
        const int delai = BaseSqlite::delaiOccupe();
        BaseSqlite::fixerDelaiOccupe(300);
        auto remettre = qScopeGuard([delai] { BaseSqlite::fixerDelaiOccupe(delai); });
        PosteTest p(QDateTime(QDate(2026, 3, 1), QTime(10, 0)));
        frmMain &f = *p.f;
        RepondeurScripte &repondeur = p.repondeur;
        CalendarDataProvider &store = *appState().Calendrier;
        const QString connexion = store.ConnectionString();

        int ouverts = 0;
        std::function<void(QDialog &)> scenario;
        ExecuteurInstalle executeur([&](QDialog &d) {
            d.show();
            ouverts = f.DialoguesOuverts;
            scenario(d);
            return d.result();
        });
        auto ecrire = [](QDialog &d, const QString &texte) {
            auto *t = d.findChild<QLineEdit *>(QStringLiteral("txtScheduleName"));
            t->clear();
            QTest::keyClicks(t, texte);
        };
        auto clic = [](QDialog &d, const char *nom) {
            QTest::mouseClick(d.findChild<QAbstractButton *>(QLatin1String(nom)), Qt::LeftButton);
        };
        auto liste = [](QDialog &d, const char *nom) { return d.findChild<QListWidget *>(QLatin1String(nom)); };
        auto nomRessource = [](QDialog &d) { return d.findChild<QLineEdit *>(QStringLiteral("txtResourceName"))->text(); };

        scenario = [&](QDialog &d) {
            QCOMPARE(d.windowTitle(), QStringLiteral("Calendar Resources Manager"));
            QCOMPARE(liste(d, "lstDataProviders")->item(0)->text(), connexion);
            QVERIFY(!d.findChild<QPushButton *>(QStringLiteral("btnDPAdd"))->isEnabled());
            QVERIFY(d.findChild<QPushButton *>(QStringLiteral("btnDPChange"))->toolTip().contains(QStringLiteral("Fichier > Ouvrir")));
            QCOMPARE(nomRessource(d), QStringLiteral("Events.mdb"));
            QListWidget *plannings = liste(d, "lstSchedules");
            for (const QString &nom : {QStringLiteral("Dr Martin"), QStringLiteral("Salle 2"), QStringLiteral("dr martin")}) {
                ecrire(d, nom);
                clic(d, "btnScheduleAdd");
            }
            QCOMPARE(plannings->count(), 2);
            QCOMPARE(repondeur.textes(), QStringList{QStringLiteral("Un planning s'appelle déjà « dr martin ». Choisissez un autre nom.")});
            {
                // Another workstation writing: the add is refused, the name stays.
                auto autre = BaseSqlite::ouvrir(p.prog.chemin() + QStringLiteral("Events.mdb"), BaseSqlite::Mode::Existante);
                QVERIFY(autre && autre->executer(QStringLiteral("BEGIN IMMEDIATE")));
                ecrire(d, QStringLiteral("Accueil"));
                clic(d, "btnScheduleAdd");
                QVERIFY(repondeur.textes().last().startsWith(QStringLiteral("Le planning « Accueil » n'a pas pu être ajouté")));
                QCOMPARE(d.findChild<QLineEdit *>(QStringLiteral("txtScheduleName"))->text(), QStringLiteral("Accueil"));
                autre->executer(QStringLiteral("ROLLBACK"));
            }
            plannings->setCurrentRow(1);
            ecrire(d, QStringLiteral("Salle 3"));
            clic(d, "btnScheduleChange");
            QCOMPARE(plannings->item(1)->text(), QStringLiteral("Salle 3"));

            // One schedule shown: the automatic name follows.
            clic(d, "chkSchedulesShowAll");
            plannings->item(0)->setCheckState(Qt::Checked);
            QCOMPARE(nomRessource(d), QStringLiteral("Events.mdb: Dr Martin"));
            QCOMPARE(liste(d, "lstResources")->item(0)->text(), QStringLiteral("Events.mdb: Dr Martin"));
            if (qEnvironmentVariableIsSet("TAVONEL_CAPTURES"))
                d.grab().save(qEnvironmentVariable("TAVONEL_CAPTURES") + QStringLiteral("/ressources.png"));

            // A schedule still in use is removed only once confirmed.
            CalendarEventPtr e = store.CreateNewEvent(QDateTime(QDate(2026, 3, 2), QTime(9, 0)), QDateTime(QDate(2026, 3, 2), QTime(9, 15)));
            e->setScheduleID(plannings->item(0)->data(Qt::UserRole).toInt());
            QVERIFY(store.AddEvent(e));
            repondeur.effacer();
            repondeur.repondre(Prompt::Reponse::Non);
            repondeur.repondre(Prompt::Reponse::Oui);
            for (int fois = 0; fois < 2; ++fois) {
                plannings->setCurrentRow(0);
                clic(d, "btnScheduleRemove");
            }
            QCOMPARE(repondeur.appels().size(), 2);
            QVERIFY(repondeur.textes().first().startsWith(QStringLiteral("Le planning « Dr Martin » est encore utilisé par 1 rendez-vous.")));
            QCOMPARE(plannings->count(), 1);
            QCOMPARE(nomRessource(d), QStringLiteral("Events.mdb"));

            clic(d, "btnResAdd");
            QCOMPARE(nomRessource(d), QStringLiteral("new resource"));
            clic(d, "btnResRemove");
            QCOMPARE(liste(d, "lstResources")->count(), 1);
            liste(d, "lstResources")->item(0)->setCheckState(Qt::Unchecked);
            clic(d, "btnOK");
        };
        f.mnuResourcesManager->trigger();
        QCOMPARE(ouverts, 0);
        QCOMPARE(f.DialoguesOuverts, 0);
        CalendarDataProvider relu;
        QVERIFY(relu.SetDataProvider(connexion) && relu.Open());
        QCOMPARE(relu.Schedules().size(), 1);
        QCOMPARE(relu.Schedules().first().Name, QStringLiteral("Salle 3"));

        // The resource lasts for the session, unchecked by OK.
        scenario = [&](QDialog &d) {
            QCOMPARE(liste(d, "lstResources")->item(0)->checkState(), Qt::Unchecked);
            QVERIFY(!d.findChild<QCheckBox *>(QStringLiteral("chkSchedulesShowAll"))->isChecked());
            clic(d, "btnCancel");
        };
        f.mnuResourcesManager->trigger();
        QCOMPARE(repondeur.appels().size(), 2);

        // The calendar showing one schedule: a new appointment falls in it.
        scenario = [&](QDialog &d) {
            ecrire(d, QStringLiteral("Salle 4"));
            clic(d, "btnScheduleAdd");
            liste(d, "lstResources")->item(0)->setCheckState(Qt::Checked);
            liste(d, "lstSchedules")->findItems(QStringLiteral("Salle 4"), Qt::MatchExactly).first()->setCheckState(Qt::Checked);
            clic(d, "btnOK");
        };
        f.mnuResourcesManager->trigger();
        int planning = 0;
        scenario = [&](QDialog &d) {
            if (auto *liste = d.findChild<QComboBox *>(QStringLiteral("cmbSchedule")))
                planning = liste->currentData().toInt();
            d.reject();
        };
        f.mnuNewEvent->trigger();
        QCOMPARE(planning, store.Schedules().last().ScheduleID);
    }
};

QTEST_MAIN(tst_frmresourcesmanager)
#include "tst_frmresourcesmanager.moc"
