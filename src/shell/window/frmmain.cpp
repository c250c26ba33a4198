#include "shell/window/frmmain.h"

#include "appointments/controlemiroir.h"
#include "appointments/editionrdv.h"
#include "appointments/impressionticket.h"
#include "appointments/miroir.h"
#include "calendar/calendardataprovider.h"
#include "calendar/frmresourcesmanager.h"
#include "calendar/openprovider.h"
#include "calendar/sqlitecalendarstore.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/colorationregles.h"
#include "calendar/view/datepicker.h"
#include "messaging/frmmailsmsconfig.h"
#include "messaging/frmreminders.h"
#include "patients/bouclesrecherche.h"
#include "patients/dialoguesouverts.h"
#include "patients/gestiontype.h"
#include "rules/frmsettings.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/dossiers.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/window/frmcalendardatachooser.h"
#include "shell/window/iconesbarre.h"
#include "shell/window/impressionagenda.h"
#include "shell/base/prompt.h"
#include "shell/base/registre.h"
#include "shell/base/support.h"
#include "shell/window/frmintro.h"
#include "shell/regleslignedate.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QHelpEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

namespace {

QAction *action(QMenu *menu, const char *nom, const QString &legende, const QKeySequence &raccourci = {})
{
    auto *a = menu->addAction(legende);
    a->setObjectName(QLatin1String(nom));
    if (!raccourci.isEmpty())
        a->setShortcut(raccourci);
    return a;
}

QAction *cachee(QMenu *menu, const char *nom, const QString &legende)
{
    QAction *a = action(menu, nom, legende);
    a->setVisible(false);
    return a;
}

QMenu *menu(QWidget *parent, QMenuBar *barre, const char *nom, const QString &legende)
{
    auto *m = new QMenu(legende, parent);
    m->setObjectName(QLatin1String(nom));
    m->menuAction()->setObjectName(QLatin1String(nom));
    if (barre)
        barre->addMenu(m);
    return m;
}

QMenu *sousMenu(QMenu *parent, const char *nom, const QString &legende)
{
    QMenu *m = parent->addMenu(legende);
    m->setObjectName(QLatin1String(nom));
    return m;
}

} // namespace

frmMain::frmMain(Demarrage &demarrage, const ParametresFenetre &parametres, QWidget *parent)
    : QMainWindow(parent)
    , m_demarrage(demarrage)
    , m_parametres(parametres)
{
    setObjectName(QStringLiteral("frmMain"));
    FixerCompteurDialogues(&DialoguesOuverts);
    const AppState &etat = appState();
    setWindowTitle(QStringLiteral("Tavonel : ") + etat.AgendaName);
    // No toolbar menu on a right click: the bar without the patient search
    // stays out of reach.
    setContextMenuPolicy(Qt::PreventContextMenu);

    choisirOccurrenceOuSerie = [this](bool suppression, const QString &sujet) {
        return frmOccurrenceSeriesChooser::demander(this, suppression, sujet);
    };
    afficherMenu = [](QMenu *m, const QPoint &global) { m->popup(global); };

    construireDisposition();
    construireMenus();
    construireBarres();
    brancherCalendrier();

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(10000);
    connect(Timer1, &QTimer::timeout, this, &frmMain::actualiser);
    Timer1->start();

    timerRMDForm = new QTimer(this);
    timerRMDForm->setObjectName(QStringLiteral("timerRMDForm"));
    timerRMDForm->setInterval(1000);
    connect(timerRMDForm, &QTimer::timeout, this, &frmMain::verifierRappels);

    if (etat.MoteurRappels) {
        connect(etat.MoteurRappels.get(), &ReminderEngine::reminderAction, this, &frmMain::surRappel);
        etat.MoteurRappels->setEnabled(m_parametres.rappelsActifs);
    }
    majMenuRappels();
    majCommandes();
    majLigneDate();

    placerFenetre();
}

frmMain::~frmMain()
{
    RetirerCompteurDialogues(&DialoguesOuverts);
}

// --- Layout ------------------------------------------------------------

void frmMain::construireDisposition()
{
    const AppState &etat = appState();
    auto *centre = new QWidget(this);
    auto *lignes = new QHBoxLayout(centre);
    lignes->setContentsMargins(0, 0, 0, 0);
    lignes->setSpacing(2);

    auto *gauche = new QVBoxLayout;
    gauche->setContentsMargins(4, 2, 0, 0);
    gauche->setSpacing(2);
    // The command bar: the agenda's name and the dates shown, the buttons
    // that step through the periods, the current patient.
    barreCommande = new QWidget(centre);
    barreCommande->setObjectName(QStringLiteral("barreCommande"));
    auto *titre = new QHBoxLayout(barreCommande);
    titre->setContentsMargins(0, 0, 0, 0);
    titre->setSpacing(16);
    m_titreEtDate = new QBoxLayout(QBoxLayout::LeftToRight);
    m_titreEtDate->setSpacing(16);
    titre->addLayout(m_titreEtDate);

    lblCaption = new QLabel(etat.AgendaName, centre);
    lblCaption->setObjectName(QStringLiteral("lblCaption"));
    QFont grande = lblCaption->font();
    grande.setPointSize(grande.pointSize() + 8);
    grande.setBold(true);
    lblCaption->setFont(grande);
    lblCaption->setCursor(Qt::PointingHandCursor);
    lblCaption->installEventFilter(this);
    m_titreEtDate->addWidget(lblCaption);

    lblDate = new QLabel(centre);
    lblDate->setObjectName(QStringLiteral("lblDate"));
    QFont moyenne = lblDate->font();
    moyenne.setPointSize(moyenne.pointSize() + 3);
    lblDate->setFont(moyenne);
    m_titreEtDate->addWidget(lblDate, 0, Qt::AlignBottom);
    boutonsBarre = new QWidget(barreCommande);
    boutonsBarre->setObjectName(QStringLiteral("boutonsBarre"));
    auto *boutons = new QHBoxLayout(boutonsBarre);
    boutons->setContentsMargins(0, 0, 0, 0);
    boutons->setSpacing(2);
    const auto bouton = [&](const char *nom, const QString &texte, const QString &aide, int sens) {
        auto *b = new QToolButton(boutonsBarre);
        b->setObjectName(QString::fromLatin1(nom));
        b->setText(texte);
        b->setToolTip(aide);
        b->setAutoRaise(true);
        connect(b, &QToolButton::clicked, this, [this, sens] { deplacerPeriode(sens); });
        boutons->addWidget(b);
    };
    bouton("btnPeriodePrecedente", QStringLiteral("◀"), QStringLiteral("Période précédente"), -1);
    bouton("btnAujourdhui", QStringLiteral("Aujourd'hui"), QStringLiteral("Revenir à aujourd'hui"), 0);
    bouton("btnPeriodeSuivante", QStringLiteral("▶"), QStringLiteral("Période suivante"), 1);
    titre->addWidget(boutonsBarre, 0, Qt::AlignBottom);
    titre->addStretch(1);

    lblPatient = new QLabel(LegendePatient::instance().texte(), centre);
    lblPatient->setObjectName(QStringLiteral("lblPatient"));
    connect(&LegendePatient::instance(), &LegendePatient::changee, lblPatient, &QLabel::setText);
    titre->addWidget(lblPatient, 0, Qt::AlignBottom);
    gauche->addWidget(barreCommande);

    CalendarControl = new CalendarView(centre);
    CalendarControl->setObjectName(QStringLiteral("CalendarControl"));
    CalendarControl->setMinimumSize(480, 320);
    gauche->addWidget(CalendarControl, 1);
    lignes->addLayout(gauche, 1);

    // The picker stands at the right, from the top of the window down to the
    // status bar, as wide as it asks, with the following months below it as
    // the height holds.
    auto *colonne = new DatePickerColumn(centre);
    wndDatePicker = colonne->picker();
    lignes->addWidget(colonne, 0);
    setCentralWidget(centre);

    StatusBar = statusBar();
    StatusBar->setObjectName(QStringLiteral("StatusBar"));
}

// --- Menus -------------------------------------------------------------

void frmMain::construireMenus()
{
    QMenuBar *barre = menuBar();

    mnuFile = menu(this, barre, "mnuFile", QStringLiteral("&Fichier"));
    mnuOpenDataProvider = action(mnuFile, "mnuOpenDataProvider", QStringLiteral("&Ouvrir"));
    connect(mnuOpenDataProvider, &QAction::triggered, this, [this] {
        frmCalendarDataChooser choix(appState().TypeFournisseur, DossierProgramme(), this);
        ExecuterDialogue(choix);
        if (choix.cancelled())
            return;
        QApplication::setOverrideCursor(Qt::WaitCursor);
        OpenProvider(choix.ProviderType(), choix.ConnectionString());
        QApplication::restoreOverrideCursor();
    });
    mnuFile->addSeparator();
    mnuPageSetup = action(mnuFile, "mnuPageSetup", QStringLiteral("&Mise en Page"));
    mnuPrintPreview = action(mnuFile, "mnuPrintPreview", QStringLiteral("Pré&visualisation"));
    mnuPrintCalendar = action(mnuFile, "mnuPrintCalendar", QStringLiteral("Im&pression"), QKeySequence(QStringLiteral("Ctrl+P")));
    mnuMultiSchedulesSimple = cachee(mnuFile, "mnuMultiSchedulesSimple", QStringLiteral("Multi Schedules (simple)"));
    mnuMultiSchedulesExtended = cachee(mnuFile, "mnuMultiSchedulesExtended", QStringLiteral("Multi Schedules (extended)"));
    mnuResourcesManager = cachee(mnuFile, "mnuResourcesManager", QStringLiteral("Resources Manager"));
    mnuFile->addSeparator();
    mnuExit = action(mnuFile, "mnuExit", QStringLiteral("&Quitter"));

    mnuEdit = menu(this, barre, "mnuEdit", QStringLiteral("&Edition"));
    mnuCopy = action(mnuEdit, "mnuCopy", QStringLiteral("Copier"), QKeySequence(QStringLiteral("Ctrl+C")));
    mnuCut = action(mnuEdit, "mnuCut", QStringLiteral("Couper"), QKeySequence(QStringLiteral("Ctrl+X")));
    mnuPaste = action(mnuEdit, "mnuPaste", QStringLiteral("Coller"), QKeySequence(QStringLiteral("Ctrl+V")));
    for (QAction *a : {mnuCopy, mnuCut, mnuPaste})
        a->setEnabled(false);

    mnuCalendar = menu(this, barre, "mnuCalendar", QStringLiteral("Outils"));
    mnuSettings = action(mnuCalendar, "mnuSettings", QStringLiteral("&Options de l'agenda"), QKeySequence(QStringLiteral("Ctrl+O")));
    mnuAdvancedOptions = action(mnuCalendar, "mnuAdvancedOptions", QStringLiteral("Options &Avancées"),
                                QKeySequence(QStringLiteral("Ctrl+A")));
    mnuCalendar->addSeparator();
    mnuThemes = sousMenu(mnuCalendar, "mnuThemes", QStringLiteral("&Thèmes"));
    const std::array<const char *, 4> nomsThemes{"mnuThemeOffice2000", "mnuThemeOfficeXP", "mnuThemeOffice2003", "mnuThemeOffice2013"};
    const std::array<QString, 4> legendesThemes{QStringLiteral("Office 2000"), QStringLiteral("Office XP"),
                                                QStringLiteral("Office 2003"), QStringLiteral("Office 2013")};
    for (int i = 0; i < 4; ++i) {
        mnuTheme[i] = action(mnuThemes, nomsThemes[i], legendesThemes[i]);
        mnuTheme[i]->setCheckable(true);
        connect(mnuTheme[i], &QAction::triggered, this, [this, i] { appliquerTheme(i); });
    }
    mnuThemeOffice2007Silver = cachee(mnuThemes, "mnuThemeOffice2007Silver", QStringLiteral("Office 2007 (Silver)"));
    mnuThemeOffice2007Black = cachee(mnuThemes, "mnuThemeOffice2007Black", QStringLiteral("Office 2007 (Black)"));
    mnuThemeOffice2010Blue = cachee(mnuThemes, "mnuThemeOffice2010Blue", QStringLiteral("Office 2010 (Blue)"));
    mnuThemeOffice2010Silver = cachee(mnuThemes, "mnuThemeOffice2010Silver", QStringLiteral("Office 2010 (Silver)"));
    mnuThemeOffice2010Black = cachee(mnuThemes, "mnuThemeOffice2010Black", QStringLiteral("Office 2010 (Black)"));
    mnuThemeWindows7 = cachee(mnuThemes, "mnuThemeWindows7", QStringLiteral("Windows 7"));
    for (QAction *a : {mnuThemeOffice2007Silver, mnuThemeOffice2007Black, mnuThemeOffice2010Blue, mnuThemeOffice2010Silver,
                       mnuThemeOffice2010Black, mnuThemeWindows7})
        a->setCheckable(true);
    mnuCustomizeTheme2007 = cachee(mnuThemes, "mnuCustomizeTheme2007", QStringLiteral("Customize Theme 2007"));
    mnuRTL = cachee(mnuCalendar, "mnuRTL", QStringLiteral("RTL"));
    mnuEnableMarkup = cachee(mnuCalendar, "mnuEnableMarkup", QStringLiteral("Enable Markup"));
    mnuCustomIcons = cachee(mnuCalendar, "mnuCustomIcons", QStringLiteral("Custom Icons"));
    mnuShowDynamicCustomization = cachee(mnuCalendar, "mnuShowDynamicCustomization", QStringLiteral("Dynamic Customization"));
    mnuCustomText = cachee(mnuCalendar, "mnuCustomText", QStringLiteral("Custom Text"));
    for (QAction *a : {mnuRTL, mnuEnableMarkup, mnuCustomIcons, mnuCustomText})
        a->setCheckable(true);

    // The command bar of the calendar's header: three switches kept here.
    mnuCaptionBarPopup = sousMenu(mnuCalendar, "mnuCaptionBarPopup", QStringLiteral("Barre de commande"));
    mnuShowTheme2007CaptionBar = action(mnuCaptionBarPopup, "mnuShowTheme2007CaptionBar", QStringLiteral("Afficher/Cacher la barre"));
    mnuCaptionBarSwitch = action(mnuCaptionBarPopup, "mnuCaptionBarSwitch", QStringLiteral("Afficher les boutons"));
    mnuCaptionBarLayout = action(mnuCaptionBarPopup, "mnuCaptionBarLayout", QStringLiteral("Barre à une seule colonne"));
    for (QAction *a : {mnuShowTheme2007CaptionBar, mnuCaptionBarSwitch, mnuCaptionBarLayout})
        a->setCheckable(true);
    mnuShowTheme2007CaptionBar->setChecked(true);
    mnuCaptionBarSwitch->setChecked(true);
    connect(mnuShowTheme2007CaptionBar, &QAction::toggled, barreCommande, &QWidget::setVisible);
    connect(mnuCaptionBarSwitch, &QAction::toggled, boutonsBarre, &QWidget::setVisible);
    connect(mnuCaptionBarLayout, &QAction::toggled, this, [this](bool colonne) {
        m_titreEtDate->setDirection(colonne ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
        m_titreEtDate->setSpacing(colonne ? 0 : 16);
    });
    connect(mnuCalendar, &QMenu::aboutToShow, this, &frmMain::majMenuRappels);

    mnuRappels = menu(this, barre, "mnuRappels", QStringLiteral("Rappels"));
    mnuReminders = action(mnuRappels, "mnuReminders", QStringLiteral("&Rappels de rendez-vous"), QKeySequence(QStringLiteral("Ctrl+R")));
    mnuSMSConfig = action(mnuRappels, "mnuSMSConfig", QStringLiteral("Configuration des rappels Mails et/ou SMS"));
    connect(mnuRappels, &QMenu::aboutToShow, this, &frmMain::majMenuRappels);

    mnuAide = menu(this, barre, "mnuAide", QStringLiteral("?"));
    mnuHelp = action(mnuAide, "mnuHelp", QStringLiteral("Aide"));
    mnuAbout = action(mnuAide, "mnuAbout", QStringLiteral("&A propos d'Tavonel"));

    // The context menus live under a menu of the bar that nobody sees.
    mnuContextMenu = menu(this, barre, "mnuContextMenu", QStringLiteral("Context"));
    mnuContextMenu->menuAction()->setVisible(false);
    mnuContexEditEvent = sousMenu(mnuContextMenu, "mnuContexEditEvent", QStringLiteral("EditEvent"));
    mnuOpenEvent = action(mnuContexEditEvent, "mnuOpenEvent", QStringLiteral("&Ouvrir"));
    mnuDeleteEvent = action(mnuContexEditEvent, "mnuDeleteEvent", QStringLiteral("&Supprimer"));
    mnuPatientEnSalle = action(mnuContexEditEvent, "mnuPatientEnSalle", QStringLiteral("&Patient en salle d'attente"));
    mnuPatientSorti = action(mnuContexEditEvent, "mnuPatientSorti", QStringLiteral("Patient s&orti de salle d'attente"));
    // Our own addition to the menu: the recurrence dialog straight from the
    // calendar. The editor cannot keep a series it has just made (its own
    // reservation of the slot closes it), so a series is made or changed here.
    mnuContexEditEvent->addSeparator();
    mnuRecurrenceEvent = action(mnuContexEditEvent, "mnuRecurrenceEvent", QStringLiteral("Pé&riodicité..."));
    mnuContextNewEvent = sousMenu(mnuContextMenu, "mnuContextNewEvent", QStringLiteral("NewEvent"));
    mnuNewEvent = action(mnuContextNewEvent, "mnuNewEvent", QStringLiteral("&Nouveau Rendez-Vous"));
    mnuContextTimeScale = sousMenu(mnuContextMenu, "mnuContextTimeScale", QStringLiteral("TimeScale"));
    mnuNewEvent2 = action(mnuContextTimeScale, "mnuNewEvent2", QStringLiteral("&Nouveau Rendez-Vous"));
    mnuChangeTimeZone = action(mnuContextTimeScale, "mnuChangeTimeZone", QStringLiteral("Changer de &Zone"));
    mnuContextTimeScale->addSeparator();
    const std::array<int, 5> minutes{60, 30, 15, 10, 5};
    const std::array<QString, 5> legendesEchelle{QStringLiteral("6&0 Minutes"), QStringLiteral("&30 Minutes"),
                                                 QStringLiteral("&15 Minutes"), QStringLiteral("10 &Minutes"),
                                                 QStringLiteral("&5 Minutes")};
    for (int i = 0; i < 5; ++i) {
        mnuTimeScale[i] = mnuContextTimeScale->addAction(legendesEchelle[i]);
        mnuTimeScale[i]->setObjectName(QStringLiteral("mnuTimeScale(%1)").arg(i));
        mnuTimeScale[i]->setData(minutes[i]);
        connect(mnuTimeScale[i], &QAction::triggered, this, [this, m = minutes[i]] { CalendarControl->setTimeScale(m); });
    }

    // Commands.
    auto *impression = new ImpressionAgenda(*CalendarControl, m_parametres, this);
    connect(mnuPageSetup, &QAction::triggered, impression, &ImpressionAgenda::miseEnPage);
    connect(mnuPrintPreview, &QAction::triggered, impression, &ImpressionAgenda::previsualiser);
    connect(mnuPrintCalendar, &QAction::triggered, impression, &ImpressionAgenda::imprimer);
    connect(mnuExit, &QAction::triggered, this, &QWidget::close);
    connect(mnuCopy, &QAction::triggered, this, [this] {
        CalendarControl->Copy();
        majCommandes();
    });
    connect(mnuCut, &QAction::triggered, this, [this] {
        CalendarControl->Cut();
        majCommandes();
    });
    connect(mnuPaste, &QAction::triggered, this, [this] {
        CalendarControl->Paste();
        majCommandes();
    });
    connect(mnuSettings, &QAction::triggered, this, &frmMain::optionsAgenda);
    connect(mnuAdvancedOptions, &QAction::triggered, this, &frmMain::OptionsAvancees);
    connect(mnuSMSConfig, &QAction::triggered, this, [this] {
        frmMailSMSConfig configuration(this);
        ExecuterDialogue(configuration);
    });
    connect(mnuReminders, &QAction::triggered, this, &frmMain::commandeRappels);
    connect(mnuHelp, &QAction::triggered, this, &frmMain::aide);
    connect(mnuAbout, &QAction::triggered, this, &frmMain::aPropos);
    connect(mnuChangeTimeZone, &QAction::triggered, this, &frmMain::ChangerDeZone);

    connect(mnuOpenEvent, &QAction::triggered, this, [this] {
        if (m_evenementCible)
            ouvrirEvenement(m_evenementCible);
    });
    connect(mnuDeleteEvent, &QAction::triggered, this, &frmMain::supprimerEvenementCible);
    connect(mnuRecurrenceEvent, &QAction::triggered, this, &frmMain::periodiciteEvenementCible);
    connect(mnuPatientEnSalle, &QAction::triggered, this, [this] { changerPresence(0); });
    connect(mnuPatientSorti, &QAction::triggered, this, [this] { changerPresence(1); });
    connect(mnuNewEvent, &QAction::triggered, this, &frmMain::ouvrirEditeurNouveau);
    connect(mnuNewEvent2, &QAction::triggered, this, &frmMain::ouvrirEditeurNouveau);
    connect(mnuResourcesManager, &QAction::triggered, this, &frmMain::gestionnaireRessources);
}

// --- Toolbars ----------------------------------------------------------

void frmMain::construireBarres()
{
    struct Bouton
    {
        int numero;
        QString conseil;
        // Both bars show the same drawing: it is made once.
        QIcon icone = IconeBarre(numero);
    };
    const QList<Bouton> boutons{
        {1, QStringLiteral("Affichage journalier")},  {2, QStringLiteral("Affichage semaine de travail")},
        {3, QStringLiteral("Affichage hebdomadaire")}, {4, QStringLiteral("Affichage mensuel")},
        {6, QStringLiteral("Couper")},                 {7, QStringLiteral("Copier")},
        {8, QStringLiteral("Coller")},                 {12, QStringLiteral("Ouvrir")},
        {14, QStringLiteral("Mise en Page")},          {15, QStringLiteral("Prévisualiser")},
        {16, QStringLiteral("Imprimer")},
    };

    auto remplir = [&](QToolBar *barre, std::map<int, QAction *> &parNumero) {
        const QString nom = barre->objectName();
        int precedent = 0;
        for (const Bouton &b : boutons) {
            // The numbers left out (5, 9 to 11, 13) are the separators.
            if (precedent != 0 && b.numero > precedent + 1)
                barre->addSeparator();
            precedent = b.numero;
            QAction *a = barre->addAction(b.icone, b.conseil);
            a->setObjectName(QStringLiteral("%1(%2)").arg(nom).arg(b.numero));
            a->setToolTip(b.conseil);
            parNumero[b.numero] = a;
            connect(a, &QAction::triggered, this, [this, n = b.numero, barre] {
                switch (n) {
                case 1:
                case 2:
                case 3:
                case 4:
                    CalendarControl->setViewType(static_cast<CalendarViewType>(n - 1));
                    break;
                case 6:
                    CalendarControl->Cut();
                    break;
                case 7:
                    CalendarControl->Copy();
                    break;
                case 8:
                    CalendarControl->Paste();
                    break;
                case 12:
                    if (barre == KelmoToolbar1)
                        BoucleRecherchePatientPrincipale(this);
                    else
                        mnuOpenDataProvider->trigger();
                    break;
                case 14:
                    mnuPageSetup->trigger();
                    break;
                case 15:
                    mnuPrintPreview->trigger();
                    break;
                case 16:
                    mnuPrintCalendar->trigger();
                    break;
                default:
                    break;
                }
                majCommandes();
            });
        }
    };

    Toolbar = new QToolBar(QStringLiteral("Toolbar"), this);
    Toolbar->setObjectName(QStringLiteral("Toolbar"));
    Toolbar->setMovable(false);
    remplir(Toolbar, boutonsToolbar);
    boutonsToolbar[12]->setToolTip(QStringLiteral("Bases de données"));
    boutonsToolbar[12]->setEnabled(mnuOpenDataProvider->isEnabled());
    addToolBar(Toolbar);
    // The second bar carries the patient search; the first, whose button 12
    // opens another store, stays out of sight.
    Toolbar->setVisible(false);

    KelmoToolbar1 = new QToolBar(QStringLiteral("KelmoToolbar1"), this);
    KelmoToolbar1->setObjectName(QStringLiteral("KelmoToolbar1"));
    KelmoToolbar1->setIconSize(QSize(24, 24));
    KelmoToolbar1->setMovable(false);
    remplir(KelmoToolbar1, boutonsKelmo);
    addToolBar(KelmoToolbar1);
}

// --- Calendar ----------------------------------------------------------

void frmMain::brancherCalendrier()
{
    AppState &etat = appState();
    // Every change of the book, from any window, is copied into the patient
    // base and the journal. The provider object stays the same when another
    // store is attached, so this is done once.
    if (etat.Calendrier)
        BrancherMiroir(*etat.Calendrier);
    // Copies that a station stopped in mid-change could not write (the
    // appointment stored, its copy not yet) are written now.
    if (etat.Calendrier && dynamic_cast<SqliteCalendarStore *>(etat.Calendrier->store()))
        RattraperMiroir(etat.PathDB, etat.CheminBaseAgenda, Horloge::maintenant().addDays(-JoursRattrapageMiroir));
    connect(CalendarControl, &CalendarView::storeBusy, this, &frmMain::signalerAgendaOccupe);
    connect(CalendarControl, &CalendarView::writeRefused, this, &frmMain::signalerEchecEcriture);
    CalendarControl->setLabels(m_parametres.libelles);
    CalendarControl->setDataProvider(etat.Calendrier.get());
    CalendarControl->setWorkingHours(m_parametres.debutJournee, m_parametres.finJournee);
    CalendarControl->setViewType(CalendarViewType::WorkWeek);
    appliquerTheme(3);
    CalendarControl->setCellPainter(&ColorerCelluleSelonRegles);
    CalendarControl->setOperationGuard(
        [this](int operation, const QList<CalendarEventPtr> &evenements) { return refuserOperation(operation, evenements); });
    CalendarControl->setEditConfirmation(
        [this](int operation, const QList<CalendarEventPtr> &) { return confirmerOperation(operation); });

    connect(CalendarControl, &CalendarView::viewChanged, this, [this] {
        majLigneDate();
        majCommandes();
    });
    connect(CalendarControl, &CalendarView::selectionChanged, this, &frmMain::majCommandes);
    connect(CalendarControl, &CalendarView::keyPressed, this, &frmMain::majCommandes);
    connect(CalendarControl, &CalendarView::doubleClicked, this,
            [this](const QPoint &pos) { doubleClic(CalendarControl->hitTest(pos)); });
    connect(CalendarControl, &CalendarView::rightClicked, this, [this](const QPoint &pos) { clicDroit(CalendarControl->hitTest(pos)); });
    connect(CalendarControl, &CalendarView::eventsEdited, wndDatePicker, &DatePicker::RedrawControl);

    // The tool tips of the appointments are asked of the panes under the
    // pointer.
    for (QWidget *zone : CalendarControl->findChildren<QWidget *>())
        zone->installEventFilter(this);

    CalendarControl->ShowDay(Horloge::aujourdhui());
    CalendarControl->Populate();
    wndDatePicker->AttachToCalendar(CalendarControl);
    // The hidden text control of the tickets takes its resting values.
    InitHighEdit(HighEdit());
}

bool frmMain::OpenProvider(int type, const QString &connection)
{
    const bool ok = ::OpenProvider(appState().Calendrier, appState().TypeFournisseur, type, connection);
    CalendarControl->setDataProvider(appState().Calendrier.get());
    CalendarControl->Populate();
    wndDatePicker->RedrawControl();
    return ok;
}

void frmMain::actualiser()
{
    // Other workstations' changes appear here; the view keeps its scroll
    // position and selection across the reading. A store held by another
    // workstation is waited for briefly only: the window never freezes, and
    // the view keeps its last picture until the next refresh.
    CalendarDataProvider *calendrier = appState().Calendrier.get();
    // A store that was held by another station when it was opened is
    // opened now.
    if (calendrier && !calendrier->IsOpen() && dynamic_cast<SqliteCalendarStore *>(calendrier->store())) {
        const int delai = BaseSqlite::delaiOccupe();
        BaseSqlite::fixerDelaiOccupe(DelaiLecturePeriodique);
        const bool ouvert = calendrier->Open();
        BaseSqlite::fixerDelaiOccupe(delai);
        if (!ouvert)
            signalerAgendaOccupe(true);
    }
    if (calendrier)
        calendrier->setReadWait(DelaiLecturePeriodique);
    // Nothing is read, nor drawn, when the store holds what was read last.
    CalendarControl->Refresh();
    wndDatePicker->RedrawControl();
    if (calendrier)
        calendrier->setReadWait(-1);
    // Copies into the patient base that another station's lock refused.
    RejouerMiroir(appState().CheminBaseAgenda);
}

void frmMain::signalerEchecEcriture(const QString &detail)
{
    Prompt::informer(TitreEchecModification(), TexteEchecModification(detail), Prompt::Icone::Critique);
}

bool frmMain::ecrire(bool ok)
{
    CalendarDataProvider *calendrier = appState().Calendrier.get();
    if (!ok && calendrier && calendrier->IsOpen())
        signalerEchecEcriture(calendrier->store() ? calendrier->store()->LastErrorText() : QString());
    return ok;
}

void frmMain::signalerAgendaOccupe(bool occupe)
{
    if (occupe)
        StatusBar->showMessage(TexteAgendaOccupe());
    else if (StatusBar->currentMessage() == TexteAgendaOccupe())
        StatusBar->clearMessage();
}

void frmMain::majLigneDate()
{
    QList<QDate> jours;
    const int n = CalendarControl->shownDaysCount();
    if (n > 0) {
        jours.append(CalendarControl->shownDay(0));
        if (n > 1)
            jours.append(CalendarControl->shownDay(n - 1));
    }
    if (const auto texte = TexteLigneDate(jours))
        lblDate->setText(*texte);
}

void frmMain::majCommandes()
{
    const bool couper = CalendarControl->CanCut();
    const bool copier = CalendarControl->CanCopy();
    const bool coller = CalendarControl->CanPaste();
    mnuCut->setEnabled(couper);
    mnuCopy->setEnabled(copier);
    mnuPaste->setEnabled(coller);
    for (auto *boutons : {&boutonsToolbar, &boutonsKelmo}) {
        (*boutons)[6]->setEnabled(couper);
        (*boutons)[7]->setEnabled(copier);
        (*boutons)[8]->setEnabled(coller);
    }
}

void frmMain::appliquerTheme(int numero)
{
    for (QAction *a : mnuThemes->actions()) {
        // "Office 2000" leaves a check on "Office 2013" where there is one.
        if (numero != 0 || (a != mnuTheme[0] && a != mnuTheme[3]))
            a->setChecked(false);
    }
    // The three others also bring back the buttons of the command bar.
    if (numero != 0)
        mnuCaptionBarSwitch->setChecked(true);
    if (numero >= 0 && numero < int(mnuTheme.size()))
        mnuTheme[numero]->setChecked(true);
    CalendarControl->setTheme(numero);
}

void frmMain::changerDefilement(int index, bool on)
{
    m_defilement[index] = on;
    CalendarControl->setScrolling(m_defilement[0], m_defilement[1], m_defilement[2], m_defilement[3]);
}

void frmMain::setToolTips_Mode(int mode)
{
    // Tool tips show the appointment's hours and subject. The custom text of
    // mode 1 came from item-text events that only the hidden sample commands
    // fed, so it is the same text here.
    m_modeInfobulles = mode;
}

bool frmMain::infobulle(QWidget *zone, const QHelpEvent *aide)
{
    const CalendarHit hit = CalendarControl->hitTest(zone->mapTo(CalendarControl, aide->pos()));
    const CalendarSelection s = CalendarControl->selection();
    const bool choisie = s.isValid() && hit.time.isValid() && hit.time >= s.begin && hit.time < s.end;
    const CalendarOptions &o = CalendarControl->options();
    const QString texte = CalendarTipText(hit, choisie, ToolTips_Mode(), o.enableTooltips, o.addNewText);
    if (texte.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(aide->globalPos(), texte, zone);
    return true;
}

void frmMain::optionsAgenda()
{
    frmSettings reglages(this);
    reglages.fixerAffichage({CalendarControl->timeScale(), m_parametres.debutJournee, m_parametres.finJournee,
                             ToolTips_Mode(), CalendarControl->options()});
    if (ExecuterDialogue(reglages) == QDialog::Accepted) {
        // The display choices hold for the session (ApplySettings).
        const AffichageCalendrier a = reglages.affichage();
        CalendarControl->setOptions(a.options);
        CalendarControl->setTimeScale(a.echelle);
        setToolTips_Mode(a.infobulles);
        if (a.debut.isValid() && a.fin.isValid()) {
            m_parametres.debutJournee = a.debut;
            m_parametres.finJournee = a.fin;
            CalendarControl->setWorkingHours(a.debut, a.fin);
        }
        if (!reglages.libelles().isEmpty()) {
            m_parametres.libelles = reglages.libelles();
            if (appState().Calendrier)
                appState().Calendrier->setLabelList(m_parametres.libelles);
            CalendarControl->setLabels(m_parametres.libelles);
        }
    }
    // The rule tab writes at once: its rules colour the cells even when the
    // dialog is cancelled afterwards.
    actualiser();
}

void frmMain::signalerIndisponible(const QString &texte)
{
    StatusBar->showMessage(texte, 8000);
}

void frmMain::aPropos()
{
    frmIntro intro(appState().AgendaName, appState().PathDB, this);
    ExecuterDialogue(intro);
}

void frmMain::aide()
{
    // The guide delivered beside the program, in the desktop's browser.
    const QString guide = FichierSysteme(QStringLiteral("Tavonel.html"));
    if (!QFileInfo::exists(guide) || !OuvrirDocument(guide))
        Prompt::informer(QStringLiteral("Aide"),
                         QStringLiteral("Le guide d'utilisation n'a pas pu être ouvert :\n%1").arg(QDir::toNativeSeparators(guide)),
                         Prompt::Icone::Exclamation);
}

void frmMain::deplacerPeriode(int sens)
{
    const int n = CalendarControl->shownDaysCount();
    if (sens == 0 || n == 0) {
        CalendarControl->ShowDay(Horloge::aujourdhui());
        return;
    }
    const QDate premier = CalendarControl->shownDay(0);
    switch (CalendarControl->viewType()) {
    case CalendarViewType::Day:
        CalendarControl->ShowDay(premier.addDays(sens * n));
        break;
    case CalendarViewType::Month: {
        // A whole month steps by a month, a number of weeks by a week.
        if (CalendarControl->options().monthWeeksCount >= 2) {
            CalendarControl->ShowDay(premier.addDays(7 * sens));
        } else {
            const QDate milieu = CalendarControl->shownDay(n / 2);
            CalendarControl->ShowDay(QDate(milieu.year(), milieu.month(), 1).addMonths(sens));
        }
        break;
    }
    default:
        CalendarControl->ShowDay(premier.addDays(7 * sens));
        break;
    }
}

void frmMain::placerFenetre()
{
    // Size and place as this workstation left them; the first time, a
    // window that fits the screen, status bar included.
    const QByteArray g = QByteArray::fromBase64(LireParametreUtilisateur(QStringLiteral("Fenetre"), QStringLiteral("Geometrie"), {}).toLatin1());
    if (!g.isEmpty() && restoreGeometry(g))
        return;
    const QRect libre = screen()->availableGeometry();
    resize(std::min(1280, libre.width() - 16), std::min(720, libre.height() - 48));
    move(libre.center() - QPoint(width() / 2, height() / 2 + 12));
}

void frmMain::gestionnaireRessources()
{
    m_ressources.suivre(appState().Calendrier.get());
    frmResourcesManager dialogue(m_ressources, this);
    ExecuterDialogue(dialogue);
    // The schedules may have changed, whichever way the dialog was left.
    actualiser();
}

// --- Title line --------------------------------------------------------

bool frmMain::eventFilter(QObject *objet, QEvent *evenement)
{
    if (objet == lblCaption && evenement->type() == QEvent::MouseButtonRelease) {
        const auto *souris = static_cast<QMouseEvent *>(evenement);
        if (souris->button() == Qt::LeftButton) {
            // The caption is a jump to tomorrow, and to no other day.
            CalendarControl->ShowDay(Horloge::aujourdhui().addDays(1));
            return true;
        }
    }
    if (evenement->type() == QEvent::ToolTip && objet->isWidgetType() && objet != lblCaption) {
        auto *zone = static_cast<QWidget *>(objet);
        if (CalendarControl->isAncestorOf(zone))
            return infobulle(zone, static_cast<QHelpEvent *>(evenement));
    }
    return QMainWindow::eventFilter(objet, evenement);
}

void frmMain::closeEvent(QCloseEvent *event)
{
    if (!m_arrete) {
        m_arrete = true;
        Timer1->stop();
        timerRMDForm->stop();
        EcrireParametreUtilisateur(QStringLiteral("Fenetre"), QStringLiteral("Geometrie"),
                                   QString::fromLatin1(saveGeometry().toBase64()));
        m_demarrage.arreter(rappelsActifs());
        // The reminder windows go with the main window.
        for (QWidget *w : std::initializer_list<QWidget *>{m_frmReminders, m_frmReminderSMS}) {
            if (w)
                w->close();
        }
    }
    event->accept();
}
