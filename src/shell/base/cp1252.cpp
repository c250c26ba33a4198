#include "shell/base/cp1252.h"

#include <QStringDecoder>
#include <QStringEncoder>

QByteArray VersCp1252(const QString &texte)
{
    QStringEncoder encodeur("windows-1252", QStringConverter::Flag::Stateless);
    QByteArray octets = encodeur.encode(texte);
    if (!octets.contains('\x1A'))
        return octets;
    // The encoder marks what it cannot hold with SUB; tell those apart from a
    // real SUB character of the text, character by character.
    QByteArray sortie;
    sortie.reserve(texte.size());
    for (qsizetype i = 0; i < texte.size(); ++i) {
        QString c = texte.mid(i, 1);
        if (texte.at(i).isHighSurrogate() && i + 1 < texte.size()) {
            c = texte.mid(i, 2);
            ++i;
        }
        if (c == QStringLiteral("\x1A")) {
            sortie += '\x1A';
            continue;
        }
        const QByteArray un = encodeur.encode(c);
        sortie += (un.size() == 1 && un.at(0) != '\x1A') ? un : QByteArray("?");
    }
    return sortie;
}

QString DepuisCp1252(const QByteArray &octets)
{
    QStringDecoder decodeur("windows-1252", QStringConverter::Flag::Stateless);
    return decodeur.decode(octets);
}
