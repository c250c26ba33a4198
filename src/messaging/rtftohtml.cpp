#include "messaging/rtftohtml.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <algorithm>

namespace {

// Closing tags that live at paragraph level: they survive the end of a group
// and are opened before the character tags of a new paragraph.
const QString kLi = QStringLiteral("</li>");
const QString kTable = QStringLiteral("</td></tr></table>");
const QString kFont = QStringLiteral("</font>");

// States of a tag code.
const QString kNouveau = QStringLiteral("P");       // opening tag still to write
const QString kNouveauPara = QStringLiteral("PG");  // the same, paragraph level
const QString kActif = QStringLiteral("A");         // opened in the output
const QString kActifPara = QStringLiteral("G");     // opened, paragraph level
const QString kAFermer = QStringLiteral("K");       // to close at the next text
const QString kReserve = QStringLiteral("D");       // never reopened, never live

struct Code
{
    QString fermeture;
    QString ouverture;
    QString etat;
};

bool estVivant(const Code &code)
{
    return !code.etat.isEmpty() && code.etat != kAFermer && code.etat != kReserve;
}

// Blanks only; tabs and line ends are not blanks here.
QString sansBlancs(const QString &texte)
{
    qsizetype debut = 0;
    qsizetype fin = texte.size();
    while (debut < fin && texte.at(debut) == u' ')
        ++debut;
    while (fin > debut && texte.at(fin - 1) == u' ')
        --fin;
    return texte.mid(debut, fin - debut);
}

// Trims blanks, then takes line ends, carriage returns and line feeds off
// both ends until nothing more goes.
QString tidy(const QString &texte)
{
    QString t = sansBlancs(texte);
    for (;;) {
        const qsizetype avant = t.size();
        for (const QString &fin : {QStringLiteral("\r\n"), QStringLiteral("\r"), QStringLiteral("\n")}) {
            if (t.startsWith(fin))
                t.remove(0, fin.size());
            if (t.endsWith(fin))
                t.chop(fin.size());
        }
        if (t.size() == avant)
            return t;
    }
}

// VB's Val on a run of digits: the leading digits, 0 when there are none.
int valeurEntiere(const QString &texte)
{
    int valeur = 0;
    for (const QChar c : texte) {
        if (!c.isDigit())
            break;
        valeur = valeur * 10 + c.digitValue();
        if (valeur > 1000000)
            break;
    }
    return valeur;
}

bool queDesChiffres(const QString &texte)
{
    if (texte.isEmpty())
        return false;
    for (const QChar c : texte)
        if (c < u'0' || c > u'9')
            return false;
    return true;
}

const QHash<QString, QString> &tableEchappes()
{
    static const QHash<QString, QString> table = [] {
        QHash<QString, QString> t;
        t.insert(QStringLiteral("00"), QStringLiteral("&nbsp;"));
        // Latin-1 codes a1 to ff with their HTML 4 names; "ae" has no entry
        // and "e4" is taken by the TM below.
        static const char *const noms[] = {
            "iexcl", "cent", "pound", "curren", "yen", "brvbar", "sect", "uml",          // a1-a8
            "copy", "ordf", "laquo", "not", "shy", nullptr, "macr",                     // a9-af
            "deg", "plusmn", "sup2", "sup3", "acute", "micro", "para", "middot",         // b0-b7
            "cedil", "sup1", "ordm", "raquo", "frac14", "frac12", "frac34", "iquest",   // b8-bf
            "Agrave", "Aacute", "Acirc", "Atilde", "Auml", "Aring", "AElig", "Ccedil",  // c0-c7
            "Egrave", "Eacute", "Ecirc", "Euml", "Igrave", "Iacute", "Icirc", "Iuml",   // c8-cf
            "ETH", "Ntilde", "Ograve", "Oacute", "Ocirc", "Otilde", "Ouml", "times",    // d0-d7
            "Oslash", "Ugrave", "Uacute", "Ucirc", "Uuml", "Yacute", "THORN", "szlig",  // d8-df
            "agrave", "aacute", "acirc", "atilde", nullptr, "aring", "aelig", "ccedil", // e0-e7
            "egrave", "eacute", "ecirc", "euml", "igrave", "iacute", "icirc", "iuml",   // e8-ef
            "eth", "ntilde", "ograve", "oacute", "ocirc", "otilde", "ouml", "divide",   // f0-f7
            "oslash", "ugrave", "uacute", "ucirc", "uuml", "yacute", "thorn", "yuml",   // f8-ff
        };
        int code = 0xa1;
        for (const char *nom : noms) {
            if (nom)
                t.insert(QStringLiteral("%1").arg(code, 2, 16, QLatin1Char('0')),
                         u'&' + QLatin1String(nom) + u';');
            ++code;
        }
        t.insert(QStringLiteral("85"), QStringLiteral("..."));
        t.insert(QStringLiteral("9e"), QStringLiteral("\u017e"));
        t.insert(QStringLiteral("9a"), QStringLiteral("\u0161"));
        // One shared entry: both give a superscript TM, the letter a with
        // diaeresis included. The mails have always shown it so.
        const QString tm = QStringLiteral("<rtf>:\\super TM\\nosupersub");
        t.insert(QStringLiteral("e4"), tm);
        t.insert(QStringLiteral("99"), tm);
        return t;
    }();
    return table;
}

class Convertisseur final
{
public:
    explicit Convertisseur(const QString &options)
    {
        if (options.contains(QLatin1String("+CR")))
            m_lineEnd = QStringLiteral("\r\n");
        const qsizetype f = options.indexOf(QLatin1String("+F="));
        if (f >= 0)
            m_defaultFontSize = static_cast<qint16>(valeurEntiere(options.mid(f + 3)));
        m_useFontFaces = !options.contains(QLatin1String("-FF"));
    }

    QString convertir(const QString &rtf)
    {
        QString texte = tidy(rtf);
        if (texte.startsWith(u'{') && texte.endsWith(u'}'))
            texte = texte.mid(1, texte.size() - 2);
        m_hasListTable = texte.contains(QLatin1String("\\list\\"));

        if (texte.contains(QLatin1String("\\colortbl")))
            lireCouleurs(couperGroupe(texte, QStringLiteral("\\colortbl")));
        if (texte.contains(QLatin1String("\\fonttbl")))
            lireFontes(couperGroupe(texte, QStringLiteral("\\fonttbl")));
        for (const QString &motCle : {QStringLiteral("\\stylesheet"), QStringLiteral("\\info"),
                                      QStringLiteral("\\listtable"), QStringLiteral("\\listoverridetable")}) {
            if (texte.contains(motCle))
                couperGroupe(texte, motCle);
        }

        m_skipDepth = 0;
        qsizetype debut = 0;
        while (debut < texte.size()) {
            const qsizetype fin = texte.indexOf(QLatin1String("\r\n"), debut);
            if (fin < 0) {
                m_line = tidy(texte.mid(debut));
                debut = texte.size();
            } else {
                m_line = tidy(texte.mid(debut, fin - debut));
                debut = debutDuReste(texte, fin + 2);
            }
            while (!m_line.isEmpty()) {
                const QString jeton = prochainJeton();
                if (m_skipDepth > 0) {
                    if (jeton == u'{')
                        ++m_skipDepth;
                    else if (jeton == u'}')
                        --m_skipDepth;
                    continue;
                }
                if (jeton == QLatin1String("\\pict") || jeton == QLatin1String("\\*")) {
                    m_skipDepth = 1;
                    continue;
                }
                if (jeton == QLatin1String("\\pntext"))
                    m_skipDepth = 1;
                traiterJeton(jeton);
            }
        }

        // Line breaks still waiting have no text after them: they are dropped.
        QString fermetures;
        for (const Code &code : std::as_const(m_codes))
            fermetures += code.fermeture;
        m_pendingBreaks.remove(QLatin1String("<br>"));
        m_pendingBreaks.remove(QLatin1String("\r\n"));
        return m_html + m_pendingClose + m_pendingBreaks + fermetures;
    }

private:
    // --- Reading the input ------------------------------------------------

    // Where the rest of the text starts once tidied: past its leading blanks,
    // then past any line ends. (Its end is the document's, already tidied.)
    static qsizetype debutDuReste(const QString &texte, qsizetype position)
    {
        while (position < texte.size() && texte.at(position) == u' ')
            ++position;
        while (position < texte.size() && (texte.at(position) == u'\r' || texte.at(position) == u'\n'))
            ++position;
        return position;
    }

    // Takes the group around the keyword out of the text, braces included,
    // and returns it.
    static QString couperGroupe(QString &texte, const QString &motCle)
    {
        const qsizetype position = texte.indexOf(motCle);
        if (position < 0)
            return {};
        qsizetype debut = position;
        int profondeur = 0;
        for (qsizetype i = position - 1; i >= 0; --i) {
            const QChar c = texte.at(i);
            if (c == u'}') {
                ++profondeur;
            } else if (c == u'{') {
                if (profondeur == 0) {
                    debut = i;
                    break;
                }
                --profondeur;
            }
        }
        qsizetype fin = texte.size() - 1;
        profondeur = 0;
        for (qsizetype i = position; i < texte.size(); ++i) {
            const QChar c = texte.at(i);
            if (c == u'{') {
                ++profondeur;
            } else if (c == u'}') {
                if (profondeur == 0) {
                    fin = i;
                    break;
                }
                --profondeur;
            }
        }
        const QString groupe = texte.mid(debut, fin - debut + 1);
        texte.remove(debut, fin - debut + 1);
        if (debut >= 2 && texte.mid(debut - 2, 2) == QLatin1String("\r\n")
            && texte.mid(debut, 2) == QLatin1String("\r\n"))
            texte.remove(debut, 2);
        return groupe;
    }

    static int troisChiffres(const QString &texte, qsizetype position)
    {
        int valeur = 0;
        for (qsizetype i = position; i < texte.size() && i < position + 3; ++i) {
            if (!texte.at(i).isDigit())
                break;
            valeur = valeur * 10 + texte.at(i).digitValue();
        }
        return valeur;
    }

    static QString deuxHex(int valeur)
    {
        QString hex = QString::number(valeur, 16).toUpper();
        if (hex.size() == 1)
            hex.prepend(u'0');
        return hex;
    }

    // Colour 0 is the empty one before the first ";"; the entries after it
    // are numbered from 1, as \cf1, \cf2... name them.
    void lireCouleurs(const QString &groupe)
    {
        const qsizetype motCle = groupe.indexOf(QLatin1String("\\colortbl"));
        qsizetype i = groupe.indexOf(u';', motCle);
        if (i < 0)
            return;
        qsizetype fin = groupe.indexOf(QLatin1String(";}"), motCle);
        if (fin < 0)
            fin = groupe.size();
        while ((i = groupe.indexOf(QLatin1String("\\red"), i)) >= 0 && i < fin) {
            const int rouge = troisChiffres(groupe, i + 4);
            const qsizetype vert = groupe.indexOf(QLatin1String("\\green"), i);
            const qsizetype bleu = groupe.indexOf(QLatin1String("\\blue"), i);
            m_colorTable.append(deuxHex(rouge) + deuxHex(vert < 0 ? 0 : troisChiffres(groupe, vert + 6))
                                + deuxHex(bleu < 0 ? 0 : troisChiffres(groupe, bleu + 5)));
            i += 4;
        }
    }

    // Entries \f0, \f1... in turn: the name follows the first blank outside
    // the entry's nested groups and runs to the next ";".
    void lireFontes(const QString &groupe)
    {
        qsizetype finTable = groupe.indexOf(QLatin1String(";}}"));
        if (finTable < 0)
            finTable = groupe.size();
        int numero = 0;
        qsizetype position = groupe.indexOf(QLatin1String("\\f0"));
        while (position >= 0 && position < finTable) {
            qsizetype i = position;
            int profondeur = 0;
            bool sansNom = false;
            for (; i < groupe.size(); ++i) {
                const QChar c = groupe.at(i);
                if (c == u'{') {
                    ++profondeur;
                } else if (c == u'}') {
                    if (profondeur > 0)
                        --profondeur;
                } else if (profondeur == 0 && c == u' ') {
                    break;
                } else if (profondeur == 0 && c == u';') {
                    sansNom = true;
                    break;
                }
            }
            QString nom;
            if (!sansNom && i < groupe.size()) {
                qsizetype pointVirgule = groupe.indexOf(u';', i);
                if (pointVirgule < 0)
                    pointVirgule = groupe.size();
                nom = groupe.mid(i + 1, pointVirgule - i - 1);
            }
            m_fontTable.append(nom);
            ++numero;
            position = groupe.indexOf(QStringLiteral("\\f%1").arg(numero), position + 1);
        }
    }

    // One token from the front of the current line: a brace, an escaped
    // byte, an escaped character, a control word with its number, or a run
    // of plain text.
    QString prochainJeton()
    {
        const QChar premier = m_line.at(0);
        QString jeton;
        if (premier == u'{' || premier == u'}') {
            jeton = premier;
        } else if (m_line.startsWith(QLatin1String("\\'"))) {
            jeton = m_line.left(4);
        } else if (m_line.startsWith(QLatin1String("\\\\")) || m_line.startsWith(QLatin1String("\\{"))
                   || m_line.startsWith(QLatin1String("\\}"))) {
            jeton = m_line.left(2);
        } else {
            const bool controle = premier == u'\\';
            qsizetype i = 1;
            for (; i < m_line.size(); ++i) {
                const QChar c = m_line.at(i);
                if (c == u'\\' || c == u'{' || c == u'}' || (controle && c == u' '))
                    break;
            }
            jeton = m_line.left(i);
            m_line.remove(0, i);
            if (m_line.startsWith(u' '))
                m_line.remove(0, 1);
            return jeton;
        }
        m_line.remove(0, jeton.size());
        return jeton;
    }

    // --- Tokens -----------------------------------------------------------

    void traiterJeton(const QString &jeton)
    {
        if (m_skipTokens > 0) {
            --m_skipTokens;
            return;
        }
        const bool echappe = jeton == QLatin1String("\\\\") || jeton == QLatin1String("\\{")
                             || jeton == QLatin1String("\\}");
        const bool controle = !echappe
                              && (jeton.startsWith(u'\\') || jeton.startsWith(u'{') || jeton.startsWith(u'}'));
        if (controle)
            traiterControle(sansBlancs(jeton));
        else
            traiterTexte(echappe ? jeton.right(1) : jeton);
    }

    void traiterControle(const QString &mot)
    {
        if (mot == u'}') {
            if (m_skipDepth > 0)
                return;
            for (Code &code : m_codes)
                if (code.etat != kActifPara)
                    code.etat = kAFermer;
            const qsizetype li = m_nextClose.indexOf(kLi);
            if (li < 0) {
                m_nextClose.clear();
                m_nextOpen.clear();
            } else {
                m_nextClose.remove(0, li);
                m_nextOpen.remove(0, li);
            }
            effacerFonte();
            return;
        }
        if (mot.startsWith(QLatin1String("\\'"))) {
            const QString valeur = RtfOctetEchappe(mot.mid(2, 2));
            if (valeur.startsWith(QLatin1String("<rtf>:")))
                m_line.prepend(valeur.mid(6) + u' ');
            else
                m_line.prepend(valeur);
            return;
        }
        if (mot == QLatin1String("\\b")) {
            if (!estVivantTag(QStringLiteral("</b>")))
                ajouter(QStringLiteral("</b>"), QStringLiteral("<b>"));
        } else if (mot == QLatin1String("\\b0")) {
            abandonner(QStringLiteral("</b>"));
        } else if (mot == QLatin1String("\\bullet")) {
            ajouter(kLi, QStringLiteral("<li>"));
        } else if (mot == QLatin1String("\\i")) {
            if (!estVivantTag(QStringLiteral("</i>")))
                ajouter(QStringLiteral("</i>"), QStringLiteral("<i>"));
        } else if (mot == QLatin1String("\\i0")) {
            abandonner(QStringLiteral("</i>"));
        } else if (mot == QLatin1String("\\ul")) {
            if (!estVivantTag(QStringLiteral("</u>")))
                ajouter(QStringLiteral("</u>"), QStringLiteral("<u>"));
        } else if (mot == QLatin1String("\\ulnone")) {
            abandonner(QStringLiteral("</u>"));
        } else if (mot == QLatin1String("\\strike")) {
            ajouterSaufDernier(QStringLiteral("</s>"), QStringLiteral("<s>"));
        } else if (mot == QLatin1String("\\strike0")) {
            abandonner(QStringLiteral("</s>"));
        } else if (mot == QLatin1String("\\super")) {
            ajouterSaufDernier(QStringLiteral("</sup>"), QStringLiteral("<sup>"));
        } else if (mot == QLatin1String("\\sub")) {
            ajouterSaufDernier(QStringLiteral("</sub>"), QStringLiteral("<sub>"));
        } else if (mot == QLatin1String("\\nosupersub")) {
            abandonner(QStringLiteral("</sub>"));
            abandonner(QStringLiteral("</sup>"));
        } else if (mot == QLatin1String("\\cf0")) {
            m_fontColor.clear();
            m_fontTag = makeFontTag();
        } else if (mot.startsWith(QLatin1String("\\cf")) && queDesChiffres(mot.mid(3))) {
            changerCouleur(valeurEntiere(mot.mid(3)));
        } else if (mot.startsWith(QLatin1String("\\fs")) && queDesChiffres(mot.mid(3))) {
            int taille = valeurEntiere(mot.mid(3)) / 7;
            taille = std::clamp(taille, 1, 8);
            m_fontSize = taille == m_defaultFontSize ? QString() : QString::number(taille);
            m_fontTag = makeFontTag();
        } else if (mot.startsWith(QLatin1String("\\f")) && queDesChiffres(mot.mid(2))) {
            const int numero = valeurEntiere(mot.mid(2));
            // A number outside the table leaves the face as it was.
            if (m_useFontFaces && numero < m_fontTable.size()) {
                m_fontFace = m_fontTable.at(numero);
                m_fontTag = makeFontTag();
            }
        } else if (mot == QLatin1String("\\par")) {
            if (estVivantTag(QStringLiteral("</ul>")) || estVivantTag(kLi))
                abandonner(kLi);
            else
                m_pendingBreaks += QLatin1String("<br>") + m_lineEnd;
            m_blankLine = true;
            m_newParagraph = true;
        } else if (mot == QLatin1String("\\pard")) {
            for (Code &code : m_codes)
                if (code.etat == kNouveauPara || code.etat == kActifPara)
                    code.etat = kAFermer;
            if (!m_hasListTable)
                abandonner(kLi);
            m_newParagraph = true;
        } else if (mot == QLatin1String("\\plain")) {
            for (Code &code : m_codes)
                if (code.etat != kActifPara)
                    code.etat = kAFermer;
            effacerFonte();
        } else if (mot == QLatin1String("\\pnlvlblt")) {
            if (!m_nextClose.contains(kLi))
                ajouter(kLi, QStringLiteral("<li>"));
        } else if (mot == QLatin1String("\\pntxta") || mot == QLatin1String("\\pntxtb")) {
            m_skipTokens = 1;
        } else if (mot == QLatin1String("\\pntext")) {
            if (!m_nextClose.contains(kLi))
                ajouter(kLi, QStringLiteral("<li>"));
            requeueBefore(QStringLiteral("</table>"));
            for (Code &code : m_codes)
                code.etat = kAFermer;
        } else if (mot == QLatin1String("\\qc")) {
            aligner(QStringLiteral("center"));
        } else if (mot == QLatin1String("\\qr")) {
            aligner(QStringLiteral("right"));
        } else if (mot == QLatin1String("\\tab")) {
            m_line.prepend(u'\t');
        }
    }

    void traiterTexte(const QString &texte)
    {
        bool queDesBlancs = true;
        for (const QChar c : texte)
            if (c != u' ')
                queDesBlancs = false;
        if (queDesBlancs) {
            QString blancs = texte;
            if (m_blankLine)
                blancs.replace(u' ', QLatin1String("&nbsp;"));
            m_html += m_pendingOpen + blancs;
            return;
        }

        m_pendingClose += closeTags();
        shiftCodes();
        // The arrays run from the innermost code to the outermost, and the
        // opening tags are written outermost first, so that they nest as
        // the closing tags will be written.
        QString ouverture;
        if (m_newParagraph) {
            for (qsizetype i = m_codes.size() - 1; i >= 0; --i)
                ouverture += ouvrirSiNouveau(m_codes[i]);
            m_newParagraph = false;
        } else {
            // Within a line no table is opened: the walk stops at one.
            for (Code &code : m_codes) {
                if (code.fermeture == kTable)
                    break;
                ouverture.prepend(ouvrirSiNouveau(code));
            }
        }
        m_pendingOpen = ouverture;
        purgeCodes();
        m_html += m_pendingClose + m_pendingBreaks + m_pendingOpen + texte;
        m_pendingClose.clear();
        m_pendingBreaks.clear();
        m_pendingOpen.clear();
        m_blankLine = false;
    }

    // The opening tag of a code not yet opened, which is open from now on.
    static QString ouvrirSiNouveau(Code &code)
    {
        if (code.etat == kNouveau) {
            code.etat = kActif;
            return code.ouverture;
        }
        if (code.etat == kNouveauPara) {
            code.etat = kActifPara;
            return code.ouverture;
        }
        return {};
    }

    // --- The code arrays and the next lists --------------------------------

    [[nodiscard]] bool estVivantTag(const QString &fermeture) const
    {
        for (const Code &code : m_codes)
            if (code.fermeture == fermeture && estVivant(code))
                return true;
        return false;
    }

    void ajouter(const QString &fermeture, const QString &ouverture)
    {
        m_nextClose.append(fermeture);
        m_nextOpen.append(ouverture);
    }

    // Strike-through, super- and subscript are not asked twice in a row.
    void ajouterSaufDernier(const QString &fermeture, const QString &ouverture)
    {
        if (!m_codes.isEmpty() && m_codes.constLast().fermeture == fermeture && estVivant(m_codes.constLast()))
            return;
        ajouter(fermeture, ouverture);
    }

    void retirerDesSuivants(const QString &fermeture)
    {
        for (qsizetype i = m_nextClose.size() - 1; i >= 0; --i) {
            if (m_nextClose.at(i) == fermeture) {
                m_nextClose.removeAt(i);
                m_nextOpen.removeAt(i);
            }
        }
    }

    // Ends a tag: a live code of it is to be closed, and the codes opened
    // inside it are asked again so that they reopen after the closing.
    void abandonner(const QString &fermeture)
    {
        for (Code &code : m_codes) {
            if (code.fermeture == fermeture && estVivant(code)) {
                requeueBefore(fermeture);
                code.etat = kAFermer;
                break;
            }
        }
        retirerDesSuivants(fermeture);
    }

    void requeueBefore(const QString &fermeture)
    {
        for (const Code &code : std::as_const(m_codes)) {
            if (code.fermeture == fermeture)
                break;
            if (estVivant(code) && !m_nextClose.contains(code.fermeture)) {
                m_nextClose.prepend(code.fermeture);
                m_nextOpen.prepend(code.ouverture);
            }
        }
    }

    // Closing tags to write before the next text. Everything from the first
    // code up to the last one to close is closed; what is still wanted among
    // them is asked again, so the output always nests.
    QString closeTags()
    {
        QString active;
        for (qsizetype i = m_codes.size() - 1; i >= 0; --i) {
            if (m_codes.at(i).fermeture == kFont) {
                active = m_codes.at(i).ouverture;
                break;
            }
        }
        if (active != m_fontTag) {
            for (Code &code : m_codes)
                if (code.fermeture == kFont)
                    code.etat = kAFermer;
            if (!m_fontTag.isEmpty()) {
                const qsizetype suivant = m_nextClose.indexOf(kFont);
                if (suivant >= 0)
                    m_nextOpen[suivant] = m_fontTag;
                else
                    ajouter(kFont, m_fontTag);
            }
        } else if (!m_nextClose.contains(kLi)) {
            for (Code &code : m_codes)
                if (code.fermeture == kFont)
                    code.etat = kActif;
        }

        qsizetype dernier = -1;
        for (qsizetype i = 0; i < m_codes.size(); ++i)
            if (m_codes.at(i).etat == kAFermer)
                dernier = i;
        if (dernier < 0)
            return {};

        QString resultat;
        for (qsizetype i = 0; i <= dernier; ++i) {
            resultat += m_codes.at(i).fermeture;
            if (m_codes.at(i).fermeture == kLi)
                resultat += m_lineEnd;
        }
        for (qsizetype i = dernier; i >= 0; --i) {
            Code &code = m_codes[i];
            if (code.etat != kAFermer && code.etat != kReserve && !m_nextClose.contains(code.fermeture))
                ajouter(code.fermeture, code.ouverture);
            code.etat = kAFermer;
        }
        return resultat;
    }

    // The next lists become codes at the front of the arrays, the last one
    // asked first; a list item goes one place further out first.
    void shiftCodes()
    {
        if (m_nextClose.contains(kLi)) {
            for (qsizetype i = 1; i < m_nextClose.size(); ++i) {
                if (m_nextClose.at(i) == kLi) {
                    m_nextClose.swapItemsAt(i - 1, i);
                    m_nextOpen.swapItemsAt(i - 1, i);
                }
            }
        }
        QList<Code> nouveaux;
        nouveaux.reserve(m_nextClose.size() + m_codes.size());
        for (qsizetype i = m_nextClose.size() - 1; i >= 0; --i) {
            const QString &fermeture = m_nextClose.at(i);
            const bool paragraphe = fermeture == kTable || fermeture == kLi;
            nouveaux.append(Code{fermeture, m_nextOpen.at(i), paragraphe ? kNouveauPara : kNouveau});
        }
        nouveaux.append(m_codes);
        m_codes = std::move(nouveaux);
        m_nextClose.clear();
        m_nextOpen.clear();
    }

    void purgeCodes()
    {
        m_codes.removeIf([](const Code &code) { return code.etat.isEmpty() || code.etat == kAFermer; });
    }

    // --- Fonts and alignment ------------------------------------------------

    [[nodiscard]] QString makeFontTag() const
    {
        if (m_fontFace.isEmpty() && m_fontSize.isEmpty() && m_fontColor.isEmpty())
            return {};
        QString tag = QStringLiteral("<font");
        if (!m_fontFace.isEmpty())
            tag += QLatin1String(" face=\"") + m_fontFace + u'"';
        if (!m_fontColor.isEmpty())
            tag += QLatin1String(" color=\"") + m_fontColor + u'"';
        if (!m_fontSize.isEmpty() && m_fontSize != QString::number(m_defaultFontSize))
            tag += QLatin1String(" size=") + m_fontSize;
        return tag + u'>';
    }

    void effacerFonte()
    {
        m_fontFace.clear();
        m_fontColor.clear();
        m_fontSize.clear();
        m_fontTag.clear();
    }

    // A colour index outside the table leaves the previous colour.
    void changerCouleur(int numero)
    {
        if (numero < 1 || numero > m_colorTable.size())
            return;
        m_fontColor = u'#' + m_colorTable.at(numero - 1);
        m_fontTag = makeFontTag();
        const qsizetype suivant = m_nextClose.indexOf(kFont);
        if (suivant >= 0) {
            m_nextOpen[suivant] = m_fontTag;
        } else if (estVivantTag(kFont)) {
            abandonner(kFont);
            ajouter(kFont, m_fontTag);
        }
    }

    // Centre and right alignment are a one-cell table; left alignment is the
    // absence of it.
    void aligner(const QString &mot)
    {
        m_alignTag = QLatin1String("<table width=100%><tr><td align=\"") + mot + QLatin1String("\">");
        const qsizetype suivant = m_nextClose.indexOf(kTable);
        if (estVivantTag(kTable)) {
            abandonner(kTable);
            ajouter(kTable, m_alignTag);
        } else if (suivant >= 0) {
            m_nextOpen[suivant] = m_alignTag;
        } else {
            ajouter(kTable, m_alignTag);
        }
    }

    QString m_html;
    QString m_pendingClose;
    QString m_pendingBreaks;
    QString m_pendingOpen;
    QString m_lineEnd;
    bool m_blankLine = true;
    bool m_newParagraph = false;
    int m_skipDepth = 0;
    int m_skipTokens = 0;
    QString m_line;
    QStringList m_colorTable;
    QStringList m_fontTable;
    QString m_fontFace;
    QString m_fontColor;
    QString m_fontSize;
    QString m_fontTag;
    QString m_alignTag;
    qint16 m_defaultFontSize = 0;
    bool m_useFontFaces = true;
    bool m_hasListTable = false;

    QList<Code> m_codes;
    QStringList m_nextClose;
    QStringList m_nextOpen;
};

} // namespace

QString RtfOctetEchappe(const QString &hex)
{
    return tableEchappes().value(hex);
}

QString RtfToHtml(const QString &rtf, const QString &options)
{
    Convertisseur convertisseur(options);
    return convertisseur.convertir(rtf);
}
