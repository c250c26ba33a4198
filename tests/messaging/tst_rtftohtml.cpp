#include "messaging/rtftohtml.h"

#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStack>
#include <QTest>

namespace {

// True when every tag of the HTML is closed in the reverse order of opening.
// The alignment table counts as one tag, as it is opened and closed whole.
bool bienImbrique(QString html, QString *detail)
{
    html.replace(QRegularExpression(QStringLiteral("<table width=100%><tr><td align=\"\\w+\">")),
                 QStringLiteral("<table>"));
    html.replace(QLatin1String("</td></tr></table>"), QLatin1String("</table>"));
    static const QRegularExpression balise(QStringLiteral("<(/?)(\\w+)[^>]*>"));
    QStack<QString> ouvertes;
    auto it = balise.globalMatch(html);
    while (it.hasNext()) {
        const auto m = it.next();
        const QString nom = m.captured(2);
        if (nom == QLatin1String("br"))
            continue;
        if (m.captured(1).isEmpty()) {
            ouvertes.push(nom);
        } else if (ouvertes.isEmpty() || ouvertes.pop() != nom) {
            *detail = QStringLiteral("</%1> at %2").arg(nom).arg(m.capturedStart());
            return false;
        }
    }
    if (!ouvertes.isEmpty()) {
        *detail = QStringLiteral("<%1> never closed").arg(ouvertes.top());
        return false;
    }
    return true;
}

QString lireDonnee(const QString &nom)
{
    QFile f(QStringLiteral(TAVONEL_TEST_DATA "/") + nom);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    // RTF is 7-bit text; anything else is escaped inside it.
    return QString::fromLatin1(f.readAll());
}

} // namespace

class TestRtfToHtml : public QObject
{
    Q_OBJECT

private slots:
    void conversion_data()
    {
        QTest::addColumn<QString>("rtf");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("html");

        const QString h = QStringLiteral("+H");
        QTest::newRow("empty") << QString() << h << QString();
        QTest::newRow("only blanks and line ends") << "  \r\n\r\n " << h << QString();
        QTest::newRow("outer braces only") << "{}" << h << QString();
        QTest::newRow("plain text") << "{\\rtf1 Bonjour}" << h << "Bonjour";

        // Bold, italic, underline, strike, and their ends.
        QTest::newRow("bold then plain") << "\\b bold\\b0  plain" << h << "<b>bold</b> plain";
        QTest::newRow("bold twice stays one tag") << "\\b a\\b  b\\b0  c" << h << "<b>a b</b> c";
        QTest::newRow("italic") << "\\i x\\i0  y" << h << "<i>x</i> y";
        QTest::newRow("underline") << "\\ul x\\ulnone  y" << h << "<u>x</u> y";
        QTest::newRow("strike") << "\\strike x\\strike0  y" << h << "<s>x</s> y";
        QTest::newRow("bold ended at the end") << "\\b x\\b0" << h << "<b>x</b>";

        // The nesting repair: a tag that ends inside later ones closes them and
        // opens them again.
        QTest::newRow("bold ends inside italic") << "\\b bold \\i both\\b0  italic" << h << "<b>bold <i>both</i></b><i> italic</i>";
        QTest::newRow("bold ends inside underline and italic")
            << "\\b\\ul\\i x\\b0  y\\i0  z" << h << "<b><u><i>x</i></u></b><u><i> y</i> z</u>";
        QTest::newRow("inner tag ends: nothing reopened") << "\\b a\\i  b\\i0  c" << h << "<b>a<i> b</i> c</b>";

        // Superscript, subscript.
        QTest::newRow("super and sub") << "m\\super 2\\nosupersub  et H\\sub 2\\nosupersub O" << h << "m<sup>2</sup> et H<sub>2</sub>O";

        // Line breaks: waiting for the next text, dropped at the end.
        QTest::newRow("two pars then text") << "a\\par\\par b" << h << "a<br><br>b";
        QTest::newRow("trailing pars dropped") << "a\\par\r\n\\par\r\n" << h << "a";
        QTest::newRow("line end option") << "a\\par b\\par" << "+CR" << "a<br>\r\nb";
        QTest::newRow("closing before the break") << "\\b a\\b0\\par b" << h << "<b>a</b><br>b";
        QTest::newRow("lines of the input are trimmed") << "un \r\n  deux" << h << "undeux";

        // Blanks alone: non-breaking at the start of a line, as they are after text.
        QTest::newRow("blanks at line start") << "\\pard    \\i x" << h << "&nbsp;&nbsp;&nbsp;<i>x</i>";
        QTest::newRow("blanks after text") << "a\\b0   \\i b" << h << "a  <i>b</i>";

        // Sizes: integer part of half-points / 7, kept between 1 and 8.
        QTest::newRow("fs22") << "\\fs22 x" << h << "<font size=3>x</font>";
        QTest::newRow("fs7") << "\\fs7 x" << h << "<font size=1>x</font>";
        QTest::newRow("fs6 at least 1") << "\\fs6 x" << h << "<font size=1>x</font>";
        QTest::newRow("fs100 at most 8") << "\\fs100 x" << h << "<font size=8>x</font>";
        QTest::newRow("default size needs no attribute") << "\\fs22 x" << "+F=3" << "x";
        QTest::newRow("size change closes the font") << "\\fs22 a\\fs28  b" << h << "<font size=3>a</font><font size=4> b</font>";

        // Colours and faces from the tables.
        const QString tables = QStringLiteral(
            "{\\rtf1\\ansi{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}{\\f1\\froman Times New Roman;}}\r\n"
            "{\\colortbl ;\\red255\\green0\\blue0;\\red0\\green128\\blue9;}\r\n");
        QTest::newRow("colour 1") << tables + QStringLiteral("\\cf1 rouge}") << h << "<font color=\"#FF0000\">rouge</font>";
        QTest::newRow("colour 2, one-digit blue") << tables + QStringLiteral("\\cf2 vert}") << h << "<font color=\"#008009\">vert</font>";
        QTest::newRow("colour change") << tables + QStringLiteral("\\cf1 a\\cf2  b}") << h
                                       << "<font color=\"#FF0000\">a</font><font color=\"#008009\"> b</font>";
        QTest::newRow("colour 0 ends the colour") << tables + QStringLiteral("\\cf1 a\\cf0  b}") << h
                                                  << "<font color=\"#FF0000\">a</font> b";
        QTest::newRow("colour outside the table keeps the last")
            << tables + QStringLiteral("\\cf1 a\\cf7  b}") << h << "<font color=\"#FF0000\">a b</font>";
        QTest::newRow("font faces by number")
            << tables + QStringLiteral("\\f1 a\\f0  b}") << h << "<font face=\"Times New Roman\">a</font><font face=\"Arial\"> b</font>";
        QTest::newRow("face, colour and size in that order")
            << tables + QStringLiteral("\\f0\\fs20\\cf1 x}") << h << "<font face=\"Arial\" color=\"#FF0000\" size=2>x</font>";
        QTest::newRow("no faces option") << tables + QStringLiteral("\\f1\\fs20 x}") << "-FF" << "<font size=2>x</font>";
        QTest::newRow("colour with bold after it")
            << tables + QStringLiteral("\\cf1\\b x\\b0  y}") << h
            << "<b><font color=\"#FF0000\">x</font></b><font color=\"#FF0000\"> y</font>";

        // Alignment as a one-cell table.
        QTest::newRow("centred paragraph")
            << "\\pard\\qc x\\par\r\n\\pard y" << h << "<table width=100%><tr><td align=\"center\">x</td></tr></table><br>y";
        QTest::newRow("right, font inside the table")
            << "\\pard\\qr\\fs28 x" << h << "<table width=100%><tr><td align=\"right\"><font size=4>x</font></td></tr></table>";
        QTest::newRow("no table opened within a line") << "a\\qc  b" << h << "a b</td></tr></table>";

        // Groups: the end of a group ends its character formatting.
        QTest::newRow("group end closes bold") << "{\\b x} y" << h << "<b>x</b> y";
        QTest::newRow("plain closes all") << "\\b\\i x\\plain  y" << h << "<b><i>x</i></b> y";
        QTest::newRow("destination dropped") << "{\\*\\generator Riched20 10.0.19041;}a{\\*\\x {\\y z}}b" << h << "ab";
        QTest::newRow("picture dropped") << "a{\\pict\\wmetafile8 0100{\\q 09}00}b" << h << "ab";
        QTest::newRow("stylesheet and info cut out") << "{\\rtf1 {\\stylesheet{\\s0 Normal;}}{\\info{\\title Titre}}x}" << h << "x";
        QTest::newRow("unknown words ignored with their number") << "\\viewkind4\\uc1\\lang1036\\fi-360 x" << h << "x";

        // Escapes and special characters.
        QTest::newRow("escaped characters") << "a\\{b\\}c\\\\d" << h << "a{b}c\\d";
        QTest::newRow("tab") << "a\\tab b" << h << "a\tb";
        QTest::newRow("accents as entities") << "caf\\'e9 \\'e0 No\\'ebl" << h << "caf&eacute; &agrave; No&euml;l";
        QTest::newRow("a diaeresis is a superscript TM") << "x\\'e4y" << h << "x<sup>TM</sup>y";
        QTest::newRow("uppercase hex digits give nothing") << "a\\'E9b" << h << "ab";

        // Bullets: the old paragraph numbering and the bullet word.
        QTest::newRow("pntext bullets")
            << "{\\pntext\\f1\\'b7\\tab}un\\par\r\n{\\pntext\\f1\\'b7\\tab}deux\\par\r\n\\pard fin" << h << "<li>un</li><li>deux</li>fin";
        QTest::newRow("pntext with line ends")
            << "{\\pntext\\f1\\'b7\\tab}un\\par\r\n{\\pntext\\f1\\'b7\\tab}deux\\par\r\n\\pard fin"
            << "+CR" << "<li>un</li>\r\n<li>deux</li>\r\nfin";
        QTest::newRow("bullet word") << "\\bullet x" << h << "<li>x</li>";
        QTest::newRow("bullet level, par ends the item") << "\\pnlvlblt un\\par deux" << h << "<li>un</li>deux";
        QTest::newRow("list table: pard keeps a requested item")
            << "{\\*\\listtable{\\list\\listid1}}\\bullet\\pard x" << h << "<li>x</li>";
        QTest::newRow("no list table: pard cancels a requested item") << "\\bullet\\pard x" << h << "x";
        QTest::newRow("pard ends an open item") << "{\\*\\listtable{\\list\\listid1}}\\bullet un\\pard  deux" << h << "<li>un</li> deux";
    }

    void conversion()
    {
        QFETCH(QString, rtf);
        QFETCH(QString, options);
        QFETCH(QString, html);
        const QString resultat = RtfToHtml(rtf, options);
        QCOMPARE(resultat, html);
    }

    void octetsEchappes_data()
    {
        QTest::addColumn<QString>("hex");
        QTest::addColumn<QString>("texte");
        QTest::newRow("00") << "00" << "&nbsp;";
        QTest::newRow("e9") << "e9" << "&eacute;";
        QTest::newRow("ab") << "ab" << "&laquo;";
        QTest::newRow("bb") << "bb" << "&raquo;";
        QTest::newRow("a0 has no entry") << "a0" << "";
        QTest::newRow("ae has no entry") << "ae" << "";
        QTest::newRow("b0") << "b0" << "&deg;";
        QTest::newRow("ff") << "ff" << "&yuml;";
        QTest::newRow("85") << "85" << "...";
        QTest::newRow("9e") << "9e" << QString(QChar(0x17e));
        QTest::newRow("9a") << "9a" << QString(QChar(0x161));
        QTest::newRow("e4") << "e4" << "<rtf>:\\super TM\\nosupersub";
        QTest::newRow("99") << "99" << "<rtf>:\\super TM\\nosupersub";
        QTest::newRow("80 euro has no entry") << "80" << "";
        QTest::newRow("92 apostrophe has no entry") << "92" << "";
        QTest::newRow("uppercase") << "E9" << "";
    }

    void octetsEchappes()
    {
        QFETCH(QString, hex);
        QFETCH(QString, texte);
        QCOMPARE(RtfOctetEchappe(hex), texte);
    }

    void tableDesOctets()
    {
        // 97 keys of their own and one entry shared by two keys.
        QStringList avecEntree;
        for (int i = 0; i < 256; ++i) {
            const QString hex = QStringLiteral("%1").arg(i, 2, 16, QLatin1Char('0'));
            if (!RtfOctetEchappe(hex).isEmpty())
                avecEntree.append(hex);
        }
        QCOMPARE(avecEntree.size(), 99);
        // Every letter of a1-ff but ae and e4 is its named entity.
        for (int i = 0xa1; i <= 0xff; ++i) {
            if (i == 0xae || i == 0xe4)
                continue;
            const QString hex = QStringLiteral("%1").arg(i, 2, 16, QLatin1Char('0'));
            const QString entite = RtfOctetEchappe(hex);
            QVERIFY2(entite.startsWith(u'&') && entite.endsWith(u';'), qPrintable(hex + u' ' + entite));
        }
    }

    void traitementDeTexte_data()
    {
        QTest::addColumn<QString>("fichier");
        QTest::addColumn<QStringList>("attendus");
        QTest::addColumn<QStringList>("absents");

        // A centred reminder: Arial (font 5 of the document), sizes 12 and 14
        // points, red bold name, accents, then a left paragraph with italic,
        // underline and French quotes.
        QTest::newRow("libreoffice-rappel")
            << "libreoffice-rappel.rtf"
            << QStringList{"<table width=100%><tr><td align=\"center\"><font face=\"Arial\" size=3>"
                           "Le secr&eacute;tariat du Cabinet m&eacute;dical vous rappelle votre rendez-vous</font></td></tr></table>",
                           "<b><font face=\"Arial\" color=\"#FF0000\" size=4>Docteur &Eacute;mile B&eacute;r&eacute;nger</font></b>",
                           "Texte &agrave; gauche avec <i>italique</i>", "<u>soulign&eacute;</u>", "&laquo;", "&raquo;", "&ccedil;a."}
            << QStringList{"\\", "{", "Liberation", "Normal", "Heading", "LibreOffice"};

        // Strike, colours 11 and 2 of the table, bullets written as list text,
        // a right-aligned paragraph; the euro sign has no entry. The bullet's
        // font name keeps the alternative name group that follows it.
        QTest::newRow("libreoffice-styles")
            << "libreoffice-styles.rtf"
            << QStringList{"<s>barr&eacute;</s>", "<font color=\"#008000\">vert</font>",
                           "<b><font color=\"#0000FF\">bleu gras</font></b>", "Premi&egrave;re ligne<br>", "Deuxi&egrave;me ligne<br>",
                           "<table width=100%><tr><td align=\"right\">&Agrave; droite</td></tr></table>"}
            << QStringList{"listtemplateid", "Symbol;", "\\tab"};

        // Written by hand in the form of WordPad's editor (RichEdit): centred
        // Arial title with a red bold word, Calibri body, bullets as paragraph
        // numbering text, the letter a with diaeresis, super/subscript, strike.
        QTest::newRow("wordpad-style")
            << "wordpad-style.rtf"
            << QStringList{"<table width=100%><tr><td align=\"center\"><font face=\"Arial\" size=4>Cabinet </font>"
                           "<font face=\"Arial\" color=\"#FF0000\" size=4><b>M&eacute;dical</b></font></td></tr></table><br>",
                           "<font face=\"Calibri\" size=3>Rendez-vous le <u>lundi </u>&agrave; 9 h.</font><br>",
                           "<li><font face=\"Calibri\" size=3>Apporter la carte Vitale</font></li>"
                           "<li><font face=\"Calibri\" size=3>Arriver 10 minutes avant</font></li>",
                           "th&eacute;, <sup>TM</sup>, x<sup>2</sup>, H<sub>2</sub>O, <s>ray&eacute;</s>."}
            << QStringList{"Riched20", "Symbol", "&middot;", "\t"};
    }

    void traitementDeTexte()
    {
        QFETCH(QString, fichier);
        QFETCH(QStringList, attendus);
        QFETCH(QStringList, absents);

        const QString rtf = lireDonnee(fichier);
        QVERIFY2(rtf.startsWith(QLatin1String("{\\rtf1")), qPrintable(QStringLiteral("test data missing: ") + fichier));
        QVERIFY2(rtf.contains(QLatin1String("\r\n")), "the test data must keep its CR LF line ends");
        const QString html = RtfToHtml(rtf, QStringLiteral("+H"));
        for (const QString &attendu : attendus)
            QVERIFY2(html.contains(attendu), qPrintable(QStringLiteral("missing %1 in %2").arg(attendu, html)));
        for (const QString &absent : absents)
            QVERIFY2(!html.contains(absent), qPrintable(QStringLiteral("unexpected %1 in %2").arg(absent, html)));
        QVERIFY2(!html.endsWith(QLatin1String("<br>")), "trailing line breaks must be dropped");
        QString detail;
        QVERIFY2(bienImbrique(html, &detail), qPrintable(detail + u' ' + html));
    }

    void imbricationToujoursJuste()
    {
        // Documents made of random character formatting switched on and off in
        // any order, over several paragraphs (the first one centred or not):
        // the output always nests and holds every piece of text.
        static const QStringList mots =
            QStringLiteral("b b0 i i0 ul ulnone strike strike0 super sub nosupersub cf1 cf2 cf0 f0 f1 fs18 fs22 fs28 plain par tab")
                .split(u' ');
        QRandomGenerator hasard(20260803);
        for (int document = 0; document < 3000; ++document) {
            QString rtf = QStringLiteral("{\\rtf1{\\fonttbl{\\f0\\fswiss Arial;}{\\f1\\froman Times;}}"
                                         "{\\colortbl ;\\red255\\green0\\blue0;\\red0\\green0\\blue255;}\r\n");
            int textes = 0;
            const int paragraphes = 1 + hasard.bounded(3);
            for (int p = 0; p < paragraphes; ++p) {
                rtf += QLatin1String("\\pard");
                const int alignement = p == 0 ? hasard.bounded(3) : 0;
                rtf += alignement == 1 ? QLatin1String("\\qc ") : alignement == 2 ? QLatin1String("\\qr ") : QLatin1String(" ");
                const int jetons = 2 + hasard.bounded(10);
                for (int j = 0; j < jetons; ++j) {
                    if (hasard.bounded(2)) {
                        rtf += u'\\' + mots.at(hasard.bounded(mots.size())) + u' ';
                    } else {
                        rtf += QStringLiteral("w%1 ").arg(textes++);
                    }
                }
                rtf += QLatin1String("\\par\r\n");
            }
            rtf += u'}';
            const QString html = RtfToHtml(rtf, QStringLiteral("+H"));
            QString detail;
            QVERIFY2(bienImbrique(html, &detail), qPrintable(detail + u'\n' + rtf + u'\n' + html));
            for (int t = 0; t < textes; ++t)
                QVERIFY2(html.contains(QStringLiteral("w%1 ").arg(t)), qPrintable(rtf + u'\n' + html));
        }
    }
};

QTEST_GUILESS_MAIN(TestRtfToHtml)
#include "tst_rtftohtml.moc"
