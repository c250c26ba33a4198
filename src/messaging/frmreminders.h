#pragma once

#include "calendar/calendarevent.h"
#include "calendar/reminderengine.h"

#include <QDialog>

#include <functional>

class EnvoiRappels;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;
class QVBoxLayout;

// What both reminder windows share: the list of due reminders with the time
// left or overdue, the selected one's subject and start, snooze, dismissal and
// opening. Row i of the list is the engine's reminder at position i, so the
// list is only ever rebuilt from the engine as a whole. Neither window is
// modal; closing one leaves the reminders active.
class FenetreRappels : public QDialog
{
    Q_OBJECT

public:
    // The engine's report: 3 a reminder fires, 4 to 6 the list changed (the
    // list is rebuilt), 2 the watch stopped (the list is emptied). rappel
    // may be null.
    void OnReminders(int action, const Reminder &rappel);

    // Opens an appointment in the editor, modal over the given window; set by
    // the main window.
    std::function<void(QWidget *proprietaire, const CalendarEventPtr &evenement)> ouvrirRendezVous;

    // Puts the window beside the main window on its screen: at its right when
    // there is room, else at its left, else against the screen's right edge.
    void placerACote(const QWidget *principale);

    QTreeWidget *ctrlReminders = nullptr;
    QLabel *txtDescription1 = nullptr;
    QLabel *txtDescription2 = nullptr;
    QComboBox *cmbSnooze = nullptr;
    QPushButton *btnSnooze = nullptr;
    QPushButton *btnDismiss = nullptr;
    QPushButton *btnOpenItem = nullptr;
    QPushButton *btnDismissAll = nullptr;
    QPushButton *btnCancel = nullptr;

protected:
    FenetreRappels(ReminderEngine &moteur, const char *nom, QWidget *parent);

    // The row chosen in the list, -1 for none.
    [[nodiscard]] int ligneChoisie() const;
    // Shows the chosen reminder (or none), the buttons and the title.
    void majFenetre();

    virtual void repousser() = 0;
    virtual void rejeterTous() = 0;
    // False while the list must not be touched (a batch is being sent).
    [[nodiscard]] virtual bool listeLibre() const { return true; }

    ReminderEngine &m_moteur;
    // Where a window adds its own controls, above the close button.
    QVBoxLayout *m_supplement = nullptr;

private:
    void reconstruire();
    void rejeter();
    void ouvrir();
};

// The plain reminder window: snooze acts on the chosen reminder, "Rejeter Tous
// les rappels" without asking.
class frmReminders final : public FenetreRappels
{
    Q_OBJECT

public:
    explicit frmReminders(ReminderEngine &moteur, QWidget *parent = nullptr);

    QLabel *Label1 = nullptr;

protected:
    void repousser() override;
    void rejeterTous() override;
};

// The reminder window of a practice that sends reminders by SMS or mail: the
// send button runs the batch over all due reminders; snooze and dismissal act
// on all of them after a question, and snooze closes the window.
class frmReminderSMS final : public FenetreRappels
{
    Q_OBJECT

public:
    explicit frmReminderSMS(ReminderEngine &moteur, QWidget *parent = nullptr);
    ~frmReminderSMS() override;

    [[nodiscard]] bool BatchRunning() const;
    [[nodiscard]] EnvoiRappels &envoi() const { return *m_envoi; }

    QLabel *lblStatus = nullptr;
    QProgressBar *ProgressBar1 = nullptr;
    QPushButton *Btn_Ok = nullptr;

protected:
    void repousser() override;
    void rejeterTous() override;
    [[nodiscard]] bool listeLibre() const override;

private:
    void finEnvoi();

    EnvoiRappels *m_envoi = nullptr;
};
