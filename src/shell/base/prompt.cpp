#include "shell/base/prompt.h"

#include <cstdio>

namespace Prompt {
namespace {

class RepondeurConsole final : public Repondeur
{
public:
    Reponse message(const Message &m) override
    {
        const QByteArray ligne = (m.titre.isEmpty() ? m.texte : m.titre + QStringLiteral(" : ") + m.texte).toLocal8Bit();
        std::fprintf(stderr, "%s\n", ligne.constData());
        std::fflush(stderr);
        return m.parDefaut;
    }
};

RepondeurConsole g_console;
Repondeur *g_courant = nullptr;

} // namespace

void installer(Repondeur *repondeur)
{
    g_courant = repondeur;
}

Repondeur &courant()
{
    return g_courant ? *g_courant : static_cast<Repondeur &>(g_console);
}

Reponse demander(const Message &m)
{
    return courant().message(m);
}

bool confirmer(const QString &titre, const QString &texte, Reponse parDefaut)
{
    return demander(Message{titre, texte, Icone::Question, Boutons::OuiNon, parDefaut}) == Reponse::Oui;
}

void informer(const QString &titre, const QString &texte, Icone icone)
{
    courant().message(Message{titre, texte, icone, Boutons::Ok, Reponse::Ok});
}

QString choisirFichier(const ChoixFichier &choix)
{
    return courant().choisirFichier(choix);
}

QString choisirDossier(const QString &titre, const QString &dossier)
{
    return courant().choisirDossier(titre, dossier);
}

std::optional<quint32> choisirCouleur(quint32 couleur)
{
    return courant().choisirCouleur(couleur);
}

QString choisirImprimante(const QString &actuelle)
{
    return courant().choisirImprimante(actuelle);
}

void bip()
{
    courant().bip();
}

Installation::Installation(Repondeur *repondeur)
    : m_precedent(g_courant)
{
    g_courant = repondeur;
}

Installation::~Installation()
{
    g_courant = m_precedent;
}

} // namespace Prompt
