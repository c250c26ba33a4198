#pragma once

#include <QDialog>

#include <array>

class QLineEdit;
class QPushButton;

// "Liaison avec Brenwick": the four link slots of the agenda, each a base
// path, its identifier and the *.zek file it was taken from.
class frmZek_AG2 final : public QDialog
{
    Q_OBJECT

public:
    explicit frmZek_AG2(QWidget *parent = nullptr);

    // Rows 1 to 4 (index 0 unused).
    std::array<QLineEdit *, 5> DBPath{};
    std::array<QLineEdit *, 5> DBIdentity{};
    std::array<QLineEdit *, 5> TextZek{};
    std::array<QPushButton *, 5> DBpathDialog{};
    QPushButton *btnValider = nullptr;
    QPushButton *btnAnnuler = nullptr;

    // Browse button of row i: a user file is chosen and fills the row.
    void Parcourir(int i);
    // Writes the twelve keys and reads them back into the state.
    void Valider();
};
