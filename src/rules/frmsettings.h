#pragma once

#include "calendar/calendarlabel.h"
#include "calendar/view/viewtypes.h"
#include "rules/reglages.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QTableWidget;

// What the configuration dialog sets of the calendar's display, for the
// session: the time scale in minutes, the work day drawn in the day views,
// the tooltip mode (0 standard, 1 custom, 2 none) and the calendar's own
// options (work days, first day of the week, the week and month views'
// times, compressed weekend, weeks of the month view, the add-new hint).
struct AffichageCalendrier
{
    int echelle = 30;
    QTime debut{8, 0};
    QTime fin{19, 0};
    int infobulles = 0;
    CalendarOptions options;
};

// "Configuration....": the practice as a whole (hours, the two
// practitioners, the seven types and their colours, the links to the
// patient bases) and, on its last tab, the schedule rules.
class frmSettings final : public QDialog
{
    Q_OBJECT

public:
    explicit frmSettings(QWidget *parent = nullptr);

    QTabWidget *SSTab1 = nullptr;
    QComboBox *cbOuverture = nullptr;
    QComboBox *cbFermeture = nullptr;
    QComboBox *cbDebutPause = nullptr;
    QComboBox *cbFinPause = nullptr;
    QComboBox *cmbRDVMn = nullptr;
    QCheckBox *chkFeriesAlsaceMoselle = nullptr;
    std::array<QLineEdit *, 2> txtPraticien{};
    std::array<QLineEdit *, 2> txtInitiales{};
    std::array<QComboBox *, 2> Combo1{};    // colour families
    std::array<QLineEdit *, 7> txtType{};
    std::array<QPushButton *, 7> PicColor1{};
    std::array<QPushButton *, 7> PicColor2{};
    std::array<QLineEdit *, 3> DBPath{};     // slots 1 and 2 (0 unused)
    std::array<QLineEdit *, 3> DBIdentity{};
    std::array<QPushButton *, 3> DBpathDialog{};
    QPushButton *btnLiaisons = nullptr;      // frmZek_AG2, the four slots
    // The display tab.
    QComboBox *cmbTimeScale = nullptr;
    QComboBox *cmbStartTime = nullptr;
    QComboBox *cmbEndTime = nullptr;
    QComboBox *cmbFirstDayOfWeek = nullptr;
    std::array<QCheckBox *, 8> chkWorkDay{}; // 1 = Sunday ... 7 = Saturday
    QComboBox *cmbToolTipsMode = nullptr;
    QCheckBox *chkShowTimeAsClockWeek = nullptr;
    QCheckBox *chkShowEndTimeWeek = nullptr;
    QCheckBox *chkWVShowStartTimeAlways = nullptr;
    QCheckBox *chkWVShowEndTimeAlways = nullptr;
    QCheckBox *chkShowTimeAsClockMonth = nullptr;
    QCheckBox *chkShowEndTimeMonth = nullptr;
    QCheckBox *chkMVShowStartTimeAlways = nullptr;
    QCheckBox *chkMVShowEndTimeAlways = nullptr;
    QCheckBox *chkComperssWeekendDays = nullptr;
    QComboBox *cmbWeeksCount = nullptr;
    QCheckBox *chkOthEnableTooltip = nullptr;
    QLineEdit *txtOthAddNew = nullptr;
    // The rule tab.
    std::array<QRadioButton *, 8> optDay{};  // 1 = Sunday ... 7 = Saturday
    std::array<QRadioButton *, 2> OpDate{};
    QLineEdit *mebDateFinRegle = nullptr;
    QTableWidget *grdRegles = nullptr;
    QPushButton *btnAjouterRegle = nullptr;
    QPushButton *btnEditerRegle = nullptr;
    QPushButton *btnDupliquerRegle = nullptr;
    QPushButton *btnSupprimerRegle = nullptr;
    QPushButton *Command1 = nullptr;
    QPushButton *cmdOk = nullptr;
    QPushButton *cmdCancel = nullptr;

    // The labels of the calendar as the last save left them.
    [[nodiscard]] const CalendarLabelList &libelles() const { return m_libelles; }
    [[nodiscard]] const ReglagesCabinet &reglages() const { return m_reglages; }
    // The calendar's display as it is when the dialog opens, and as the
    // dialog leaves it (ApplySettings).
    void fixerAffichage(const AffichageCalendrier &affichage);
    [[nodiscard]] AffichageCalendrier affichage() const;

    // The saving procedure (also run before the rule dialog opens, so that
    // it offers the names as typed).
    // False, after the message, when the settings cannot be written.
    bool Enregistrer();
    void cmdOk_Click();
    void ajouterRegle();
    void editerRegle(bool dupliquer);
    void supprimerRegle();
    void changerDateFin();
    void filtrer();

private:
    QWidget *ongletGeneral();
    QWidget *ongletBases();
    QWidget *ongletAffichage();
    QWidget *ongletRegles();
    void charger();
    void choisirFamille(int praticien, int famille);
    void choisirCouleur(QPushButton *bouton);
    void choisirBase(int slot);
    void lireLiaisons();
    [[nodiscard]] int jourChoisi() const;
    [[nodiscard]] qint32 regleCourante() const;
    void selectionnerRegle(qint32 compteur);
    void signalerErreur(const QString &texte);

    ReglagesCabinet m_reglages;
    CalendarLabelList m_libelles;
    CalendarOptions m_options;   // the calendar's, as the dialog found them
};
