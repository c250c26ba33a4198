#pragma once

#include <QString>

#include <optional>

// Every message box, question, file, folder or colour picker of the program
// goes through this one service. The desktop program installs the widget
// answerer; tests install a scripted one that records each title and text and
// answers in turn, so that no test ever waits on a modal box. Without an
// answerer (command line), messages go to standard error and the default
// answer is taken.
namespace Prompt {

enum class Icone { Aucune, Information, Question, Exclamation, Critique };

// The numbers are those of the platform's message box results.
enum class Reponse { Ok = 1, Annuler = 2, Abandonner = 3, Reessayer = 4, Ignorer = 5, Oui = 6, Non = 7 };

enum class Boutons { Ok, OkAnnuler, AbandonnerReessayerIgnorer, OuiNonAnnuler, OuiNon, ReessayerAnnuler };

struct Message
{
    QString titre;
    QString texte;
    Icone icone = Icone::Information;
    Boutons boutons = Boutons::Ok;
    Reponse parDefaut = Reponse::Ok;
};

struct ChoixFichier
{
    QString titre;
    QString dossier;
    QString filtre;       // Qt filter text, "Bases (*.mdb);;Tous (*)"
    bool enregistrer = false;
};

class Repondeur
{
public:
    virtual ~Repondeur() = default;
    virtual Reponse message(const Message &m) = 0;
    // Empty text: the user cancelled.
    virtual QString choisirFichier(const ChoixFichier &) { return {}; }
    virtual QString choisirDossier(const QString & /*titre*/, const QString & /*dossier*/) { return {}; }
    // Colours are 0xBBGGRR values; no value: cancelled.
    virtual std::optional<quint32> choisirCouleur(quint32 /*couleur*/) { return std::nullopt; }
    // Name of a printer; empty: cancelled.
    virtual QString choisirImprimante(const QString & /*actuelle*/) { return {}; }
    virtual void bip() {}
};

// Installs the answerer; nullptr reinstates the console answerer. The caller
// keeps ownership.
void installer(Repondeur *repondeur);
[[nodiscard]] Repondeur &courant();

Reponse demander(const Message &m);
// A Yes/No question with its default button; true on Yes.
bool confirmer(const QString &titre, const QString &texte, Reponse parDefaut);
// A box with the single button OK.
void informer(const QString &titre, const QString &texte, Icone icone = Icone::Information);
QString choisirFichier(const ChoixFichier &choix);
QString choisirDossier(const QString &titre, const QString &dossier);
std::optional<quint32> choisirCouleur(quint32 couleur);
QString choisirImprimante(const QString &actuelle);
void bip();

// Installs an answerer for the lifetime of the object, then puts back the one
// that was there.
class Installation final
{
public:
    explicit Installation(Repondeur *repondeur);
    ~Installation();
    Installation(const Installation &) = delete;
    Installation &operator=(const Installation &) = delete;

private:
    Repondeur *m_precedent;
};

} // namespace Prompt
