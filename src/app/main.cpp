#include "shell/appstate.h"
#include "shell/demarrage.h"
#include "shell/base/dossiers.h"
#include "shell/base/processus.h"
#include "shell/window/frmmain.h"
#include "shell/base/prompt.h"
#include "shell/base/promptwidgets.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <cstdio>

namespace {

// The fatal box: its text also goes to standard error so that a launcher's
// log shows why the agenda did not open.
int fin(const QString &texte)
{
    std::fprintf(stderr, "Tavonel : %s\n", texte.toLocal8Bit().constData());
    std::fflush(stderr);
    Prompt::informer(QStringLiteral("Tavonel"), texte, Prompt::Icone::Critique);
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    PreparerProcessus();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tavonel"));
    QApplication::setOrganizationName(QStringLiteral("Tavonel"));
    // The menu entry and icon of an installed program (tavonel.desktop).
    QGuiApplication::setDesktopFileName(QStringLiteral("tavonel"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("tavonel")));

    // Qt's own texts (context menus of the text fields, standard buttons)
    // in French, whatever the machine's language.
    QTranslator traductionQt;
    if (traductionQt.load(QLocale(QLocale::French, QLocale::France), QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&traductionQt);

    RepondeurWidgets repondeur;
    Prompt::installer(&repondeur);

    // At most one argument: the enciphered agenda number.
    const QStringList arguments = QApplication::arguments();
    const QString argument = arguments.size() > 1 ? arguments.at(1) : QString();

    Demarrage demarrage(appState(), DossierProgramme());
    if (const auto fatal = demarrage.initialiser(argument))
        return fin(*fatal);
    ParametresFenetre parametres;
    if (const auto fatal = demarrage.charger(parametres))
        return fin(*fatal);

    frmMain fenetre(demarrage, parametres);
    fenetre.show();
    const int code = QApplication::exec();
    Prompt::installer(nullptr);
    return code;
}
