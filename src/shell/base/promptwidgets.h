#pragma once

#include "shell/base/prompt.h"

class QWidget;

// The desktop answerer: real message boxes and pickers, parented to the
// active window.
class RepondeurWidgets final : public Prompt::Repondeur
{
public:
    Prompt::Reponse message(const Prompt::Message &m) override;
    QString choisirFichier(const Prompt::ChoixFichier &choix) override;
    QString choisirDossier(const QString &titre, const QString &dossier) override;
    std::optional<quint32> choisirCouleur(quint32 couleur) override;
    QString choisirImprimante(const QString &actuelle) override;
    void bip() override;
};
