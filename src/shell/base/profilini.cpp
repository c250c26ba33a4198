#include "shell/base/profilini.h"

#include "shell/base/cp1252.h"
#include "shell/base/dossiers.h"

#include <QFile>
#include <QSaveFile>

#include <optional>

namespace {

constexpr qsizetype TailleMaxValeur = 254; // a buffer of 255 with its terminating NUL

// Name of the section opened by the line; nothing when the line opens none.
std::optional<QString> nomSection(const QString &ligne)
{
    const QString t = ligne.trimmed();
    if (!t.startsWith(u'['))
        return std::nullopt;
    const qsizetype fin = t.lastIndexOf(u']');
    const QString nom = fin > 0 ? t.mid(1, fin - 1) : t.mid(1);
    return nom.trimmed();
}

bool estCommentaire(const QString &t)
{
    return t.startsWith(u';');
}

// Splits a "key=value" line; false when the line holds no "=".
bool separer(const QString &ligne, QString &cle, QString &valeur)
{
    const QString t = ligne.trimmed();
    if (t.isEmpty() || estCommentaire(t) || t.startsWith(u'['))
        return false;
    const qsizetype egal = t.indexOf(u'=');
    if (egal < 0) {
        cle = t;
        valeur.clear();
        return true;
    }
    cle = t.left(egal).trimmed();
    valeur = t.mid(egal + 1).trimmed();
    return true;
}

QString sansGuillemets(const QString &v)
{
    if (v.size() >= 2 && (v.front() == u'"' || v.front() == u'\'') && v.back() == v.front())
        return v.mid(1, v.size() - 2);
    return v;
}

bool memeNom(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

FichierProfil FichierProfil::charger(const QString &chemin)
{
    FichierProfil p;
    QFile f(chemin);
    if (!f.open(QIODevice::ReadOnly))
        return p;
    QByteArray octets = f.readAll();
    QString texte;
    if (octets.startsWith("\xEF\xBB\xBF")) {
        p.m_utf8 = true;
        texte = QString::fromUtf8(octets.mid(3));
    } else {
        texte = DepuisCp1252(octets);
    }
    texte.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    texte.replace(u'\r', u'\n');
    p.m_lignes = texte.split(u'\n');
    if (!p.m_lignes.isEmpty() && p.m_lignes.last().isEmpty())
        p.m_lignes.removeLast();
    return p;
}

qsizetype FichierProfil::ligneSection(const QString &section) const
{
    const QString voulu = section.trimmed();
    for (qsizetype i = 0; i < m_lignes.size(); ++i) {
        const auto nom = nomSection(m_lignes.at(i));
        if (nom && memeNom(*nom, voulu))
            return i;
    }
    return -1;
}

QString FichierProfil::valeur(const QString &section, const QString &cle, bool *trouve) const
{
    if (trouve)
        *trouve = false;
    const qsizetype debut = ligneSection(section);
    if (debut < 0)
        return {};
    const QString voulue = cle.trimmed();
    for (qsizetype i = debut + 1; i < m_lignes.size(); ++i) {
        if (nomSection(m_lignes.at(i)))
            break;
        QString k, v;
        if (separer(m_lignes.at(i), k, v) && memeNom(k, voulue)) {
            if (trouve)
                *trouve = true;
            return sansGuillemets(v);
        }
    }
    return {};
}

void FichierProfil::fixer(const QString &section, const QString &cle, const QString &valeur)
{
    const QString ligneCle = cle.trimmed() + u'=' + valeur;
    qsizetype debut = ligneSection(section);
    if (debut < 0) {
        if (!m_lignes.isEmpty() && !m_lignes.last().trimmed().isEmpty())
            m_lignes.append(QString());
        m_lignes.append(u'[' + section.trimmed() + u']');
        m_lignes.append(ligneCle);
        return;
    }
    qsizetype derniere = debut; // last non-blank line of the section
    for (qsizetype i = debut + 1; i < m_lignes.size(); ++i) {
        if (nomSection(m_lignes.at(i)))
            break;
        QString k, v;
        if (separer(m_lignes.at(i), k, v) && memeNom(k, cle.trimmed())) {
            // The key keeps the spelling it has in the file.
            m_lignes[i] = k + u'=' + valeur;
            return;
        }
        if (!m_lignes.at(i).trimmed().isEmpty())
            derniere = i;
    }
    m_lignes.insert(derniere + 1, ligneCle);
}

QStringList FichierProfil::sections() const
{
    QStringList noms;
    for (const QString &l : m_lignes) {
        if (const auto nom = nomSection(l))
            noms << *nom;
    }
    return noms;
}

bool FichierProfil::enregistrer(const QString &chemin) const
{
    QString texte;
    for (const QString &l : m_lignes)
        texte += l + QStringLiteral("\r\n");
    QSaveFile f(chemin);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    const QByteArray octets = m_utf8 ? QByteArray("\xEF\xBB\xBF") + texte.toUtf8() : VersCp1252(texte);
    if (f.write(octets) != octets.size()) {
        f.cancelWriting();
        return false;
    }
    return f.commit();
}

QString LireIni(const QString &section, const QString &cle, const QString &defaut, const QString &chemin)
{
    bool trouve = false;
    const QString v = FichierProfil::charger(chemin).valeur(section, cle, &trouve);
    if (trouve)
        return v.left(TailleMaxValeur);
    QString d = defaut;
    while (d.endsWith(u' '))
        d.chop(1);
    return d.left(TailleMaxValeur);
}

void EcrireIni(const QString &section, const QString &cle, const QString &valeur, const QString &chemin)
{
    FichierProfil p = FichierProfil::charger(chemin);
    p.fixer(section, cle, valeur);
    p.enregistrer(chemin);
}

QString CheminAgendaIni()
{
    return DossierProgramme() + QStringLiteral("Agenda.ini");
}

QString LireAgendaIni(const QString &section, const QString &cle, const QString &defaut)
{
    return LireIni(section, cle, defaut, CheminAgendaIni());
}

void EcrireAgendaIni(const QString &section, const QString &cle, const QString &valeur)
{
    EcrireIni(section, cle, valeur, CheminAgendaIni());
}
