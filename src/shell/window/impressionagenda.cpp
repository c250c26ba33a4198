#include "shell/window/impressionagenda.h"

#include "calendar/view/calendarview.h"
#include "shell/appstate.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "shell/base/prompt.h"
#include "shell/demarrage.h"
#include "shell/window/miseenpage.h"

#include <QDir>
#include <QLocale>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QRegularExpression>

namespace {

// Hours of settings are "hh:nn:ss"; a short "h:mm" is taken too.
QTime heureReglage(const QString &texte, QTime defaut)
{
    for (const QString &format : {QStringLiteral("HH:mm:ss"), QStringLiteral("H:mm")}) {
        const QTime t = QTime::fromString(texte.trimmed(), format);
        if (t.isValid())
            return t;
    }
    return defaut;
}

// The time of day as the system writes it (its long form, without a zone).
QString heureSysteme(const QTime &t)
{
    static const QRegularExpression zone(QStringLiteral("\\s*t+\\s*"));
    const QString format = QLocale().timeFormat(QLocale::LongFormat).remove(zone).trimmed();
    return QLocale().toString(t, format);
}

} // namespace

ImpressionAgenda::ImpressionAgenda(CalendarView &vue, const ParametresFenetre &parametres, QWidget *fenetre)
    : QObject(fenetre)
    , m_vue(vue)
    , m_fenetre(fenetre)
{
    setObjectName(QStringLiteral("ImpressionAgenda"));
    m_options.debut = heureReglage(parametres.printFrom, QTime(8, 0));
    m_options.fin = heureReglage(parametres.printTo, QTime(20, 0));
    m_options.exactement = parametres.printFromToExactly != 0;
    // Our calendar measures its margins in hundredths of a millimetre (its
    // measure flag, for thousandths of an inch, is never set): the start-up
    // value of 500 makes 5 mm.
    const qreal mm = parametres.margesPage / 100.0;
    m_marges = QMarginsF(mm, mm, mm, mm);
}

ImpressionAgenda::~ImpressionAgenda() = default;

QPrinter &ImpressionAgenda::imprimante()
{
    if (!m_imprimante) {
        m_imprimante = std::make_unique<QPrinter>(QPrinter::HighResolution);
        m_imprimante->setPageMargins(m_marges, QPageLayout::Millimeter);
        m_imprimante->setDocName(QStringLiteral("Tavonel"));
    }
    return *m_imprimante;
}

QString ImpressionAgenda::ligneEditeur() { return QStringLiteral(" Tavonel - agenda du cabinet médical"); }

void ImpressionAgenda::fixerCases(OptionsImpressionCalendrier &options, const QString &agenda, const QDateTime &moment)
{
    // "Page 1 of 1 " stays in English: the page drawing writes the numbers in.
    options.entete = {QStringLiteral("Tavonel"), agenda, QStringLiteral("Page 1 of 1 ")};
    options.pied = {ligneEditeur(), QStringLiteral("Imprimé le : ") + QLocale().toString(moment.date(), QLocale::ShortFormat),
                    QStringLiteral("à : ") + heureSysteme(moment.time())};
}

void ImpressionAgenda::miseEnPage()
{
    QPrinter &p = imprimante();
    DialogueMiseEnPage dialogue({p.pageLayout(), m_options.debut, m_options.fin, m_options.exactement}, m_fenetre);
    if (ExecuterDialogue(dialogue) == QDialog::Accepted) {
        const ReglagesMiseEnPage r = dialogue.reglages();
        p.setPageLayout(r.page);
        m_marges = r.page.margins(QPageLayout::Millimeter);
        m_options.debut = r.debut;
        m_options.fin = r.fin;
        m_options.exactement = r.exactement;
    }
    // Whatever the way the dialog ended, the range goes back to the file.
    const QString fichier = CheminAgendaIni();
    const QString section = appState().AgendaName;
    FichierProfil profil = FichierProfil::charger(fichier);
    profil.fixer(section, QStringLiteral("PrintOptions.PrintFrom"), m_options.debut.toString(QStringLiteral("HH:mm:ss")));
    profil.fixer(section, QStringLiteral("PrintOptions.PrintTo"), m_options.fin.toString(QStringLiteral("HH:mm:ss")));
    profil.fixer(section, QStringLiteral("PrintOptions.PrintFromToExactly"),
                 m_options.exactement ? QStringLiteral("-1") : QStringLiteral("0"));
    if (!profil.enregistrer(fichier))
        Prompt::informer(QStringLiteral("Mise en page"),
                         QStringLiteral("Les heures d'impression n'ont pas pu être enregistrées dans le fichier %1.\n"
                                        "Elles restent valables jusqu'à la fermeture de l'agenda.")
                             .arg(QDir::toNativeSeparators(fichier)),
                         Prompt::Icone::Exclamation);
}

void ImpressionAgenda::apercu()
{
    QPrintPreviewDialog dialogue(&imprimante(), m_fenetre);
    if (!m_titreApercu.isEmpty())
        dialogue.setWindowTitle(m_titreApercu);
    connect(&dialogue, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter *p) { ImprimerCalendrier(*p, m_vue, m_options); });
    ExecuterDialogue(dialogue);
}

void ImpressionAgenda::previsualiser()
{
    m_titreApercu = QStringLiteral("Tavonel");
    fixerCases(m_options, appState().AgendaName, Horloge::maintenant());
    apercu();
}

void ImpressionAgenda::imprimer()
{
    fixerCases(m_options, appState().AgendaName, Horloge::maintenant());
    apercu();
    QPrinter &p = imprimante();
    // Without any printer Qt falls back on a PDF file it has no name for.
    if (p.outputFormat() == QPrinter::PdfFormat && p.outputFileName().isEmpty()) {
        Prompt::informer(QStringLiteral("Impression"),
                         QStringLiteral("Aucune imprimante n'est installée sur ce poste : l'agenda n'a pas été imprimé."),
                         Prompt::Icone::Exclamation);
        return;
    }
    if (!ImprimerCalendrier(p, m_vue, m_options))
        Prompt::informer(QStringLiteral("Impression"),
                         QStringLiteral("L'impression de l'agenda n'a pas pu se faire sur %1.")
                             .arg(p.printerName().isEmpty() ? QDir::toNativeSeparators(p.outputFileName()) : p.printerName()),
                         Prompt::Icone::Exclamation);
}
