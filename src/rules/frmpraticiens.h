#pragma once

#include <QDialog>

#include <array>

class QPushButton;

// "Choisir un Praticien": one button per practitioner, captioned with the
// name; a press sets the chosen values (rules/praticiens.h) and closes.
class frmPraticiens final : public QDialog
{
    Q_OBJECT

public:
    explicit frmPraticiens(QWidget *parent = nullptr);

    std::array<QPushButton *, 2> btn_Prat{};

    // Runs the chooser modally; true when a practitioner was chosen.
    static bool Choisir(QWidget *parent = nullptr);

private:
    void choisir(int index);

    std::array<QString, 2> m_couleurs;
};
