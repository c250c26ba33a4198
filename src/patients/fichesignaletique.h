#pragma once

#include "patients/fichepatient.h"

#include <QDialog>

#include <array>
#include <vector>

class QCheckBox;
class QComboBox;
class QFrame;
class QGridLayout;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QVBoxLayout;

// What the two patient cards share: every field of the patient row, their
// checks, the town help, the map, the treating physician, the summary panel.
// frmSignaletiques_AG and frmSignaletiques2_AG add what differs.
class FicheSignaletique : public QDialog
{
    Q_OBJECT

public:
    // txtFields(i): the text fields bound to the columns of the row (see
    // colonneDuChamp); the indexes of the date masks stay empty.
    static constexpr int NombreChamps = 62;
    // The widest that a form of the card grows.
    static constexpr int LargeurFormulaire = 640;
    std::array<QLineEdit *, NombreChamps> txtFields{};
    QTabWidget *SSTab1 = nullptr;
    QLineEdit *DN = nullptr;
    QLabel *lblAge = nullptr;
    QLineEdit *ALDDebut = nullptr;
    QLineEdit *ALDFin = nullptr;
    QLineEdit *SesamMutDebut = nullptr;
    QLineEdit *SesamMutFin = nullptr;
    QLineEdit *Text3 = nullptr; // sex, by key
    std::array<QRadioButton *, 2> Option3{}; // "&F", "&M"
    QCheckBox *SexeChk = nullptr;
    QLabel *imgSexe = nullptr;
    QLabel *lblJeuneFille = nullptr;
    QCheckBox *Check1 = nullptr; // "DCD"
    QComboBox *Combo1 = nullptr; // Situation
    QLineEdit *Text4 = nullptr;  // Médecin traitant, free text
    QLineEdit *Text6 = nullptr;
    QLineEdit *Text7 = nullptr;
    QLineEdit *Text8 = nullptr;
    QPlainTextEdit *text1 = nullptr; // Sesam_Vitale
    QLineEdit *Nom_Sesam = nullptr;
    QLineEdit *Prenom_Sesam = nullptr;
    QRadioButton *Option1 = nullptr; // "Autre confrère"
    QRadioButton *Option2 = nullptr; // "Moi-même depuis le : "
    QRadioButton *Option4 = nullptr; // "Sans médecin traitant"
    QLineEdit *texte2 = nullptr;     // Date_Contrat
    QGroupBox *Frame10 = nullptr;
    QLineEdit *txt_MTnom = nullptr;
    QLineEdit *txt_MTprenom = nullptr;
    QListWidget *Table3 = nullptr; // physicians already known
    QListWidget *List2 = nullptr;  // towns of a postal code
    QFrame *Vitale2 = nullptr;     // summary panel
    std::array<QLabel *, 3> lblResume{};
    QLabel *lblDossier = nullptr;
    QPushButton *btnCarte = nullptr;
    QPushButton *btn_enregistrer = nullptr;
    QPushButton *Btn_Abandon = nullptr;

    ~FicheSignaletique() override;

    // The column bound to txtFields(i), empty for an index without field.
    [[nodiscard]] static QString colonneDuChamp(int i);

    // Opens the card on PatientCourant (and RetourRecherche for the own
    // card). False, after a message, when the card cannot be shown.
    virtual bool charger() = 0;
    virtual void btn_enregistrer_Click() = 0;
    virtual void Btn_Abandon_Click();

    // The rules run when a field is left (tests call them through focus).
    void sortieNaissance();
    void fixerSexe(bool homme);
    void choisirMedecin(QRadioButton *option);
    void aideCodePostal(int index);
    void aideMedecin();
    void afficherCarte();
    void masquerResume();

protected:
    explicit FicheSignaletique(QWidget *parent);

    // Tab 1 ("Fiche" or "Administratif") is the variant's.
    [[nodiscard]] QWidget *ongletUn() const { return m_ongletUn; }
    // The bottom of the identity tab (the own card's appointments).
    [[nodiscard]] QVBoxLayout *basIdentite() const { return m_basIdentite; }
    // A row of buttons and labels beside the save buttons.
    [[nodiscard]] QHBoxLayout *barreBas() const { return m_barreBas; }

    void lier(const QString &colonne, QWidget *controle);
    [[nodiscard]] QLineEdit *masqueDate(const QString &nom, const QString &colonne, QWidget *parent);
    [[nodiscard]] QLineEdit *texte(const QString &nom, const QString &colonne, QWidget *parent);
    void afficherValeurs(const ValeursFiche &valeurs);
    // The fields of the card, with Sesam_Divers and Contrat as the physician
    // buttons give them.
    [[nodiscard]] ValeursFiche lireValeurs() const;
    void afficherResume(const QString &nom, const QString &prenom, const QString &naissance);
    void afficherNumero(qint32 numero);
    void majAge();
    void montrerSous(QWidget *liste, QWidget *champ, int largeur);
    [[nodiscard]] static QString texteMasque(const QLineEdit *masque);
    // Called when the names and the birth date change (the new own card
    // enables tabs once the identity is complete).
    virtual void identiteChangee() {}
    void cacherOnglets(std::initializer_list<int> index);

    bool eventFilter(QObject *objet, QEvent *evenement) override;
    void reject() override;

private:
    void construireIdentite(QWidget *page);
    void construireSesam(QWidget *page);
    void choisirCodePostal();
    void choisirLigneMedecin();
    void sortieTexte(QLineEdit *champ);

    struct Liaison
    {
        QString colonne;
        QWidget *controle;
    };
    std::vector<Liaison> m_liaisons;
    QWidget *m_ongletUn = nullptr;
    QVBoxLayout *m_basIdentite = nullptr;
    QHBoxLayout *m_barreBas = nullptr;
    QString m_tagCodePostal;
};
