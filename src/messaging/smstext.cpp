#include "messaging/smstext.h"

#include "shell/base/cp1252.h"

#include <QLocale>

namespace {

// The character that goes out as the given byte of the Windows-1252 line.
QString Octet(unsigned char octet)
{
    return DepuisCp1252(QByteArray(1, static_cast<char>(octet)));
}

// The GSM alphabet's position of the letter, with 128 added to positions
// under 10 so that no control character reaches the serial line; the modem
// takes the byte as it stands.
struct Pli
{
    char16_t lettre;
    int octet;          // -1: replaced by the text below
    const char *texte;
};

constexpr Pli TablePlis[] = {
    {u'ç', 137, nullptr}, {u'Ç', 137, nullptr},
    {u'ü', -1, "u"},      {u'û', -1, "u"},
    {u'à', 127, nullptr},
    {u'@', 128, nullptr},
    {u'ä', 123, nullptr},
    {u'é', 133, nullptr},
    {u'ù', 134, nullptr},
    {u'â', -1, "a"},
    {u'ë', -1, "e"},      {u'ê', -1, "e"},
    {u'ö', -1, "o"},      {u'ô', -1, "o"},
    {u'Â', -1, "A"},      {u'Ä', -1, "A"},
    {u'Ê', -1, "E"},      {u'Ë', -1, "E"},      {u'É', -1, "E"},
    {u'Ï', -1, "I"},      {u'Î', -1, "I"},
    {u'Ö', -1, "O"},      {u'Ô', -1, "O"},
    {u'Û', -1, "U"},      {u'Ü', -1, "U"},
    {u'è', 132, nullptr},
    {u'£', 129, nullptr},
    {u'$', 130, nullptr},
    {u'€', -1, "Euro"},
    {u'ï', -1, "i"},      {u'î', -1, "i"},
};

} // namespace

QString FoldSMSText(const QString &texte)
{
    QString plie;
    plie.reserve(texte.size() + 8);
    for (const QChar c : texte) {
        const Pli *trouve = nullptr;
        for (const Pli &p : TablePlis) {
            if (p.lettre == c.unicode()) {
                trouve = &p;
                break;
            }
        }
        if (!trouve)
            plie += c;
        else if (trouve->octet >= 0)
            plie += Octet(static_cast<unsigned char>(trouve->octet));
        else
            plie += QLatin1String(trouve->texte);
    }
    return plie;
}

QString TexteDateRendezVous(const QDateTime &debut)
{
    // French names whatever the machine's locale; the time keeps its
    // trailing blank, so the line ends in a blank before the line end.
    const QLocale francais(QLocale::French, QLocale::France);
    return QStringLiteral("Le ") + francais.toString(debut.date(), QStringLiteral("dddd dd MMMM yyyy"))
        + QStringLiteral(" à ")
        + QString::asprintf("%02dH%02d ", debut.time().hour(), debut.time().minute());
}

QString BuildSMSText(const QString &first, const QString &praticien, const QString &ligneDate,
                     const QString &last)
{
    const QChar cr(u'\r');
    const QString texte = first + cr + praticien + cr + ligneDate + cr + last;
    return FoldSMSText(texte).left(159);
}

QString CleanPhoneNumber(const QString &numero)
{
    QString propre = numero;
    propre.remove(u'.');
    propre.remove(u' ');
    return propre;
}

LongueurIndication LongueurMessage(const QString &first, const QString &ligneAuteur,
                                   const QString &ligneDate, const QString &last)
{
    LongueurIndication l;
    l.longueur = static_cast<int>(first.size() + ligneAuteur.size() + ligneDate.size() + last.size());
    l.alerte = l.longueur > 150;
    l.couleur = l.alerte ? 192u : 0u;
    return l;
}
