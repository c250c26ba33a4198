#pragma once

#include "appointments/frmoccurrenceserieschooser.h"
#include "calendar/calendarevent.h"
#include "calendar/gestionressources.h"
#include "calendar/reminderengine.h"
#include "shell/demarrage.h"

#include <QMainWindow>

#include <array>
#include <functional>
#include <map>

class CalendarView;
class DatePicker;
class FenetreRappels;
class frmReminderSMS;
class frmReminders;
class QAction;
class QBoxLayout;
class QHelpEvent;
class QLabel;
class QMenu;
class QStatusBar;
class QTimer;
class QToolBar;
struct CalendarHit;

// The main window: title line, calendar with its date picker, menus, the two
// toolbars and the two timers. Start-up and shut-down themselves are the work
// of Demarrage; the window applies what they read and routes the calendar's
// clicks and reminders to the commands.
class frmMain final : public QMainWindow
{
    Q_OBJECT

public:
    frmMain(Demarrage &demarrage, const ParametresFenetre &parametres, QWidget *parent = nullptr);
    ~frmMain() override;

    // Counter of the editing dialogs now open: they add 1 when they load and
    // take 1 away when they unload.
    int DialoguesOuverts = 0;

    // Attaches another calendar store (kind and connection string), then
    // reads the calendar again. False when the store could not be attached
    // (the one in place stays).
    bool OpenProvider(int type, const QString &connection);

    // The six switches of the advanced options, and the built-in dialogs
    // switch. The scrolling switches go to the calendar's views at once.
    [[nodiscard]] bool disableDraggingRecurrenceEvents() const { return m_sansGlisserRecurrents; }
    void setDisableDraggingRecurrenceEvents(bool on) { m_sansGlisserRecurrents = on; }
    [[nodiscard]] bool disableInPlaceCreateSaSu() const { return m_sansCreationWeekEnd; }
    void setDisableInPlaceCreateSaSu(bool on) { m_sansCreationWeekEnd = on; }
    [[nodiscard]] bool scrollingVDayView() const { return m_defilement[0]; }
    void setScrollingVDayView(bool on) { changerDefilement(0, on); }
    [[nodiscard]] bool scrollingHDayView() const { return m_defilement[1]; }
    void setScrollingHDayView(bool on) { changerDefilement(1, on); }
    [[nodiscard]] bool scrollingVWeekView() const { return m_defilement[2]; }
    void setScrollingVWeekView(bool on) { changerDefilement(2, on); }
    [[nodiscard]] bool scrollingVMonthView() const { return m_defilement[3]; }
    void setScrollingVMonthView(bool on) { changerDefilement(3, on); }
    // Our calendar has no dialogs of its own: the switch is kept for the
    // advanced options, and the program's own windows serve either way.
    [[nodiscard]] bool useBuiltInDialogs() const { return m_dialoguesIntegres; }
    void setUseBuiltInDialogs(bool on) { m_dialoguesIntegres = on; }

    // Tool tips of the calendar: on below 2 (mode 1, the custom text, shows
    // the same text as mode 0).
    [[nodiscard]] int ToolTips_Mode() const { return m_modeInfobulles; }
    void setToolTips_Mode(int mode);

    // --- Controls -------------------------------------------------------
    QWidget *barreCommande = nullptr;   // the command bar above the calendar
    QWidget *boutonsBarre = nullptr;    // its buttons
    QLabel *lblCaption = nullptr;
    QLabel *lblDate = nullptr;
    // The current patient, "Prénom Nom", empty when there is none.
    QLabel *lblPatient = nullptr;
    CalendarView *CalendarControl = nullptr;
    DatePicker *wndDatePicker = nullptr;
    QStatusBar *StatusBar = nullptr;
    QToolBar *Toolbar = nullptr;
    QToolBar *KelmoToolbar1 = nullptr;
    // Buttons by number, as on both toolbars.
    std::map<int, QAction *> boutonsToolbar;
    std::map<int, QAction *> boutonsKelmo;
    QTimer *Timer1 = nullptr;
    QTimer *timerRMDForm = nullptr;

    // --- Menus ----------------------------------------------------------
    QMenu *mnuFile = nullptr;
    QAction *mnuOpenDataProvider = nullptr;
    QAction *mnuPageSetup = nullptr;
    QAction *mnuPrintPreview = nullptr;
    QAction *mnuPrintCalendar = nullptr;
    QAction *mnuMultiSchedulesSimple = nullptr;
    QAction *mnuMultiSchedulesExtended = nullptr;
    QAction *mnuResourcesManager = nullptr;
    QAction *mnuExit = nullptr;
    QMenu *mnuEdit = nullptr;
    QAction *mnuCopy = nullptr;
    QAction *mnuCut = nullptr;
    QAction *mnuPaste = nullptr;
    QMenu *mnuCalendar = nullptr;
    QAction *mnuSettings = nullptr;
    QAction *mnuAdvancedOptions = nullptr;
    QMenu *mnuThemes = nullptr;
    // "Office 2000", "Office XP", "Office 2003", "Office 2013".
    std::array<QAction *, 4> mnuTheme{};
    // The hidden style items (skins of the closed control, no counterpart).
    QAction *mnuThemeOffice2007Silver = nullptr;
    QAction *mnuThemeOffice2007Black = nullptr;
    QAction *mnuThemeOffice2010Blue = nullptr;
    QAction *mnuThemeOffice2010Silver = nullptr;
    QAction *mnuThemeOffice2010Black = nullptr;
    QAction *mnuThemeWindows7 = nullptr;
    QAction *mnuCustomizeTheme2007 = nullptr;
    QAction *mnuRTL = nullptr;
    QAction *mnuEnableMarkup = nullptr;
    QAction *mnuCustomIcons = nullptr;
    QAction *mnuShowDynamicCustomization = nullptr;
    QAction *mnuCustomText = nullptr;
    QMenu *mnuCaptionBarPopup = nullptr;
    QAction *mnuShowTheme2007CaptionBar = nullptr;
    QAction *mnuCaptionBarSwitch = nullptr;
    QAction *mnuCaptionBarLayout = nullptr;
    QMenu *mnuRappels = nullptr;
    QAction *mnuReminders = nullptr;
    QAction *mnuSMSConfig = nullptr;
    QMenu *mnuAide = nullptr;
    QAction *mnuHelp = nullptr;
    QAction *mnuAbout = nullptr;
    // Context menus, under the hidden mnuContextMenu.
    QMenu *mnuContextMenu = nullptr;
    QMenu *mnuContexEditEvent = nullptr;
    QAction *mnuOpenEvent = nullptr;
    QAction *mnuDeleteEvent = nullptr;
    QAction *mnuPatientEnSalle = nullptr;
    QAction *mnuPatientSorti = nullptr;
    QAction *mnuRecurrenceEvent = nullptr;
    QMenu *mnuContextNewEvent = nullptr;
    QAction *mnuNewEvent = nullptr;
    QMenu *mnuContextTimeScale = nullptr;
    QAction *mnuNewEvent2 = nullptr;
    QAction *mnuChangeTimeZone = nullptr;
    // 60, 30, 15, 10 and 5 minutes.
    std::array<QAction *, 5> mnuTimeScale{};

    // --- Commands and calendar events ------------------------------------
    // The rules behind the calendar's clicks, given what lies under the
    // pointer (the click handlers run the view's hit test first).
    void doubleClic(const CalendarHit &hit);
    void clicDroit(const CalendarHit &hit);
    // The event under the last context menu.
    [[nodiscard]] CalendarEventPtr evenementCible() const { return m_evenementCible; }
    // The context menu last asked for, and the way menus are shown (a popup
    // at the pointer; tests replace it).
    [[nodiscard]] QMenu *menuContextuelDemande() const { return m_menuDemande; }
    std::function<void(QMenu *menu, const QPoint &global)> afficherMenu;

    // Opens an appointment: series question first, then the editor.
    void ouvrirEvenement(CalendarEventPtr evenement);
    // Delete command on the event under the context menu.
    void supprimerEvenementCible();
    // Makes the menu-target appointment a series, changes its series or
    // takes the recurrence away, through the recurrence dialog.
    void periodiciteEvenementCible();
    // Patient presence on the event under the context menu: busy status 0
    // (in the waiting room) or 1 (not arrived).
    void changerPresence(int busyStatus);
    // The occurrence-or-series question; the chooser dialog by default.
    std::function<ChoixOccurrence(bool suppression, const QString &sujet)> choisirOccurrenceOuSerie;

    // The two ways into the appointment editor.
    void ouvrirEditeurNouveau();
    // With an owner, the editor is modal over that window (a reminder window).
    void ouvrirEditeur(const CalendarEventPtr &evenement, QWidget *proprietaire = nullptr);
    // The last appointment handed to the editor (none for a new one).
    [[nodiscard]] CalendarEventPtr dernierEvenementOuvert() const { return m_dernierOuvert; }

    // The guard the calendar asks before its own operations (codes of
    // CalendarEditOperation): true refuses.
    [[nodiscard]] bool refuserOperation(int operation, const QList<CalendarEventPtr> &evenements) const;

    // Theme 0 to 3 with the check marks of the themes menu.
    void appliquerTheme(int numero);
    // Reads the calendar again and redraws the picker (Timer1).
    void actualiser();
    // The status line while the store is held by another workstation.
    void signalerAgendaOccupe(bool occupe);
    // A change of the book that the store refused, told in French; ecrire
    // tells it when `ok` is false and gives `ok` back.
    void signalerEchecEcriture(const QString &detail);
    bool ecrire(bool ok);
    // The busy wait of the periodic reading, in milliseconds.
    static constexpr int DelaiLecturePeriodique = 300;
    // "Options Avancées" and "Changer de Zone": their dialogs, modal over the
    // window (frmadvancedoptions.cpp, frmtimezone.cpp).
    void OptionsAvancees();
    void ChangerDeZone();

    [[nodiscard]] const ParametresFenetre &parametres() const { return m_parametres; }
    [[nodiscard]] bool rappelsActifs() const;

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *objet, QEvent *evenement) override;

private:
    void construireMenus();
    void construireBarres();
    void construireDisposition();
    void brancherCalendrier();

    void majLigneDate();
    void majCommandes();
    void afficherMenuContextuel(QMenu *menu);
    void signalerIndisponible(const QString &texte);
    void optionsAgenda();
    [[nodiscard]] CalendarEventPtr maitreDe(const CalendarEventPtr &evenement) const;
    [[nodiscard]] bool confirmerOperation(int operation) const;
    void changerDefilement(int index, bool on);
    bool infobulle(QWidget *zone, const QHelpEvent *aide);

    void surRappel(int action, const Reminder &rappel);
    // The two reminder windows, made on first use; the one that gets the
    // engine's reports is the sending one when SMS or mail reminders are on.
    [[nodiscard]] frmReminders *fenetreRappels();
    [[nodiscard]] frmReminderSMS *fenetreRappelsSMS();
    [[nodiscard]] FenetreRappels *fenetreRappelsChoisie();
    void montrerRappel(FenetreRappels *fenetre);
    void verifierRappels();
    void commandeRappels();
    void majMenuRappels();
    void aPropos();
    void aide();
    // Shows the period before (-1), after (1) the one on show, or today (0).
    void deplacerPeriode(int sens);
    void placerFenetre();
    void gestionnaireRessources();

    Demarrage &m_demarrage;
    ParametresFenetre m_parametres;
    bool m_arrete = false;

    bool m_sansGlisserRecurrents = false;
    bool m_sansCreationWeekEnd = false;
    std::array<bool, 4> m_defilement{true, true, true, true};
    bool m_dialoguesIntegres = false;
    int m_modeInfobulles = 0;

    CalendarEventPtr m_evenementCible;
    CalendarEventPtr m_dernierOuvert;
    QBoxLayout *m_titreEtDate = nullptr;
    QMenu *m_menuDemande = nullptr;
    frmReminders *m_frmReminders = nullptr;
    frmReminderSMS *m_frmReminderSMS = nullptr;
    // The resources of the hidden manager, kept for the session.
    GestionRessources m_ressources;
};
