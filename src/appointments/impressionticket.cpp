#include "appointments/impressionticket.h"

#include "appointments/paquetrdv.h"
#include "calendar/calendarevent.h"
#include "shell/appstate.h"
#include "shell/base/nombres.h"
#include "shell/base/profilini.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QLocale>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTextLayout>

#include <cmath>
#include <filesystem>

namespace {

constexpr double TwipsParPouce = 1440.0;
constexpr double TwipsParPoint = 20.0;
constexpr double TwipsParMillimetre = 56.7;

QFont PoliceTicket(const StyleTicket &style, const QPaintDevice *support)
{
    QFont police(QStringLiteral("Arial"));
    police.setPointSizeF(style.taille);
    police.setBold(style.gras);
    police.setItalic(style.italique);
    police.setUnderline(style.souligne);
    return support ? QFont(police, support) : police;
}

// Types the ticket into the list of lines as a text control is typed into:
// the style in force goes with each run and with each line break.
class Frappe final
{
public:
    explicit Frappe(QList<ParagrapheTicket> &paragraphes)
        : m_paragraphes(paragraphes)
    {
        m_paragraphes.append(ParagrapheTicket{});
    }

    StyleTicket style;

    void taper(const QString &texte)
    {
        ParagrapheTicket &courant = m_paragraphes.last();
        if (!texte.isEmpty())
            courant.segments.append(SegmentTicket{texte, style});
        courant.marque = style;
    }

    void sauter(int nombre = 1)
    {
        for (int i = 0; i < nombre; ++i) {
            m_paragraphes.last().marque = style;
            m_paragraphes.append(ParagrapheTicket{{}, style});
        }
    }

private:
    QList<ParagrapheTicket> &m_paragraphes;
};

double PixelsEnPoints(double pixels, double dpi)
{
    return dpi > 0 ? pixels * 72.0 / dpi : pixels;
}

void Signaler(QString *erreur, const QString &texte)
{
    if (erreur)
        *erreur = texte;
}

} // namespace

std::optional<FormatTicket> FormatTicketNomme(const QString &nom)
{
    if (nom == FormatRouleau58)
        return FormatTicket{nom, 5670, 3402, 170.1, 170.1, 12, 9, 9, 9, 11, 12};
    if (nom == FormatRouleau80)
        return FormatTicket{nom, 8505, 4536, 170.1, 340.2, 14, 12, 12, 12, 14, 15};
    if (nom == FormatA4)
        return FormatTicket{nom, 16839.9, 11907, 340.2, 340.2, 18, 12, 12, 12, 14, 16};
    return std::nullopt;
}

double MargeTicketTwips(const QString &texte)
{
    return std::floor(LireNombre(texte) * 100.0) * 0.567;
}

ReglagesTicket LireReglagesTicket()
{
    const QString section = appState().AgendaName;
    ReglagesTicket r;
    r.imprimante = LireAgendaIni(section, QStringLiteral("PrinterRDV"), QPrinterInfo::defaultPrinterName());
    r.format = LireAgendaIni(section, QStringLiteral("PrinterFormat"), FormatA4);
    r.margeGauche = LireAgendaIni(section, QStringLiteral("MarginL"), QStringLiteral("3"));
    r.margeDroite = LireAgendaIni(section, QStringLiteral("MarginR"), QStringLiteral("7"));
    r.entete = LireAgendaIni(section, QStringLiteral("PrinterEntete"), QString());
    return r;
}

DonneesTicket DonneesTicketDepuis(const CalendarEvent &rdv, const QString &praticien)
{
    DonneesTicket d;
    // An appointment of the old form leaves every field but the comment
    // empty: its ticket has no names.
    const ChampsRdv champs = DepaquerBody(rdv.Body());
    d.nom = champs[ChampRdv::Nom];
    d.prenom = champs[ChampRdv::Prenom];
    d.praticien = praticien;
    d.date = rdv.StartDateTime().date();
    d.heure = rdv.StartDateTime().time();
    return d;
}

QString ParagrapheTicket::texte() const
{
    QString t;
    for (const SegmentTicket &s : segments)
        t += s.texte;
    return t;
}

TicketCompose ComposerTicket(const ReglagesTicket &reglages, const DonneesTicket &donnees)
{
    TicketCompose ticket;
    const std::optional<FormatTicket> format = FormatTicketNomme(reglages.format);
    if (!format)
        return ticket;
    ticket.page = PageTicket{format->hauteur,
                             format->largeur,
                             format->haut,
                             format->bas,
                             MargeTicketTwips(reglages.margeGauche),
                             MargeTicketTwips(reglages.margeDroite)};

    Frappe f(ticket.paragraphes);
    f.style = StyleTicket{format->tailleEntete, true, false, false};
    const QStringList entete = reglages.entete.split(QLatin1Char('|'));
    for (qsizetype i = 0; i < entete.size(); ++i) {
        if (i > 0)
            f.sauter();
        f.taper(entete.at(i));
    }
    f.sauter(2);

    f.style.taille = format->tailleTitrePatient;
    f.style.souligne = true;
    f.taper(QStringLiteral("Patient :"));
    f.sauter();
    f.style.souligne = false;
    f.style.gras = false;

    f.style.taille = format->tailleNom;
    f.taper(donnees.prenom + QLatin1Char(' ') + donnees.nom);
    f.sauter(2);

    f.style.gras = true;
    f.style.taille = format->tailleDocteur;
    f.taper(QStringLiteral("Rendez-vous avec le Docteur"));
    f.sauter();

    f.style.taille = format->taillePraticien;
    f.taper(donnees.praticien);
    f.sauter(2);

    f.style.souligne = true;
    f.style.italique = true;
    f.style.taille = format->tailleDate;
    f.taper(QStringLiteral("Le ")
            + QLocale(QLocale::French).toString(donnees.date, QStringLiteral("dddd dd MMMM yyyy")));
    f.sauter(2);
    f.style.souligne = false;
    f.style.italique = false;

    f.taper(QStringLiteral("A ") + donnees.heure.toString(QStringLiteral("hh' H 'mm")));
    f.sauter();
    // Ten blanks end the ticket; the 80 mm roll gets a line of stars below.
    f.taper(QString(10, QLatin1Char(' ')));
    if (format->nom == FormatRouleau80) {
        f.sauter(2);
        f.taper(QString(15, QLatin1Char('*')));
    }
    return ticket;
}

MiseEnPageTicket::MiseEnPageTicket(const QList<ParagrapheTicket> &paragraphes, const PageTicket &page,
                                   QPaintDevice *support)
{
    const double dpiX = support->logicalDpiX();
    const double dpiY = support->logicalDpiY();
    const double gauche = std::max(0.0, page.margeGauche);
    const double droite = std::max(0.0, page.margeDroite);
    const double haut = std::max(0.0, page.margeHaut);
    const double bas = std::max(0.0, page.margeBas);
    const double largeurUtile = std::max(0.0, (page.largeur - gauche - droite) * dpiX / TwipsParPouce);
    const double hauteurUtile = std::max(0.0, (page.hauteur - haut - bas) * dpiY / TwipsParPouce);
    const double origineX = gauche / TwipsParPoint;
    const double origineY = haut / TwipsParPoint;

    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);

    double y = 0;
    for (qsizetype i = 0; i < paragraphes.size(); ++i) {
        const ParagrapheTicket &p = paragraphes.at(i);
        const QString texte = p.texte();
        auto bloc = std::make_unique<QTextLayout>(texte, PoliceTicket(p.marque, support), support);
        bloc->setTextOption(option);
        QList<QTextLayout::FormatRange> formats;
        int debut = 0;
        for (const SegmentTicket &s : p.segments) {
            QTextLayout::FormatRange plage;
            plage.start = debut;
            plage.length = int(s.texte.size());
            plage.format.setFont(PoliceTicket(s.style, support));
            formats.append(plage);
            debut += plage.length;
        }
        bloc->setFormats(formats);
        bloc->setCacheEnabled(true);

        bloc->beginLayout();
        for (QTextLine ligne = bloc->createLine(); ligne.isValid(); ligne = bloc->createLine()) {
            ligne.setLeadingIncluded(true);
            ligne.setLineWidth(largeurUtile);
            ligne.setPosition(QPointF(0, y));
            // A small tolerance: the page height in pixels is itself rounded.
            if (!m_tronque && y + ligne.height() > hauteurUtile + 0.5)
                m_tronque = true;
            if (!m_tronque) {
                const double x = ligne.cursorToX(ligne.textStart());
                m_lignes.append(LigneTicket{int(i), texte.mid(ligne.textStart(), ligne.textLength()),
                                            origineX + PixelsEnPoints(x, dpiX),
                                            origineY + PixelsEnPoints(y, dpiY),
                                            PixelsEnPoints(ligne.naturalTextWidth(), dpiX),
                                            PixelsEnPoints(ligne.height(), dpiY)});
                m_hauteurUtile = y + ligne.height();
            }
            y += ligne.height();
        }
        bloc->endLayout();
        m_blocs.push_back(std::move(bloc));
    }
}

MiseEnPageTicket::~MiseEnPageTicket() = default;

void MiseEnPageTicket::dessiner(QPainter &peintre) const
{
    peintre.save();
    peintre.setPen(Qt::black);
    if (m_tronque)
        peintre.setClipRect(QRectF(0, 0, peintre.device()->width() * 2.0, m_hauteurUtile));
    for (const auto &bloc : m_blocs)
        bloc->draw(&peintre, QPointF(0, 0));
    peintre.restore();
}

HighEditEtat &HighEdit()
{
    static HighEditEtat etat;
    return etat;
}

void InitHighEdit(HighEditEtat &etat, const QString &format)
{
    if (format == FormatA4)
        etat.page = PageTicket{16839.9, 11907, 340.2, 340.2, 340.2, 340.2};
    else if (format == FormatRouleau80)
        etat.page = PageTicket{5670, 4536, 56.7, 56.7, 56.7, 56.7};
    else if (format == FormatRouleau58)
        etat.page = PageTicket{5670, 3288.6, 56.7, 56.7, 56.7, 56.7};
    else
        return;
    etat.police = QStringLiteral("Arial");
}

void InitHighEdit(HighEditEtat &etat)
{
    InitHighEdit(etat, LireAgendaIni(appState().AgendaName, QStringLiteral("PrinterFormat"), FormatA4));
}

QString ImprimanteTicket(const QString &voulue, const QString &courante, const QStringList &disponibles)
{
    if (!voulue.isEmpty() && voulue != courante && disponibles.contains(voulue))
        return voulue;
    return courante;
}

bool ImprimerTicketSur(QPrinter &imprimante, const ReglagesTicket &reglages, const DonneesTicket &donnees,
                       HighEditEtat &highEdit, QString *erreur)
{
    const TicketCompose ticket = ComposerTicket(reglages, donnees);
    if (ticket.page)
        highEdit.page = *ticket.page;
    highEdit.police = QStringLiteral("Arial");
    const PageTicket page = highEdit.page;

    if (page.largeur <= 0 || page.hauteur <= 0
        || std::max(0.0, page.margeGauche) + std::max(0.0, page.margeDroite) >= page.largeur) {
        Signaler(erreur, QStringLiteral("Les marges du ticket (gauche %1 mm, droite %2 mm) ne laissent aucune place "
                                        "au texte sur le papier « %3 ». Corrigez-les dans les options avancées.")
                             .arg(reglages.margeGauche, reglages.margeDroite, reglages.format));
        return false;
    }

    // The whole sheet is the painter's; the margins are ours, so that a
    // printer's own minimum margins never move the text.
    const QPageSize taille(QSizeF(page.largeur / TwipsParMillimetre, page.hauteur / TwipsParMillimetre),
                           QPageSize::Millimeter, QStringLiteral("Ticket"), QPageSize::ExactMatch);
    QPageLayout mise(taille, QPageLayout::Portrait, QMarginsF(), QPageLayout::Millimeter);
    mise.setMode(QPageLayout::FullPageMode);
    imprimante.setFullPage(true);
    if (!imprimante.setPageLayout(mise))
        imprimante.setPageSize(taille);
    imprimante.setDocName(QStringLiteral("Ticket de rendez-vous"));
    imprimante.setCreator(QStringLiteral("Tavonel"));

    QPainter peintre;
    if (!peintre.begin(&imprimante)) {
        Signaler(erreur, imprimante.outputFormat() == QPrinter::PdfFormat
                             ? QStringLiteral("Le ticket n'a pas pu être écrit dans le fichier « %1 ».")
                                   .arg(QDir::toNativeSeparators(imprimante.outputFileName()))
                             : QStringLiteral("L'impression du ticket sur « %1 » n'a pas pu commencer.")
                                   .arg(imprimante.printerName()));
        return false;
    }
    const MiseEnPageTicket miseEnPage(ticket.paragraphes, page, &imprimante);
    peintre.translate(std::max(0.0, page.margeGauche) * imprimante.logicalDpiX() / TwipsParPouce,
                      std::max(0.0, page.margeHaut) * imprimante.logicalDpiY() / TwipsParPouce);
    miseEnPage.dessiner(peintre);
    if (!peintre.end() || imprimante.printerState() == QPrinter::Error) {
        Signaler(erreur, QStringLiteral("L'impression du ticket a échoué."));
        return false;
    }
    return true;
}

bool ImprimerTicket(const DonneesTicket &donnees, QString *erreur)
{
    const ReglagesTicket reglages = LireReglagesTicket();
    const QString nom = ImprimanteTicket(reglages.imprimante, QPrinterInfo::defaultPrinterName(),
                                         QPrinterInfo::availablePrinterNames());
    const QPrinterInfo info = QPrinterInfo::printerInfo(nom);
    // No printer at all is told (our choice), so that the secretary does not
    // wait for a ticket that will never come.
    if (nom.isEmpty() || info.isNull()) {
        Signaler(erreur, QStringLiteral("Aucune imprimante n'est disponible sur ce poste : le ticket n'a pas été "
                                        "imprimé. Le rendez-vous est enregistré."));
        return false;
    }
    QPrinter imprimante(info, QPrinter::HighResolution);
    return ImprimerTicketSur(imprimante, reglages, donnees, HighEdit(), erreur);
}

bool ImprimerTicket(const CalendarEventPtr &rdv, const QString &praticien, QString *erreur)
{
    if (!rdv) {
        Signaler(erreur, QStringLiteral("Aucun rendez-vous à imprimer."));
        return false;
    }
    return ImprimerTicket(DonneesTicketDepuis(*rdv, praticien), erreur);
}

bool ImprimerTicketPdf(const DonneesTicket &donnees, const QString &chemin, QString *erreur)
{
    const QString echec = QStringLiteral("Le ticket n'a pas pu être écrit dans le fichier « %1 ».")
                              .arg(QDir::toNativeSeparators(chemin));
    // Written beside the target, then renamed over it: a failed run leaves
    // the file that was there.
    const QString partiel = chemin + QStringLiteral(".partiel");
    {
        QFile essai(partiel);
        if (!essai.open(QIODevice::WriteOnly)) {
            Signaler(erreur, echec);
            return false;
        }
    }
    bool ok = false;
    {
        QPrinter pdf(QPrinter::HighResolution);
        pdf.setOutputFormat(QPrinter::PdfFormat);
        pdf.setOutputFileName(partiel);
        ok = ImprimerTicketSur(pdf, LireReglagesTicket(), donnees, HighEdit(), erreur);
    }
    if (ok) {
        std::error_code code;
        std::filesystem::rename(QFile::encodeName(partiel).toStdString(), QFile::encodeName(chemin).toStdString(),
                                code);
        if (code) {
            Signaler(erreur, echec);
            ok = false;
        }
    }
    QFile::remove(partiel);
    return ok;
}
