#pragma once

#include <QDialog>

class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;

// The chooser of a user file (*.zek) of the practice-management product, in
// DossierConfig. Its outcome is ChoixBase and ChoixBaseValide.
class frm_OuvrirBase_AG final : public QDialog
{
    Q_OBJECT

public:
    explicit frm_OuvrirBase_AG(QWidget *parent = nullptr);

    // Fills the list. When the folder holds no *.zek file, tells so and
    // returns false: the dialog is not to be shown.
    bool charger();

    QGroupBox *Frame1 = nullptr;
    QListWidget *List1 = nullptr;
    QGroupBox *Frame2 = nullptr;
    QLabel *lblFichier = nullptr;
    QListWidget *List_Base = nullptr;
    QPushButton *Btn_Ok = nullptr;
    QPushButton *btn_Annuler = nullptr;
    QPushButton *Alert = nullptr;

protected:
    bool eventFilter(QObject *objet, QEvent *evenement) override;

private:
    void selectionner(int ligne);
    void valider();
};

// Shows the chooser modally when there is a file to choose (ChoixBaseValide
// is false when there is none).
void ChoisirFichierZek(QWidget *parent);
