#pragma once

#include <QDialog>

#include <array>

class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

// "Règle de plage de Rendez-vous": one rule, through the shared buffer
// RegleEnEdition (read at opening, written by OK; JourNumero "-1" on cancel).
class frmRegles final : public QDialog
{
    Q_OBJECT

public:
    explicit frmRegles(QWidget *parent = nullptr);

    std::array<QRadioButton *, 8> optDay{}; // 1 = "Dim" ... as JourNumero (0 unused)
    QComboBox *Combo1 = nullptr;            // week parity
    QLineEdit *MaskEdBox1 = nullptr;        // start date
    QLineEdit *MaskEdBox3 = nullptr;        // end date
    QLineEdit *MaskEdBox2 = nullptr;        // start time
    QLineEdit *MaskEdBox4 = nullptr;        // end time
    QComboBox *Combo2 = nullptr;            // practitioner
    QComboBox *Combo3 = nullptr;            // type
    QPushButton *PicColor1 = nullptr;
    QPushButton *cmdOk = nullptr;
    QPushButton *cmdCancel = nullptr;

    void cmdOk_Click();
    void reject() override;
    [[nodiscard]] quint32 couleur() const { return m_couleur; }

private:
    void couleurDuType();
    void choisirCouleur();
    void afficherCouleur(quint32 couleur);
    bool refuser(QWidget *champ, const QString &message);

    // Colours of the eight types (the eighth, "Absent", white) for each
    // practitioner.
    std::array<std::array<quint32, 8>, 2> m_couleurs{};
    quint32 m_couleur = 0;
};

// "Modifier une date de fin de règle": the old and the new end date, given
// back in OldEndDate and NewEndDate ("yyyy/mm/dd", both empty on cancel).
class frmChangeDate final : public QDialog
{
    Q_OBJECT

public:
    explicit frmChangeDate(QWidget *parent = nullptr);

    std::array<QLineEdit *, 2> mebDateFinRegle{};
    QPushButton *cmdOk = nullptr;
    QPushButton *cmdCancel = nullptr;

    void cmdOk_Click();
};

// The colour held by a colour button (0xBBGGRR), and its display.
[[nodiscard]] quint32 CouleurBouton(const QPushButton *bouton);
void FixerCouleurBouton(QPushButton *bouton, quint32 couleur);

extern QString OldEndDate;
extern QString NewEndDate;
