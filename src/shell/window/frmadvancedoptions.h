#pragma once

#include <QDialog>
#include <QStringList>

#include <functional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class frmMain;

// How the calendar behaves at this workstation, which reminder channels the
// agenda uses, and the ticket printer. The calendar's options and the main
// window's switches last for the session; the reminder, channel and ticket
// keys go to the agenda's section of Agenda.ini.
class frmAdvancedOptions final : public QDialog
{
    Q_OBJECT

public:
    // Builds the dialog and loads it from the main window, its calendar and
    // Agenda.ini.
    explicit frmAdvancedOptions(frmMain &principal);

    // The system's printers offered in Nom_Imprimante (tests put their own).
    static std::function<QStringList()> imprimantes;

    QCheckBox *chkEditSubject_ByMouseClick = nullptr;
    QCheckBox *chkEditSubject_AfterResize = nullptr;
    QCheckBox *chkEditSubject_ByF2 = nullptr;
    QCheckBox *chkEditSubject_ByTab = nullptr;
    QCheckBox *chkInplaceCreateEvent = nullptr;
    QCheckBox *chkDisableDragging_ForRecurrenceEvents = nullptr;
    QCheckBox *chkDisableInPlaceCreateEvents_ForSaSu = nullptr;
    QCheckBox *chkUseBuiltInDialogs = nullptr;
    QCheckBox *chkScrollingV_DayView = nullptr;
    QCheckBox *chkScrollingH_DayView = nullptr;
    QCheckBox *chkScrollingV_WeekView = nullptr;
    QCheckBox *chkScrollingV_MonthView = nullptr;
    QCheckBox *chkShowMinutes = nullptr;
    QCheckBox *chkUseOutlookFontGlyphs = nullptr;
    QCheckBox *chkEnablePrevNextEventButtons = nullptr;
    QRadioButton *optTimeMarkNone = nullptr;
    QRadioButton *optTimeMarkForToday = nullptr;
    QRadioButton *optTimeMarkAlways = nullptr;
    QCheckBox *chkTimeMarkPrint = nullptr;
    QCheckBox *chkEnableReminders = nullptr;
    QCheckBox *Check1 = nullptr;
    QCheckBox *Check2 = nullptr;
    QComboBox *Nom_Imprimante = nullptr;
    QComboBox *Fmt_Imp = nullptr;
    QLineEdit *txtMarginL = nullptr;
    QLineEdit *txtMarginR = nullptr;
    QLineEdit *Text1 = nullptr;
    QPushButton *Command6 = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    void construire();
    void charger();
    void valider();
    void majCanaux();
    void majImpressionMarque();

    frmMain &m_principal;
};
