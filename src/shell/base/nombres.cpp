#include "shell/base/nombres.h"

#include <cmath>
#include <limits>

namespace {

bool estBlanc(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

// Reads a whole number in the given base after "&H" / "&O". The value is a
// 32-bit word in the platform's reading, so "&HFFFFFFFF" is -1 while
// "&HFFFFFF" stays 16777215.
double lireBase(const QString &texte, qsizetype i, int base)
{
    quint64 valeur = 0;
    bool chiffre = false;
    for (; i < texte.size(); ++i) {
        const QChar c = texte.at(i);
        if (estBlanc(c))
            continue;
        const int v = c.isDigit() ? c.digitValue()
                      : (base == 16 && c.toUpper() >= u'A' && c.toUpper() <= u'F') ? c.toUpper().unicode() - u'A' + 10
                                                                                       : -1;
        if (v < 0 || v >= base)
            break;
        chiffre = true;
        valeur = valeur * base + v;
        if (valeur > 0xFFFFFFFFull)
            return 0;
    }
    if (!chiffre)
        return 0;
    if (valeur > 0x7FFFFFFFull && valeur <= 0xFFFFFFFFull)
        return static_cast<double>(static_cast<qint32>(static_cast<quint32>(valeur)));
    return static_cast<double>(valeur);
}

} // namespace

double LireNombre(const QString &texte)
{
    qsizetype i = 0;
    while (i < texte.size() && estBlanc(texte.at(i)))
        ++i;
    if (i + 1 < texte.size() && texte.at(i) == u'&') {
        const QChar p = texte.at(i + 1).toUpper();
        if (p == u'H')
            return lireBase(texte, i + 2, 16);
        if (p == u'O')
            return lireBase(texte, i + 2, 8);
    }

    // Blanks inside the number are passed over, as the platform's reader does.
    QString n;
    enum class Etat { Signe, Entier, Fraction, ExposantSigne, Exposant } etat = Etat::Signe;
    for (; i < texte.size(); ++i) {
        const QChar c = texte.at(i);
        if (estBlanc(c))
            continue;
        if (etat == Etat::Signe && (c == u'+' || c == u'-')) {
            n += c;
            etat = Etat::Entier;
            continue;
        }
        if (c.isDigit() && c.unicode() < 128) {
            n += c;
            if (etat == Etat::Signe)
                etat = Etat::Entier;
            if (etat == Etat::ExposantSigne)
                etat = Etat::Exposant;
            continue;
        }
        if (c == u'.' && (etat == Etat::Signe || etat == Etat::Entier)) {
            n += c;
            etat = Etat::Fraction;
            continue;
        }
        if ((c == u'E' || c == u'e' || c == u'D' || c == u'd') && (etat == Etat::Entier || etat == Etat::Fraction)) {
            n += u'e';
            etat = Etat::ExposantSigne;
            continue;
        }
        if (etat == Etat::ExposantSigne && (c == u'+' || c == u'-') && n.endsWith(u'e')) {
            n += c;
            continue;
        }
        break;
    }
    // A dangling exponent mark or sign adds nothing.
    while (!n.isEmpty() && (n.endsWith(u'e') || n.endsWith(u'+') || n.endsWith(u'-')))
        n.chop(1);
    bool ok = false;
    const double v = n.toDouble(&ok);
    return ok && std::isfinite(v) ? v : 0.0;
}

qint64 ArrondiBancaire(double valeur)
{
    if (!std::isfinite(valeur))
        return 0;
    const double r = std::nearbyint(valeur); // default rounding mode: to nearest, ties to even
    if (r >= static_cast<double>(std::numeric_limits<qint64>::max()))
        return std::numeric_limits<qint64>::max();
    if (r <= static_cast<double>(std::numeric_limits<qint64>::min()))
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(r);
}

qint64 LireEntier(const QString &texte)
{
    return ArrondiBancaire(LireNombre(texte));
}

QString TexteNombre(double valeur)
{
    if (valeur == std::floor(valeur) && std::fabs(valeur) < 1e15)
        return QString::number(static_cast<qint64>(valeur));
    return QString::number(valeur, 'g', 15);
}
