#include "shell/base/support.h"

#include "shell/base/cp1252.h"
#include "shell/base/fichierspartages.h"
#include "shell/base/horloge.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDeadlineTimer>
#include <QDesktopServices>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <QThread>
#include <QTimer>
#include <QUrl>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>

#include <pwd.h>
#include <unistd.h>

namespace {

// Names of the system are read into a buffer of 251 characters, the last one
// being the terminating NUL.
QString nomSysteme(QString nom)
{
    const qsizetype nul = nom.indexOf(QChar(u'\0'));
    if (nul >= 0)
        nom.truncate(nul);
    return nom.left(250);
}

QString pluriel(qint64 n, const QString &unite, bool avecS)
{
    return QString::number(n) + u' ' + unite + (avecS ? QStringLiteral("s") : QString());
}

struct DureeConnue
{
    qint32 minutes;
    const char *texte;
};

// The reminder leads of the combo boxes. Zero is read from "0 minutes" but
// written as "0 minute" (see the two functions below).
constexpr DureeConnue kDurees[] = {
    {1, "1 minute"},      {5, "5 minutes"},     {10, "10 minutes"},   {15, "15 minutes"},
    {30, "30 minutes"},   {60, "1 heure"},      {120, "2 heures"},    {240, "4 heures"},
    {480, "8 heures"},    {720, "0.5 jour"},    {1440, "1 jour"},     {2880, "2 jours"},
    {4320, "3 jours"},    {5760, "4 jours"},    {10080, "1 semaine"}, {20160, "2 semaines"},
};

} // namespace

// --- Durations ---------------------------------------------------------

bool ParseDuree(const QString &texte, qint32 &minutes)
{
    minutes = 0;
    const QString t = texte.trimmed();
    if (t.isEmpty())
        return false;

    static const QString caracteresNombre = QStringLiteral("-+.,0123456789");
    qsizetype fin = 0;
    while (fin < t.size() && caracteresNombre.contains(t.at(fin)))
        ++fin;
    const QString nombre = t.left(fin);
    const QString unite = t.mid(fin).trimmed();
    if (nombre.isEmpty())
        return false;

    int facteur = 1;
    if (!unite.isEmpty()) {
        switch (unite.at(0).toLower().unicode()) {
        case u'h': facteur = 60; break;
        case u'd': facteur = 1440; break;
        case u'w': facteur = 10080; break;
        default: facteur = 1; break; // "m", and any unit we do not know
        }
    }

    // "1,5" reads as 1: the comma is accepted above as part of the number but
    // the leading-number rule stops at it.
    const double valeur = LireNombre(nombre) * facteur;
    // A value beyond 32 bits cannot be a duration: refused rather than
    // wrapped (the test is written so that NaN fails it too).
    if (!(valeur >= -2147483648.5 && valeur < 2147483647.5))
        return false;
    minutes = static_cast<qint32>(ArrondiBancaire(valeur));
    return true;
}

QString FormatDuree(qint32 minutes, bool force)
{
    const qint64 semaines = ArrondiBancaire(minutes / 10080.0);
    const qint64 jours = ArrondiBancaire(minutes / 1440.0);
    const qint64 heures = ArrondiBancaire(minutes / 60.0);

    if ((minutes % 10080 == 0 || force) && semaines > 0)
        return pluriel(semaines, QStringLiteral("semaine"), semaines >= 2);
    if ((minutes % 1440 == 0 || force) && jours > 0)
        return pluriel(jours, QStringLiteral("jour"), jours >= 2);
    if ((minutes % 60 == 0 || force) && heures > 0)
        return pluriel(heures, QStringLiteral("heure"), heures >= 2);
    return pluriel(minutes, QStringLiteral("minute"), minutes > 1);
}

qint32 DureeTexteVersMinutes(const QString &texte)
{
    for (const DureeConnue &d : kDurees) {
        if (texte == QLatin1String(d.texte))
            return d.minutes;
    }
    // "0 minutes" is known in this direction only; anything else unknown is 0
    // as well.
    return 0;
}

QString MinutesVersDureeTexte(qint32 minutes)
{
    if (minutes == 0)
        return QStringLiteral("0 minute");
    for (const DureeConnue &d : kDurees) {
        if (d.minutes == minutes)
            return QString::fromLatin1(d.texte);
    }
    return {};
}

QStringList ListeDurees(bool sans1minute, bool joursSeuls)
{
    QStringList liste;
    if (!sans1minute)
        liste << QStringLiteral("1 minute");
    if (joursSeuls) {
        // A reminder sent by message needs a lead of three days at least.
        liste << QStringLiteral("3 jours") << QStringLiteral("4 jours") << QStringLiteral("1 semaine")
              << QStringLiteral("2 semaines");
        return liste;
    }
    for (const DureeConnue &d : kDurees) {
        if (d.minutes != 1)
            liste << QString::fromLatin1(d.texte);
    }
    return liste;
}

// --- Weeks -------------------------------------------------------------

int JourSemaineDimanche1(const QDate &date)
{
    if (!date.isValid())
        return 0;
    return date.dayOfWeek() % 7 + 1; // Qt: Monday 1 ... Sunday 7
}

int GetWeekNumber(const QDate &date)
{
    if (!date.isValid())
        return 0;
    // The Thursday of the date's week decides the week-numbering year:
    // stepping back by the weekday of the day before and forward by 4 lands
    // on it.
    const int w = JourSemaineDimanche1(date.addDays(-1));
    const int annee = date.addDays(4 - w).year();
    const QDate s(annee, 1, 3);
    const qint64 n = s.daysTo(date) + JourSemaineDimanche1(s) + 5;
    // Integer part of n / 7; n is never negative for a valid date, but a
    // floor keeps the formula honest if it were.
    return static_cast<int>(n >= 0 ? n / 7 : -((-n + 6) / 7));
}

int GetWeekParity(const QDate &date)
{
    return GetWeekNumber(date) % 2 != 0 ? 1 : 2;
}

// --- System errors -----------------------------------------------------

QString ShowWinApiError(const QString &ou, int code)
{
    if (code == -1)
        code = errno;

    // A code the C library does not know has no description (its strerror
    // would make one up, "Unknown error 1234", in the user's language).
    // errno 0 has a description of its own, as on the platform where the
    // message said the operation had succeeded.
    QString texte;
#ifdef __GLIBC__
    const char *description = strerrordesc_np(code);
#else
    const char *description = code > 0 ? "" : nullptr;
#endif
    if (description) {
        texte = qt_error_string(code);
        if (texte.isEmpty())
            texte = QString::fromUtf8(description);
    }
    // The system text is limited to 255 characters. The platform's texts
    // ended in a line break, which was cut off; ours have none, so the whole
    // text is shown, with any trailing blank or line break removed.
    texte = texte.left(255).trimmed();

    const QString debut = QStringLiteral("WinAPI (") + ou + QStringLiteral("): ");
    const QString message = texte.isEmpty()
                                ? debut + QString::number(code)
                                      + QStringLiteral(" - No description exists for this error number.")
                                : debut + texte;
    Prompt::informer(QStringLiteral("Tavonel"), message, Prompt::Icone::Aucune);
    return message;
}

// --- Files and paths ---------------------------------------------------

QString AjouterSlash(const QString &chemin)
{
    QString c = chemin.trimmed();
    if (c.endsWith(u'\\') || c.endsWith(u'/'))
        return c;
    return c + u'/';
}

bool FichierExiste(const QString &chemin)
{
    // Only something with a length exists: a regular file (through a link
    // too), empty or not. A folder has no length.
    return !chemin.isEmpty() && QFileInfo(chemin).isFile();
}

void CreerDossiers(const QString &chemin)
{
    QString c = chemin;
    c.replace(u'\\', u'/');
    const qsizetype dernier = c.lastIndexOf(u'/');
    QDir courant;
    if (dernier < 0) {
        // No separator at all: the whole text is one folder.
        if (!c.isEmpty())
            courant.mkdir(c);
        return;
    }
    // Every level up to the last separator; what follows it (a file name, or
    // nothing for a path ending in a separator) is not made. mkpath makes the
    // missing levels in turn and accepts those that exist; a failure is
    // ignored, the caller finds out when it uses the folder.
    courant.mkpath(c.left(dernier + 1));
}

std::optional<QString> LireFichierTexte(const QString &chemin)
{
    if (!FichierExiste(chemin)) {
        // Another workstation may be rewriting the file right now (delete,
        // then write): give it a moment once.
        Attendre(3);
        if (!FichierExiste(chemin))
            return std::nullopt;
    }
    QFile f(chemin);
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    return DepuisCp1252(f.readAll());
}

bool EcrireFichierTexte(const QString &texte, const QString &chemin)
{
    // Delete first: the new file replaces the old one whatever the old one's
    // permissions were (QSaveFile alone refuses to replace a read-only file).
    // The save file then makes sure that nobody reads a half-written file.
    QFile::remove(chemin);
    QSaveFile f(chemin);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    PartagerDescripteur(f.handle());
    const QByteArray octets = VersCp1252(texte);
    if (f.write(octets) != octets.size()) {
        f.cancelWriting();
        return false;
    }
    return f.commit();
}

int SupprimerFichier(const QString &chemin)
{
    if (::unlink(QFile::encodeName(chemin).constData()) == 0)
        return 0;
    switch (errno) {
    case ENOENT:
    case ENOTDIR:
    case EISDIR: // only files are deleted; a folder is no file to be found
    case ENAMETOOLONG:
        return 53; // File not found
    case EACCES:
    case EPERM:
    case EROFS:
    case EBUSY:
    case ETXTBSY:
        return 70; // Permission denied
    default:
        return 75; // Path/File access error
    }
}

// --- Waiting, names, shell --------------------------------------------

void Attendre(double secondes)
{
    using namespace std::chrono;
    const double ms = secondes > 0 ? secondes * 1000.0 : 0.0;
    const milliseconds duree(ms >= INT_MAX ? INT_MAX : static_cast<int>(ms + 0.5));

    QCoreApplication *application = QCoreApplication::instance();
    // The pointer belongs to the windowed program; the command line has none.
    const bool curseur = qobject_cast<QGuiApplication *>(application) != nullptr;
    if (curseur)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    if (application) {
        // Timers, the serial line and the windows keep running meanwhile.
        // A coarse timer may fire up to 5 % early; the wait must not end
        // before its time, hence the precise timer and the deadline.
        const QDeadlineTimer fin(duree, Qt::PreciseTimer);
        do {
            QEventLoop boucle;
            QTimer::singleShot(milliseconds(fin.remainingTime()), Qt::PreciseTimer, &boucle, &QEventLoop::quit);
            boucle.exec();
        } while (!fin.hasExpired());
    } else {
        QThread::msleep(static_cast<unsigned long>(duree.count()));
    }
    if (curseur)
        QGuiApplication::restoreOverrideCursor();
}

QString NomUtilisateur()
{
    QString nom = qEnvironmentVariable("USER");
    if (nom.isEmpty())
        nom = qEnvironmentVariable("LOGNAME");
    if (nom.isEmpty()) {
        if (const passwd *pw = ::getpwuid(::geteuid()); pw && pw->pw_name)
            nom = QString::fromLocal8Bit(pw->pw_name);
    }
    return nomSysteme(nom);
}

QString NomOrdinateur()
{
    return nomSysteme(QSysInfo::machineHostName());
}

QString ApostrophesSQL(const QString &texte)
{
    QString t = texte;
    return t.replace(u'\'', QStringLiteral("''"));
}

bool OuvrirDocument(const QString &chemin)
{
    // The desktop's services are reached through the windowed application;
    // the command-line program has none to ask.
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return false;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(chemin));
}

bool FermerFenetreExterne(const QString &titre)
{
    // The desktops we run on (X11 through a window manager, Wayland) give an
    // ordinary program no way to find and close another program's window by
    // its title; the window is therefore never found.
    Q_UNUSED(titre);
    return false;
}

QString DossierSpecial(int id)
{
    // The high bits of an id are flags; 0x8000 asks for the folder to be
    // made when it is missing.
    const bool creer = (id & 0x8000) != 0;
    const auto dossier = [](QStandardPaths::StandardLocation l) { return QStandardPaths::writableLocation(l); };

    QString chemin;
    switch (id & 0xFF) {
    case 0x00: // desktop
    case 0x10: // desktop folder
        chemin = dossier(QStandardPaths::DesktopLocation);
        break;
    case 0x02: // programs of the start menu
        chemin = dossier(QStandardPaths::ApplicationsLocation);
        break;
    case 0x05: // personal documents
    case 0x0C:
        chemin = dossier(QStandardPaths::DocumentsLocation);
        break;
    case 0x07: // programs started at log-in
        chemin = dossier(QStandardPaths::GenericConfigLocation);
        if (!chemin.isEmpty())
            chemin += QStringLiteral("/autostart");
        break;
    case 0x0D: // music
        chemin = dossier(QStandardPaths::MusicLocation);
        break;
    case 0x0E: // video
        chemin = dossier(QStandardPaths::MoviesLocation);
        break;
    case 0x14: // fonts
        chemin = dossier(QStandardPaths::FontsLocation);
        break;
    case 0x1A: // roaming application data: the user's settings folder
        chemin = dossier(QStandardPaths::GenericConfigLocation);
        break;
    case 0x1C: // application data of this machine
        chemin = dossier(QStandardPaths::GenericDataLocation);
        break;
    case 0x20: // internet cache
        chemin = dossier(QStandardPaths::GenericCacheLocation);
        break;
    case 0x23: { // application data shared by all users: the first system
                 // data folder after the user's own
        const QStringList tous = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
        chemin = tous.value(1);
        break;
    }
    case 0x27: // pictures
        chemin = dossier(QStandardPaths::PicturesLocation);
        break;
    case 0x28: // the user's profile
        chemin = dossier(QStandardPaths::HomeLocation);
        break;
    default:
        // Among the rest, the Windows and system folders (0x24, 0x25, 0x29)
        // and the program files (0x26, 0x2A) have no counterpart here: empty,
        // as for an id the system does not know.
        return {};
    }
    if (creer && !chemin.isEmpty())
        QDir().mkpath(chemin);
    return chemin;
}

// --- Patients ------------------------------------------------------------

qint64 ChampNumeroPatient(const QString &texte)
{
    const QStringList champs = texte.split(QStringLiteral("§"));
    // A text with fewer fields carries no patient number.
    if (champs.size() <= 11)
        return 0;
    return LireEntier(champs.at(11));
}

QDate LireDateTexte(const QString &texte)
{
    // Day, month, year in this order, separated by "/", "-" or ".", day and
    // month on one or two digits, the year on four digits (100 to 9999) or on
    // two (00-29 are 2000-2029, 30-99 are 1930-1999, the platform's window).
    // Blanks around are allowed. Nothing else is a date here: no month names,
    // no missing year.
    static const QRegularExpression forme(
        QStringLiteral(R"(^\s*(\d{1,2})[/.-](\d{1,2})[/.-](\d{4}|\d{2})\s*$)"));
    const QRegularExpressionMatch m = forme.match(texte);
    if (!m.hasMatch())
        return {};
    const QString texteAnnee = m.captured(3);
    int annee = texteAnnee.toInt();
    if (texteAnnee.size() == 2)
        annee += annee < 30 ? 2000 : 1900;
    else if (annee < 100)
        return {};
    return QDate(annee, m.captured(2).toInt(), m.captured(1).toInt()); // invalid if no such day
}

QString TexteAge(QString &dateTexte)
{
    // Fixed-width fields hold a short date followed by two blanks; such a
    // text is reduced, for the caller too, to its first 8 characters written
    // out in full. (The rule looks at 8 characters whatever the field held.)
    if (dateTexte.endsWith(QStringLiteral("  "))) {
        const QDate courte = LireDateTexte(dateTexte.left(8));
        if (courte.isValid())
            dateTexte = courte.toString(QStringLiteral("dd/MM/yyyy"));
    }

    QString texte = dateTexte;
    if (!LireDateTexte(texte).isValid())
        return {};
    // A person born on 29 February is counted from the 28th, so that the
    // birthday exists in every year. The caller's text keeps the true date.
    if (texte.startsWith(QStringLiteral("29/02")))
        texte = QStringLiteral("28/02") + texte.mid(5);
    const QDate naissance = LireDateTexte(texte);
    if (!naissance.isValid())
        return {};

    const QDate aujourdhui = Horloge::aujourdhui();
    const qint64 jours = naissance.daysTo(aujourdhui);
    if (jours < 0)
        return {};

    const bool jourPasAtteint = naissance.day() > aujourdhui.day();
    if (jours <= 91)
        return pluriel(jours, QStringLiteral("jour"), jours != 1);
    if (jours < 365) {
        const qint64 semaines = jours / 7 - (jourPasAtteint ? 1 : 0);
        return QString::number(semaines) + QStringLiteral(" semaines");
    }
    if (jours < 1866) {
        const qint64 mois = (aujourdhui.year() - naissance.year()) * 12 + (aujourdhui.month() - naissance.month())
                            - (jourPasAtteint ? 1 : 0);
        return QString::number(mois) + QStringLiteral(" mois");
    }
    const bool anniversairePasAtteint = aujourdhui.month() < naissance.month()
                                        || (aujourdhui.month() == naissance.month() && aujourdhui.day() < naissance.day());
    const qint64 ans = aujourdhui.year() - naissance.year() - (anniversairePasAtteint ? 1 : 0);
    // A mistyped century shows no age.
    if (ans > 210)
        return {};
    return pluriel(ans, QStringLiteral("an"), ans != 1);
}
