#include "messaging/mailreminder.h"

#include "messaging/rtftohtml.h"
#include "shell/base/cp1252.h"
#include "shell/base/dossiers.h"
#include "shell/base/fichierspartages.h"
#include "shell/base/support.h"

#include <QFile>
#include <QLocale>
#include <QSaveFile>

namespace {

// Text of one run in RTF: the three special characters escaped, a line end
// as a paragraph mark on a line of its own, a tab as \tab, Windows-1252
// letters as \'xx, anything else as \uN with "?" for readers that skip it.
QString texteRtf(const QString &texte)
{
    QString normalise = texte;
    normalise.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    normalise.replace(u'\r', u'\n');

    QString rtf;
    for (qsizetype i = 0; i < normalise.size(); ++i) {
        const QChar c = normalise.at(i);
        if (c == u'\n') {
            rtf += QLatin1String("\\par\r\n");
        } else if (c == u'\\' || c == u'{' || c == u'}') {
            rtf += u'\\';
            rtf += c;
        } else if (c == u'\t') {
            rtf += QLatin1String("\\tab ");
        } else if (c.unicode() >= 0x20 && c.unicode() < 0x80) {
            rtf += c;
        } else if (c.unicode() < 0x20) {
            continue;
        } else {
            qsizetype longueur = c.isHighSurrogate() && i + 1 < normalise.size() ? 2 : 1;
            const QString caractere = normalise.mid(i, longueur);
            i += longueur - 1;
            const QByteArray octets = VersCp1252(caractere);
            if (octets.size() == 1 && octets.at(0) != '?') {
                rtf += QStringLiteral("\\'%1").arg(static_cast<unsigned char>(octets.at(0)), 2, 16, QLatin1Char('0'));
            } else {
                const char32_t point = caractere.toUcs4().value(0);
                // RTF numbers are signed 16-bit; beyond that the letter is
                // simply lost, as the converter would drop it anyway.
                if (point <= 0xffff)
                    rtf += QStringLiteral("\\u%1?").arg(static_cast<qint16>(point));
            }
        }
    }
    return rtf;
}

} // namespace

QString DernierTexteMailDefaut()
{
    return QStringLiteral("\r\nMerci de prévenir le secrétariat au 01.02.03.04.05 en cas d'empèchement.\r\n\r\n"
                          "Cabinet Médical Tavonel\r\n"
                          "1 place de la Mairie\r\n"
                          "00000 TAVONELVILLE");
}

QString DateExempleMail(const QDate &jour)
{
    return QLatin1String("Le ") + QLocale(QLocale::French).toString(jour, QStringLiteral("dddd dd MMMM yyyy"))
           + QStringLiteral(" à 18h:15");
}

QString ComposerRtfRappel(const QString &premier, const QString &praticien, const QString &dateTexte,
                          const QString &dernier)
{
    QString rtf = QStringLiteral("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}\r\n"
                                 "\\viewkind4\\uc1\\pard\\qc\\f0");
    rtf += QLatin1String("\\fs22 ") + texteRtf(premier) + QLatin1String("\\par\r\n");
    rtf += QLatin1String("\\fs28 ") + texteRtf(praticien) + QLatin1String("\\par\r\n");
    rtf += texteRtf(dateTexte) + QLatin1String("\\par\r\n");
    rtf += QLatin1String("\\fs22 ") + texteRtf(dernier) + QLatin1String("\\par\r\n\\par\r\n");
    rtf += QLatin1String("\\b\\i\\fs18 ") + texteRtf(QString::fromUtf16(kLigneNePasRepondre))
           + QLatin1String("\\b0\\i0\\par\r\n}");
    return rtf;
}

QString ComposerHtmlRappel(const QString &premier, const QString &praticien, const QString &dateTexte,
                           const QString &dernier)
{
    return RtfToHtml(ComposerRtfRappel(premier, praticien, dateTexte, dernier), QStringLiteral("+H"));
}

QString SendMailReminder(const QString &expediteur, const QString &destinataire, const QString &serveurSmtp,
                         const QString &sujet, const QString &premier, const QString &dernier,
                         const QString &dateTexte, const QString &praticien, const OptionsSmtp &options)
{
    const QString travail = DossierProgramme() + QStringLiteral("Html.htm");
    QFile::remove(travail);

    const QString html = ComposerHtmlRappel(premier, praticien, dateTexte, dernier);

    // The working file shows that the program folder can be written; without
    // it nothing is sent, and that is not reported.
    QSaveFile fichier(travail);
    if (fichier.open(QIODevice::WriteOnly)) {
        fichier.write(html.toUtf8());
        // A patient's appointment: for the practice's group only.
        PartagerDescripteur(fichier.handle());
        fichier.commit();
    }
    if (!FichierExiste(travail))
        return {};

    MessageMail message;
    message.expediteur = expediteur;
    message.nomExpediteur = QString::fromUtf16(kNomExpediteurRappel);
    message.destinataire = destinataire;
    message.sujet = sujet;
    message.html = html;
    return EnvoyerMailSmtp(serveurSmtp, message, options);
}
