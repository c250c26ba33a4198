#pragma once

#include "appointments/editionrecurrence.h"
#include "calendar/calendarevent.h"

#include <QDate>
#include <QDialog>

#include <array>
#include <utility>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedWidget;

// The recurrence dialog: makes an appointment a series, changes a series, or
// takes the recurrence away. It writes nothing to the store; the caller takes
// the dialog's event back and stores it when its own dialog is confirmed.
//
// Use: frmEditRecurrence::Editer(parent, event). Hand in the record as the
// caller edits it (the appointment editor hands in a CloneEvent of its record;
// a master is edited as given). On return `event` is the dialog's record,
// whatever the way out: a master after OK or cancel (for an occurrence or an
// exception, a copy of the series' master), a plain event after "Annuler la
// récurrence". A plain appointment becomes a series as the dialog opens, so
// that after a cancel too the caller holds a master of a daily series. The
// answer tells how the dialog was left; the editor redraws its record when the
// answer is not Annule or when the recurrence state differs from before.
class frmEditRecurrence final : public QDialog
{
    Q_OBJECT

public:
    enum Resultat {
        Annule = QDialog::Rejected,
        Valide = QDialog::Accepted,
        RecurrenceRetiree = 2,
    };

    // Runs the dialog modally (through ExecuterDialogue). `debutSelection` is
    // the start of the calendar's selection, which the day lists preselect;
    // without it, the day of the record. When the series of an occurrence
    // cannot be found, an error box is shown, `event` is left alone and the
    // answer is Annule.
    static int Editer(QWidget *parent, CalendarEventPtr &event, QDate debutSelection = {});

    explicit frmEditRecurrence(const CalendarEventPtr &event, QDate debutSelection = {}, QWidget *parent = nullptr);

    // The record under work (empty when loading failed) and its series.
    [[nodiscard]] CalendarEventPtr Event() const { return m_chargement.event; }
    [[nodiscard]] CalendarRecurrencePatternPtr Pattern() const { return m_chargement.pattern; }
    // Opened on an occurrence or an exception, which the master replaced.
    [[nodiscard]] bool Occurrence() const { return m_chargement.occurrence; }
    // The recurrence was made by this opening.
    [[nodiscard]] bool NouvelleRecurrence() const { return m_chargement.nouvelleRecurrence; }

    // The controls as values, and back.
    [[nodiscard]] ValeursRecurrence valeurs() const;
    void afficher(const ValeursRecurrence &valeurs);

    QGroupBox *frameApointmentTime = nullptr;
    QComboBox *cmbEventStartTime = nullptr;
    QLineEdit *txtEventEndTime = nullptr;
    QComboBox *cmbEventDuration = nullptr;

    QGroupBox *frameRecurrencePatterm = nullptr;
    QRadioButton *optRecDaily = nullptr;
    QRadioButton *optRecWeekly = nullptr;
    QRadioButton *optRecMonthly = nullptr;
    QRadioButton *optRecYearly = nullptr;
    QStackedWidget *pages = nullptr;

    QWidget *pageDaily = nullptr;
    QRadioButton *optDailyEveryNdays = nullptr;
    QLineEdit *txtDailyEveryNdays = nullptr;
    QRadioButton *optDailyEveryWorkDay = nullptr;

    QWidget *pageWeekly = nullptr;
    QLineEdit *txtWeeklyNWeeks = nullptr;
    QCheckBox *chkWeeklyMonday = nullptr;
    QCheckBox *chkWeeklyTusday = nullptr;
    QCheckBox *chkWeeklyWednesday = nullptr;
    QCheckBox *chkWeeklyThursday = nullptr;
    QCheckBox *chkWeeklyFriday = nullptr;
    QCheckBox *chkWeeklySaturday = nullptr;
    QCheckBox *chkWeeklySunday = nullptr;

    QWidget *pageMonthly = nullptr;
    QRadioButton *optMonthlyDay = nullptr;
    QComboBox *cmbMonthlyDayOfMonth = nullptr;
    QLineEdit *txtMonthlyEveryMonth = nullptr;
    QRadioButton *optMonthlyThe = nullptr;
    QComboBox *cmbMonthlyDay = nullptr;
    QComboBox *cmbMonthlyDayOfWeek = nullptr;
    QLineEdit *txtMonthlyOfEveryTheMonths = nullptr;

    QWidget *pageYearly = nullptr;
    QRadioButton *optYearlyDay = nullptr;
    QComboBox *cmbYearlyEveryDate = nullptr;
    QComboBox *cmbYearlyDate = nullptr;
    QRadioButton *optYearlyThe = nullptr;
    QComboBox *cmdYearlyThePartOfWeek = nullptr;
    QComboBox *cmbYearlyTheDay = nullptr;
    QComboBox *cmbYearlyTheMonth = nullptr;

    QGroupBox *frameRangeOfRecurrence = nullptr;
    QDateEdit *ddPatternStartDate = nullptr;
    QRadioButton *optPatternNoEnd = nullptr;
    QRadioButton *optPatternEndAfter = nullptr;
    QLineEdit *txtPatternEndAfter = nullptr;
    QRadioButton *optPatternEndByDate = nullptr;
    QDateEdit *ddPatternEndDate = nullptr;

    QPushButton *btnOK = nullptr;
    QPushButton *btnCancel = nullptr;
    QPushButton *btnRemoveRecurrence = nullptr;

protected:
    bool eventFilter(QObject *objet, QEvent *evenement) override;

private:
    void construire();
    void afficherPage();
    void calculerFin();
    void valider();
    void retirerRecurrence();
    [[nodiscard]] std::array<std::pair<QCheckBox *, int>, 7> boitesJours() const;

    ChargementRecurrence m_chargement;
    QButtonGroup *m_groupeRecurrence = nullptr;
};
