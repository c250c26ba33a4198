#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class QRadioButton;

// What the user chose about a recurring appointment.
enum class ChoixOccurrence { Annule, Occurrence, Serie };

// Asks whether an action on a recurring appointment concerns the one
// occurrence or the whole series. The caller sets the values, shows the
// dialog modally, and reads them back.
class frmOccurrenceSeriesChooser final : public QDialog
{
    Q_OBJECT

public:
    explicit frmOccurrenceSeriesChooser(QWidget *parent = nullptr);

    // Set by the caller to preselect; read afterwards.
    bool occurrenceChoisie = true;
    // The question is about deleting rather than opening.
    bool modeSuppression = false;
    // Shown in the description.
    QString sujetEvenement;
    // The user pressed OK.
    bool confirme = false;

    // Texts by mode, the description and the preselection from the values
    // above; the confirmation is cleared. Run before the dialog shows.
    void charger();

    // The whole question: load, modal run, answer.
    [[nodiscard]] static ChoixOccurrence demander(QWidget *parent, bool suppression, const QString &sujet);

    QLabel *txtDescription = nullptr;
    QLabel *txtAction = nullptr;
    QRadioButton *optOccurrence = nullptr;
    QRadioButton *optSeries = nullptr;
    QPushButton *btnOK = nullptr;
    QPushButton *btnCancel = nullptr;

private:
    void valider();
    void annuler();
};
