#pragma once

#include "calendar/calendarrecurrencepattern.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTime>

#include <memory>
#include <optional>
#include <vector>

class CalendarEvent;
class QPaintDevice;
class QPainter;
class QPrinter;
class QTextLayout;

// The appointment ticket handed to the patient: a small page of centred Arial
// text in one of three paper formats, printed on the ticket printer of the
// workstation. Lengths of the page are in twips (1/1440 inch), font sizes in
// points.

// A page with its four margins, in twips.
struct PageTicket
{
    double hauteur = 0;
    double largeur = 0;
    double margeHaut = 0;
    double margeBas = 0;
    double margeGauche = 0;
    double margeDroite = 0;

    friend bool operator==(const PageTicket &, const PageTicket &) = default;
};

// One paper format: its page height, width, top and bottom margins, and the
// size of each block of the ticket.
struct FormatTicket
{
    QString nom;
    double hauteur = 0;
    double largeur = 0;
    double haut = 0;
    double bas = 0;
    double tailleEntete = 0;
    double tailleTitrePatient = 0;
    double tailleNom = 0;
    double tailleDocteur = 0;
    double taillePraticien = 0;
    double tailleDate = 0;
};

inline const QString FormatA4 = QStringLiteral("A4");
inline const QString FormatRouleau80 = QStringLiteral("Rouleau 80 mm");
inline const QString FormatRouleau58 = QStringLiteral("Rouleau 58 mm");

// The format of that exact name; none for any other text.
[[nodiscard]] std::optional<FormatTicket> FormatTicketNomme(const QString &nom);

// A margin setting in millimetres as twips: whole hundredths of a millimetre
// by the leading-number rule (so "2,5" is 2 mm), times 0.567.
[[nodiscard]] double MargeTicketTwips(const QString &texte);

// The ticket keys of the agenda's section of Agenda.ini.
struct ReglagesTicket
{
    QString imprimante;                           // PrinterRDV
    QString format = FormatA4;                    // PrinterFormat
    QString margeGauche = QStringLiteral("3");    // MarginL
    QString margeDroite = QStringLiteral("7");    // MarginR
    QString entete;                               // PrinterEntete, "|" for a line break
};

// Reads them from the section of AppState::AgendaName; the printer defaults
// to the system's current printer.
[[nodiscard]] ReglagesTicket LireReglagesTicket();

// What the ticket tells of the appointment.
struct DonneesTicket
{
    QString nom;       // field 0 of the appointment: family name, or the wording
    QString prenom;    // field 1: first name, or the complement
    QString praticien; // the practitioner as the editor shows it
    QDate date;
    QTime heure;
};

// Fields 0 and 1 of the appointment's text, its start, and the practitioner
// shown by the editor. An appointment of the old form (no separator in its
// text) has no names.
[[nodiscard]] DonneesTicket DonneesTicketDepuis(const CalendarEvent &rdv, const QString &praticien);

// The look of a run of text (always Arial).
struct StyleTicket
{
    double taille = 0;
    bool gras = false;
    bool italique = false;
    bool souligne = false;

    friend bool operator==(const StyleTicket &, const StyleTicket &) = default;
};

struct SegmentTicket
{
    QString texte;
    StyleTicket style;
};

// One line of the text as typed: runs of text up to a line break. The break
// mark keeps the style in force when it was typed; an empty line takes its
// height from it.
struct ParagrapheTicket
{
    QList<SegmentTicket> segments;
    StyleTicket marque;

    [[nodiscard]] QString texte() const;
};

// The ticket as it is typed into the page: the page of the format (none for a
// format the ticket does not know: the text control then keeps the page it
// had, and stays empty) and the centred lines.
struct TicketCompose
{
    std::optional<PageTicket> page;
    QList<ParagrapheTicket> paragraphes;
};

[[nodiscard]] TicketCompose ComposerTicket(const ReglagesTicket &reglages, const DonneesTicket &donnees);

// A line as it stands on paper, in points from the top left corner of the
// page. A long paragraph wraps to several lines.
struct LigneTicket
{
    int paragraphe = 0;
    QString texte;
    double x = 0;
    double y = 0;
    double largeur = 0;
    double hauteur = 0;
};

// The ticket laid out on a page for one paint device (the printer, or an
// image of the same resolution): each paragraph centred between the margins
// and wrapped at their width. What does not fit on the first page is left
// out, since a ticket is one page.
class MiseEnPageTicket final
{
public:
    MiseEnPageTicket(const QList<ParagrapheTicket> &paragraphes, const PageTicket &page, QPaintDevice *support);
    ~MiseEnPageTicket();
    MiseEnPageTicket(const MiseEnPageTicket &) = delete;
    MiseEnPageTicket &operator=(const MiseEnPageTicket &) = delete;

    [[nodiscard]] const QList<LigneTicket> &lignes() const { return m_lignes; }
    // True when some text did not fit on the page.
    [[nodiscard]] bool tronque() const { return m_tronque; }
    // Draws the lines that fit; the painter's origin is the top left corner
    // of the area inside the margins, in the device's pixels.
    void dessiner(QPainter &peintre) const;

private:
    std::vector<std::unique_ptr<QTextLayout>> m_blocs;
    QList<LigneTicket> m_lignes;
    double m_hauteurUtile = 0; // device pixels
    bool m_tronque = false;
};

// The hidden text control of the main window in which tickets are laid out:
// its page and font between two uses. A ticket sets the page of its format
// over it; a format the ticket does not know prints an empty page of the size
// the control holds.
struct HighEditEtat
{
    PageTicket page{16839.9, 11907, 1440, 1440, 1440, 1440};
    QString police;

    friend bool operator==(const HighEditEtat &, const HighEditEtat &) = default;
};

// The one control of the process, kept by the main window.
[[nodiscard]] HighEditEtat &HighEdit();

// Resting values of the control for a format; any other format leaves it as
// it is, font included.
void InitHighEdit(HighEditEtat &etat, const QString &format);
// The same for PrinterFormat of the agenda's section (default "A4").
void InitHighEdit(HighEditEtat &etat);

// The printer a ticket goes to: the wanted one when it is set, differs from
// the current one and is among the system's printers (exact name); otherwise
// the current one. Empty when there is none.
[[nodiscard]] QString ImprimanteTicket(const QString &voulue, const QString &courante,
                                       const QStringList &disponibles);

// Prints the ticket on a printer already chosen and set up, with the given
// control. False, with a French text in *erreur, when the page cannot be made
// or nothing could be drawn.
bool ImprimerTicketSur(QPrinter &imprimante, const ReglagesTicket &reglages, const DonneesTicket &donnees,
                       HighEditEtat &highEdit, QString *erreur = nullptr);

// Prints the ticket of the settings on the ticket printer (PrinterRDV, or the
// current printer when that one is not on the system), with HighEdit(). False
// with a French text in *erreur when the workstation has no printer at all or
// the printing failed. The appointment is stored before: a failure here loses
// nothing.
bool ImprimerTicket(const DonneesTicket &donnees, QString *erreur = nullptr);
bool ImprimerTicket(const CalendarEventPtr &rdv, const QString &praticien, QString *erreur = nullptr);

// The same ticket as a PDF file (tests, "print to file"); the file appears
// whole or not at all.
bool ImprimerTicketPdf(const DonneesTicket &donnees, const QString &chemin, QString *erreur = nullptr);
