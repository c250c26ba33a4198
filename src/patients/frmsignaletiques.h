#pragma once

#include "patients/fichesignaletique.h"

class QTableWidget;
class QTextEdit;
class QToolButton;

// The own card: a row of the agenda's own Patients.mdb, or a new patient.
// With the note pane, the patient's appointments and the same-family search.
class frmSignaletiques_AG final : public FicheSignaletique
{
    Q_OBJECT

public:
    explicit frmSignaletiques_AG(QWidget *parent = nullptr);

    QTextEdit *HighEdit = nullptr;
    std::array<QToolButton *, 4> ChoixCouleur{};
    QTableWidget *DataRDV = nullptr; // "Rendez-vous pris "
    QTableWidget *Table4 = nullptr;  // same family
    bool NouvelleFiche = false;

    bool charger() override;
    void btn_enregistrer_Click() override;
    void rechercherFamille();
    [[nodiscard]] qint32 numero() const { return m_numero; }

protected:
    void identiteChangee() override;
    bool eventFilter(QObject *objet, QEvent *evenement) override;

private:
    void construireNote(QWidget *page);
    void couleur(int bouton);
    void choisirFamille();
    void remplirRendezVous(qint32 numero);
    void chargetexte(const QString &texte);
    [[nodiscard]] NoteSaisie Sauvetexte();

    qint32 m_numero = 0;
};

// The linked card: a row of a linked base of the practice-management
// product. Its save keeps one mirror of the row in the own base.
class frmSignaletiques2_AG final : public FicheSignaletique
{
    Q_OBJECT

public:
    explicit frmSignaletiques2_AG(QWidget *parent = nullptr);

    QTabWidget *SSTab2 = nullptr; // "Coordonnées AMC", "Coordonnées Mutuelle"
    QLineEdit *DateVisite = nullptr;
    QLineEdit *MaskEdBox1 = nullptr;
    QLineEdit *MaskEdBox2 = nullptr;
    QLineEdit *MaskEdBox3 = nullptr;
    QLineEdit *MaskEdBox4 = nullptr;
    QComboBox *Combo2 = nullptr;
    QComboBox *Combo3 = nullptr;
    QComboBox *Combo4 = nullptr;
    QComboBox *Combo5 = nullptr;
    QPushButton *btnSupprimerAMC = nullptr;
    QPushButton *btnSupprimerMutuelle = nullptr;
    std::array<QLabel *, 2> lblCarte{};   // Nom_Sesam / Prenom_Sesam or "Carte non lue"
    std::array<QLabel *, 2> lblNoDossier{};

    bool charger() override;
    void btn_enregistrer_Click() override;
    void Btn_Abandon_Click() override;

    // The nineteen values of the block, in slot order, and back.
    [[nodiscard]] BlocAMC blocAMC() const;
    void afficherAMC(const QStringList &valeurs);
    void viderAMC();
    void viderMutuelle();
    [[nodiscard]] const QString &cheminBase() const { return m_cheminLie; }

private:
    void construireAdministratif(QWidget *page);
    void choisirSousOnglet();
    [[nodiscard]] std::array<QWidget *, NombreValeursAMC> controlesAMC() const;

    QString m_cheminLie;
    qint32 m_numeroLie = 0;
    bool m_chargement = false;
};
