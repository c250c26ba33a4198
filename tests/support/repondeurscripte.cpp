#include "support/repondeurscripte.h"

RepondeurScripte::RepondeurScripte()
    : m_precedent(&Prompt::courant())
{
    Prompt::installer(this);
}

RepondeurScripte::~RepondeurScripte()
{
    Prompt::installer(m_precedent);
}

Prompt::Reponse RepondeurScripte::message(const Prompt::Message &m)
{
    m_appels.append({QStringLiteral("message"), m.titre, m.texte, m.icone, m.boutons});
    if (m_reponses.isEmpty()) {
        // A plain information box needs no scripted answer.
        if (m.boutons != Prompt::Boutons::Ok)
            ++m_imprevus;
        return m.parDefaut;
    }
    return m_reponses.takeFirst();
}

QString RepondeurScripte::choisirFichier(const Prompt::ChoixFichier &choix)
{
    m_appels.append({QStringLiteral("fichier"), choix.titre, choix.dossier, Prompt::Icone::Aucune, Prompt::Boutons::Ok});
    if (m_fichiers.isEmpty()) {
        ++m_imprevus;
        return {};
    }
    return m_fichiers.takeFirst();
}

QString RepondeurScripte::choisirDossier(const QString &titre, const QString &dossier)
{
    m_appels.append({QStringLiteral("dossier"), titre, dossier, Prompt::Icone::Aucune, Prompt::Boutons::Ok});
    if (m_dossiers.isEmpty()) {
        ++m_imprevus;
        return {};
    }
    return m_dossiers.takeFirst();
}

std::optional<quint32> RepondeurScripte::choisirCouleur(quint32 couleur)
{
    m_appels.append({QStringLiteral("couleur"), QString(), QString::number(couleur), Prompt::Icone::Aucune, Prompt::Boutons::Ok});
    if (m_couleurs.isEmpty()) {
        ++m_imprevus;
        return std::nullopt;
    }
    return m_couleurs.takeFirst();
}

QString RepondeurScripte::choisirImprimante(const QString &actuelle)
{
    m_appels.append({QStringLiteral("imprimante"), QString(), actuelle, Prompt::Icone::Aucune, Prompt::Boutons::Ok});
    if (m_imprimantes.isEmpty()) {
        ++m_imprevus;
        return {};
    }
    return m_imprimantes.takeFirst();
}

void RepondeurScripte::bip()
{
    m_appels.append({QStringLiteral("bip"), QString(), QString(), Prompt::Icone::Aucune, Prompt::Boutons::Ok});
}

QStringList RepondeurScripte::textes() const
{
    QStringList t;
    for (const Appel &a : m_appels) {
        if (a.genre == QLatin1String("message"))
            t << a.texte;
    }
    return t;
}

int RepondeurScripte::bips() const
{
    int n = 0;
    for (const Appel &a : m_appels)
        n += a.genre == QLatin1String("bip") ? 1 : 0;
    return n;
}

void RepondeurScripte::effacer()
{
    m_appels.clear();
    m_imprevus = 0;
}
