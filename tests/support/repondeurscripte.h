#pragma once

#include "shell/base/prompt.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The answerer of the tests: records every box (title and text) and answers
// with the queued answers in turn; with nothing queued it takes the box's
// default answer and counts the box as unexpected.
class RepondeurScripte final : public Prompt::Repondeur
{
public:
    struct Appel
    {
        QString genre; // "message", "fichier", "dossier", "couleur", "imprimante", "bip"
        QString titre;
        QString texte;
        Prompt::Icone icone = Prompt::Icone::Aucune;
        Prompt::Boutons boutons = Prompt::Boutons::Ok;
    };

    RepondeurScripte();
    ~RepondeurScripte() override;

    void repondre(Prompt::Reponse r) { m_reponses.append(r); }
    void repondreFichier(const QString &chemin) { m_fichiers.append(chemin); }
    void repondreDossier(const QString &chemin) { m_dossiers.append(chemin); }
    void repondreCouleur(std::optional<quint32> c) { m_couleurs.append(c); }
    void repondreImprimante(const QString &nom) { m_imprimantes.append(nom); }

    Prompt::Reponse message(const Prompt::Message &m) override;
    QString choisirFichier(const Prompt::ChoixFichier &choix) override;
    QString choisirDossier(const QString &titre, const QString &dossier) override;
    std::optional<quint32> choisirCouleur(quint32 couleur) override;
    QString choisirImprimante(const QString &actuelle) override;
    void bip() override;

    [[nodiscard]] const QList<Appel> &appels() const { return m_appels; }
    [[nodiscard]] QStringList textes() const;
    [[nodiscard]] int imprevus() const { return m_imprevus; }
    [[nodiscard]] int bips() const;
    void effacer();

private:
    QList<Appel> m_appels;
    QList<Prompt::Reponse> m_reponses;
    QStringList m_fichiers;
    QStringList m_dossiers;
    QList<std::optional<quint32>> m_couleurs;
    QStringList m_imprimantes;
    int m_imprevus = 0;
    Prompt::Repondeur *m_precedent = nullptr;
};
