#pragma once

#include "calendar/calendardataprovider.h"
#include "calendar/view/calendarview.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/demarrage.h"
#include "shell/window/frmmain.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QtTest>

#include <memory>

// A station started as the program starts it: a fresh program folder (with
// the Agenda.ini given, if any), the stores and settings Demarrage reads, the
// clock fixed, every message box answered from a queue, and the main window
// over all of it unless `fenetre` is false. Leaving closes the configuration
// and forgets the program's state before the folder goes.
struct PosteTest
{
    Horloge::Fixee horloge;
    DossierProgrammeTest prog;
    RepondeurScripte repondeur;
    Demarrage demarrage{appState(), prog.chemin()};
    ParametresFenetre parametres;
    std::unique_ptr<frmMain> f;

    explicit PosteTest(const QDateTime &maintenant, const QString &agendaIni = {}, bool fenetre = true)
        : horloge(maintenant)
    {
        if (!agendaIni.isEmpty())
            prog.ecrire(QStringLiteral("Agenda.ini"), agendaIni);
        QVERIFY(!demarrage.initialiser(QString()));
        QVERIFY(!demarrage.charger(parametres));
        if (fenetre)
            f = std::make_unique<frmMain>(demarrage, parametres);
    }
    PosteTest(const PosteTest &) = delete;
    PosteTest &operator=(const PosteTest &) = delete;
    ~PosteTest()
    {
        f.reset();
        FermerConfig();
        appState() = AppState{};
    }
};
