#pragma once

#include "calendar/choixstore.h"

#include <QDialog>
#include <QList>
#include <QString>

#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// Lets the user point the calendar at another store: one option button per
// kind, the labels of the chosen kind and its string, kept per kind while the
// user switches. OK saves every string in the per-user section "Provider"
// (with "Active" and "ActivePath"); the caller then attaches the store.
class frmCalendarDataChooser final : public QDialog
{
    Q_OBJECT

public:
    // The current kind is the one the calendar is on; the file kinds name a
    // file of the program folder.
    frmCalendarDataChooser(int currentKind, QString programDir, QWidget *parent = nullptr);

    [[nodiscard]] int ProviderType() const { return m_lignes.at(m_courant).kind; }
    [[nodiscard]] QString ConnectionString() const;
    [[nodiscard]] bool cancelled() const { return m_cancelled; }

    // One per kind, in the order of the kinds (rdDP_Memory ... rdDP_MariaDB).
    std::vector<QRadioButton *> options;
    QLabel *txtLabelTop = nullptr;
    QLabel *txtLabelBottom = nullptr;
    QLineEdit *txtConnectionStr = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    void choisir(int index);
    void valider();

    QList<LigneFournisseur> m_lignes;
    qsizetype m_courant = 1;
    QString m_programDir;
    bool m_cancelled = true;
};
