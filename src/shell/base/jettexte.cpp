#include "shell/base/jettexte.h"

#include <QList>

QString PlierTexte(const QString &texte)
{
    // Fast path: plain ASCII needs no decomposition.
    bool ascii = true;
    for (QChar c : texte) {
        if (c.unicode() >= 128) {
            ascii = false;
            break;
        }
    }
    if (ascii)
        return texte.toUpper();

    const QString decompose = texte.normalized(QString::NormalizationForm_KD);
    QString sortie;
    sortie.reserve(decompose.size());
    for (QChar c : decompose) {
        const auto cat = c.category();
        if (cat == QChar::Mark_NonSpacing || cat == QChar::Mark_SpacingCombining || cat == QChar::Mark_Enclosing)
            continue;
        sortie += c;
    }
    // Ligatures that have no decomposition.
    sortie.replace(u'\u0153', QStringLiteral("oe")).replace(u'\u0152', QStringLiteral("OE"));
    sortie.replace(u'\u00E6', QStringLiteral("ae")).replace(u'\u00C6', QStringLiteral("AE"));
    sortie.replace(u'\u00DF', QStringLiteral("ss"));
    return sortie.toUpper();
}

namespace {

// One element of a pattern.
struct Element
{
    enum Type { Litteral, Etoile, UnCaractere, Chiffre, Ensemble } type;
    QChar c;
    QList<QPair<QChar, QChar>> plages; // for sets
    bool negation = false;
};

QList<Element> compiler(const QString &motif)
{
    QList<Element> elements;
    for (qsizetype i = 0; i < motif.size(); ++i) {
        const QChar c = motif.at(i);
        if (c == u'*') {
            if (elements.isEmpty() || elements.last().type != Element::Etoile)
                elements.append({Element::Etoile, {}, {}, false});
        } else if (c == u'?') {
            elements.append({Element::UnCaractere, {}, {}, false});
        } else if (c == u'#') {
            elements.append({Element::Chiffre, {}, {}, false});
        } else if (c == u'[') {
            const qsizetype fin = motif.indexOf(u']', i + 1);
            if (fin < 0) {
                elements.append({Element::Litteral, c, {}, false});
                continue;
            }
            Element e{Element::Ensemble, {}, {}, false};
            qsizetype j = i + 1;
            if (j < fin && motif.at(j) == u'!') {
                e.negation = true;
                ++j;
            }
            for (; j < fin; ++j) {
                const QChar a = PlierTexte(QString(motif.at(j))).at(0);
                if (j + 2 < fin && motif.at(j + 1) == u'-') {
                    const QChar b = PlierTexte(QString(motif.at(j + 2))).at(0);
                    e.plages.append({a, b});
                    j += 2;
                } else {
                    e.plages.append({a, a});
                }
            }
            elements.append(e);
            i = fin;
        } else {
            elements.append({Element::Litteral, c, {}, false});
        }
    }
    return elements;
}

bool accepte(const Element &e, QChar c)
{
    switch (e.type) {
    case Element::Litteral:
        return e.c == c;
    case Element::UnCaractere:
        return true;
    case Element::Chiffre:
        return c.isDigit();
    case Element::Ensemble: {
        bool dedans = false;
        for (const auto &p : e.plages) {
            if (c >= p.first && c <= p.second) {
                dedans = true;
                break;
            }
        }
        return dedans != e.negation;
    }
    case Element::Etoile:
        return true;
    }
    return false;
}

} // namespace

struct MotifJet::Elements
{
    QList<Element> liste;
    // "*" alone: every text matches, without reading it.
    bool tout = liste.size() == 1 && liste.front().type == Element::Etoile;
};

MotifJet::MotifJet(const QString &motif)
    : m_elements(new Elements{compiler(PlierTexte(motif))})
{
}

MotifJet::~MotifJet()
{
    delete m_elements;
}

bool JetLike(const QString &texte, const QString &motif)
{
    return MotifJet(motif).correspond(texte);
}

bool MotifJet::correspond(const QString &texte) const
{
    return correspondPlie(PlierTexte(texte));
}

bool MotifJet::correspondPlie(QStringView t) const
{
    if (m_elements->tout)
        return true;
    const QList<Element> &elements = m_elements->liste;
    // Greedy matching with backtracking on the last star.
    qsizetype ti = 0, ei = 0, etoile = -1, reprise = 0;
    while (ti < t.size()) {
        if (ei < elements.size() && elements.at(ei).type != Element::Etoile && accepte(elements.at(ei), t.at(ti))) {
            ++ti;
            ++ei;
        } else if (ei < elements.size() && elements.at(ei).type == Element::Etoile) {
            etoile = ei++;
            reprise = ti;
        } else if (etoile >= 0) {
            ei = etoile + 1;
            ti = ++reprise;
        } else {
            return false;
        }
    }
    while (ei < elements.size() && elements.at(ei).type == Element::Etoile)
        ++ei;
    return ei == elements.size();
}
