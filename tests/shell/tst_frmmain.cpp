#include "shell/appstate.h"
#include "shell/config.h"
#include "shell/demarrage.h"
#include "shell/frmmain.h"
#include "shell/profilini.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QLabel>
#include <QTimer>
#include <QtTest>

class tst_frmmain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        FermerConfig();
        appState() = AppState{};
    }

    void fenetreDeDepart()
    {
        DossierProgrammeTest prog;
        RepondeurScripte repondeur;
        Demarrage d(appState(), prog.chemin());
        QVERIFY(!d.initialiser(QString()));
        ParametresFenetre p;
        QVERIFY(!d.charger(p));

        frmMain f(d, p);
        QCOMPARE(f.windowTitle(), QStringLiteral("Tavonel : Agenda"));
        auto *caption = f.findChild<QLabel *>(QStringLiteral("lblCaption"));
        QVERIFY(caption);
        QCOMPARE(caption->text(), QStringLiteral("Agenda"));
        auto *timer1 = f.findChild<QTimer *>(QStringLiteral("Timer1"));
        QVERIFY(timer1);
        QCOMPARE(timer1->interval(), 10000);
        QVERIFY(timer1->isActive());
        auto *rmd = f.findChild<QTimer *>(QStringLiteral("timerRMDForm"));
        QVERIFY(rmd);
        QCOMPARE(rmd->interval(), 1000);
        QVERIFY(!rmd->isActive());
        QCOMPARE(f.DialoguesOuverts, 0);
        QCOMPARE(repondeur.appels().size(), 0);
    }

    void fermetureLanceLArret()
    {
        DossierProgrammeTest prog;
        Demarrage d(appState(), prog.chemin());
        QVERIFY(!d.initialiser(QString()));
        ParametresFenetre p;
        p.rappelsActifs = true;
        QVERIFY(!d.charger(p));
        p.rappelsActifs = true;
        frmMain f(d, p);
        f.show();
        QVERIFY(f.close());
        QVERIFY(!appState().ConfigDb);
        QCOMPARE(LireIni(QStringLiteral("Agenda"), QStringLiteral("RemindersManEnabled"), QString(), prog.chemin() + QStringLiteral("Agenda.ini")),
                 QStringLiteral("Vrai"));
    }
};

QTEST_MAIN(tst_frmmain)
#include "tst_frmmain.moc"
