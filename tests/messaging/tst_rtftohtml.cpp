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
        QTest::newRow("only blanks and line ends") << QStringLiteral("  \r\n\r\n ") << h << QString();
        QTest::newRow("outer braces only") << QStringLiteral("{}") << h << QString();
        QTest::newRow("plain text") << QStringLiteral("{\\rtf1 Bonjour}") << h << QStringLiteral("Bonjour");

        // Bold, italic, underline, strike, and their ends.
        QTest::newRow("bold then plain") << QStringLiteral("\\b bold\\b0  plain") << h
                                         << QStringLiteral("<b>bold</b> plain");
        QTest::newRow("bold twice stays one tag") << QStringLiteral("\\b a\\b  b\\b0  c") << h
                                                  << QStringLiteral("<b>a b</b> c");
        QTest::newRow("italic") << QStringLiteral("\\i x\\i0  y") << h << QStringLiteral("<i>x</i> y");
        QTest::newRow("underline") << QStringLiteral("\\ul x\\ulnone  y") << h << QStringLiteral("<u>x</u> y");
        QTest::newRow("strike") << QStringLiteral("\\strike x\\strike0  y") << h << QStringLiteral("<s>x</s> y");
        QTest::newRow("bold ended at the end") << QStringLiteral("\\b x\\b0") << h << QStringLiteral("<b>x</b>");

        // The nesting repair: a tag that ends inside later ones closes them and
        // opens them again.
        QTest::newRow("bold ends inside italic")
            << QStringLiteral("\\b bold \\i both\\b0  italic") << h
            << QStringLiteral("<b>bold <i>both</i></b><i> italic</i>");
        QTest::newRow("bold ends inside underline and italic")
            << QStringLiteral("\\b\\ul\\i x\\b0  y\\i0  z") << h
            << QStringLiteral("<b><u><i>x</i></u></b><u><i> y</i> z</u>");
        QTest::newRow("inner tag ends: nothing reopened")
            << QStringLiteral("\\b a\\i  b\\i0  c") << h << QStringLiteral("<b>a<i> b</i> c</b>");

        // Superscript, subscript.
        QTest::newRow("super and sub")
            << QStringLiteral("m\\super 2\\nosupersub  et H\\sub 2\\nosupersub O") << h
            << QStringLiteral("m<sup>2</sup> et H<sub>2</sub>O");

        // Line breaks: waiting for the next text, dropped at the end.
        QTest::newRow("two pars then text") << QStringLiteral("a\\par\\par b") << h << QStringLiteral("a<br><br>b");
        QTest::newRow("trailing pars dropped") << QStringLiteral("a\\par\r\n\\par\r\n") << h << QStringLiteral("a");
        QTest::newRow("line end option") << QStringLiteral("a\\par b\\par") << QStringLiteral("+CR")
                                         << QStringLiteral("a<br>\r\nb");
        QTest::newRow("closing before the break")
            << QStringLiteral("\\b a\\b0\\par b") << h << QStringLiteral("<b>a</b><br>b");
        QTest::newRow("lines of the input are trimmed")
            << QStringLiteral("un \r\n  deux") << h << QStringLiteral("undeux");

        // Blanks alone: non-breaking at the start of a line, as they are after text.
        QTest::newRow("blanks at line start")
            << QStringLiteral("\\pard    \\i x") << h << QStringLiteral("&nbsp;&nbsp;&nbsp;<i>x</i>");
        QTest::newRow("blanks after text") << QStringLiteral("a\\b0   \\i b") << h << QStringLiteral("a  <i>b</i>");

        // Sizes: integer part of half-points / 7, kept between 1 and 8.
        QTest::newRow("fs22") << QStringLiteral("\\fs22 x") << h << QStringLiteral("<font size=3>x</font>");
        QTest::newRow("fs7") << QStringLiteral("\\fs7 x") << h << QStringLiteral("<font size=1>x</font>");
        QTest::newRow("fs6 at least 1") << QStringLiteral("\\fs6 x") << h << QStringLiteral("<font size=1>x</font>");
        QTest::newRow("fs100 at most 8") << QStringLiteral("\\fs100 x") << h << QStringLiteral("<font size=8>x</font>");
        QTest::newRow("default size needs no attribute") << QStringLiteral("\\fs22 x") << QStringLiteral("+F=3")
                                                         << QStringLiteral("x");
        QTest::newRow("size change closes the font")
            << QStringLiteral("\\fs22 a\\fs28  b") << h
            << QStringLiteral("<font size=3>a</font><font size=4> b</font>");

        // Colours and faces from the tables.
        const QString tables = QStringLiteral(
            "{\\rtf1\\ansi{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}{\\f1\\froman Times New Roman;}}\r\n"
            "{\\colortbl ;\\red255\\green0\\blue0;\\red0\\green128\\blue9;}\r\n");
        QTest::newRow("colour 1") << tables + QStringLiteral("\\cf1 rouge}") << h
                                  << QStringLiteral("<font color=\"#FF0000\">rouge</font>");
        QTest::newRow("colour 2, one-digit blue")
            << tables + QStringLiteral("\\cf2 vert}") << h << QStringLiteral("<font color=\"#008009\">vert</font>");
        QTest::newRow("colour change") << tables + QStringLiteral("\\cf1 a\\cf2  b}") << h
                                       << QStringLiteral("<font color=\"#FF0000\">a</font><font color=\"#008009\"> b</font>");
        QTest::newRow("colour 0 ends the colour") << tables + QStringLiteral("\\cf1 a\\cf0  b}") << h
                                                  << QStringLiteral("<font color=\"#FF0000\">a</font> b");
        QTest::newRow("colour outside the table keeps the last")
            << tables + QStringLiteral("\\cf1 a\\cf7  b}") << h << QStringLiteral("<font color=\"#FF0000\">a b</font>");
        QTest::newRow("font faces by number")
            << tables + QStringLiteral("\\f1 a\\f0  b}") << h
            << QStringLiteral("<font face=\"Times New Roman\">a</font><font face=\"Arial\"> b</font>");
        QTest::newRow("face, colour and size in that order")
            << tables + QStringLiteral("\\f0\\fs20\\cf1 x}") << h
            << QStringLiteral("<font face=\"Arial\" color=\"#FF0000\" size=2>x</font>");
        QTest::newRow("no faces option") << tables + QStringLiteral("\\f1\\fs20 x}") << QStringLiteral("-FF")
                                         << QStringLiteral("<font size=2>x</font>");
        QTest::newRow("colour with bold after it")
            << tables + QStringLiteral("\\cf1\\b x\\b0  y}") << h
            << QStringLiteral("<b><font color=\"#FF0000\">x</font></b><font color=\"#FF0000\"> y</font>");

        // Alignment as a one-cell table.
        QTest::newRow("centred paragraph")
            << QStringLiteral("\\pard\\qc x\\par\r\n\\pard y") << h
            << QStringLiteral("<table width=100%><tr><td align=\"center\">x</td></tr></table><br>y");
        QTest::newRow("right, font inside the table")
            << QStringLiteral("\\pard\\qr\\fs28 x") << h
            << QStringLiteral("<table width=100%><tr><td align=\"right\"><font size=4>x</font></td></tr></table>");
        QTest::newRow("no table opened within a line")
            << QStringLiteral("a\\qc  b") << h << QStringLiteral("a b</td></tr></table>");

        // Groups: the end of a group ends its character formatting.
        QTest::newRow("group end closes bold") << QStringLiteral("{\\b x} y") << h << QStringLiteral("<b>x</b> y");
        QTest::newRow("plain closes all") << QStringLiteral("\\b\\i x\\plain  y") << h
                                          << QStringLiteral("<b><i>x</i></b> y");
        QTest::newRow("destination dropped")
            << QStringLiteral("{\\*\\generator Riched20 10.0.19041;}a{\\*\\x {\\y z}}b") << h << QStringLiteral("ab");
        QTest::newRow("picture dropped") << QStringLiteral("a{\\pict\\wmetafile8 0100{\\q 09}00}b") << h
                                         << QStringLiteral("ab");
        QTest::newRow("stylesheet and info cut out")
            << QStringLiteral("{\\rtf1 {\\stylesheet{\\s0 Normal;}}{\\info{\\title Titre}}x}") << h
            << QStringLiteral("x");
        QTest::newRow("unknown words ignored with their number")
            << QStringLiteral("\\viewkind4\\uc1\\lang1036\\fi-360 x") << h << QStringLiteral("x");

        // Escapes and special characters.
        QTest::newRow("escaped characters") << QStringLiteral("a\\{b\\}c\\\\d") << h << QStringLiteral("a{b}c\\d");
        QTest::newRow("tab") << QStringLiteral("a\\tab b") << h << QStringLiteral("a\tb");
        QTest::newRow("accents as entities") << QStringLiteral("caf\\'e9 \\'e0 No\\'ebl") << h
                                             << QStringLiteral("caf&eacute; &agrave; No&euml;l");
        QTest::newRow("a diaeresis is a superscript TM")
            << QStringLiteral("x\\'e4y") << h << QStringLiteral("x<sup>TM</sup>y");
        QTest::newRow("uppercase hex digits give nothing") << QStringLiteral("a\\'E9b") << h << QStringLiteral("ab");

        // Bullets: the old paragraph numbering and the bullet word.
        QTest::newRow("pntext bullets")
            << QStringLiteral("{\\pntext\\f1\\'b7\\tab}un\\par\r\n{\\pntext\\f1\\'b7\\tab}deux\\par\r\n\\pard fin")
            << h << QStringLiteral("<li>un</li><li>deux</li>fin");
        QTest::newRow("pntext with line ends")
            << QStringLiteral("{\\pntext\\f1\\'b7\\tab}un\\par\r\n{\\pntext\\f1\\'b7\\tab}deux\\par\r\n\\pard fin")
            << QStringLiteral("+CR") << QStringLiteral("<li>un</li>\r\n<li>deux</li>\r\nfin");
        QTest::newRow("bullet word") << QStringLiteral("\\bullet x") << h << QStringLiteral("<li>x</li>");
        QTest::newRow("bullet level, par ends the item")
            << QStringLiteral("\\pnlvlblt un\\par deux") << h << QStringLiteral("<li>un</li>deux");
        QTest::newRow("list table: pard keeps a requested item")
            << QStringLiteral("{\\*\\listtable{\\list\\listid1}}\\bullet\\pard x") << h << QStringLiteral("<li>x</li>");
        QTest::newRow("no list table: pard cancels a requested item")
            << QStringLiteral("\\bullet\\pard x") << h << QStringLiteral("x");
        QTest::newRow("pard ends an open item")
            << QStringLiteral("{\\*\\listtable{\\list\\listid1}}\\bullet un\\pard  deux") << h
            << QStringLiteral("<li>un</li> deux");
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
            << QStringLiteral("libreoffice-rappel.rtf")
            << QStringList{
                   QStringLiteral("<table width=100%><tr><td align=\"center\"><font face=\"Arial\" size=3>"
                                  "Le secr&eacute;tariat du Cabinet m&eacute;dical vous rappelle votre rendez-vous"
                                  "</font></td></tr></table>"),
                   QStringLiteral("<b><font face=\"Arial\" color=\"#FF0000\" size=4>"
                                  "Docteur &Eacute;mile B&eacute;r&eacute;nger</font></b>"),
                   QStringLiteral("Texte &agrave; gauche avec <i>italique</i>"),
                   QStringLiteral("<u>soulign&eacute;</u>"),
                   QStringLiteral("&laquo;"),
                   QStringLiteral("&raquo;"),
                   QStringLiteral("&ccedil;a."),
               }
            << QStringList{QStringLiteral("\\"), QStringLiteral("{"), QStringLiteral("Liberation"),
                           QStringLiteral("Normal"), QStringLiteral("Heading"), QStringLiteral("LibreOffice")};

        // Strike, colours 11 and 2 of the table, bullets written as list text,
        // a right-aligned paragraph; the euro sign has no entry. The bullet's
        // font name keeps the alternative name group that follows it.
        QTest::newRow("libreoffice-styles")
            << QStringLiteral("libreoffice-styles.rtf")
            << QStringList{
                   QStringLiteral("<s>barr&eacute;</s>"),
                   QStringLiteral("<font color=\"#008000\">vert</font>"),
                   QStringLiteral("<b><font color=\"#0000FF\">bleu gras</font></b>"),
                   QStringLiteral("Premi&egrave;re ligne<br>"),
                   QStringLiteral("Deuxi&egrave;me ligne<br>"),
                   QStringLiteral("<table width=100%><tr><td align=\"right\">&Agrave; droite</td></tr></table>"),
               }
            << QStringList{QStringLiteral("listtemplateid"), QStringLiteral("Symbol;"), QStringLiteral("\\tab")};

        // Written by hand in the form of WordPad's editor (RichEdit): centred
        // Arial title with a red bold word, Calibri body, bullets as paragraph
        // numbering text, the letter a with diaeresis, super/subscript, strike.
        QTest::newRow("wordpad-style")
            << QStringLiteral("wordpad-style.rtf")
            << QStringList{
                   QStringLiteral("<table width=100%><tr><td align=\"center\"><font face=\"Arial\" size=4>Cabinet </font>"
                                  "<font face=\"Arial\" color=\"#FF0000\" size=4><b>M&eacute;dical</b></font>"
                                  "</td></tr></table><br>"),
                   QStringLiteral("<font face=\"Calibri\" size=3>Rendez-vous le <u>lundi </u>&agrave; 9 h.</font><br>"),
                   QStringLiteral("<li><font face=\"Calibri\" size=3>Apporter la carte Vitale</font></li>"
                                  "<li><font face=\"Calibri\" size=3>Arriver 10 minutes avant</font></li>"),
                   QStringLiteral("th&eacute;, <sup>TM</sup>, x<sup>2</sup>, H<sub>2</sub>O, <s>ray&eacute;</s>."),
               }
            << QStringList{QStringLiteral("Riched20"), QStringLiteral("Symbol"), QStringLiteral("&middot;"),
                           QStringLiteral("\t")};
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
        static const QStringList mots = {
            QStringLiteral("b"),      QStringLiteral("b0"),     QStringLiteral("i"),          QStringLiteral("i0"),
            QStringLiteral("ul"),     QStringLiteral("ulnone"), QStringLiteral("strike"),     QStringLiteral("strike0"),
            QStringLiteral("super"),  QStringLiteral("sub"),    QStringLiteral("nosupersub"), QStringLiteral("cf1"),
            QStringLiteral("cf2"),    QStringLiteral("cf0"),    QStringLiteral("f0"),         QStringLiteral("f1"),
            QStringLiteral("fs18"),   QStringLiteral("fs22"),   QStringLiteral("fs28"),       QStringLiteral("plain"),
            QStringLiteral("par"),    QStringLiteral("tab")};
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
