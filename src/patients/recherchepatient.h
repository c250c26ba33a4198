#pragma once

#include "patients/recherchepatients.h"

#include <QAbstractTableModel>
#include <QDialog>

#include <array>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

// The rows of a search as the grid shows them: seven columns, read from the
// bases only for the rows that the view asks for.
class ModeleRecherche final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void fixer(ResultatRecherche resultat);
    void vider();
    [[nodiscard]] ResultatRecherche &resultat() { return m_resultat; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    mutable ResultatRecherche m_resultat;
};

// The two patient search dialogs share this one; the table of their
// differences is in the constructor and in the few places that ask
// estRendezVous().
class RecherchePatient : public QDialog
{
    Q_OBJECT

public:
    QLineEdit *Text1 = nullptr;
    QLineEdit *Text2 = nullptr;
    QLineEdit *Text3 = nullptr;
    // Index 1 searches the linked bases, index 2 the own base (0 unused).
    std::array<QPushButton *, 3> Btn_Rechercher{};
    QPushButton *Btn_Ouvrir_Fiche = nullptr;
    QPushButton *Btn_Lire_carte = nullptr;
    QPushButton *Btn_Creer_Patient = nullptr;
    QPushButton *Btn_Abandon = nullptr;
    QTableView *DBGrid1 = nullptr;
    QLabel *lb = nullptr;
    QLabel *LabelMessage = nullptr;

    // Search with index 1 (linked bases) or 2 (own base).
    void Rechercher(int index);
    // Takes the selected row (also a double-click on the grid).
    void OuvrirFiche();
    void Abandon();
    void CreerPatient();
    void ChoisirPatientEnCours();
    // The short search over the own base that no command calls; kept ready.
    void Search();

    [[nodiscard]] ModeleRecherche *modele() const { return m_modele; }

protected:
    enum class Genre { RendezVous, Agenda };
    RecherchePatient(Genre genre, QWidget *parent);

    void showEvent(QShowEvent *event) override;
    void reject() override;
    bool eventFilter(QObject *objet, QEvent *evenement) override;

private:
    [[nodiscard]] bool estRendezVous() const { return m_genre == Genre::RendezVous; }
    [[nodiscard]] int indexParDefaut() const { return estRendezVous() ? 1 : 2; }
    void afficherResultat();
    void deplacer(int pas);
    void verifierDateNaissance();

    Genre m_genre;
    ModeleRecherche *m_modele = nullptr;
};

// Opened by the appointment editor to tie an appointment to a patient.
class Recherche_patient_AG final : public RecherchePatient
{
    Q_OBJECT

public:
    explicit Recherche_patient_AG(QWidget *parent = nullptr);
};

// Opened by the main window's patient command.
class Recherche_patient_Agenda final : public RecherchePatient
{
    Q_OBJECT

public:
    explicit Recherche_patient_Agenda(QWidget *parent = nullptr);
};
