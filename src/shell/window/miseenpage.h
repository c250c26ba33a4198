#pragma once

#include <QDialog>
#include <QPageLayout>
#include <QTime>

#include <array>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QPushButton;
class QRadioButton;
class QTimeEdit;

// What the page setup of the calendar sets: paper, orientation and margins
// of the printer, and the hours of the day pages.
struct ReglagesMiseEnPage
{
    QPageLayout page;
    QTime debut;
    QTime fin;
    bool exactement = true;
};

// The page setup of the calendar print, modal. OK accepts what the controls
// hold; the caller reads it back with reglages().
class DialogueMiseEnPage final : public QDialog
{
    Q_OBJECT

public:
    DialogueMiseEnPage(const ReglagesMiseEnPage &reglages, QWidget *parent = nullptr);

    [[nodiscard]] ReglagesMiseEnPage reglages() const;

    QComboBox *cboFormat = nullptr;
    QRadioButton *optPortrait = nullptr;
    QRadioButton *optPaysage = nullptr;
    // Top, bottom, left, right, in millimetres.
    std::array<QDoubleSpinBox *, 4> txtMarge{};
    QTimeEdit *txtPrintFrom = nullptr;
    QTimeEdit *txtPrintTo = nullptr;
    QCheckBox *chkPrintFromToExactly = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;
};
